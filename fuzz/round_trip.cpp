// What was decoded is encoded to bytes that decode to the same record and encode to the same bytes.
#include "harness.hpp"

namespace fuzz {

void run(const trial &trial) {
  const unsigned char *const input = placed(input_room(), trial, trial.bytes, trial.length);
  decoded first(trial, input, trial.length, trial.referenced);
  const std::vector<unsigned char> written = encoding_of(trial, first.record, 0);
  FUZZ_CHECK(trial, trial.length == 0 || std::memcmp(input, trial.bytes, trial.length) == 0);

  const unsigned char *const again = placed(second_input_room(), trial, written.data(), written.size());
  decoded second(trial, again, written.size(), (trial.choice & 1) != 0 && trial.type->functions->takes_options);
  FUZZ_CHECK(trial, second.result == CODEC_OK);
  second.expect_dropped(0);
  FUZZ_CHECK(trial, encoding_of(trial, second.record, 0) == written);
  // After a failure, nested members may have content but no presence bit.
  if (first.result != CODEC_OK) return;
  FUZZ_CHECK(trial, trial.type->functions->compare(first.record.data(), second.record.data()) == 0);
}

}  // namespace fuzz
