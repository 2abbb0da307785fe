# Packages for macOS: one installer package and one disk image per edition. script/package packs them
# and checks what it has packed; see docs/macos.md.

set(CPACK_PACKAGE_VENDOR "${PROJECT_NAME}")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}/packages")
set(CPACK_VERBATIM_VARIABLES ON)
# Only the component that the edition's own configuration names.
set(CPACK_MONOLITHIC_INSTALL ON)
# Stripping would break the seal of the bundle, which is signed before it is packed.
set(CPACK_STRIP_FILES OFF)
# For the whole machine; the agent that the program configures is there for all users, too.
set(CPACK_PRODUCTBUILD_DOMAINS ON)
set(CPACK_PRODUCTBUILD_DOMAINS_ANYWHERE OFF)
set(CPACK_PRODUCTBUILD_DOMAINS_USER OFF)
set(CPACK_PRODUCTBUILD_DOMAINS_ROOT ON)
include(CPack)

# Makes the bundle of that target a package of its own: CPackConfig-<target>.cmake below the build
# folder says how.
function(mac_package_bundle target title identifier)
  install(TARGETS ${target} BUNDLE DESTINATION . COMPONENT ${target})
  string(REPLACE " " "-" file_name "${title}-${PROJECT_VERSION}")
  file(WRITE "${CMAKE_BINARY_DIR}/CPackConfig-${target}.cmake"
       "include(\"\${CMAKE_CURRENT_LIST_DIR}/CPackConfig.cmake\")
set(CPACK_INSTALL_CMAKE_PROJECTS \"${CMAKE_BINARY_DIR};${PROJECT_NAME};${target};/\")
set(CPACK_PACKAGE_NAME \"${title}\")
set(CPACK_PACKAGE_FILE_NAME \"${file_name}\")
set(CPACK_PRODUCTBUILD_IDENTIFIER \"${identifier}\")
set(CPACK_DMG_VOLUME_NAME \"${title}\")
")
endfunction()
