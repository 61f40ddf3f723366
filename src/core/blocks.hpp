// Blocks of memory: clearing and copying them without a call where they are of fixed size or short.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "wire.hpp"

namespace pavo_zorv {

using block_vector [[gnu::vector_size(vector_size)]] = unsigned char;

// Copies two overlapping words, or one byte by byte, exactly: strings and lists are mostly short.
template <class Word>
PAVO_ZORV_INLINE void copy_overlapping(byte *to, const byte *from, std::size_t size) {
  Word first, last;
  std::memcpy(&first, from, sizeof first);
  std::memcpy(&last, from + size - sizeof last, sizeof last);
  std::memcpy(to, &first, sizeof first);
  std::memcpy(to + size - sizeof last, &last, sizeof last);
}

// Those of up to `Short` bytes are copied in place.
template <std::size_t Short = 32>
PAVO_ZORV_INLINE void copy_bytes(void *to, const void *from, std::size_t size) {
  struct sixteen {
    std::uint64_t words[2];
  };
  auto *const target = static_cast<byte *>(to);
  auto *const source = static_cast<const byte *>(from);
  struct thirty_two {
    std::uint64_t words[4];
  };
  if (size > Short) {
    std::memcpy(to, from, size);
  } else if (Short > 32 && size > 32) {
    copy_overlapping<thirty_two>(target, source, size);
  } else if (size >= 16) {
    copy_overlapping<sixteen>(target, source, size);
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
