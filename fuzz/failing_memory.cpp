// Whatever the allocator refuses: decoding leaves what the naive decoder leaves, a copy holds what it got memory for,
// and all of it comes back. No allocator is one that gives nothing; without a function that takes blocks back, they are
// forgotten.
#include <array>

#include "harness.hpp"

namespace fuzz {

namespace {

schedule schedule_of(unsigned choice, unsigned number) {
  schedule result;
  result.which = std::array{schedule::none, schedule::one, schedule::all_from, schedule::some}[choice % 4];
  result.request = number % 24;
  result.pattern = number;
  return result;
}

void check_decoding(const trial &trial, const schedule &failing, record &seen, ledger &memory) {
  const unsigned char *const input = input_room().holding(trial, trial.bytes, trial.length);
  const bool has_allocator = trial.choice != 15;
  memory.failing = failing;
  const int result = trial.type->functions->decode(
      seen.data(), input, trial.length, has_allocator ? ledger::allocate : nullptr, &memory, trial.options());
  const expected expected(trial, input, trial.length, has_allocator ? &failing : nullptr, has_allocator);
  FUZZ_CHECK(trial, result == expected.result);
  FUZZ_CHECK(trial, memory.sizes == expected.decoder.sizes);
  const naive::comparison same(trial.referenced, [&](const void *block) { return memory.size_of(block); });
  FUZZ_SAME(trial, same.difference(*trial.type, seen.data(), expected.record.data()));
  const std::size_t owned = naive::blocks_owned(*trial.type, seen.data(), trial.referenced);
  FUZZ_CHECK(trial, memory.live() == owned + expected.decoder.dropped);
}

bool any_failed(const ledger &memory) {
  for (std::size_t i = 0; i < memory.sizes.size(); ++i) {
    if (memory.failing.fails(i)) return true;
  }
  return false;
}

void check_copying(const trial &trial, const schedule &failing, const record &source) {
  record copy(*trial.type, trial.fill);
  ledger memory(trial);
  memory.failing = failing;
  const int result = trial.type->functions->duplicate(copy.data(), source.data(), ledger::allocate, &memory);
  FUZZ_CHECK(trial, result == (any_failed(memory) ? CODEC_ERR_NO_MEMORY : CODEC_OK));
  FUZZ_CHECK(trial, memory.live() == naive::blocks_owned(*trial.type, copy.data(), false));
  FUZZ_CHECK(trial, result != CODEC_OK || trial.type->functions->compare(source.data(), copy.data()) == 0);
  // What there was no memory for is not there: the copy can be written.
  encoding_of(trial, copy.data(), 0);
  trial.type->functions->free(copy.data(), ledger::release, &memory, 0);
  FUZZ_CHECK(trial, memory.live() == 0);
}

void check_copying_without_allocator(const trial &trial, const record &source) {
  record copy(*trial.type, trial.fill), other(*trial.type, trial.fill);
  ledger nothing(trial);
  nothing.failing = {schedule::all_from, 0, 0};
  const auto duplicate = trial.type->functions->duplicate;
  const int result = duplicate(copy.data(), source.data(), nullptr, nullptr);
  FUZZ_CHECK(trial, result == duplicate(other.data(), source.data(), ledger::allocate, &nothing));
  FUZZ_CHECK(trial, (result == CODEC_OK) == nothing.sizes.empty());
  FUZZ_CHECK(trial, naive::blocks_owned(*trial.type, copy.data(), false) == 0);
  FUZZ_CHECK(trial, encoding_of(trial, copy.data(), 0) == encoding_of(trial, other.data(), 0));
}

}  // namespace

void run(const trial &trial) {
  record seen(*trial.type, trial.fill);
  ledger memory(trial);
  check_decoding(trial, schedule_of(trial.choice, trial.number), seen, memory);
  check_copying(trial, schedule_of(trial.choice >> 2, trial.number ^ trial.extra), seen);
  check_copying_without_allocator(trial, seen);
  const std::size_t owned = naive::blocks_owned(*trial.type, seen.data(), trial.referenced);
  const std::size_t dropped = memory.live() - owned;
  const bool forgets = trial.choice == 14;
  trial.type->functions->free(seen.data(), forgets ? nullptr : ledger::release, &memory, trial.options());
  FUZZ_CHECK(trial, memory.live() == dropped + (forgets ? owned : 0));
  FUZZ_CHECK(trial, naive::blocks_owned(*trial.type, seen.data(), trial.referenced) == 0);
}

}  // namespace fuzz
