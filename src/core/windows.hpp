// Windows: sixty-four bytes of the input at once, as masks with one bit for each byte. The only file with
// instructions of particular processors; they only do what portable code does, which stands here or in runs/.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "wire.hpp"

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace pavo_zorv {

inline constexpr std::size_t window_size = 64;

// The bytes of a window that end a varint, and those at which a key begins.
struct window {
  std::uint64_t ends;
  std::uint64_t keys;
};

// A key in its shortest form, as the bytes that stand on the wire: one, or two for numbers from 16 on.
template <unsigned Size>
struct key_bytes {
  byte first;
  byte second;

  explicit key_bytes(std::uint32_t key)
      : first(static_cast<byte>(Size == 1 ? key : key | 0x80)), second(static_cast<byte>(key >> 7)) {}
};

// As many bytes as one load takes, and the masks of those that end a varint and those that equal a value.
class portable_piece {
 public:
  static constexpr std::size_t size = 8;
  explicit portable_piece(const byte *at) : bytes_(load_word(at)) {}
  std::uint64_t ends() const { return gather(~bytes_); }
  std::uint64_t equal(byte value) const {
    const std::uint64_t difference = bytes_ ^ lowest * value;
    return gather(~(((difference & ~highest) + ~highest) | difference));
  }

 private:
  static constexpr std::uint64_t lowest = 0x0101010101010101, highest = lowest << 7;
  // The highest bit of each byte, side by side.
  static std::uint64_t gather(std::uint64_t word) { return ((word & highest) >> 7) * 0x0102040810204080 >> 56; }
  std::uint64_t bytes_;
};

#if defined(__AVX2__)
class native_piece {
 public:
  static constexpr std::size_t size = 32;
  explicit native_piece(const byte *at) { std::memcpy(&bytes_, at, size); }
  std::uint64_t ends() const { return ~static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes_)); }
  std::uint64_t equal(byte value) const {
    const __m256i same = _mm256_cmpeq_epi8(bytes_, _mm256_set1_epi8(static_cast<char>(value)));
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(same));
  }

 private:
  __m256i bytes_;
};
#elif defined(__SSE2__)
class native_piece {
 public:
  static constexpr std::size_t size = 16;
  explicit native_piece(const byte *at) { std::memcpy(&bytes_, at, size); }
  std::uint64_t ends() const { return 0xffff ^ static_cast<std::uint32_t>(_mm_movemask_epi8(bytes_)); }
  std::uint64_t equal(byte value) const {
    const __m128i same = _mm_cmpeq_epi8(bytes_, _mm_set1_epi8(static_cast<char>(value)));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(same));
  }

 private:
  __m128i bytes_;
};
#else
using native_piece = portable_piece;
#endif

// Whether no bit of a vector is set.
template <class Vector>
PAVO_ZORV_INLINE bool none(const Vector &bits) {
#if defined(__AVX__)
  if constexpr (sizeof bits == 32) {
    __m256i all;
    std::memcpy(&all, &bits, sizeof all);
    return _mm256_testz_si256(all, all) != 0;
  }
#endif
#if defined(__SSE2__)
  if constexpr (sizeof bits == 16) {
    __m128i all;
    std::memcpy(&all, &bits, sizeof all);
    // No branches: there is no condition, but GCC counts how an intrinsic function might throw.
    return _mm_movemask_epi8(_mm_cmpeq_epi8(all, _mm_setzero_si128())) == 0xffff;
  }
#endif
  std::uint64_t parts[sizeof bits / 8];
  std::memcpy(parts, &bits, sizeof bits);
  std::uint64_t all = 0;
  for (const std::uint64_t part : parts) all |= part;
  return all == 0;
}

