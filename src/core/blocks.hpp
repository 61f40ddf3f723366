// Copying a block of any size, exactly: most strings and lists are short, and copied in place instead of by a call.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "bits.hpp"

namespace pavo_zorv {

// From one to two pieces, which overlap.
template <class Piece>
inline void copy_overlapping(byte *to, const byte *from, std::size_t size) {
  Piece first, last;
  std::memcpy(&first, from, sizeof first);
  std::memcpy(&last, from + size - sizeof last, sizeof last);
  std::memcpy(to, &first, sizeof first);
  std::memcpy(to + size - sizeof last, &last, sizeof last);
}

// Blocks of up to `Short` bytes are copied in place.
template <std::size_t Short = 32>
inline void copy_bytes(void *to, const void *from, std::size_t size) {
  struct two_words {
    std::uint64_t words[2];
  };
  struct four_words {
    std::uint64_t words[4];
  };
  auto *const target = static_cast<byte *>(to);
  auto *const source = static_cast<const byte *>(from);
  if (size > Short) {
    std::memcpy(to, from, size);
  } else if (Short > 32 && size > 32) {
    copy_overlapping<four_words>(target, source, size);
  } else if (size >= 16) {
    copy_overlapping<two_words>(target, source, size);
  } else if (size >= 8) {
    copy_overlapping<std::uint64_t>(target, source, size);
  } else if (size >= 4) {
    copy_overlapping<std::uint32_t>(target, source, size);
  } else if (size != 0) {
    target[0] = source[0];
    target[size / 2] = source[size / 2];
    target[size - 1] = source[size - 1];
  }
}

}  // namespace pavo_zorv
