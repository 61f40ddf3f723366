// Windows: sixty-four bytes of the input at once, as masks with one bit for each byte.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/wire.hpp"
#include "vectors.hpp"

namespace pavo_zorv {

inline constexpr std::size_t window_size = 64;

// The bytes of a window that end a varint, and those at which a key begins.
struct window {
  std::uint64_t ends;
  std::uint64_t keys;
};

// As many bytes as one load takes, and the masks of those that end a varint and those that equal a value.
class portable_piece {
 public:
  static constexpr std::size_t size = 8;
  explicit portable_piece(const byte *at) : bytes_(load_word(at)) {}
  std::uint64_t ends() const { return gather(~bytes_); }
  std::uint64_t equal(byte value) const {
    const std::uint64_t difference = bytes_ ^ lowest_bits * value;
    return gather(~(((difference & ~highest_bits) + ~highest_bits) | difference));
  }

 private:
  // The highest bit of each byte, side by side.
  static std::uint64_t gather(std::uint64_t word) { return ((word & highest_bits) >> 7) * 0x0102040810204080 >> 56; }
  std::uint64_t bytes_;
};

// The shortest load, for a buffer, or an end of one, that has no room for the native piece.
#if defined(__SSE2__)
class short_piece {
 public:
  static constexpr std::size_t size = 16;
  explicit short_piece(const byte *at) { std::memcpy(&bytes_, at, size); }
  std::uint64_t ends() const { return 0xffff ^ static_cast<std::uint32_t>(_mm_movemask_epi8(bytes_)); }
  std::uint64_t equal(byte value) const {
    const __m128i same = _mm_cmpeq_epi8(bytes_, _mm_set1_epi8(static_cast<char>(value)));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(same));
  }

 private:
  __m128i bytes_;
};
#else
using short_piece = portable_piece;
#endif

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
#else
using native_piece = short_piece;
#endif

// The bytes from `at` on, as many as a window has or the buffer still holds, a load at a time: calls `add` with the
// bytes, the place of the first of them in the window, and how many before it are to be left out. The last load ends
// where the buffer does, and may overlap the one before. The buffer must be as long as a short piece, at least.
template <class Piece, class Add>
PAVO_ZORV_INLINE void for_each_piece(const byte *at, const byte *limit, Add add) {
  const auto left = static_cast<std::size_t>(limit - at);
  if (left >= window_size) [[likely]] {
    // GCC would loop over four loads, and shift by a register: lists take up to 5 % longer to decode.
#pragma GCC unroll 4
    for (std::size_t offset = 0; offset < window_size; offset += Piece::size) add(Piece(at + offset), offset, 0);
  } else if (left >= Piece::size) {
    for (std::size_t offset = 0; offset + Piece::size < left; offset += Piece::size) add(Piece(at + offset), offset, 0);
    add(Piece(limit - Piece::size), left - Piece::size, 0);
  } else if constexpr (Piece::size > short_piece::size) {
    for_each_piece<short_piece>(at, limit, add);
  } else {
    add(Piece(limit - Piece::size), 0, Piece::size - left);
  }
}

// Bits beyond the end of the buffer are 0.
template <class Piece = native_piece, unsigned KeySize>
PAVO_ZORV_INLINE window look(const byte *at, const byte *limit, key_bytes<KeySize> key) {
  std::uint64_t ends = 0, first = 0, second = 0;
  for_each_piece<Piece>(at, limit, [&](auto bytes, std::size_t offset, std::size_t before) PAVO_ZORV_INLINE_LAMBDA {
    ends |= bytes.ends() >> before << offset;
    first |= bytes.equal(key.first) >> before << offset;
    if constexpr (KeySize == 2) second |= bytes.equal(key.second) >> before << offset;
  });
  return {ends, KeySize == 1 ? first : first & second >> 1};
}

// Where a window has bytes of a value.
template <class Piece = native_piece>
inline std::uint64_t look_for(const byte *at, const byte *limit, byte value) {
  std::uint64_t found = 0;
  for_each_piece<Piece>(at, limit, [&](auto bytes, std::size_t offset, std::size_t before) PAVO_ZORV_INLINE_LAMBDA {
    found |= bytes.equal(value) >> before << offset;
  });
  return found;
}

// Bit by bit, whether the number of bits up to and including it is odd.
constexpr std::uint64_t parity_up_to(std::uint64_t bits) {
  for (unsigned distance = 1; distance < 64; distance *= 2) bits ^= bits << distance;
  return bits;
}

// Of the ends in a window that begins with a value, those of values: varints end alternately at a value and at a key.
template <unsigned KeySize>
constexpr std::uint64_t ends_of_values(std::uint64_t ends) {
  if constexpr (KeySize == 2) return ends & parity_up_to(ends);
  // A key is the byte after its value's last one, so the alternation restarts with each row of ends. A row that begins
  // at an even place is cleared when its first bit is added: half the work that parities take.
  constexpr std::uint64_t even = 0x5555555555555555;
  const std::uint64_t first = ends & ~(ends << 1);
  const std::uint64_t from_even = ends & ~(ends + (first & even));
  return ends & (from_even ^ ~even);
}

#if defined(__SSSE3__)
// For eight bits, where they are one, from the lowest on.
inline constexpr auto places_of_ones = [] {
  std::array<std::array<byte, 8>, 256> result{};
  for (unsigned bits = 0; bits < 256; ++bits) {
    unsigned count = 0;
    for (unsigned place = 0; place < 8; ++place) {
      if ((bits >> place & 1) != 0) result[bits][count++] = static_cast<byte>(place);
    }
  }
  return result;
}();

// Puts the bytes of a window at which a mask has ones side by side, eight bytes at a time. Reads whole words up to the
// last one of the mask, and stores whole words.
inline void pick_bytes(byte *to, const byte *at, std::uint64_t mask) {
  for (; mask != 0; mask >>= 8, at += 8) {
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(at));
    const __m128i places = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(places_of_ones[mask & 0xff].data()));
    _mm_storel_epi64(reinterpret_cast<__m128i *>(to), _mm_shuffle_epi8(bytes, places));
    to += count_bits(mask & 0xff);
  }
}
#else
inline void pick_bytes(byte *, const byte *, std::uint64_t) {}  // not called without shuffles
#endif

}  // namespace pavo_zorv
