// What measuring adds up: the size of one message, and what it finds in all of them.
#pragma once

#include <cstdint>

#include "schema.hpp"
#include "wire.hpp"

namespace pavo_zorv {

// In a message and all inside it, besides the bytes.
struct measurement {
  bool referenced;              // bytes members are left where they are, and not counted
  bool has_null_bytes = false;  // a null bytes member has a length: its place in the buffer stays as it was
  bool overflowed = false;      // the bytes are more than their number can say
  std::uint64_t segments = 0;   // entries that the table needs
};

// The bytes of one message while its fields are added up.
struct message_size {
  measurement &found;
  std::uint64_t bytes;
  std::uint64_t blocks = 0;      // the bytes of bytes members, and of messages that hold such
  std::uint64_t last_piece = 0;  // where the message's last table entry begins

  // Only what holds a bytes member can be longer than memory, and make a sum of 64 bits overflow: it is summed apart
  // from all else, which is added without a look.
  PAVO_ZORV_INLINE void add_block(std::uint64_t length) { blocks = saturating_sum(blocks, length); }

  template <class Nested>
  PAVO_ZORV_INLINE void add_message(unsigned number, std::uint64_t inner) {
    bytes += prefix_size(number, inner);
    if constexpr (holds_bytes<Nested>) {
      add_block(inner);
    } else {
      bytes += inner;
    }
  }

  template <class Record>
  PAVO_ZORV_INLINE std::uint64_t sum() {
    if constexpr (!holds_bytes<Record>) return bytes;
    return saturating_sum(bytes, blocks);
  }

  PAVO_ZORV_INLINE std::uint64_t saturating_sum(std::uint64_t a, std::uint64_t b) {
    std::uint64_t sum;
    if (!__builtin_add_overflow(a, b, &sum)) [[likely]]
      return sum;
    found.overflowed = true;
    return UINT64_MAX;
  }
};

}  // namespace pavo_zorv
