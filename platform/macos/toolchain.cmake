# Cross-compiles for macOS on another system: the compiler of the Zig toolchain, headers and link stubs
# made from api.tsv. For checks; what is linked this way has never run.
#
#   MAC_ARCHITECTURE  arm64 or x86_64
#   MAC_API           folder of the headers and stubs

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR "${MAC_ARCHITECTURE}")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES MAC_ARCHITECTURE MAC_API MAC_TEST_HEADERS)
set(CMAKE_AR llvm-ar-14)
set(CMAKE_RANLIB llvm-ranlib-14)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)  # the stubs hold only what the program links

include("${CMAKE_CURRENT_LIST_DIR}/minimum_system.cmake")
# Zig takes the deployment target from the target's name alone, and calls one processor differently.
string(REPLACE "arm64" "aarch64" _target "${MAC_ARCHITECTURE}-macos.${MAC_MINIMUM_SYSTEM}")

# Two of Zig's defaults are reversed: checks for undefined behaviour, which need a runtime, are off; and
# the marks of the macOS version in which a part of the C++ library appeared are on. Zig brings its own
# library; here the system's is linked, as on a Mac.
set(_marks _LIBCPP_HAS_VENDOR_AVAILABILITY_ANNOTATIONS)
foreach(_language IN ITEMS CXX OBJCXX)
  set(CMAKE_${_language}_COMPILER "${CMAKE_CURRENT_LIST_DIR}/toolchain/c++")
  set(CMAKE_${_language}_COMPILER_TARGET "${_target}")
  set(CMAKE_${_language}_FLAGS_INIT
      "-U${_marks} -D${_marks}=1 -fno-sanitize=undefined -isystem ${MAC_API}/usr/include -iframework ${MAC_API}/System/Library/Frameworks -Werror=unguarded-availability -Werror=undeclared-selector -Werror=strict-selector-match")
  set(CMAKE_${_language}_STANDARD_LIBRARIES "${MAC_API}/usr/lib/libobjc.tbd ${MAC_API}/usr/lib/libc++.tbd")
endforeach()
set(CMAKE_EXE_LINKER_FLAGS_INIT "-F${MAC_API}/System/Library/Frameworks")
