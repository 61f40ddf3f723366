# Compiles one schema and checks what its first line says of it: "// compiles", or "// error: <regular expression>" for
# one that must be refused with such a message; in wrong_schemas by that check alone.
#   cmake -DCOMPILER=<c++> -DFLAGS=<flags> -DSTANDARD=<17 or 20> -DINCLUDES=<list> [-DHEADER=<options>]
#     -DSOURCE=<file> -P wrong_schema.cmake
# HEADER includes the header that it begins with, compiled before.
file(STRINGS ${SOURCE} first_line LIMIT_COUNT 1)
set(ENV{LC_ALL} C)
separate_arguments(flags UNIX_COMMAND "${FLAGS}")
list(TRANSFORM INCLUDES PREPEND -I OUTPUT_VARIABLE includes)

execute_process(COMMAND ${COMPILER} ${flags} -std=c++${STANDARD} ${HEADER} ${includes} -fsyntax-only ${SOURCE}
  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)

if(first_line STREQUAL "// compiles")
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${SOURCE} does not compile:\n${output}")
  endif()
elseif(first_line MATCHES "^// error: (.+)$")
  set(expected ${CMAKE_MATCH_1})
  if(result EQUAL 0)
    message(FATAL_ERROR "${SOURCE} compiles, but should be refused with: ${expected}")
  endif()
  if(NOT output MATCHES "${expected}")
    message(FATAL_ERROR "${SOURCE} is refused with another message than: ${expected}\n${output}")
  endif()
  string(REGEX MATCHALL "static(_assert| assertion) failed" checks_failed "${output}")
  list(LENGTH checks_failed count)
  if(SOURCE MATCHES "/wrong_schemas/" AND count GREATER 1)
    message(FATAL_ERROR "${SOURCE} is refused by ${count} checks:\n${output}")
  endif()
else()
  message(FATAL_ERROR "${SOURCE} does not say what is expected of it: ${first_line}")
endif()
