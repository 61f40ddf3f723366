// Decoding agrees with the naive decoder: result, record, allocations, and blocks not released. The input is not
// written, and not read past its end.
#include "harness.hpp"

namespace fuzz {

void run(const trial &trial) {
  const unsigned char *const input = placed(input_room(), trial, trial.bytes, trial.length);
  decoded seen(trial, input, trial.length, trial.referenced);
  const expected expected(trial, input, trial.length);

  FUZZ_CHECK(trial, seen.result == expected.result);
  FUZZ_CHECK(trial, seen.memory.sizes == expected.decoder.sizes);
  const naive::comparison same(trial.referenced, [&](const void *block) { return seen.memory.size_of(block); });
  FUZZ_SAME(trial, same.difference(seen.record, expected.record));
  seen.expect_dropped(expected.decoder.dropped);
  FUZZ_CHECK(trial, trial.length == 0 || std::memcmp(input, trial.bytes, trial.length) == 0);
}

}  // namespace fuzz
