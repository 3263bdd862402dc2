# Run by CPack on the staged tree of the Debian package: compresses the manual
# and the change log, and adds what Debian asks for beside them. No time stamp
# enters the compressed files, so that equal sources give equal packages.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()
set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
set(doc ${root}/doc/tapforge)
file(COPY_FILE ${doc}/CHANGELOG.md ${doc}/changelog)  # links lead to the first
file(COPY ${CMAKE_CURRENT_LIST_DIR}/copyright ${CPACK_DEBIAN_CHANGELOG} DESTINATION ${doc})
execute_process(
  COMMAND gzip -9n ${root}/man/man1/tapforge.1 ${root}/man/man1/tapforge-replay.1
          ${doc}/changelog ${doc}/changelog.Debian
  COMMAND_ERROR_IS_FATAL ANY)
