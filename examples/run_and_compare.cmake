# Runs a program, which must succeed and print what a file has; shows the differences where it prints something else.
#   cmake -DPROGRAM=<program> [-DARGUMENTS=<list>] -DEXPECTED=<file> [-DHINT=<text>] -P run_and_compare.cmake
#   cmake -DPROGRAM=<program> [-DARGUMENTS=<list>] -DEXPECTED=<file> -DUPDATE=ON -P run_and_compare.cmake
# The first compares, and says after the differences what the hint says; the second writes the file anew.
# The program may be a list that begins with an emulator and its arguments.
execute_process(COMMAND ${PROGRAM} ${ARGUMENTS} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} failed (${result}):\n${output}${errors}")
endif()
if(UPDATE)
  file(WRITE ${EXPECTED} "${output}")
  return()
endif()
file(READ ${EXPECTED} expected)
if(NOT output STREQUAL expected)
  cmake_path(GET EXPECTED FILENAME name)
  set(printed ${CMAKE_CURRENT_BINARY_DIR}/${name}.printed)
  file(WRITE ${printed} "${output}")
  execute_process(COMMAND diff -u ${EXPECTED} ${printed} OUTPUT_VARIABLE differences ERROR_VARIABLE errors)
  # Not in the text of the error, of which CMake would break the lines.
  message("${differences}${errors}\n${HINT}")
  message(FATAL_ERROR "${name}: something else was printed")
endif()
