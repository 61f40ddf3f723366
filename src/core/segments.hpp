// The caller's segment table. Messages are written backwards, so it is filled from its last entry to its first.
#pragma once

#include <cstddef>
#include <cstdint>

#include "pavo_zorv.h"
#include "wire.hpp"

namespace pavo_zorv {

// No memory holds an encoding of this length.
inline constexpr std::size_t unwritable = SIZE_MAX / 2;

struct segment_table {
  pavo_zorv_segment *entries;
  std::size_t capacity;
  std::size_t next;  // entries not yet taken: all those before it

  std::size_t take() { return --next; }
  void put_back() { ++next; }

  void set(std::size_t index, const octet *start, std::uint64_t length) const {
    if (index < capacity) entries[index] = {start, length};
  }
};

}  // namespace pavo_zorv
