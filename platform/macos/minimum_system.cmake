# The oldest macOS that the program starts on, for every build that makes macOS executables.
#
# 10.13 is the oldest that Apple's present compilers still build for. Nothing in the program needs more:
# std::filesystem, which would need 10.15, and formatted floating-point numbers (13.3) are not used, and
# Foundation's -[NSLocale languageCode] (10.12) is the newest call. On Apple processors the compiler
# raises it to 11.0, the first macOS that they run.
set(MAC_MINIMUM_SYSTEM 10.13)
