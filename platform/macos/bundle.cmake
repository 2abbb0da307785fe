# macOS as the program's platform: the counterpart of platform/gnustep/bundle.cmake.
#
#   platform_foundation_api, platform_api, platform_strict, platform_gnustep, platform_gnustep_foundation
#       Foundation alone, and the system's other frameworks; the last three are empty, since nothing is
#       to be added or hidden
#   platform_add_tool(<target> NAME <name> TITLE <title>)
#       puts an executable without windows into the bundle of that title, next to its program. Call it
#       before platform_add_bundle(), which seals the bundle
#   platform_add_bundle(<target> TITLE <title> IDENTIFIER <bundle identifier>
#                       [OUTPUT_DIR <folder>] [RESOURCES <file>...] [TOOLS <target>...])
#       makes an executable the program of <folder>/<title>.app, where <folder> is
#       ${CMAKE_BINARY_DIR}/apps unless given, with compiled interface files, icon and signature
#
# MAC_SIGNING_IDENTITY names the certificate to sign with; see docs/macos.md.
#
# A cross-build has neither ibtool nor codesign. Its bundles hold the interface files as they are and
# are unsigned, so they are for checks only.

include("${CMAKE_CURRENT_LIST_DIR}/minimum_system.cmake")
include("${CMAKE_CURRENT_LIST_DIR}/package.cmake")
set(CMAKE_OSX_DEPLOYMENT_TARGET "${MAC_MINIMUM_SYSTEM}")
if(NOT CMAKE_CROSSCOMPILING)
  if(NOT CMAKE_OSX_ARCHITECTURES)
    set(CMAKE_OSX_ARCHITECTURES arm64 x86_64)
  endif()
  find_program(IBTOOL ibtool REQUIRED)
  find_program(CODESIGN codesign REQUIRED)
endif()
set(MAC_SIGNING_IDENTITY "-" CACHE STRING "Certificate to sign with; \"-\" signs ad hoc")

add_library(platform_foundation_api INTERFACE)
target_link_libraries(platform_foundation_api INTERFACE "-framework Foundation")
target_compile_options(platform_foundation_api INTERFACE "$<$<COMPILE_LANGUAGE:OBJCXX>:-fno-objc-arc>")
add_library(platform_api INTERFACE)
target_link_libraries(platform_api INTERFACE "-framework AppKit" platform_foundation_api
                                             "-framework OpenDirectory")
add_library(platform_strict INTERFACE)
add_library(platform_gnustep INTERFACE)
add_library(platform_gnustep_foundation INTERFACE)

# Appends the file that the resource becomes in the bundle to the list of that name. A resource in a
# folder of one language stays in a folder of that name.
function(_add_resource bundle resource list)
  cmake_path(ABSOLUTE_PATH resource NORMALIZE)
  cmake_path(GET resource FILENAME name)
  cmake_path(GET resource PARENT_PATH folder)
  if(folder MATCHES "/([a-z]+\\.lproj)$")
    set(name "${CMAKE_MATCH_1}/${name}")
  endif()
  set(make "${CMAKE_COMMAND}" -E copy "${resource}")
  if(IBTOOL AND name MATCHES "\\.xib$")
    string(REPLACE ".xib" ".nib" name "${name}")
    set(make "${IBTOOL}" --errors --warnings --notices --output-format human-readable-text
             --minimum-deployment-target "${MAC_MINIMUM_SYSTEM}" "${resource}" --compile)
  endif()
  set(file "${bundle}/Contents/Resources/${name}")
  add_custom_command(OUTPUT "${file}" DEPENDS "${resource}" COMMAND ${make} "${file}"
                     COMMENT "Making ${name} of ${bundle}" VERBATIM)
  set(${list} ${${list}} "${file}" PARENT_SCOPE)
endfunction()

# A bundle is sealed as a whole: signing follows the linking, which follows every change in the bundle.
# No entitlements: the program is not sandboxed and needs none under the hardened runtime.
function(_sign target path)
  set(options "")
  if(NOT MAC_SIGNING_IDENTITY STREQUAL "-")
    set(options --options runtime --timestamp)
  endif()
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${ARGN})
  add_custom_command(
    TARGET ${target} POST_BUILD
    COMMAND "${CODESIGN}" --force --sign "${MAC_SIGNING_IDENTITY}" ${options} "${path}"
    COMMENT "Signing ${path}" VERBATIM)
endfunction()

function(platform_add_tool target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "NAME;TITLE" "")
  set(bundle "${CMAKE_BINARY_DIR}/apps/${arg_TITLE}.app")
  set_target_properties(${target} PROPERTIES OUTPUT_NAME "${arg_NAME}"
                                             RUNTIME_OUTPUT_DIRECTORY "${bundle}/Contents/MacOS")
  target_link_libraries(${target} PRIVATE platform_foundation_api)
  if(CODESIGN)
    # Code within a bundle is sealed before the bundle is.
    _sign(${target} "${bundle}/Contents/MacOS/${arg_NAME}")
  endif()
endfunction()

function(platform_add_bundle target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "TITLE;IDENTIFIER;OUTPUT_DIR" "RESOURCES;TOOLS")
  if(NOT arg_TITLE OR NOT arg_IDENTIFIER OR arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "platform_add_bundle(${target}): TITLE and IDENTIFIER are required, "
                        "unknown: '${arg_UNPARSED_ARGUMENTS}'")
  endif()
  set(packed OFF)
  if(NOT arg_OUTPUT_DIR)
    set(arg_OUTPUT_DIR "${CMAKE_BINARY_DIR}/apps")
    set(packed ON)  # a bundle elsewhere is a test's own
  endif()
  set(bundle "${arg_OUTPUT_DIR}/${arg_TITLE}.app")
  set(resources_folder "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../../resources")

  # CMake fills in its own template's names only, so ours is filled in first.
  set(EDITION_TITLE "${arg_TITLE}")
  set(EDITION_IDENTIFIER "${arg_IDENTIFIER}")
  set(MINIMUM_SYSTEM "${MAC_MINIMUM_SYSTEM}")
  set(property_list "${CMAKE_CURRENT_BINARY_DIR}/${target}-Info.plist")
  configure_file("${resources_folder}/Info.plist.in" "${property_list}" @ONLY)
  set_target_properties(
    ${target}
    PROPERTIES MACOSX_BUNDLE ON
               MACOSX_BUNDLE_INFO_PLIST "${property_list}"
               OUTPUT_NAME "${arg_TITLE}"
               RUNTIME_OUTPUT_DIRECTORY "${arg_OUTPUT_DIR}")
  target_link_libraries(${target} PRIVATE platform_api)
  if(packed)
    mac_describe_package(${target})
  endif()

  set(files "")
  file(GLOB strings CONFIGURE_DEPENDS "${resources_folder}/*.lproj/InfoPlist.strings")
  foreach(resource IN LISTS arg_RESOURCES strings ITEMS "${resources_folder}/AppIcon.icns")
    _add_resource("${bundle}" "${resource}" files)
  endforeach()
  add_custom_target(${target}_resources ALL DEPENDS ${files})
  add_dependencies(${target} ${target}_resources ${arg_TOOLS})
  list(TRANSFORM arg_TOOLS REPLACE "(.+)" "$<TARGET_FILE:\\1>")
  if(CODESIGN)
    _sign(${target} "${bundle}" ${files} ${arg_TOOLS} "${property_list}")
  endif()
endfunction()
