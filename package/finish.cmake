# Run by cpack when everything is installed below CPACK_TEMPORARY_DIRECTORY and the package is
# about to be made: adds what Debian wants of a package.
set(usr ${CPACK_TEMPORARY_DIRECTORY}/usr)
set(doc ${usr}/share/doc/${CPACK_PACKAGE_NAME})
set(changelog ${CMAKE_CURRENT_LIST_DIR}/changelog)

# All times in the package are those of its changelog, so that it is the same whenever it is made.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(COMMAND dpkg-parsechangelog -l ${changelog} -S Timestamp
    OUTPUT_VARIABLE epoch OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(ENV{SOURCE_DATE_EPOCH} ${epoch})
endif()

function(place source destination name)
  configure_file(${source} ${destination}/${name} COPYONLY
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endfunction()

place(${CMAKE_CURRENT_LIST_DIR}/copyright ${doc} copyright)
place(${changelog} ${doc} changelog.Debian)
# Names how CUPS on Debian finds the queues whose models an upgrade renews.
place(${CMAKE_CURRENT_LIST_DIR}/ppd-updater ${usr}/share/cups/ppd-updaters
  ${CPACK_PACKAGE_NAME}.ppd-updater)

file(GLOB pages ${usr}/share/man/man*/*)
execute_process(COMMAND gzip -9nf ${doc}/changelog.Debian ${pages} COMMAND_ERROR_IS_FATAL ANY)

# The same package under every umask. Permissions of files that were installed are set already.
file(CHMOD_RECURSE ${CPACK_TEMPORARY_DIRECTORY}
  DIRECTORY_PERMISSIONS ${CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
file(CHMOD_RECURSE ${doc} ${usr}/share/man
  FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
