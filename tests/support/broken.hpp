// What becomes of something that ought not to be: the program ends, unless a test framework reports it in its own way.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace test {

[[noreturn]] inline void broken(const std::string &what) {
  std::fprintf(stderr, "%s\n", what.c_str());
  std::abort();
}

// For findings after which a test can go on.
inline void (*report_finding)(const std::string &what) = [](const std::string &what) { broken(what); };

}  // namespace test
