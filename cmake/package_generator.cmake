# SPDX-License-Identifier: MIT
# Read for each kind of package: the Debian ones are one for each part, an archive is the program with all it needs.
if(CPACK_GENERATOR STREQUAL DEB)
  set(CPACK_COMPONENTS_ALL zrtools qt dev)
  set(CPACK_COMPONENTS_GROUPING IGNORE)
else()
  set(CPACK_COMPONENTS_ALL zrtools qt bundle)
  set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
endif()
