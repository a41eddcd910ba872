# The Debian package, made by scripts/package.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME gxtext)
set(CPACK_PACKAGE_VENDOR gxtext)
set(CPACK_PACKAGE_CONTACT "The developers of gxtext")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "The program, the shared libraries, and what is needed to build programs on
them: headers, files for CMake and for pkg-config.")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Our own libraries are in the package; those of the log are in a folder of their own.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/lib")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# A picture needs a font, but any will do.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS fonts-dejavu-core)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
include(CPack)
