# Run by cpack when the package is made: dpkg-deb makes it once more of the same files. In cpack's own
# the umask shows, in the permissions that the archive gives for its three parts, and the file system,
# in the size that it gives for the folders.

# Sets `variable` to what `folder` takes when it is installed, as Debian counts it: whole KiB a file, one a
# folder.
function(installed_size folder variable)
  file(GLOB_RECURSE entries LIST_DIRECTORIES true ${folder}/*)
  list(FILTER entries EXCLUDE REGEX "^${folder}/DEBIAN(/|$)")
  set(kib 0)
  foreach(entry IN LISTS entries)
    set(bytes 1)
    if(NOT IS_DIRECTORY ${entry})
      file(SIZE ${entry} bytes)
    endif()
    math(EXPR kib "${kib} + (${bytes} + 1023) / 1024")
  endforeach()
  set(${variable} ${kib} PARENT_SCOPE)
endfunction()

foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(files ${CPACK_TEMPORARY_DIRECTORY}.files)
  file(REMOVE_RECURSE ${files})
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${files} COMMAND_ERROR_IS_FATAL ANY)
  installed_size(${files} kib)
  file(READ ${files}/DEBIAN/control control)
  string(REGEX REPLACE "Installed-Size: [0-9]+" "Installed-Size: ${kib}" control "${control}")
  file(WRITE ${files}/DEBIAN/control "${control}")
  execute_process(COMMAND dpkg-deb -Zgzip --root-owner-group --build ${files} ${package}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${files})
endforeach()
