# The Debian package built by `make package`; included last by the top-level
# CMakeLists so that every install rule is in it.
# The package depends on the `run` packages of the same list the set-up
# script installs from.
file(STRINGS ${CMAKE_SOURCE_DIR}/scripts/packages.list listLines REGEX "^run ")
list(TRANSFORM listLines REPLACE "^run +" "")
list(JOIN listLines ", " runDepends)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kvr-pc)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "KVR-PC developers <kvr-pc@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "development environment for KVR4410 and KVR6630 Forth boards")
set(CPACK_PACKAGE_DESCRIPTION
    "KVR-PC edits .KVR Forth sources, talks to the board through a terminal over a serial port or TCP, compiles programs on the board line by line, uploads PROM images and analyses a program's words. kvr runs the same engine from scripts; kvr-board is a simulated board for trying it without hardware.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "${runDepends}")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)
include(CPack)
