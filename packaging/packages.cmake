# What CPack needs to know. "cpack -G DEB" and "cpack -G TGZ" in a build tree of type Release give
# what is delivered.
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PACKAGE_NAME corvane-panel)
set(CPACK_PACKAGE_VENDOR "${PANEL_COPYRIGHT_HOLDER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "control panel of the Corvane service")
set(CPACK_STRIP_FILES ON)
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_CURRENT_SOURCE_DIR}/per-generator.cmake")
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_SOURCE_DIR}/open-folders.cmake")

set(CPACK_ARCHIVE_FILE_NAME
    "corvane-panel-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${PANEL_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${PANEL_HOME_PAGE}")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "A window that shows whether the service runs on this computer, for how
long, for whom and with what share of processor and memory, that starts it
where it doesn't run, and that opens the maker's service hall and knowledge
base in the web browser.
.
The service itself comes in a package of its own.")

# Libraries are found by dpkg-shlibdeps; with libqt5gui5 come the plug-ins for X11 and for .ico
# files. By hand only what the program loads or runs by name: Qt's plug-in for SVG; pgrep and ps;
# xdg-open. bash and grep are essential and an awk is required by an essential package, so these
# need no mention.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt5svg5, procps, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "fonts-noto-cjk | fonts-wqy-microhei | fonts-wqy-zenhei | fonts-droid-fallback")

include(CPack)
