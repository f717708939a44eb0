# Read by CPack once for each kind of package.
if(CPACK_GENERATOR STREQUAL "DEB")
    list(GET CPACK_INSTALL_CMAKE_PROJECTS 0 build_tree)
    list(APPEND CPACK_INSTALL_CMAKE_PROJECTS "${build_tree}" "Debian's own files" debian /)
elseif(CPACK_GENERATOR STREQUAL "TGZ")
    set(CPACK_PACKAGE_FILE_NAME "${CPACK_ARCHIVE_FILE_NAME}")
endif()
