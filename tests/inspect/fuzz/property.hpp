// A property of a fuzzing target: if it does not hold, the program aborts, so that the fuzzer keeps the input.
#pragma once

#include <cstdio>
#include <cstdlib>

inline void require(bool holds, const char *property) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", property);
  std::abort();
}
