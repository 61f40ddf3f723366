// How a law is tried: for every message, on records and bytes from seeds that are the same in every run. The first
// seed that breaks a law is reported with the message and the bytes; PAVO_ZORV_SEED=<seed> tries only that one, and
// PAVO_ZORV_ROUNDS=<n> n times as many, PAVO_ZORV_SEEDS=<n> at most n.
#pragma once

#include <cstdlib>
#include <functional>
#include <string>

#include "model_memory.hpp"
#include "random_record.hpp"

namespace test {

// The messages that the laws of a test program are about.
const std::vector<const message_type *> &subjects();

// A law is tried for each of them.
using law = testing::TestWithParam<const message_type *>;

inline std::string name_of_subject(const testing::TestParamInfo<const message_type *> &info) {
  return info.param->name;
}

// What a test is about at the moment, for the report.
inline byte_string &on_trial() {
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

inline void for_seeds(std::uint64_t seeds, const std::function<void(dice &)> &trial) {
  const std::uint64_t only = only_seed();
  const std::uint64_t first = only != any_seed ? only : 0;
  const std::uint64_t most = environment_number("PAVO_ZORV_SEEDS", UINT64_MAX);
  const std::uint64_t wanted = seeds * environment_number("PAVO_ZORV_ROUNDS", 1);
  const std::uint64_t last = only != any_seed ? only + 1 : wanted < most ? wanted : most;
  for (std::uint64_t seed = first; seed < last; ++seed) {
    on_trial().clear();
    dice dice(seed);
    trial(dice);
    if (testing::Test::HasFailure()) {
      const testing::TestInfo &test = *testing::UnitTest::GetInstance()->current_test_info();
      FAIL() << "seed " << seed << ", bytes " << show(on_trial()) << "\nagain with: PAVO_ZORV_SEED=" << seed
             << " --gtest_filter=" << test.test_suite_name() << "." << test.name();
    }
  }
}

// A block between two inaccessible pages, used again and again: what is asked for are its last bytes, or its first.
class fence {
 public:
  explicit fence(std::size_t room) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    room_ = (room + page - 1) / page * page;
    mapped_ = room_ + 2 * page;
    void *const start = mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (start == MAP_FAILED) std::abort();
    first_ = static_cast<unsigned char *>(start) + page;
    if (room_ != 0 && mprotect(first_, room_, PROT_READ | PROT_WRITE) != 0) std::abort();
  }
  fence(const fence &) = delete;
  fence &operator=(const fence &) = delete;
  ~fence() { munmap(first_ - (mapped_ - room_) / 2, mapped_); }

  unsigned char *first() const { return first_; }
  unsigned char *last(std::size_t size) const { return first_ + room_ - size; }

  unsigned char *holding(const byte_string &content) const { return holding(content, content.size()); }
  // The first bytes of a content.
  unsigned char *holding(const byte_string &content, std::size_t size) const {
    return copied(content, size, last(size));
  }
  unsigned char *holding_at_start(const byte_string &content) const { return copied(content, content.size(), first_); }

 private:
  static unsigned char *copied(const byte_string &content, std::size_t size, unsigned char *to) {
    if (size != 0) std::memcpy(to, content.data(), size);
    return to;
  }

  std::size_t room_, mapped_;
  unsigned char *first_;
};

inline byte_string first_bytes(const byte_string &bytes, std::size_t count) {
  return byte_string(bytes.data(), bytes.data() + count);
}

inline std::size_t measured(view record, std::uint32_t options = 0) {
  return record.type().encode(record.data(), nullptr, 0, nullptr, nullptr, options);
}

inline byte_string encoding_of(view record, std::uint32_t options = 0) {
  const fenced_block buffer(measured(record, options));
  const std::size_t length =
      record.type().encode(record.data(), buffer.data(), buffer.size(), nullptr, nullptr, options);
  EXPECT_EQ(length, buffer.size());
  return buffer.content();
}

inline int compared(view a, view b) { return a.type().compare(a.data(), b.data()); }

// A record that starts as rubbish, is decoded into, and is released at the end; then every block must have come back.
class decoding {
 public:
  decoding(const message_type &type, dice &dice, std::uint32_t options)
      : record(type, storage_.block(type.size)), options_(options) {
    litter(record, dice);
  }
  decoding(const decoding &) = delete;
  decoding &operator=(const decoding &) = delete;
  ~decoding() {
    record.type().free(record.data(), accountant::release, &memory, options_);
    EXPECT_EQ(memory.live(), dropped) << "blocks that did not come back";
  }
  int decode(const unsigned char *input, std::size_t length) {
    return record.type().decode(record.data(), input, length, accountant::allocate, &memory, options_);
  }
  // From a block of the record's own.
  int decode(const byte_string &bytes) {
    input_ = std::make_unique<fenced_block>(bytes);
    return decode(input_->data(), input_->size());
  }
  const fenced_block &input() const { return *input_; }

 private:
  arena storage_;
  std::unique_ptr<fenced_block> input_;

 public:
  view record;
  accountant memory;
  std::size_t dropped = 0;

 private:
  std::uint32_t options_;
};

}  // namespace test
