# cpack makes a Debian package: "cpack --config build/user/CPackConfig.cmake -B DIRECTORY".
#
# What only Debian wants (its changelog and copyright, compressed manual pages) is added by
# package/finish.cmake, so that "cmake --install" gives everyone else the plain files;
# package/seal.cmake makes the package the same for everyone who makes it.
set(TARVO_MAINTAINER "Tarvo maintainers <maintainers@tarvo.example>" CACHE STRING
  "Maintainer of the package, as \"Name <address>\"")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME printer-driver-tarvo)
set(CPACK_PACKAGE_CONTACT ${TARVO_MAINTAINER})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS ${CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/package/finish.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/package/seal.cmake)

# The revision counts the packages of one release of the filter. It sorts before that of a package
# that a distribution makes of the same release, so that theirs replaces ours.
file(STRINGS ${PROJECT_SOURCE_DIR}/package/changelog newest LIMIT_COUNT 1)
if(NOT newest MATCHES "^printer-driver-tarvo \\(${PROJECT_VERSION}-(0tarvo[0-9]+)\\) ")
  message(FATAL_ERROR "package/changelog does not begin with ${PROJECT_VERSION}: ${newest}")
endif()
set(CPACK_DEBIAN_PACKAGE_RELEASE ${CMAKE_MATCH_1})

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# The section of Debian's own printer-driver packages.
set(CPACK_DEBIAN_PACKAGE_SECTION text)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# cups compiles the models; cups-filters makes raster of documents, and brings Ghostscript and
# Poppler for it.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "cups, cups-filters")
# Tidies the pages that are left in the temporary folder; printing does without.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "systemd | systemd-tmpfiles")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
  ${PROJECT_SOURCE_DIR}/package/postinst ${PROJECT_SOURCE_DIR}/package/prerm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "printer driver for TSPL label and tattoo-stencil printers")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"CUPS filters and the models for thermal label printers (4 inch, 203 and
300 dpi) and A4 stencil printers that take TSPL commands.

Ten halftones turn a page into dots, from a plain threshold for barcodes to
a sharpening chain for stencils. The same page gives the same dots on every
machine.

tsplview lists the commands of a recorded job and draws its labels,
tsplprinter is a printer that is not there, and tarvo-report gathers what a
bug report needs.")

include(CPack)
