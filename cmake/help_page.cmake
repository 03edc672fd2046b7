# SPDX-License-Identifier: MIT
# cmake -DCMARK=... -DINPUT=page.md -DOUTPUT=page.htm -P help_page.cmake: converts a page of the documentation into a
# help page.
execute_process(COMMAND ${CMARK} ${INPUT} OUTPUT_VARIABLE body COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCH "<h1>([^<]*)</h1>" heading "${body}")
file(WRITE ${OUTPUT} "<!DOCTYPE html>
<html lang=\"en\">
<head>
<meta charset=\"utf-8\">
<title>${CMAKE_MATCH_1}</title>
<style>body { font: 16px/1.5 sans-serif; max-width: 45em; margin: 2em auto; padding: 0 1em }</style>
</head>
<body>
${body}</body>
</html>
")
