# Run by CPack behind each package. In a Debian package the members have modes from the umask of
# whoever builds it: dpkg-deb packs it once more, with its own.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(tree ${CPACK_TEMPORARY_DIRECTORY}/repacked)
  file(REMOVE_RECURSE ${tree})
  execute_process(COMMAND dpkg-deb -R ${CPACK_PACKAGE_FILES} ${tree} COMMAND_ERROR_IS_FATAL ANY)
  file(CHMOD ${tree} ${tree}/DEBIAN PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  execute_process(COMMAND dpkg-deb --root-owner-group -Zgzip -b ${tree} ${CPACK_PACKAGE_FILES}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endif()
