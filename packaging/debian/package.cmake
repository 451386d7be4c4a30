# The Debian package: its additional files, and the fields of its control file.
install_compressed(${CMAKE_CURRENT_SOURCE_DIR}/debian/changelog changelog.Debian ${doc_directory})
install(FILES debian/copyright DESTINATION ${doc_directory})
# The overrides mean something on Debian and its kin alone.
if(EXISTS /etc/debian_version)
  install(FILES debian/lintian-overrides DESTINATION usr/share/lintian/overrides RENAME cnatool)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/debian/repack.cmake)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${CNATOOL_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS python3)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "bash-completion, logrotate")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/debian/conffiles
  ${maintainer_scripts}/postinst ${maintainer_scripts}/prerm ${maintainer_scripts}/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "${summary}\n${description}\n.\n${description_end}")
