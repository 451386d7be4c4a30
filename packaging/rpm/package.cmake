# The rpm, and the archive beside it: the additional files of the rpm, and its fields.
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${doc_directory})

set(CPACK_GENERATOR "RPM;TGZ")
set(CPACK_PACKAGE_FILE_NAME cnatool-${PROJECT_VERSION}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_RPM_FILE_NAME RPM-DEFAULT)
set(CPACK_RPM_PACKAGE_RELEASE 1)
set(CPACK_RPM_PACKAGE_LICENSE MIT)
set(CPACK_RPM_PACKAGE_GROUP "System Environment/Base")
string(REGEX REPLACE "^c" "C" CPACK_RPM_PACKAGE_SUMMARY ${summary})
set(CPACK_RPM_PACKAGE_DESCRIPTION "${description}\n\n${description_end}")
set(CPACK_RPM_CHANGELOG_FILE ${CMAKE_CURRENT_SOURCE_DIR}/rpm/changelog)
set(CPACK_RPM_POST_INSTALL_SCRIPT_FILE ${maintainer_scripts}/postinst)
set(CPACK_RPM_PRE_UNINSTALL_SCRIPT_FILE ${maintainer_scripts}/prerm)
set(CPACK_RPM_POST_UNINSTALL_SCRIPT_FILE ${maintainer_scripts}/postinst)
# Every rpm of the last fifteen years reads gzip. There are no debug files for links.
set(CPACK_RPM_COMPRESSION_TYPE gzip)
set(CPACK_RPM_PACKAGE_AUTOREQ OFF)
set(CPACK_PACKAGE_RELOCATABLE OFF)
set(CPACK_RPM_SPEC_MORE_DEFINE "Packager: ${CNATOOL_MAINTAINER}\nRecommends: python3\n%define _build_id_links none")
set(CPACK_RPM_USER_FILELIST
  "%config(noreplace) /etc/default/cnatool" "%config(noreplace) /etc/logrotate.d/cnatool"
  "%license /${doc_directory}/LICENSE")
# Directories of the system do not belong to the package.
set(CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION
  /etc /etc/default /etc/logrotate.d /opt /usr/lib/systemd /usr/lib/systemd/system /usr/share/doc
  /usr/share/man /usr/share/man/man8 /usr/share/bash-completion
  /usr/share/bash-completion/completions)
