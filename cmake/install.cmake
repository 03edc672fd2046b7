# SPDX-License-Identifier: MIT
# The contents of an installation, in three components: the program with the module and the core library (zrtools), the
# windows of the Linux build (qt), and the files to build other hosts and modules with (dev). All paths are relative, so
# an installed tree is relocatable.
include(CMakePackageConfigHelpers)

# On Windows a library is beside the program that needs it.
if(WIN32)
  set(shared_folder ${CMAKE_INSTALL_BINDIR})
else()
  set(shared_folder ${CMAKE_INSTALL_LIBDIR})
endif()
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/zrtools)
set(header_folder ${CMAKE_INSTALL_INCLUDEDIR}/zrtools)
set(document_folder ${CMAKE_INSTALL_DATADIR}/doc/zrtools)

set_target_properties(zr_host PROPERTIES EXPORT_NAME host)
set_target_properties(zrtools PROPERTIES EXPORT_NAME module)
install(TARGETS zr_host EXPORT zrtools COMPONENT dev)
install(TARGETS kernix EXPORT zrtools
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT zrtools
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT zrtools NAMELINK_COMPONENT dev
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
install(TARGETS zrtools EXPORT zrtools LIBRARY DESTINATION ${shared_folder} COMPONENT zrtools)
if(TARGET zr)
  if(NOT WIN32)
    # The search path also finds the dependencies of the libraries that an archive includes.
    target_link_options(zr PRIVATE -Wl,--disable-new-dtags)
    install(PROGRAMS tools/zr-batch DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT zrtools)
  endif()
  install(TARGETS zr RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT zrtools)
endif()
if(TARGET zrui)
  install(TARGETS zrui LIBRARY DESTINATION ${shared_folder} COMPONENT qt)
endif()
install(FILES README.md CHANGELOG.md CONTRIBUTING.md LICENSE DESTINATION ${document_folder} COMPONENT zrtools)
install(DIRECTORY docs DESTINATION ${document_folder} COMPONENT zrtools)

install(DIRECTORY host kernix DESTINATION ${header_folder} COMPONENT dev FILES_MATCHING PATTERN "*.h")
install(FILES ${CMAKE_BINARY_DIR}/generated/host/version.h DESTINATION ${header_folder}/host COMPONENT dev)
install(DIRECTORY examples DESTINATION ${document_folder} COMPONENT dev)
install(EXPORT zrtools NAMESPACE zrtools:: FILE zrtools-config.cmake DESTINATION ${package_folder} COMPONENT dev)
write_basic_package_version_file(zrtools-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zrtools-config-version.cmake
  DESTINATION ${package_folder} COMPONENT dev)

file(RELATIVE_PATH prefix_from_pkgconfig
  /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig ${prefix_from_pkgconfig})
configure_file(cmake/zrtools.pc.in zrtools.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zrtools.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
