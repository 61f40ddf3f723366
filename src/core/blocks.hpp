// Copying a block of any size, exactly: most strings and lists are short, and copied in place instead of by a call.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "bits.hpp"

namespace pavo_zorv {

// A block of one to two pieces in size: its first and its last piece, which overlap each other.
template <class Piece>
inline void copy_two_pieces(byte *to, const byte *from, std::size_t size) {
  Piece first, last;
  std::memcpy(&first, from, sizeof first);
  std::memcpy(&last, from + size - sizeof last, sizeof last);
  std::memcpy(to, &first, sizeof first);
  std::memcpy(to + size - sizeof last, &last, sizeof last);
}

// Copies a block to one that does not overlap it. Up to `Short` bytes are copied in place.
template <std::size_t Short = 32>
inline void copy_bytes(void *to, const void *from, std::size_t size) {
  struct two_words {
    std::uint64_t words[2];
  };
  struct four_words {
    std::uint64_t words[4];
  };
  static_assert(Short <= 2 * sizeof(four_words));
  auto *const target = static_cast<byte *>(to);
  auto *const source = static_cast<const byte *>(from);
  if (size > Short) {
    std::memcpy(to, from, size);
  } else if (Short > 32 && size > 32) {
    copy_two_pieces<four_words>(target, source, size);
  } else if (size >= 16) {
    copy_two_pieces<two_words>(target, source, size);
  } else if (size >= 8) {
    copy_two_pieces<std::uint64_t>(target, source, size);
  } else if (size >= 4) {
    copy_two_pieces<std::uint32_t>(target, source, size);
  } else if (size != 0) {
    target[0] = source[0];
    target[size / 2] = source[size / 2];
    target[size - 1] = source[size - 1];
  }
}

}  // namespace pavo_zorv
