# SPDX-License-Identifier: MIT
# The interface target with the compile options of every target of the project.
include(CheckCXXCompilerFlag)

add_library(zr_options INTERFACE)
target_include_directories(zr_options INTERFACE ${CMAKE_SOURCE_DIR})

# Results are specified to the bit, so fused multiply-add is off everywhere.
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
  # Each test program links everything it tests: with compressed debug information and a fixed load address it
  # takes a third of the space.
  target_compile_options(zr_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-gz>)
  target_link_options(zr_options INTERFACE
    -fsanitize=${ZR_SANITIZE} -gz $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-no-pie>)
  # Thin archives refer to the object files instead of copying them.
  set(CMAKE_CXX_ARCHIVE_CREATE "<CMAKE_AR> qc --thin <TARGET> <LINK_FLAGS> <OBJECTS>")
elseif(CMAKE_BUILD_TYPE STREQUAL "Release")
  # An index out of a container's range ends the program, on every system.
  target_compile_definitions(zr_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:_GLIBCXX_ASSERTIONS>)
  if(NOT WIN32)
    target_compile_options(zr_options INTERFACE
      $<$<COMPILE_LANGUAGE:CXX>:-D_FORTIFY_SOURCE=2 -fstack-protector-strong>)
    # Flags that some compilers and processors do not support.
    foreach(flag -fstack-clash-protection -fcf-protection)
      check_cxx_compiler_flag(${flag} ZR_HAS${flag})
      target_compile_options(zr_options INTERFACE $<$<AND:$<BOOL:${ZR_HAS${flag}}>,$<COMPILE_LANGUAGE:CXX>>:${flag}>)
    endforeach()
    target_link_options(zr_options INTERFACE -Wl,-z,relro,-z,now)
  endif()
endif()
if(ZR_COVERAGE)
  # Functions of unnamed namespaces are told apart by the file they are in. The joined files of all targets have one
  # name: each goes by that of its target.
  target_compile_options(zr_options INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-fprofile-instr-generate -fcoverage-mapping>
    "$<$<COMPILE_LANGUAGE:CXX>:SHELL:-Xclang -main-file-name -Xclang $<TARGET_PROPERTY:NAME>>")
  target_link_options(zr_options INTERFACE -fprofile-instr-generate)
endif()
if(NOT WIN32 AND NOT ZR_SANITIZE)
  target_link_options(zr_options INTERFACE -Wl,-z,defs)
endif()

if(WIN32)
  # Only the core of windows.h, and no macros named min and max.
  target_compile_definitions(zr_options INTERFACE NOMINMAX WIN32_LEAN_AND_MEAN)
  # The compiler's runtime libraries are linked statically, so besides kernix.dll only system libraries are needed.
  target_link_options(zr_options INTERFACE -static)
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL "i686")
    # The x87 floating-point unit rounds differently, so results would differ from the other builds'.
    target_compile_options(zr_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-msse2 -mfpmath=sse>)
  endif()
endif()

# zr_find_headers(VARIABLE HEADER): finds the folder of a header-only library. When cross-compiling, the library's
# folder is taken out of the build machine's headers, the rest of which that compiler must not see.
function(zr_find_headers variable header)
  find_path(found ${header} NO_CACHE REQUIRED)
  if(CMAKE_CROSSCOMPILING)
    get_filename_component(folder ${header} DIRECTORY)
    file(COPY ${found}/${folder} DESTINATION ${CMAKE_BINARY_DIR}/headers)
    set(found ${CMAKE_BINARY_DIR}/headers)
  endif()
  set(${variable} ${found} CACHE PATH "Folder of ${header}")
endfunction()

# zr_precompile(TARGET [HEADER...]): precompiles the headers, by default the standard ones that most files include.
# Unity builds read them only once anyway.
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
