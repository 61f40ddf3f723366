// The input changes while it is read: whatever comes of it, nothing is read or written beside the input, the record and
// its blocks, and the record can be encoded, copied and released. The changes are made by the allocator, so between the
// counting of a list and its reading, and for each input they are always the same.
#include "harness.hpp"

namespace fuzz {

namespace {

struct changing {
  const trial &what;
  unsigned char *input;
  ledger &memory;
  std::size_t requests = 0;

  static void *allocate(std::size_t size, void *context) {
    auto &self = *static_cast<changing *>(context);
    self.change();
    return ledger::allocate(size, &self.memory);
  }

  // At some requests, one byte: to one that ends a value or goes on, a length, or any other.
  void change() {
    const std::size_t request = requests++;
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
  const unsigned char *const input = input_room().holding(trial, trial.bytes, trial.length);
  record seen(*trial.type, trial.fill);
  ledger memory(trial);
  changing changing{trial, const_cast<unsigned char *>(input), memory};
  trial.type->functions->decode(seen.data(), input, trial.length, changing::allocate, &changing, trial.options());
  const std::size_t owned = naive::blocks_owned(*trial.type, seen.data(), trial.referenced);
  const std::size_t dropped = memory.live() - owned;
  const std::vector<unsigned char> written = encoding_of(trial, seen.data(), 0);
  {
    record copy(*trial.type, trial.fill);
    ledger of_copy(trial);
    FUZZ_CHECK(trial,
               trial.type->functions->duplicate(copy.data(), seen.data(), ledger::allocate, &of_copy) == CODEC_OK);
    FUZZ_CHECK(trial, trial.type->functions->compare(copy.data(), seen.data()) == 0);
    FUZZ_CHECK(trial, encoding_of(trial, copy.data(), 0) == written);
    trial.type->functions->free(copy.data(), ledger::release, &of_copy, 0);
    FUZZ_CHECK(trial, of_copy.live() == 0);
  }
  trial.type->functions->free(seen.data(), ledger::release, &memory, trial.options());
  FUZZ_CHECK(trial, memory.live() == dropped);
}

}  // namespace fuzz
