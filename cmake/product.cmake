# The program: object libraries that every edition shares, and two small executables per edition.
#
#   product_core         plain C++, without the include path of any Objective-C header
#   shell_runner         the one place that starts processes
#   foundation_adapters  calls of Foundation behind plain C++ headers
#   server_plist_location, admin_checks
#                        the path of the local Library folder; queries to the local directory
#   window_controllers   the two controllers
#   tool_core            the command-line tool without its entry; plain C++ as well
#
# Tests link the same objects, with doubles instead of shell_runner, server_plist_location or admin_checks.

include(cmake/editions.cmake)

add_library(project_warnings INTERFACE)
target_compile_options(project_warnings INTERFACE -Wall -Wextra -Wreserved-identifier)

file(GLOB product_sources CONFIGURE_DEPENDS RELATIVE "${CMAKE_SOURCE_DIR}" app/*.cpp settings/*.cpp
     agent/*.cpp i18n/*.cpp)
list(REMOVE_ITEM product_sources app/build_edition.cpp agent/shell.cpp agent/child_process.cpp)
file(GLOB plain_headers CONFIGURE_DEPENDS app/*.h settings/*.h agent/*.h i18n/*.h cli/*.h)
foreach(header IN LISTS plain_headers)
  file(STRINGS "${header}" imports REGEX "^#import" LIMIT_COUNT 1)
  if(imports)
    list(REMOVE_ITEM plain_headers "${header}")
  endif()
endforeach()

# Every plain header is compiled on its own, as C++.
set(CMAKE_VERIFY_INTERFACE_HEADER_SETS ON)
add_library(product_core OBJECT ${product_sources})
target_sources(product_core PUBLIC FILE_SET HEADERS BASE_DIRS "${CMAKE_SOURCE_DIR}" FILES ${plain_headers})
target_link_libraries(product_core PRIVATE project_warnings)

add_library(shell_runner OBJECT agent/shell.cpp agent/child_process.cpp)
target_link_libraries(shell_runner PUBLIC product_core PRIVATE project_warnings)

file(GLOB tool_sources CONFIGURE_DEPENDS RELATIVE "${CMAKE_SOURCE_DIR}" cli/*.cpp)
list(REMOVE_ITEM tool_sources cli/main.cpp)
add_library(tool_core OBJECT ${tool_sources})
target_link_libraries(tool_core PUBLIC product_core PRIVATE project_warnings)
add_library(tool_entry OBJECT cli/main.cpp)
target_link_libraries(tool_entry PUBLIC product_core PRIVATE project_warnings)
target_compile_definitions(tool_entry PRIVATE "PRODUCT_VERSION=\"${PROJECT_VERSION}\"")

# Libraries that call only Foundation, and those that may call all of the platform.
function(add_foundation_library name)
  add_library(${name} OBJECT ${ARGN})
  target_link_libraries(${name} PUBLIC product_core platform_foundation_api
                                PRIVATE project_warnings platform_strict)
endfunction()

function(add_platform_library name)
  add_foundation_library(${name} ${ARGN})
  target_link_libraries(${name} PUBLIC platform_api)
endfunction()

add_foundation_library(foundation_adapters app/error_log.mm app/user_defaults.mm i18n/catalogue.mm
                       settings/server_data.mm)
add_foundation_library(server_plist_location agent/server_plist_path.mm)
add_platform_library(admin_checks app/local_admin.mm)
add_platform_library(
  window_controllers
  app/AppDelegate.mm
  app/EditingKeysView.mm
  app/not_admin_alert.mm
  settings/ServerWindowController.mm
  "settings/ServerWindowController+Apply.mm"
  "settings/ServerWindowController+ConnectionTest.mm"
  "i18n/ServerWindowController+Translation.mm")

add_platform_library(program_entry app/main.mm)

set(PROGRAM_RESOURCES "${CMAKE_SOURCE_DIR}/resources/MainMenu.xib"
                      "${CMAKE_SOURCE_DIR}/resources/ServerWindowController.xib"
                      "${CMAKE_SOURCE_DIR}/resources/translate.json"
                      "${CMAKE_SOURCE_DIR}/cli/configure-agent.1")

# build_edition_<oem>: the one object in which the editions differ.
foreach(oem IN LISTS EDITIONS)
  add_library(build_edition_${oem} OBJECT app/build_edition.cpp)
  target_compile_definitions(build_edition_${oem} PRIVATE "BUILD_OEM=\"${oem}\"")
  target_link_libraries(build_edition_${oem} PRIVATE product_core project_warnings)

  add_executable(${oem}-configure-agent)
  target_link_libraries(${oem}-configure-agent PRIVATE tool_entry tool_core server_plist_location
                        foundation_adapters shell_runner product_core build_edition_${oem})
  platform_add_tool(${oem}-configure-agent NAME configure-agent TITLE "${EDITION_TITLE_${oem}}")

  add_executable(${oem})
  target_link_libraries(${oem} PRIVATE program_entry window_controllers admin_checks server_plist_location
                                       foundation_adapters shell_runner product_core
                                       build_edition_${oem})
  platform_add_bundle(${oem} TITLE "${EDITION_TITLE_${oem}}"
                      IDENTIFIER "${EDITION_IDENTIFIER_${oem}}"
                      RESOURCES ${PROGRAM_RESOURCES}
                      TOOLS ${oem}-configure-agent)
  set_property(GLOBAL APPEND PROPERTY BUNDLE_TITLES "${EDITION_TITLE_${oem}}")
endforeach()
