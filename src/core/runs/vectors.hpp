// What the fast loops over runs share: vectors, and keys as they are on the wire. With windows.hpp and writing.hpp,
// the only code for particular processors; it does what portable code does, which is beside it or in plain.hpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/wire.hpp"

#if defined(__AVX__)
#include <immintrin.h>
#elif defined(__SSSE3__)
#include <tmmintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace pavo_zorv {

inline constexpr std::uint64_t highest_bits = 0x8080808080808080;

// As many numbers as a vector holds.
using number_vector [[gnu::vector_size(vector_size)]] = std::uint32_t;
inline constexpr std::size_t vector_numbers = vector_size / sizeof(std::uint32_t);

// A canonical key, as it is on the wire: one byte, or two for numbers from 16 on.
template <unsigned Size>
struct key_bytes {
  byte first;
  byte second;

  explicit key_bytes(std::uint32_t key)
      : first(static_cast<byte>(Size == 1 ? key : key | 0x80)), second(static_cast<byte>(key >> 7)) {}

  // At the low end of a word.
  constexpr std::uint32_t word() const { return Size == 1 ? first : first | std::uint32_t{second} << 8; }
};

// Whether no bit of a vector is set.
template <class Vector>
inline bool none(const Vector &bits) {
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

}  // namespace pavo_zorv