// The bytes from `at` on, as many as a window has or the buffer still holds, a load at a time: calls `add` with the
// bytes, the place of the first of them in the window, and how many before it are to be left out. The last load is
// moved back to where the buffer ends, so the buffer must be as long as one load.
template <class Piece, class Add>
PAVO_ZORV_INLINE void for_each_piece(const byte *at, const byte *limit, Add add) {
  const auto left = static_cast<std::size_t>(limit - at);
  if (left >= window_size) [[likely]] {
    for (std::size_t offset = 0; offset < window_size; offset += Piece::size) add(Piece(at + offset), offset, 0);
  } else {
    std::size_t offset = 0;
    for (; left - offset >= Piece::size; offset += Piece::size) add(Piece(at + offset), offset, 0);
    if (offset < left) add(Piece(limit - Piece::size), offset, Piece::size - (left - offset));
  }
}

// Bits beyond the end of the buffer are 0.
template <class Piece = native_piece, unsigned KeySize>
PAVO_ZORV_INLINE window look(const byte *at, const byte *limit, key_bytes<KeySize> key) {
  std::uint64_t ends = 0, first = 0, second = 0;
  for_each_piece<Piece>(
      at, limit, [&](Piece bytes, std::size_t offset, std::size_t before) __attribute__((always_inline)) {
        ends |= bytes.ends() >> before << offset;
        first |= bytes.equal(key.first) >> before << offset;
        if constexpr (KeySize == 2) second |= bytes.equal(key.second) >> before << offset;
      });
  return {ends, KeySize == 1 ? first : first & second >> 1};
}

// Where a value stands in a window.
template <class Piece = native_piece>
PAVO_ZORV_INLINE std::uint64_t look_for(const byte *at, const byte *limit, byte value) {
  std::uint64_t found = 0;
  for_each_piece<Piece>(
      at, limit, [&](Piece bytes, std::size_t offset, std::size_t before) __attribute__((always_inline)) {
        found |= bytes.equal(value) >> before << offset;
      });
  return found;
}

// Bit by bit, whether the number of bits up to and including it is odd.
constexpr std::uint64_t parity_up_to(std::uint64_t bits) {
  for (unsigned distance = 1; distance < 64; distance *= 2) bits ^= bits << distance;
  return bits;
}

#if defined(__SSSE3__)
// Four 8-bit elements as varints with their keys, put together by one shuffle: which bytes of the source go where
// follows from which elements take a second byte, which is always 1.
template <unsigned KeySize>
class four_elements {
 public:
  static constexpr bool usable = true;
  static constexpr std::size_t room = 16;  // bytes that a store covers, of which the last are the elements

  explicit four_elements(key_bytes<KeySize> key)
      : others_(_mm_set_epi32(0, 0, 1 << 16 | key.second << 8 | key.first, 0)) {}

  PAVO_ZORV_INLINE byte *prepend(byte *at, const byte *elements) const {
    int four;
    std::memcpy(&four, elements, sizeof four);
    const __m128i values = _mm_cvtsi32_si128(four);
    const auto longer = static_cast<unsigned>(_mm_movemask_epi8(values));
    __m128i places;
    std::memcpy(&places, orders.of[longer], sizeof places);
    const __m128i bytes = _mm_shuffle_epi8(_mm_or_si128(values, others_), places);
    std::memcpy(at - room, &bytes, room);
    return at - 4 * (KeySize + 1) - count_bits(longer);
  }

 private:
  struct orders_of_all {
    byte of[16][16];
  };

  // In the source stand four elements, the key, and the byte 1.
  static constexpr orders_of_all make_orders() {
    orders_of_all result{};
    for (unsigned longer = 0; longer < 16; ++longer) {
      unsigned at = 16;
      for (unsigned element = 4; element-- != 0;) {
        if ((longer >> element & 1) != 0) result.of[longer][--at] = 6;
        result.of[longer][--at] = static_cast<byte>(element);
        if (KeySize == 2) result.of[longer][--at] = 5;
        result.of[longer][--at] = 4;
      }
    }
    return result;
  }

  static constexpr orders_of_all orders = make_orders();
  __m128i others_;
};
#else
template <unsigned KeySize>
struct four_elements {
  static constexpr bool usable = false;
};
#endif

}  // namespace pavo_zorv
