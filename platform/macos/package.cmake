# mac_describe_package(<target>)
#
# Writes what script/package needs to pack the target's bundle into ${CMAKE_BINARY_DIR}/package/<target>:
#
#   settings          title, identifier and version of the bundle, as assignments for a shell
#   components.plist  how the Installer treats the bundle
#   Distribution.xml  what the Installer shows and requires
#   resources/        the text that it shows first, in each language
#
# Reads EDITION_TITLE, EDITION_IDENTIFIER and MINIMUM_SYSTEM of its caller.
function(mac_describe_package target)
  set(folder "${CMAKE_BINARY_DIR}/package/${target}")
  set(templates "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/package")
  file(WRITE "${folder}/settings" "title='${EDITION_TITLE}'
identifier='${EDITION_IDENTIFIER}'
version='${PROJECT_VERSION}'
")
  file(GLOB_RECURSE names CONFIGURE_DEPENDS RELATIVE "${templates}" "${templates}/*.in")
  foreach(name IN LISTS names)
    string(REGEX REPLACE "\\.in$" "" made "${name}")
    configure_file("${templates}/${name}" "${folder}/${made}" @ONLY)
  endforeach()
endfunction()
