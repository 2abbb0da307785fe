# Packages for macOS: one installer package and one disk image per edition. script/package chooses the
# edition, packs, and checks what it packed; see docs/macos.md.

set(CPACK_PACKAGE_VENDOR "Configuration Utility")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}/packages")
set(CPACK_GENERATOR productbuild DragNDrop)
# One edition a package: a component each, which script/package names.
set(CPACK_MONOLITHIC_INSTALL ON)
# Stripping or patching would break the seal of the bundles, which are signed before they are packed.
set(CPACK_STRIP_FILES OFF)
# Where a package installs; a disk image holds the bundle at its top.
set(CPACK_PRODUCTBUILD_DOMAINS ON)
set(CPACK_PRODUCTBUILD_DOMAINS_ANYWHERE OFF)
set(CPACK_PRODUCTBUILD_DOMAINS_USER OFF)
set(CPACK_PRODUCTBUILD_DOMAINS_ROOT ON)
include(CPack)

# Makes the bundle of that target a component of its own.
function(mac_package_bundle target)
  install(TARGETS ${target} BUNDLE DESTINATION . COMPONENT ${target})
endfunction()
