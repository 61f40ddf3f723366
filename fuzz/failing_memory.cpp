// Whichever requests the allocator refuses, decoding leaves the same record as the naive decoder, a copy holds what
// there was memory for, and every block is released. A null allocator refuses every request; with a null release
// function no block is released.
#include "harness.hpp"
#include "naive/copy.hpp"

namespace fuzz {

namespace {

test::failing_requests failing_requests_of(unsigned choice, unsigned number) {
  test::failing_requests result;
  if (choice % 4 == 1) result.fail_at = number % 24;
  if (choice % 4 == 2) result.fail_from = number % 24;
  if (choice % 4 == 3) result.fail_pattern = number;
  return result;
}

void check_decoding(const trial &trial, const test::failing_requests &failing, view seen, test::accountant &memory) {
  const unsigned char *const input = placed(input_room(), trial, trial.bytes, trial.length);
  const bool has_allocator = trial.choice != 15;
  memory.fail(failing);
  const int result = trial.type->functions->decode(
      seen.data(), input, trial.length, has_allocator ? test::accountant::allocate : nullptr, &memory, trial.options());
  const expected expected(trial, input, trial.length, failing, has_allocator);
  FUZZ_CHECK(trial, result == expected.result);
  FUZZ_CHECK(trial, memory.sizes == expected.decoder.sizes);
  const naive::comparison same(trial.referenced, [&](const void *block) { return memory.size_of(block); });
  FUZZ_SAME(trial, same.difference(seen, expected.record));
  const std::size_t owned = naive::blocks_owned(seen, trial.referenced);
  FUZZ_CHECK(trial, memory.live() == owned + expected.decoder.dropped);
}

void check_copying(const trial &trial, const test::failing_requests &failing, view source) {
  test::owned_record copy(*trial.type->functions, 0, guard_size, trial.fill);
  const view record(*trial.type, copy.data());
  copy.memory.fail(failing);
  copy.copy(source.data());
  naive::copying reference;
  reference.failing = failing;
  FUZZ_SAME(trial, reference.check(source, record));
  FUZZ_CHECK(trial, copy.result == (reference.complete ? CODEC_OK : CODEC_ERR_NO_MEMORY));
  FUZZ_CHECK(trial, copy.memory.sizes == reference.sizes);
  FUZZ_CHECK(trial, copy.memory.live() == naive::blocks_owned(record));
  FUZZ_CHECK(trial, copy.result != CODEC_OK || trial.type->functions->compare(source.data(), copy.data()) == 0);
  // Members without memory are absent, so the copy can be encoded.
  encoding_of(trial, record, 0);
}

void check_copying_without_allocator(const trial &trial, view source) {
  test::record_block copy(trial.type->size, trial.fill);
  test::owned_record other(*trial.type->functions, 0, guard_size, trial.fill);
  const view record(*trial.type, copy.data());
  other.memory.fail_from = 0;
  const int result = trial.type->functions->duplicate(copy.data(), source.data(), nullptr, nullptr);
  FUZZ_CHECK(trial, result == other.copy(source.data()));
  FUZZ_CHECK(trial, (result == CODEC_OK) == other.memory.sizes.empty());
  FUZZ_CHECK(trial, naive::blocks_owned(record) == 0);
  FUZZ_CHECK(trial, encoding_of(trial, record, 0) == encoding_of(trial, {*trial.type, other.data()}, 0));
}

}  // namespace

void run(const trial &trial) {
  test::record_block block(trial.type->size, trial.fill);
  const view seen(*trial.type, block.data());
  test::accountant memory(guard_size, trial.extra);
  check_decoding(trial, failing_requests_of(trial.choice, trial.number), seen, memory);
  check_copying(trial, failing_requests_of(trial.choice >> 2, trial.number ^ trial.extra), seen);
  check_copying_without_allocator(trial, seen);
  const std::size_t owned = naive::blocks_owned(seen, trial.referenced);
  const std::size_t dropped = memory.live() - owned;
  const bool no_release = trial.choice == 14;
  trial.type->functions->free(seen.data(), no_release ? nullptr : test::accountant::release, &memory, trial.options());
  FUZZ_CHECK(trial, memory.live() == dropped + (no_release ? owned : 0));
  FUZZ_CHECK(trial, naive::blocks_owned(seen, trial.referenced) == 0);
}

}  // namespace fuzz
