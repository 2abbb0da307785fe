# The oldest macOS that the program starts on, on both processors, for every build that makes macOS
# executables. It is the oldest that Apple's present compilers build for, and the first that runs on
# Apple processors. Everything that the program calls is older.
set(MAC_MINIMUM_SYSTEM 11.0)
