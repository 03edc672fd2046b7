# SPDX-License-Identifier: MIT
# Read for each package generator: Debian gets one package per component, an archive contains the program with
# everything it needs.
if(CPACK_GENERATOR STREQUAL DEB)
  set(CPACK_COMPONENTS_ALL zrtools qt dev)
  set(CPACK_COMPONENTS_GROUPING IGNORE)
else()
  set(CPACK_COMPONENTS_ALL zrtools qt bundle)
  set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
endif()
