// Does cases of the benchmark, the library's own only, some times each. Under callgrind, which is to collect inside
// `timed` only, the instructions of each case are dumped by its name.
#include <valgrind/callgrind.h>

#include "contest.hpp"

extern "C" [[gnu::noinline]] void timed(const contest::repeat &run, std::size_t times) {
  run(times);
  contest::keep(&run);  // so that the call above is not the last thing done, and stays inside
}

int main(int count, char **arguments) {
  if (count < 3) {
    std::cerr << "usage: " << arguments[0] << " TIMES OPERATION/WORKLOAD/CONTESTANT...\n";
    return 2;
  }
  const std::size_t times = std::strtoul(arguments[1], nullptr, 10);
  contest::roll all;
  contest::enter_library(all);
  for (int index = 2; index < count; ++index) {
    const std::string wanted = arguments[index];
    bool found = false;
    for (const contest::contest_case &one : all.cases) {
      if (one.name() != wanted) continue;
      found = true;
      const contest::repeat run = one.prepare();
      run(1);  // what is done once only, such as finding memcpy, is done now
      CALLGRIND_ZERO_STATS;
      timed(run, times);
      CALLGRIND_DUMP_STATS_AT(arguments[index]);
    }
    if (!found) {
      std::cerr << "no such case: " << wanted << "\n";
      return 2;
    }
  }
  return 0;
}
