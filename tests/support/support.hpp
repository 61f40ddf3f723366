// What every test is written with: bytes spelled out, inputs and outputs in blocks of exactly their size, an allocator
// that keeps account, and a segment table with guards.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "pavo_zorv.h"
#include "pavo_zorv_messages.h"

namespace test {

using byte_string = std::vector<unsigned char>;

// Bytes from text: hexadecimal pairs, blanks between them as one likes.
inline byte_string hex(std::string_view text) {
  byte_string result;
  int high = -1;
  for (const char c : text) {
    if (c == ' ' || c == '\n') continue;
    const int digit = c >= '0' && c <= '9'   ? c - '0'
                      : c >= 'a' && c <= 'f' ? c - 'a' + 10
                      : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                             : -1;
    if (digit < 0) ADD_FAILURE() << "not hexadecimal: " << text;
    if (high < 0) {
      high = digit;
    } else {
      result.push_back(static_cast<unsigned char>(high * 16 + digit));
      high = -1;
    }
  }
  if (high >= 0) ADD_FAILURE() << "half a byte: " << text;
  return result;
}

inline byte_string operator+(byte_string left, const byte_string &right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

inline byte_string operator*(std::size_t times, const byte_string &what) {
  byte_string result(times * what.size());
  for (std::size_t at = 0; at < result.size(); at += what.size())
    std::memcpy(result.data() + at, what.data(), what.size());
  return result;
}

inline std::string show(const byte_string &bytes) {
  std::string result;
  for (const unsigned char byte : bytes) {
    if (!result.empty()) result += ' ';
    result += "0123456789abcdef"[byte >> 4];
    result += "0123456789abcdef"[byte & 15];
  }
  return result;
}

// A block that ends where an inaccessible page begins: reading or writing one byte after it ends the test.
class fenced_block {
 public:
  explicit fenced_block(std::size_t size) : size_(size) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    mapped_ = (size + page - 1) / page * page + page;
    base_ = static_cast<unsigned char *>(
        mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (base_ == MAP_FAILED || mprotect(base_ + mapped_ - page, page, PROT_NONE) != 0) std::abort();
    data_ = base_ + mapped_ - page - size;
    std::memset(base_, 0xc7, mapped_ - page);
  }
  explicit fenced_block(const byte_string &content) : fenced_block(content.size()) {
    if (!content.empty()) std::memcpy(data_, content.data(), content.size());
  }
  fenced_block(const fenced_block &) = delete;
  fenced_block &operator=(const fenced_block &) = delete;
  ~fenced_block() { munmap(base_, mapped_); }

  unsigned char *data() const { return data_; }
  std::size_t size() const { return size_; }
  byte_string content() const { return byte_string(data_, data_ + size_); }

 private:
  std::size_t size_, mapped_;
  unsigned char *base_, *data_;
};

// An allocator that keeps account. Blocks are of exactly the size asked for (the sanitizer sees one byte more or less)
// and filled with rubbish; `fail_at` and `fail_from` count requests from 0; each block must come back once.
class accountant {
 public:
  static constexpr std::size_t never = SIZE_MAX;
  std::size_t fail_at = never;     // this request fails
  std::size_t fail_from = never;   // this request and all later ones fail
  std::vector<std::size_t> sizes;  // what was asked for, in order, failures included
  std::vector<void *> released;    // what came back, in order

  accountant() = default;
  accountant(const accountant &) = delete;
  accountant &operator=(const accountant &) = delete;
  ~accountant() {
    for (const auto &[block, size] : live_) std::free(block);
  }

  static void *allocate(std::size_t size, void *context) { return static_cast<accountant *>(context)->take(size); }
  static void release(void *block, void *context) { static_cast<accountant *>(context)->give(block); }

  std::size_t live() const { return live_.size(); }
  std::size_t requests() const { return sizes.size(); }
  bool owns(const void *block) const { return live_.count(const_cast<void *>(block)) != 0; }
  std::size_t size_of(const void *block) const { return live_.at(const_cast<void *>(block)); }
  // Forgets the live blocks, freeing them: for what the library drops on purpose.
  void sweep() {
    for (const auto &[block, size] : live_) std::free(block);
    live_.clear();
  }

 private:
  void *take(std::size_t size) {
    const std::size_t request = sizes.size();
    sizes.push_back(size);
    if (request == fail_at || request >= fail_from) return nullptr;
    void *const block = std::malloc(size);
    void *const result = block != nullptr ? block : std::malloc(1);
    std::memset(result, 0xa5, size);
    live_[result] = size;
    return result;
  }
  void give(void *block) {
    released.push_back(block);
    if (live_.erase(block) == 0) {
      ADD_FAILURE() << "a block came back that is not out: " << block;
      return;
    }
    std::free(block);
  }

  std::map<void *, std::size_t> live_;
};

// One entry as the tests spell it: a start and a length.
struct piece {
  const unsigned char *start;
  std::uint64_t length;
  bool operator==(const piece &) const = default;
};

inline void PrintTo(const piece &entry, std::ostream *out) {
  *out << "(" << static_cast<const void *>(entry.start) << ", " << entry.length << ")";
}

// A segment table of a capacity, in a block of its own size, filled with rubbish.
class table {
 public:
  explicit table(std::uint32_t capacity)
      : entries_(capacity * sizeof(pavo_zorv_segment)), count(capacity), capacity_(capacity) {}
  pavo_zorv_segment *entries() const { return reinterpret_cast<pavo_zorv_segment *>(entries_.data()); }
  // The entries written: the number needed or the capacity, whichever is less.
  std::vector<piece> pieces() const {
    std::vector<piece> result;
    for (std::uint32_t i = 0; i < count && i < capacity_; ++i)
      result.push_back({entries()[i].start, entries()[i].length});
    return result;
  }
  bool untouched_from(std::uint32_t first) const {
    const byte_string all = entries_.content();
    for (std::size_t i = first * sizeof(pavo_zorv_segment); i < all.size(); ++i)
      if (all[i] != 0xc7) return false;
    return true;
  }

 private:
  fenced_block entries_;

 public:
  std::uint32_t count;

 private:
  std::uint32_t capacity_;
};

// The five functions of a message under one name, with or without the options word.
template <class Record>
struct operations;

#define PAVO_ZORV_TEST_OPERATIONS(message, ...)                                                                   \
  template <>                                                                                                     \
  struct operations<message> {                                                                                    \
    static constexpr const char *name = #message;                                                                 \
    static int decode(message *out, const unsigned char *buffer, std::size_t length, pavo_zorv_allocate allocate, \
                      void *context, [[maybe_unused]] std::uint32_t options = 0) {                                \
      return pavo_zorv_##message##_decode_ext(out, buffer, length, allocate, context __VA_OPT__(, ) __VA_ARGS__); \
    }                                                                                                             \
    static std::size_t encode(const message *in, unsigned char *buffer, std::size_t length,                       \
                              pavo_zorv_segment *segments, std::uint32_t *count,                                  \
                              [[maybe_unused]] std::uint32_t options = 0) {                                       \
      return pavo_zorv_##message##_encode_ext(in, buffer, length, segments, count __VA_OPT__(, ) __VA_ARGS__);    \
    }                                                                                                             \
    static int duplicate(message *to, const message *from, pavo_zorv_allocate allocate, void *context) {          \
      return pavo_zorv_##message##_duplicate(to, from, allocate, context);                                        \
    }                                                                                                             \
    static void free(message *record, pavo_zorv_release release, void *context,                                   \
                     [[maybe_unused]] std::uint32_t options = 0) {                                                \
      pavo_zorv_##message##_free_ext(record, release, context __VA_OPT__(, ) __VA_ARGS__);                        \
    }                                                                                                             \
    static int compare(const message *a, const message *b) { return pavo_zorv_##message##_compare(a, b); }        \
  };
#define PAVO_ZORV_TEST_OPERATIONS_WITH_OPTIONS(message) PAVO_ZORV_TEST_OPERATIONS(message, options)
PAVO_ZORV_EVERY_MESSAGE(PAVO_ZORV_TEST_OPERATIONS, PAVO_ZORV_TEST_OPERATIONS_WITH_OPTIONS)
#undef PAVO_ZORV_TEST_OPERATIONS_WITH_OPTIONS
#undef PAVO_ZORV_TEST_OPERATIONS

// What an encoding call gives for a record, in a buffer of exactly the measured size; both calls must agree.
template <class Record>
byte_string encoded(const Record &record, std::uint32_t options = 0) {
  const std::size_t length = operations<Record>::encode(&record, nullptr, 0, nullptr, nullptr, options);
  const fenced_block buffer(length);
  EXPECT_EQ(operations<Record>::encode(&record, buffer.data(), length, nullptr, nullptr, options), length);
  return buffer.content();
}

// A record decoded from bytes in a block of exactly their size. It lives as long as the input, and is released at the
// end; every block must have come back by then.
template <class Record>
class decoded {
 public:
  explicit decoded(const byte_string &bytes, std::uint32_t options = 0) : input(bytes), options_(options) {
    std::memset(static_cast<void *>(&record), 0x5a, sizeof record);
    result = operations<Record>::decode(&record, input.data(), input.size(), accountant::allocate, &memory, options);
  }
  decoded(const decoded &) = delete;
  decoded &operator=(const decoded &) = delete;
  ~decoded() {
    operations<Record>::free(&record, accountant::release, &memory, options_);
    EXPECT_EQ(memory.live(), dropped) << "blocks not released";
  }
  Record *operator->() { return &record; }

  fenced_block input;
  accountant memory;
  Record record;
  int result;
  std::size_t dropped = 0;  // blocks that the library drops on purpose

 private:
  std::uint32_t options_;
};

// Without an allocator.
template <class Record>
int decode_without_memory(const byte_string &bytes, std::uint32_t options = 0) {
  const fenced_block input(bytes);
  Record record;
  std::memset(static_cast<void *>(&record), 0x5a, sizeof record);
  return operations<Record>::decode(&record, input.data(), input.size(), nullptr, nullptr, options);
}

}  // namespace test
