# Run by CPack on what goes into the package: its directories have the modes of the system's own,
# whatever the umask of whoever builds it.
file(GLOB_RECURSE entries LIST_DIRECTORIES true "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*")
foreach(entry ${entries})
  if(IS_DIRECTORY "${entry}")
    file(CHMOD "${entry}" DIRECTORY_PERMISSIONS
      OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  endif()
endforeach()
