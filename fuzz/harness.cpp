// What all targets share, and the entry point of the fuzzing engine.
#include "harness.hpp"

namespace fuzz {

namespace {

naive::storage &naive_memory() {
  static naive::storage memory(4 * longest_input * 36);
  memory.reset();
  return memory;
}

}  // namespace

expected::expected(const trial &trial, const unsigned char *input, std::size_t length,
                   const test::failing_requests &failing, bool has_allocator)
    : block(trial.type->size, trial.fill), record(*trial.type, block.data()), decoder(naive_memory()) {
  decoder.has_allocator = has_allocator;
  decoder.referenced = trial.referenced;
  decoder.failing = failing;
  result = decoder.decode(record, input, length);
}

std::vector<unsigned char> encoding_of(const trial &trial, view record, std::uint32_t options) {
  const auto encode = trial.type->functions->encode;
  const std::size_t size = encode(record.data(), nullptr, 0, nullptr, nullptr, options);
  unsigned char *const buffer = output_room().last(size);
  FUZZ_CHECK(trial, encode(record.data(), buffer, size, nullptr, nullptr, options) == size);
  return std::vector<unsigned char>(buffer, buffer + size);
}

const test::fence &input_room() {
  static const test::fence room(longest_input);
  return room;
}
const test::fence &second_input_room() {
  static const test::fence room(longest_input);
  return room;
}
const test::fence &output_room() {
  static const test::fence room(4 * longest_input);
  return room;
}
const test::fence &table_room() {
  static const test::fence room(4 * longest_input * sizeof(pavo_zorv_segment));
  return room;
}

}  // namespace fuzz

namespace {
const fuzz::trial *current = nullptr;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
  if (size > fuzz::longest_input) return 0;
  const fuzz::trial trial = fuzz::trial_of(data, size);
  current = &trial;
  test::report_finding = [](const std::string &what) { fuzz::fail(*current, "good order", __FILE__, __LINE__, what); };
  fuzz::run(trial);
  return 0;
}
