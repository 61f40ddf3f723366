// Two records from one input: copies are equal to their sources and independent of them, and comparison is an order
// that agrees with the naive implementation, also for lists that are present but empty.
#include "harness.hpp"
#include "naive/compare.hpp"

namespace fuzz {

namespace {

int sign(int value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }

class copy : public test::owned_record {
 public:
  copy(const trial &trial, const decoded &source)
      : owned_record(*trial.type->functions, 0, guard_size, trial.extra), record(*trial.type, data()) {
    const test::record_block before = source.block;
    FUZZ_CHECK(trial, owned_record::copy(source.data()) == CODEC_OK);
    FUZZ_CHECK(trial, std::memcmp(before.data(), source.data(), trial.type->size) == 0);
    FUZZ_CHECK(trial, memory.live() == naive::blocks_owned(record));
  }

  const view record;
};

// The same record with shorter lists, as a caller may make them. It is only compared.
test::record_block shortened(const trial &trial, const test::record_block &source) {
  test::record_block result = source;
  const view record(*trial.type, result.data());
  for (const member &field : trial.type->members) {
    if (!field.is_list()) continue;
    const std::uint64_t count = record.count(field);
    record.set_count(field, count != 0 ? trial.extra % count : 0);
  }
  return result;
}

void check_order(const trial &trial, const test::record_block &a, const test::record_block &b) {
  const auto compare = trial.type->functions->compare;
  const int order = compare(a.data(), b.data());
  FUZZ_CHECK(trial, sign(order) == naive::compare({*trial.type, a.data()}, {*trial.type, b.data()}));
  FUZZ_CHECK(trial, sign(order) == -sign(compare(b.data(), a.data())));
  FUZZ_CHECK(trial, compare(a.data(), a.data()) == 0);
}

}  // namespace

void run(const trial &trial) {
  const auto compare = trial.type->functions->compare;
  const std::size_t split = trial.length * trial.number >> 16;
  const unsigned char *const left = placed(input_room(), trial, trial.bytes, split);
  const unsigned char *const right = placed(second_input_room(), trial, trial.bytes + split, trial.length - split);
  decoded a(trial, left, split, trial.referenced);
  decoded b(trial, right, trial.length - split, trial.referenced);

  const int order = compare(a.record.data(), b.record.data());
  check_order(trial, a.block, b.block);
  check_order(trial, shortened(trial, a.block), b.block);
  check_order(trial, shortened(trial, a.block), a.block);

  const std::vector<unsigned char> written = encoding_of(trial, a.record, 0);
  {
    const copy copied(trial, a);
    FUZZ_CHECK(trial, compare(a.record.data(), copied.record.data()) == 0);
    FUZZ_CHECK(trial, sign(compare(copied.record.data(), b.record.data())) == sign(order));
    FUZZ_CHECK(trial, encoding_of(trial, copied.record, 0) == written);
  }
  FUZZ_CHECK(trial, encoding_of(trial, a.record, 0) == written);
  // If both were decoded completely, equal records have the same encoding.
  if (order != 0 || a.result != CODEC_OK || b.result != CODEC_OK) return;
  FUZZ_CHECK(trial, encoding_of(trial, b.record, 0) == written);
}

}  // namespace fuzz
