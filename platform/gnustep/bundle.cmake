# platform_add_bundle(<target> TITLE <title> IDENTIFIER <bundle identifier>
#                     [OUTPUT_DIR <folder>] [RESOURCES <file>...] [TOOLS <target>...] [PLAIN])
#
# Makes an executable the program of the application bundle <folder>/<title>.app, where <folder> is
# ${CMAKE_BINARY_DIR}/apps unless given:
#
#   <title>.app/<title>, and next to it the TOOLS of platform_add_tool()
#   <title>.app/Resources/Info-gnustep.plist, the RESOURCES, the status images, the icon,
#                                 and, unless PLAIN, Mac.theme
#
# Also links what the executable needs of this platform. Resources are copied again when they
# change, and only then.

# platform_add_tool(<target> NAME <name> TITLE <title>)
#
# Puts an executable without windows into the bundle of that title, next to its program:
# <title>.app/<name>. It links Foundation alone.

function(platform_add_tool target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "NAME;TITLE" "")
  set_target_properties(${target} PROPERTIES OUTPUT_NAME "${arg_NAME}"
                                             RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/apps/${arg_TITLE}.app")
  target_link_libraries(${target} PRIVATE platform_foundation_api platform_gnustep_foundation)
endfunction()

function(platform_add_bundle target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "PLAIN" "TITLE;IDENTIFIER;OUTPUT_DIR" "RESOURCES;TOOLS")
  if(NOT arg_TITLE OR NOT arg_IDENTIFIER OR arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "platform_add_bundle(${target}): TITLE and IDENTIFIER are required, "
                        "unknown: '${arg_UNPARSED_ARGUMENTS}'")
  endif()
  if(NOT arg_OUTPUT_DIR)
    set(arg_OUTPUT_DIR "${CMAKE_BINARY_DIR}/apps")
  endif()

  set(bundle "${arg_OUTPUT_DIR}/${arg_TITLE}.app")
  set_target_properties(${target} PROPERTIES OUTPUT_NAME "${arg_TITLE}"
                                             RUNTIME_OUTPUT_DIRECTORY "${bundle}")
  target_link_libraries(${target} PRIVATE platform_api platform_gnustep)

  set(title "${arg_TITLE}")
  set(identifier "${arg_IDENTIFIER}")
  configure_file("${CMAKE_CURRENT_FUNCTION_LIST_DIR}/Info-gnustep.plist.in" "${bundle}/Resources/Info-gnustep.plist"
                 @ONLY)

  file(GLOB images CONFIGURE_DEPENDS "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/images/*.png")
  set(copies "")
  set(icon "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../../resources/AppIcon.png")
  foreach(resource IN LISTS arg_RESOURCES images icon)
    cmake_path(ABSOLUTE_PATH resource NORMALIZE)
    cmake_path(GET resource FILENAME name)
    set(copy "${bundle}/Resources/${name}")
    add_custom_command(OUTPUT "${copy}" DEPENDS "${resource}"
                       COMMAND "${CMAKE_COMMAND}" -E copy "${resource}" "${copy}"
                       COMMENT "Copying ${name} to ${title}.app" VERBATIM)
    list(APPEND copies "${copy}")
  endforeach()

  if(NOT arg_PLAIN)
    set(theme "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/theme/Resources")
    set(copy "${bundle}/Resources/Mac.theme/Resources")
    file(GLOB_RECURSE pictures CONFIGURE_DEPENDS "${theme}/*")
    add_custom_command(OUTPUT "${copy}/Info-gnustep.plist" DEPENDS ${pictures}
                       COMMAND "${CMAKE_COMMAND}" -E rm -rf "${copy}"
                       COMMAND "${CMAKE_COMMAND}" -E copy_directory "${theme}" "${copy}"
                       COMMENT "Copying the theme to ${title}.app" VERBATIM)
    list(APPEND copies "${copy}/Info-gnustep.plist")
  endif()

  if(arg_TOOLS)
    add_dependencies(${target} ${arg_TOOLS})
  endif()
  if(copies)
    add_custom_target(${target}_resources ALL DEPENDS ${copies})
    add_dependencies(${target} ${target}_resources)
  endif()
endfunction()
