# The program: object libraries that every edition shares, and one small executable per edition.
#
#   core        plain C++; sees no Objective-C header, so that none can creep in
#   shell       the one place that starts processes
#   foundation  what calls Foundation, behind plain C++ headers
#   local_library, directory
#               where the local Library folder is and what the local directory says, likewise
#   windows     the two controllers
#
# Tests link the same objects and put doubles in place of shell, local_library or directory.

include(cmake/Editions.cmake)

add_library(project_warnings INTERFACE)
target_compile_options(project_warnings INTERFACE -Wall -Wextra -Wreserved-identifier -Werror)

file(GLOB core_sources CONFIGURE_DEPENDS RELATIVE "${CMAKE_SOURCE_DIR}" app/*.cpp settings/*.cpp
     agent/*.cpp i18n/*.cpp)
list(REMOVE_ITEM core_sources app/build_edition.cpp agent/shell.cpp)
file(GLOB plain_headers CONFIGURE_DEPENDS app/*.h settings/*.h agent/*.h i18n/*.h)
list(FILTER plain_headers EXCLUDE REGEX "/(AppDelegate|ServerWindowController|outlet|text)\\.h$")

# Every plain header is compiled on its own, as C++.
set(CMAKE_VERIFY_INTERFACE_HEADER_SETS ON)
add_library(core OBJECT ${core_sources})
target_sources(core PUBLIC FILE_SET HEADERS BASE_DIRS "${CMAKE_SOURCE_DIR}" FILES ${plain_headers})
target_link_libraries(core PRIVATE project_warnings)

add_library(shell OBJECT agent/shell.cpp)
target_link_libraries(shell PUBLIC core PRIVATE project_warnings)

function(add_platform_library name)
  add_library(${name} OBJECT ${ARGN})
  target_link_libraries(${name} PUBLIC core platform_api PRIVATE project_warnings platform_strict)
endfunction()

add_platform_library(foundation app/error_log.mm i18n/catalogue.mm settings/server_data.mm)
add_platform_library(local_library agent/local_library.mm)
add_platform_library(directory app/local_admin.mm)
add_platform_library(
  windows
  app/AppDelegate.mm
  settings/ServerWindowController.mm
  "settings/ServerWindowController+Apply.mm"
  "settings/ServerWindowController+ConnectionTest.mm"
  "i18n/ServerWindowController+Translation.mm")

add_platform_library(program_main app/main.mm)

set(PROGRAM_RESOURCES "${CMAKE_SOURCE_DIR}/resources/MainMenu.xib"
                      "${CMAKE_SOURCE_DIR}/resources/ServerWindowController.xib"
                      "${CMAKE_SOURCE_DIR}/resources/translate.json")

# build_edition_<oem>: the one object in which the editions differ.
foreach(oem IN LISTS EDITIONS)
  add_library(build_edition_${oem} OBJECT app/build_edition.cpp)
  target_compile_definitions(build_edition_${oem} PRIVATE "BUILD_OEM=\"${oem}\"")
  target_link_libraries(build_edition_${oem} PRIVATE core project_warnings)

  add_executable(${oem})
  target_link_libraries(${oem} PRIVATE program_main windows directory local_library
                                       foundation shell core
                                       build_edition_${oem})
  platform_add_bundle(${oem} TITLE "${EDITION_TITLE_${oem}}"
                      IDENTIFIER "${EDITION_IDENTIFIER_${oem}}"
                      RESOURCES ${PROGRAM_RESOURCES})
endforeach()
