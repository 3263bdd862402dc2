# cpack makes the Debian package, for Windows a zip archive; cpack --config
# CPackSourceConfig.cmake makes the source archive.
set(CPACK_PACKAGE_NAME tapforge)
set(CPACK_PACKAGE_VENDOR Ondrel)
set(CPACK_PACKAGE_CONTACT "Ondrel tapforge developers <tapforge@ondrel.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "converter of SVF (JTAG) files to SVF, Tcl and KSVF")
set(CPACK_PACKAGE_DESCRIPTION
"tapforge reads a Serial Vector Format file, merges headers, data and trailers
of a scan chain into whole scans, and writes them as SVF, as a Tcl script for
a tapbus, or as compact KSVF bytes with a listing for embedded players.
tapforge-replay compares what a source and a converted file do to the chain.")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME tapforge-${PROJECT_VERSION}-windows-x86_64)
else()
  set(CPACK_GENERATOR DEB)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Debian wants its own compressed forms; this works on the staged files.
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/stage_debian.cmake)
string(TIMESTAMP TAPFORGE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(packaging/changelog.Debian.in packaging/changelog.Debian @ONLY)
set(CPACK_DEBIAN_CHANGELOG ${PROJECT_BINARY_DIR}/packaging/changelog.Debian)

set(CPACK_SOURCE_GENERATOR TGZ)
set(CPACK_SOURCE_PACKAGE_FILE_NAME tapforge-${PROJECT_VERSION})
# The list holds regular expressions, so "." stands for the path's odd characters.
string(REGEX REPLACE "[^/a-zA-Z0-9_]" "." source "${PROJECT_SOURCE_DIR}")
set(CPACK_SOURCE_IGNORE_FILES "^${source}/build/" "^${source}/[.]git(/|$)" "/__pycache__/")
include(CPack)
