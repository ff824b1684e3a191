# The Debian package: `cpack -G DEB` in the build folder makes twinly_<version>_<arch>.deb from
# the install rules.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME twinly)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_VENDOR "Twinly developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "compare two texts line by line")
# Debian wants the long description in lines of under 80 columns; CPack keeps our breaks.
string(JOIN "\n" CPACK_PACKAGE_DESCRIPTION
    "Twinly shows two texts side by side in two editable panes and marks where"
    "they differ, line by line: a narrow strip between the panes draws a yellow"
    "band from each stretch of differing lines on the left to its place on the"
    "right. Files come in by drag and drop or from the file manager; each pane"
    "has its own text encoding, from a list made for Japanese texts (UTF-8,"
    "Shift_JIS, EUC-JP, Mac OS Japanese). Rich text files are shown with their"
    "styles.")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/COPYING")
set(CPACK_PACKAGE_CHECKSUM SHA256)

# The program knows its installed paths (the About window links the installed README), so the
# package installs exactly where the build was configured to. Packaging builds are configured
# with -DCMAKE_INSTALL_PREFIX=/usr, as scripts/package does.
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION text)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Without it Qt runs through XWayland on a Wayland desktop: it works, less sharply scaled.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS qt6-wayland)
set(CPACK_STRIP_FILES ON)
# dpkg wants a maintainer. We publish no address unless one is configured, so the field names
# the team alone; a configured "Name <address>" stands as it is, a bare address gets our name.
if(TWINLY_SUPPORT_MAIL STREQUAL "")
    set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Twinly developers")
elseif(TWINLY_SUPPORT_MAIL MATCHES "<")
    set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${TWINLY_SUPPORT_MAIL}")
else()
    set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Twinly developers <${TWINLY_SUPPORT_MAIL}>")
endif()
if(NOT TWINLY_SUPPORT_URL STREQUAL "")
    set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${TWINLY_SUPPORT_URL}")
endif()

include(CPack)
