// The input changes while it is read: whatever comes of it, nothing is read or written beside the input, the record and
// its blocks, and the record can be encoded, copied and released. The changes are made by the allocator, so between the
// counting of a list and its reading, and for each input they are always the same.
#include "harness.hpp"

namespace fuzz {

namespace {

struct changing {
  const trial &what;
  unsigned char *input;

  // At some requests, one byte: to one that ends a value or goes on, a length, or any other.
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
        // All that comes after it, so that a list ends early or never.
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
