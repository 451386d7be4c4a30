# Read by CPack before it builds a package. What it lacks is said at once: without dpkg-shlibdeps
# CPack would build a package without dependencies, and not say so.
set(needed_by_DEB file dpkg-deb dpkg-shlibdeps)
set(needed_by_RPM file rpmbuild)
foreach(program ${needed_by_${CPACK_GENERATOR}})
  find_program(found_${program} ${program} NO_CACHE)
  if(NOT found_${program})
    list(APPEND missing ${program})
  endif()
endforeach()
if(missing)
  list(JOIN missing ", " missing)
  message(FATAL_ERROR "Not installed: ${missing} (./setup.sh package installs it)")
endif()

# One archive of its own tree, without the places of an installed package.
if(CPACK_GENERATOR STREQUAL "TGZ")
  list(TRANSFORM CPACK_INSTALL_CMAKE_PROJECTS REPLACE "^ALL$" archive)
endif()
