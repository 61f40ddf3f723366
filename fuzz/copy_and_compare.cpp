// Two records from one input: copies are equal to their sources and independent of them, and comparing is an order
// that agrees with the naive one, also where lists are empty though their bit is set.
#include "harness.hpp"
#include "naive/compare.hpp"

namespace fuzz {

namespace {

int sign(int value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }

class copy {
 public:
  copy(const trial &trial, const decoded &source) : record(*trial.type, trial.extra), memory(trial), trial_(trial) {
    const fuzz::record before = source.record;
    const int result = trial.type->functions->duplicate(record.data(), source.record.data(), ledger::allocate, &memory);
    FUZZ_CHECK(trial, result == CODEC_OK);
    FUZZ_CHECK(trial, std::memcmp(before.data(), source.record.data(), trial.type->size) == 0);
    FUZZ_CHECK(trial, memory.live() == naive::blocks_owned(*trial.type, record.data(), false));
  }
  copy(const copy &) = delete;
  copy &operator=(const copy &) = delete;
  ~copy() {
    trial_.type->functions->free(record.data(), ledger::release, &memory, 0);
    FUZZ_CHECK(trial_, memory.live() == 0);
  }

  fuzz::record record;
  ledger memory;

 private:
  const trial &trial_;
};

// The same record with shorter lists, as a caller may leave them: it is only compared.
record shortened(const trial &trial, const record &source) {
  record result = source;
  for (const member &field : trial.type->members) {
    if (!field.is_list()) continue;
    const std::uint64_t count = naive::count_of(field, result.data());
    naive::store(result.data() + field.count_offset, 4, count != 0 ? trial.extra % count : 0);
  }
  return result;
}

void check_order(const trial &trial, const record &a, const record &b) {
  const auto compare = trial.type->functions->compare;
  const int order = compare(a.data(), b.data());
  FUZZ_CHECK(trial, sign(order) == naive::compare(*trial.type, a.data(), b.data()));
  FUZZ_CHECK(trial, sign(order) == -sign(compare(b.data(), a.data())));
  FUZZ_CHECK(trial, compare(a.data(), a.data()) == 0);
}

}  // namespace

void run(const trial &trial) {
  const auto compare = trial.type->functions->compare;
  const std::size_t split = trial.length * trial.number >> 16;
  const unsigned char *const left = input_room().holding(trial, trial.bytes, split);
  const unsigned char *const right = second_input_room().holding(trial, trial.bytes + split, trial.length - split);
  decoded a(trial, left, split, trial.referenced);
  decoded b(trial, right, trial.length - split, trial.referenced);

  const int order = compare(a.record.data(), b.record.data());
  check_order(trial, a.record, b.record);
  check_order(trial, shortened(trial, a.record), b.record);
  check_order(trial, shortened(trial, a.record), a.record);

  const std::vector<unsigned char> written = encoding_of(trial, a.record.data(), 0);
  {
    copy same(trial, a);
    FUZZ_CHECK(trial, compare(a.record.data(), same.record.data()) == 0);
    FUZZ_CHECK(trial, sign(compare(same.record.data(), b.record.data())) == sign(order));
    FUZZ_CHECK(trial, encoding_of(trial, same.record.data(), 0) == written);
  }
  FUZZ_CHECK(trial, encoding_of(trial, a.record.data(), 0) == written);
  // Of messages that could be read, all that is written is compared.
  if (order != 0 || a.result != CODEC_OK || b.result != CODEC_OK) return;
  FUZZ_CHECK(trial, encoding_of(trial, b.record.data(), 0) == written);
}

}  // namespace fuzz
