// What a fuzzing target demands: when it does not hold, the program ends, and the fuzzer keeps the input.
#pragma once

#include <cstdio>
#include <cstdlib>

inline void require(bool holds, const char *property) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", property);
  std::abort();
}
