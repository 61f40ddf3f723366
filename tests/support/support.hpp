// What every test is written with: bytes spelled out, inputs and outputs in blocks of exactly their size, an allocator
// that keeps account, records that are released at the end, and a segment table in a block of exactly its size.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "accountant.hpp"
#include "fence.hpp"
#include "operations.hpp"
#include "owned_record.hpp"
#include "pavo_zorv.h"
#include "wire_bytes.hpp"

namespace test {

// What is found outside of a test's own text is a failure of the test too.
inline const bool reports_are_failures = (
    report_finding = [](const std::string &what) { ADD_FAILURE() << what; }, true);

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

// What an encoding call gives for a record, in a buffer of exactly the measured size; both calls must agree.
template <class Record>
byte_string encoded(const Record &record, std::uint32_t options = 0) {
  const std::size_t length = operations<Record>::encode(&record, nullptr, 0, nullptr, nullptr, options);
  const fenced_block buffer(length);
  EXPECT_EQ(operations<Record>::encode(&record, buffer.data(), length, nullptr, nullptr, options), length);
  return buffer.content();
}

// An owned record with the members of its type.
template <class Record>
class owned : public owned_record {
 public:
  explicit owned(std::uint32_t options = 0)
      : owned_record(calls_of<Record>, options), record(*reinterpret_cast<Record *>(data())) {}
  Record *operator->() { return &record; }

  Record &record;
};

// Decoded from bytes in a block of exactly their size.
template <class Record>
class decoded : public owned<Record> {
 public:
  explicit decoded(const byte_string &bytes, std::uint32_t options = 0) : owned<Record>(options) {
    this->decode(bytes);
  }
};

// Copied, with the requests for memory to fail.
template <class Record>
class copied : public owned<Record> {
 public:
  explicit copied(const Record &source, const failing_requests &failing = {}) {
    this->memory.fail(failing);
    this->copy(&source);
  }
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
