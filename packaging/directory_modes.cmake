# CPack runs this on the files of the package: its directories get the modes that the directories of
# the system have, whatever the umask of the builder is.
file(GLOB_RECURSE entries LIST_DIRECTORIES true "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*")
foreach(entry ${entries})
  if(IS_DIRECTORY "${entry}")
    file(CHMOD "${entry}" DIRECTORY_PERMISSIONS
      OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  endif()
endforeach()
