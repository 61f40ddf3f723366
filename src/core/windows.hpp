// Windows: sixty-four octets of the input at once, as masks with one bit for each octet. The only file with code for
// particular processors; each of them only does what the portable form does.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "wire.hpp"

#if defined(__AVX2__)
#include <immintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace pavo_zorv {

inline constexpr std::size_t window_size = 64;

// The octets of a window that end a varint, and those at which a key begins.
struct window {
  std::uint64_t ends = 0;
  std::uint64_t keys = 0;
};

// A key in its shortest form, as the octets that stand on the wire: one, or two for numbers from 16 on.
template <unsigned Size>
struct key_octets {
  octet first;
  octet second;

  explicit key_octets(std::uint32_t key)
      : first(static_cast<octet>(Size == 1 ? key : key | 0x80)), second(static_cast<octet>(key >> 7)) {}
};

// As many octets as one load takes, and the masks of those that end a varint and those that equal a value.
class portable_piece {
 public:
  static constexpr std::size_t size = 8;
  explicit portable_piece(const octet *at) : octets_(load_word(at)) {}
  std::uint64_t ends() const { return gather(~octets_); }
  std::uint64_t equal(octet value) const {
    const std::uint64_t difference = octets_ ^ lowest * value;
    return gather(~(((difference & ~highest) + ~highest) | difference));
  }

 private:
  static constexpr std::uint64_t lowest = 0x0101010101010101, highest = lowest << 7;
  // The highest bit of each octet, side by side.
  static std::uint64_t gather(std::uint64_t word) { return ((word & highest) >> 7) * 0x0102040810204080 >> 56; }
  std::uint64_t octets_;
};

#if defined(__AVX2__)
class native_piece {
 public:
  static constexpr std::size_t size = 32;
  explicit native_piece(const octet *at) { std::memcpy(&octets_, at, size); }
  std::uint64_t ends() const { return ~static_cast<std::uint32_t>(_mm256_movemask_epi8(octets_)); }
  std::uint64_t equal(octet value) const {
    const __m256i same = _mm256_cmpeq_epi8(octets_, _mm256_set1_epi8(static_cast<char>(value)));
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(same));
  }

 private:
  __m256i octets_;
};
#elif defined(__SSE2__)
class native_piece {
 public:
  static constexpr std::size_t size = 16;
  explicit native_piece(const octet *at) { std::memcpy(&octets_, at, size); }
  std::uint64_t ends() const { return static_cast<std::uint16_t>(~_mm_movemask_epi8(octets_)); }
  std::uint64_t equal(octet value) const {
    const __m128i same = _mm_cmpeq_epi8(octets_, _mm_set1_epi8(static_cast<char>(value)));
    return static_cast<std::uint16_t>(_mm_movemask_epi8(same));
  }

 private:
  __m128i octets_;
};
#else
using native_piece = portable_piece;
#endif

// Looks at the octets from `at` on, as many as a window has or the buffer still holds: bits beyond are 0. The last load
// is moved back to where the buffer ends, so the buffer must be as long as one load.
template <class Piece = native_piece, unsigned KeySize>
PAVO_ZORV_INLINE window look(const octet *at, const octet *limit, key_octets<KeySize> key) {
  std::uint64_t ends = 0, first = 0, second = 0;
  const auto add = [&](const octet *from, std::size_t offset, std::size_t skipped) __attribute__((always_inline)) {
    const Piece octets(from);
    ends |= octets.ends() >> skipped << offset;
    first |= octets.equal(key.first) >> skipped << offset;
    if constexpr (KeySize == 2) second |= octets.equal(key.second) >> skipped << offset;
  };
  const auto left = static_cast<std::size_t>(limit - at);
  if (left >= window_size) [[likely]] {
    for (std::size_t offset = 0; offset < window_size; offset += Piece::size) add(at + offset, offset, 0);
  } else {
    std::size_t offset = 0;
    for (; left - offset >= Piece::size; offset += Piece::size) add(at + offset, offset, 0);
    if (offset < left) add(limit - Piece::size, offset, Piece::size - (left - offset));
  }
  return {ends, KeySize == 1 ? first : first & second >> 1};
}

// Bit by bit, whether the number of bits up to and including it is odd.
constexpr std::uint64_t parity_up_to(std::uint64_t bits) {
  for (unsigned distance = 1; distance < 64; distance *= 2) bits ^= bits << distance;
  return bits;
}

}  // namespace pavo_zorv
