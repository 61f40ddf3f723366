# Runs an example, which must succeed and print what a file has.
#   cmake -DPROGRAM=<program> [-DARGUMENTS=<list>] -DEXPECTED=<file> -P run_and_compare.cmake
# The program may be a list that begins with an emulator and its arguments.
execute_process(COMMAND ${PROGRAM} ${ARGUMENTS} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
file(READ ${EXPECTED} expected)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} failed (${result}):\n${output}${errors}")
endif()
if(NOT output STREQUAL expected)
  message(FATAL_ERROR "${PROGRAM} printed:\n${output}\ninstead of:\n${expected}")
endif()
