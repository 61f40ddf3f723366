// How a law is tried: for every message, on records and bytes from seeds that are the same in every run. The first
// seed that breaks a law is reported with the message and the bytes; PAVO_ZORV_SEED=<seed> tries only that one, and
// PAVO_ZORV_ROUNDS=<n> n times as many, PAVO_ZORV_SEEDS=<n> at most n.
#pragma once

#include <cstdlib>
#include <functional>
#include <string>

#include "naive/decoder.hpp"
#include "naive/encoder.hpp"
#include "owned_record.hpp"
#include "random_record.hpp"

namespace test {

// The messages that the laws of a test program are about.
const std::vector<const naive::message *> &subjects();

// A law is tried for each of them.
using law = testing::TestWithParam<const naive::message *>;

inline std::string name_of_subject(const testing::TestParamInfo<const naive::message *> &info) {
  return info.param->name;
}

// What a test is about at the moment, for the report.
inline byte_string &tried() {
  static byte_string bytes;
  return bytes;
}

inline constexpr std::uint64_t any_seed = UINT64_MAX;

inline std::uint64_t environment_number(const char *name, std::uint64_t otherwise) {
  const char *const text = std::getenv(name);
  return text != nullptr ? std::strtoull(text, nullptr, 10) : otherwise;
}

inline std::uint64_t only_seed() { return environment_number("PAVO_ZORV_SEED", any_seed); }

// Whether a law is tried as often as it says, so that it may ask what was tried.
inline bool is_tried_in_full() {
  return only_seed() == any_seed && environment_number("PAVO_ZORV_SEEDS", UINT64_MAX) == UINT64_MAX;
}

inline void for_seeds(std::uint64_t seeds, const std::function<void(random_numbers &)> &trial) {
  const std::uint64_t only = only_seed();
  const std::uint64_t first = only != any_seed ? only : 0;
  const std::uint64_t most = environment_number("PAVO_ZORV_SEEDS", UINT64_MAX);
  const std::uint64_t wanted = seeds * environment_number("PAVO_ZORV_ROUNDS", 1);
  const std::uint64_t last = only != any_seed ? only + 1 : wanted < most ? wanted : most;
  for (std::uint64_t seed = first; seed < last; ++seed) {
    tried().clear();
    random_numbers random(seed);
    trial(random);
    if (testing::Test::HasFailure()) {
      const testing::TestInfo &test = *testing::UnitTest::GetInstance()->current_test_info();
      FAIL() << "seed " << seed << ", bytes " << show(tried()) << "\nagain with: PAVO_ZORV_SEED=" << seed
             << " --gtest_filter=" << test.test_suite_name() << "." << test.name();
    }
  }
}

inline bool is_referenced(std::uint32_t options) { return (options & PAVO_ZORV_REFERENCE) != 0; }

inline bool same_content(const void *a, const void *b, std::size_t length) { return std::memcmp(a, b, length) == 0; }

inline std::size_t measured(view record, std::uint32_t options = 0) {
  return record.type().functions->encode(record.data(), nullptr, 0, nullptr, nullptr, options);
}

inline byte_string encoding_of(view record, std::uint32_t options = 0) {
  const fenced_block buffer(measured(record, options));
  const std::size_t length =
      record.type().functions->encode(record.data(), buffer.data(), buffer.size(), nullptr, nullptr, options);
  EXPECT_EQ(length, buffer.size());
  return buffer.content();
}

inline int compared(view a, view b) { return a.type().functions->compare(a.data(), b.data()); }

// A record that starts as random rubbish, is decoded into, and is released at the end.
class decoding : public owned_record {
 public:
  decoding(const naive::message &type, random_numbers &random, std::uint32_t options)
      : owned_record(*type.functions, options), record(type, data()) {
    fill_with_rubbish(record, random);
  }

  const view record;
};

// A record that starts with the same bytes as another one, and is not released.
class shallow_copy {
 public:
  explicit shallow_copy(view other) : block_(other.type().size, 0), record(other.type(), block_.data()) {
    std::memcpy(record.data(), other.data(), other.type().size);
  }

 private:
  record_block block_;

 public:
  const view record;
};

// Where two records differ, or nothing. The first one's blocks are of this memory.
inline std::string difference(view a, view b, const accountant &memory, bool referenced) {
  return naive::comparison(referenced, [&](const void *block) { return memory.size_of(block); }).difference(a, b);
}

// What the naive decoder works in: one decoding at a time.
inline naive::storage &naive_memory() {
  static naive::storage memory(8 << 20);
  memory.reset();
  return memory;
}

}  // namespace test
