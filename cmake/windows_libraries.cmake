# SPDX-License-Identifier: MIT
# Libraries that Debian provides only for Linux are built from its source packages, fetched by tools/debian-source. The
# target names are those that the folders of app/ use on other systems.
set(ZR_SOURCES ${CMAKE_SOURCE_DIR}/build/debian-sources CACHE PATH "Folder of Debian's source packages")
set(built_headers ${CMAKE_BINARY_DIR}/headers)

# Third-party code: no warnings, and Debian's optimisation level.
function(zr_add_foreign name)
  add_library(${name} STATIC ${ARGN})
  target_compile_options(${name} PRIVATE -w -O2)
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS ON)
endfunction()

set(ZR_GLU_LIBRARY glu32)

zr_add_foreign(polyclipping ${ZR_SOURCES}/libpolyclipping/cpp/clipper.cpp)
configure_file(${ZR_SOURCES}/libpolyclipping/cpp/clipper.hpp ${built_headers}/polyclipping/clipper.hpp COPYONLY)
target_include_directories(polyclipping SYSTEM INTERFACE ${built_headers})
set(ZR_CLIPPER_LIBRARY polyclipping)

# Tables that the library's own programs generate from the system's Unicode data.
file(GLOB re2_sources ${ZR_SOURCES}/re2/re2/*.cc)
foreach(table perl_groups unicode_casefold unicode_groups)
  file(GLOB maker ${ZR_SOURCES}/re2/re2/make_${table}.p?)
  set(interpreter /usr/bin/python3)
  if(maker MATCHES "pl$")
    set(interpreter /usr/bin/perl)
  endif()
  add_custom_command(OUTPUT ${table}.cc COMMAND ${interpreter} ${maker} > ${table}.cc DEPENDS ${maker} VERBATIM)
  list(APPEND re2_sources ${CMAKE_BINARY_DIR}/${table}.cc)
endforeach()
zr_add_foreign(re2 ${re2_sources} ${ZR_SOURCES}/re2/util/rune.cc ${ZR_SOURCES}/re2/util/strutil.cc)
set_target_properties(re2 PROPERTIES UNITY_BUILD OFF)
target_compile_definitions(re2 PRIVATE UNICODE _UNICODE STRICT NOMINMAX)
set(ZR_RE2_INCLUDE_DIR ${ZR_SOURCES}/re2)
set(ZR_RE2_LIBRARY re2)
target_include_directories(re2 PRIVATE ${ZR_RE2_INCLUDE_DIR})

file(GLOB meshoptimizer_sources ${ZR_SOURCES}/meshoptimizer/src/*.cpp)
zr_add_foreign(meshoptimizer ${meshoptimizer_sources})
set(MESHOPTIMIZER_INCLUDE_DIR ${ZR_SOURCES}/meshoptimizer/src)
set(MESHOPTIMIZER_LIBRARY meshoptimizer)

set(draco_folder ${ZR_SOURCES}/draco/src)
foreach(part attributes compression core mesh metadata point_cloud)
  file(GLOB_RECURSE part_sources ${draco_folder}/draco/${part}/*.cc)
  list(APPEND draco_sources ${part_sources})
endforeach()
list(FILTER draco_sources EXCLUDE REGEX "_test|test_")
zr_add_foreign(draco ${draco_sources})
foreach(feature POINT_CLOUD_COMPRESSION MESH_COMPRESSION NORMAL_ENCODING STANDARD_EDGEBREAKER PREDICTIVE_EDGEBREAKER
    BACKWARDS_COMPATIBILITY ATTRIBUTE_INDICES_DEDUPLICATION ATTRIBUTE_VALUES_DEDUPLICATION)
  string(APPEND draco_features "#define DRACO_${feature}_SUPPORTED\n")
endforeach()
file(CONFIGURE OUTPUT ${built_headers}/draco/draco_features.h CONTENT "#pragma once\n${draco_features}" @ONLY)
set(DRACO_INCLUDE_DIR ${draco_folder} ${built_headers})
set(DRACO_LIBRARY draco)
target_include_directories(draco PRIVATE ${DRACO_INCLUDE_DIR})
