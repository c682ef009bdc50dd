# Where things are installed, and the rules for it: one line beside the target.
#
#   tarvo_install_filter(TARGET)      CUPS's filter folder, and man/TARGET.8
#   tarvo_install_filter_scripts(FILE...)   CUPS's filter folder
#   tarvo_install_tool(TARGET)        the programs' folder, and man/TARGET.1
#   tarvo_install_script(NAME)        the programs' folder, and man/NAME.1
#   tarvo_install_cups_data(FOLDER FILE...)   a folder of CUPS's data: drv, mime, ...
#
# CUPS looks for filters and models in its own two folders and nowhere else, so those are where it
# says they are, whatever the prefix. A folder of CUPS's that lies under the prefix is named from
# there, so that "cmake --install --prefix" moves it along with all the rest.
#
#   TARVO_CUPS_SERVERBIN   the folder above filter/
#   TARVO_CUPS_DATADIR     the folder above drv/ and mime/
#
# Both can be given; a relative one counts from the prefix.
include(GNUInstallDirs)

# Whatever the umask of who installs: cupsd runs only what everyone can read and only root write.
set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# cups-config is going to end, the variables of cups.pc are not in every release that has it.
function(tarvo_ask_cups variable option pkg_config_variable fallback help)
  find_program(TARVO_CUPS_CONFIG cups-config)
  find_program(TARVO_PKG_CONFIG pkg-config)
  mark_as_advanced(TARVO_CUPS_CONFIG TARVO_PKG_CONFIG)
  set(answer "")
  if(TARVO_CUPS_CONFIG)
    execute_process(COMMAND ${TARVO_CUPS_CONFIG} ${option}
      OUTPUT_VARIABLE answer OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  endif()
  if(NOT answer AND TARVO_PKG_CONFIG)
    execute_process(COMMAND ${TARVO_PKG_CONFIG} --variable=${pkg_config_variable} cups
      OUTPUT_VARIABLE answer OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  endif()
  if(NOT answer)
    set(answer ${fallback})
  endif()
  set(${variable} ${answer} CACHE STRING "${help}")
endfunction()

tarvo_ask_cups(TARVO_CUPS_SERVERBIN --serverbin cups_serverbin /usr/lib/cups
  "CUPS's folder of programs, which holds filter/")
tarvo_ask_cups(TARVO_CUPS_DATADIR --datadir cups_datadir /usr/share/cups
  "CUPS's folder of data, which holds drv/ and mime/")

# Sets `variable` to `folder`, as named from the prefix if it lies under it.
function(tarvo_destination variable folder)
  string(FIND "${folder}" "${CMAKE_INSTALL_PREFIX}/" at)
  if(at EQUAL 0)
    file(RELATIVE_PATH folder ${CMAKE_INSTALL_PREFIX} ${folder})
  endif()
  set(${variable} ${folder} PARENT_SCOPE)
endfunction()

tarvo_destination(TARVO_FILTER_DESTINATION ${TARVO_CUPS_SERVERBIN}/filter)
tarvo_destination(TARVO_DATA_DESTINATION ${TARVO_CUPS_DATADIR})

function(tarvo_install_manual page)
  string(REGEX MATCH "[0-9]$" section ${page})
  install(FILES ${PROJECT_SOURCE_DIR}/man/${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
endfunction()

function(tarvo_install_filter target)
  install(TARGETS ${target} RUNTIME DESTINATION ${TARVO_FILTER_DESTINATION})
  tarvo_install_manual(${target}.8)
endfunction()

function(tarvo_install_filter_scripts)
  install(PROGRAMS ${ARGN} DESTINATION ${TARVO_FILTER_DESTINATION})
endfunction()

function(tarvo_install_tool target)
  install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  tarvo_install_manual(${target}.1)
endfunction()

function(tarvo_install_script name)
  install(PROGRAMS ${name} DESTINATION ${CMAKE_INSTALL_BINDIR})
  tarvo_install_manual(${name}.1)
endfunction()

function(tarvo_install_cups_data folder)
  install(FILES ${ARGN} DESTINATION ${TARVO_DATA_DESTINATION}/${folder})
endfunction()

# systemd reads this folder under /usr and under /usr/local.
install(FILES ${PROJECT_SOURCE_DIR}/package/tmpfiles.conf
  DESTINATION lib/tmpfiles.d RENAME tarvo.conf)
