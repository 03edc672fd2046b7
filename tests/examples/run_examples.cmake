# SPDX-License-Identifier: MIT
# Installs BUILD into FOLDER, builds the installed examples against the installed package and compares what the host
# prints, which has loaded the module and the example's plug-in. No link of the installed pages is dead, with the
# examples or without them.
set(prefix ${FOLDER}/prefix)
file(REMOVE_RECURSE ${FOLDER})

function(run)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(build example)
  run(${CMAKE_COMMAND} -S ${prefix}/${DOCS}/examples/${example} -B ${FOLDER}/${example} -G ${GENERATOR}
    -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_PREFIX_PATH=${prefix} ${ARGN})
  run(${CMAKE_COMMAND} --build ${FOLDER}/${example})
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${FOLDER}/program --component zrtools)
foreach(tree ${prefix} ${FOLDER}/program)
  run(${CMAKE_CURRENT_LIST_DIR}/../../tools/check-links ${tree})
endforeach()
build(plugin)
build(host -DPLUGIN=${FOLDER}/plugin/node_counter.so)
run(${CMAKE_COMMAND} --build ${FOLDER}/host --target run)
string(REGEX MATCH "cleaner: .*node counter: [0-9]+\n" printed "${output}")
set(expected "cleaner: 1 of 2 nodes removed
animation manager: 3 s long, 1 animation left
keyframe tools: box with 5 positions
  0 s: 0 0 0
  1 s: 5 0 0
  2 s: 5 0 0
  2 s: 0 0 0
  3 s: 0 5 0
CAD text: 7 strokes
node counter: 1
")
if(NOT printed STREQUAL expected)
  message(FATAL_ERROR "the example host printed\n${output}")
endif()
