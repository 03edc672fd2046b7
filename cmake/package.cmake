# SPDX-License-Identifier: MIT
# Debian packages of the three components of an installation, and one archive of the program.
set(CPACK_PACKAGE_NAME zrtools)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "zrtools developers <zrtools@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Prepares, cleans and exports animated glTF scenes")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_ZRTOOLS_PACKAGE_NAME zrtools)
set(CPACK_DEBIAN_ZRTOOLS_PACKAGE_SUGGESTS "zrtools-qt, parallel, slurm-client")
set(CPACK_COMPONENT_ZRTOOLS_DESCRIPTION
  "The command-line program zr, the module that does its work and the core library.")
set(CPACK_DEBIAN_QT_PACKAGE_NAME zrtools-qt)
set(CPACK_DEBIAN_QT_PACKAGE_DEPENDS "zrtools (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_QT_DESCRIPTION "The windows of the module: the cleaner's dialog and the tree of an export.")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME zrtools-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "zrtools (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEV_DESCRIPTION
  "Headers, CMake package and examples for hosts of the module and for modules of one's own.")

set(CPACK_GENERATOR TGZ)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
endif()
string(TOLOWER ${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR} system)
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_PACKAGE_FILE_NAME zrtools-${PROJECT_VERSION}-${system})
set(CPACK_ARCHIVE_FILE_NAME ${CPACK_PACKAGE_FILE_NAME})
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_SOURCE_DIR}/cmake/package_generator.cmake)

# An archive includes the libraries that not every system has, except the C and compiler runtimes and Qt, which are the
# system's own. A package depends on those it needs. On Windows the program links them statically.
if(TARGET zr AND NOT WIN32)
  install(CODE "
    file(GET_RUNTIME_DEPENDENCIES EXECUTABLES \"$<TARGET_FILE:zr>\" MODULES \"$<TARGET_FILE:zrtools>\"
      RESOLVED_DEPENDENCIES_VAR libraries
      PRE_EXCLUDE_REGEXES \"^lib(c|m|dl|pthread|rt|gcc_s|stdc\\\\+\\\\+|kernix)\\\\.so\" \"^ld-linux\")
    foreach(library IN LISTS libraries)
      file(INSTALL \"\${library}\" DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}\" FOLLOW_SYMLINK_CHAIN)
    endforeach()" COMPONENT bundle EXCLUDE_FROM_ALL)
endif()
include(CPack)
