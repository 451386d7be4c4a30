# Read by CPack before it builds a package. A missing program is an error here: without
# dpkg-shlibdeps CPack would build a package without dependencies, and not say so.
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

# The packages carry the time of the newest entry of the changelog, so that each build gives the same.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/debian/changelog signed REGEX "^ -- .*>  " LIMIT_COUNT 1)
  string(REGEX REPLACE ".*>  " "" date "${signed}")
  execute_process(COMMAND date -u -d ${date} +%s OUTPUT_VARIABLE epoch
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(ENV{SOURCE_DATE_EPOCH} ${epoch})
endif()

# The archive has a tree of its own, without the directories of an installed package.
if(CPACK_GENERATOR STREQUAL "TGZ")
  list(TRANSFORM CPACK_INSTALL_CMAKE_PROJECTS REPLACE "^ALL$" archive)
endif()
