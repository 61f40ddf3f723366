// The caller's segment table. Messages are written backwards, so it is filled from its last entry to its first.
#pragma once

#include <cstdint>

#include "pavo_zorv.h"
#include "wire.hpp"

namespace pavo_zorv {

struct segment_table {
  pavo_zorv_segment *entries;
  std::uint32_t capacity;
  std::uint64_t next;  // entries not yet taken: all those before it

  std::uint64_t take() { return --next; }
  void put_back() { ++next; }

  void set(std::uint64_t index, const byte *start, std::uint64_t length) const {
    if (index < capacity) entries[index] = {start, length};
  }
};

}  // namespace pavo_zorv
