// The input changes while it is decoded: whatever the result, nothing outside the input, the record and its blocks is
// read or written, and the record can be encoded, copied and released. The allocator makes the changes, which is after
// a list is counted and before it is read; they are the same in every run of an input.
#include "harness.hpp"

namespace fuzz {

namespace {

struct changing {
  const trial &what;
  unsigned char *input;

  // At some requests, changes one byte: its continuation bit, or its value, or all bytes from there on.
  void change(std::size_t request) const {
    if ((what.extra >> (request % 8) & 1) == 0) return;
    const std::size_t at = (what.number + request * 7) % what.length;
    switch (what.choice & 3) {
      case 0:
        input[at] ^= 0x80;
        break;
      case 1:
        input[at] = what.fill;
        break;
      case 2:
        // To the end, so that a list ends early or never.
        std::memset(input + at, what.fill, what.length - at);
        break;
      default:
        input[at] = static_cast<unsigned char>(input[at] + 1);
    }
  }
};

}  // namespace

void run(const trial &trial) {
  const unsigned char *const input = placed(input_room(), trial, trial.bytes, trial.length);
  const changing changing{trial, const_cast<unsigned char *>(input)};
  test::owned_record seen(*trial.type->functions, trial.options(), guard_size, trial.fill);
  const view record(*trial.type, seen.data());
  seen.memory.before_each = [&](std::size_t request) { changing.change(request); };
  seen.decode(input, trial.length);
  seen.dropped = seen.memory.live() - naive::blocks_owned(record, trial.referenced);
  const std::vector<unsigned char> written = encoding_of(trial, record, 0);

  test::owned_record copy(*trial.type->functions, 0, guard_size, trial.fill);
  FUZZ_CHECK(trial, copy.copy(seen.data()) == CODEC_OK);
  FUZZ_CHECK(trial, trial.type->functions->compare(copy.data(), seen.data()) == 0);
  FUZZ_CHECK(trial, encoding_of(trial, {*trial.type, copy.data()}, 0) == written);
}

}  // namespace fuzz
