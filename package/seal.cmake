# Run by cpack when the package is made: dpkg-deb makes it once more of the same files. In cpack's own
# the umask shows, in the permissions that the archive gives for its three parts.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(files ${CPACK_TEMPORARY_DIRECTORY}.files)
  file(REMOVE_RECURSE ${files})
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${files} COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND dpkg-deb -Zgzip --root-owner-group --build ${files} ${package}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${files})
endforeach()
