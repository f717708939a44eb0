# Run by CPack before it packs what has been installed. CMake makes folders with the umask of
# whoever packages, which says nothing of who may enter them where the package is installed.
file(CHMOD_RECURSE "${CPACK_TEMPORARY_INSTALL_DIRECTORY}"
    DIRECTORY_PERMISSIONS
        OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
