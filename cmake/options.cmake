# SPDX-License-Identifier: MIT
# One interface target carries what every target of the project is compiled with.
include(CheckCXXCompilerFlag)

add_library(zr_options INTERFACE)
target_include_directories(zr_options INTERFACE ${CMAKE_SOURCE_DIR})

# The passes state their results to the bit: no fused multiply-add anywhere.
target_compile_options(zr_options INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-qual
    -Woverloaded-virtual -Wno-missing-field-initializers -ffp-contract=off>
  $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<BOOL:${ZR_WARNINGS_AS_ERRORS}>>:-Werror>)

if(CMAKE_UNITY_BUILD)
  # Where several files are compiled as one, each sees the others' unnamed namespaces.
  target_compile_options(zr_options INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-Wno-shadow> $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-subobject-linkage>)
endif()

if(ZR_SANITIZE)
  target_compile_options(zr_options INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-fsanitize=${ZR_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g1>)
  # Each test program holds all that it tests: compressed and in a place of its own, it takes a third of the room.
  target_compile_options(zr_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-gz>)
  target_link_options(zr_options INTERFACE
    -fsanitize=${ZR_SANITIZE} -gz $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-no-pie>)
  # A library lists its objects, which stay where they are, instead of holding them again.
  set(CMAKE_CXX_ARCHIVE_CREATE "<CMAKE_AR> qc --thin <TARGET> <LINK_FLAGS> <OBJECTS>")
elseif(CMAKE_BUILD_TYPE STREQUAL "Release")
  # An index beyond a container ends the program, on every system.
  target_compile_definitions(zr_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:_GLIBCXX_ASSERTIONS>)
  if(NOT WIN32)
    target_compile_options(zr_options INTERFACE
      $<$<COMPILE_LANGUAGE:CXX>:-D_FORTIFY_SOURCE=2 -fstack-protector-strong>)
    # What some compilers and processors do not have.
    foreach(flag -fstack-clash-protection -fcf-protection)
      check_cxx_compiler_flag(${flag} ZR_HAS${flag})
      target_compile_options(zr_options INTERFACE $<$<AND:$<BOOL:${ZR_HAS${flag}}>,$<COMPILE_LANGUAGE:CXX>>:${flag}>)
    endforeach()
    target_link_options(zr_options INTERFACE -Wl,-z,relro,-z,now)
  endif()
endif()
if(NOT WIN32 AND NOT ZR_SANITIZE)
  target_link_options(zr_options INTERFACE -Wl,-z,defs)
endif()

if(WIN32)
  # Of windows.h the core alone, and no macros named min and max.
  target_compile_definitions(zr_options INTERFACE NOMINMAX WIN32_LEAN_AND_MEAN)
  # The compiler's own libraries go into each file: beside kernix.dll only the system's are needed.
  target_link_options(zr_options INTERFACE -static)
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL "i686")
    # The older floating-point unit rounds elsewhere: results would differ from the other builds'.
    target_compile_options(zr_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-msse2 -mfpmath=sse>)
  endif()
endif()

# zr_find_headers(VARIABLE HEADER): the folder of a library that is headers alone, which serves every system. For
# another system's program the library's folder is taken out of the machine's own headers, which that compiler must
# not see.
function(zr_find_headers variable header)
  find_path(found ${header} NO_CACHE REQUIRED)
  if(CMAKE_CROSSCOMPILING)
    get_filename_component(folder ${header} DIRECTORY)
    file(COPY ${found}/${folder} DESTINATION ${CMAKE_BINARY_DIR}/headers)
    set(found ${CMAKE_BINARY_DIR}/headers)
  endif()
  set(${variable} ${found} CACHE PATH "Folder of ${header}")
endfunction()

# zr_precompile(TARGET [HEADER...]): the headers, else the standard ones that most files include, are read once for the
# target. Where its files are compiled as one they are so anyway.
function(zr_precompile target)
  if(CMAKE_UNITY_BUILD)
    return()
  endif()
  set(headers ${ARGN})
  if(NOT headers)
    set(headers <algorithm> <array> <cmath> <cstring> <functional> <map> <memory> <optional> <string> <string_view>
      <unordered_map> <vector>)
  endif()
  target_precompile_headers(${target} PRIVATE ${headers})
endfunction()
