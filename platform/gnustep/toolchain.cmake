# Finds what an Objective-C++ compile with clang over GCC's Objective-C runtime needs.
#
# Sets GNUSTEP_INCLUDE_DIR, OBJC_INCLUDE_DIR, GNUSTEP_GUI_LIBRARY, GNUSTEP_BASE_LIBRARY and
# OBJC_LIBRARY. GCC keeps <objc/...> next to its own compiler headers, which clang must not see: a
# folder that holds nothing but a link to objc/ is used instead.

find_program(GCC_FOR_OBJC_RUNTIME NAMES gcc-12 gcc REQUIRED)

function(_gcc_file name result)
  execute_process(COMMAND "${GCC_FOR_OBJC_RUNTIME}" "-print-file-name=${name}"
                  OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  if(NOT IS_ABSOLUTE "${path}" OR NOT EXISTS "${path}")
    message(FATAL_ERROR "${GCC_FOR_OBJC_RUNTIME} has no ${name}; is the package gobjc installed?")
  endif()
  set(${result} "${path}" PARENT_SCOPE)
endfunction()

_gcc_file(libobjc.so OBJC_LIBRARY)
_gcc_file(include/objc _objc_headers)
set(OBJC_INCLUDE_DIR "${CMAKE_CURRENT_BINARY_DIR}/objc-runtime")
file(MAKE_DIRECTORY "${OBJC_INCLUDE_DIR}")
file(CREATE_LINK "${_objc_headers}" "${OBJC_INCLUDE_DIR}/objc" SYMBOLIC)

find_path(GNUSTEP_INCLUDE_DIR AppKit/AppKit.h PATH_SUFFIXES GNUstep REQUIRED)
find_library(GNUSTEP_GUI_LIBRARY gnustep-gui REQUIRED)
find_library(GNUSTEP_BASE_LIBRARY gnustep-base REQUIRED)
