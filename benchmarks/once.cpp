// Runs a single case a number of times, for a profiler or a debugger. The repetitions run inside `timed`, so that a
// profiler can exclude the preparation: valgrind --tool=callgrind --toggle-collect=timed pavo_zorv_once ...
#include <cstdlib>

#include "contest.hpp"

extern "C" [[gnu::noinline]] void timed(const contest::repeat &run, std::size_t times) {
  run(times);
  contest::keep(&run);  // so that the call above is not a tail call
}

int main(int count, char **arguments) {
  contest::roll all;
  contest::enter_all(all);
  if (count < 4) {
    std::cerr << "usage: " << arguments[0] << " OPERATION WORKLOAD TIMES [CONTESTANT]\nCases:\n";
    for (const contest::contest_case &one : all.cases) std::cerr << "  " << one.name() << '\n';
    return 2;
  }
  const std::string contestant = count > 4 ? arguments[4] : "pavo_zorv";
  const std::string name = std::string(arguments[1]) + "/" + arguments[2] + "/" + contestant;
  for (const contest::contest_case &one : all.cases) {
    if (one.name() != name) continue;
    timed(one.prepare(), std::strtoul(arguments[3], nullptr, 10));
    return 0;
  }
  std::cerr << "no such case: " << name << "\n";
  return 2;
}
