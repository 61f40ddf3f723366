// Vectors, which the fast loops over runs share. Only this folder has instructions of particular processors; they do
// what portable code does, which is beside them or in plain.hpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/bits.hpp"

#if defined(__AVX__)
#include <immintrin.h>
#elif defined(__SSSE3__)
#include <tmmintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace pavo_zorv {

// Whether bytes of a vector can be put anywhere in it by one instruction.
#if defined(__SSSE3__)
inline constexpr bool has_shuffles = true;
#else
inline constexpr bool has_shuffles = false;
#endif

// As many numbers as a vector holds.
using number_vector [[gnu::vector_size(vector_size)]] = std::uint32_t;
using signed_vector [[gnu::vector_size(vector_size)]] = std::int32_t;
inline constexpr std::size_t vector_numbers = vector_size / sizeof(std::uint32_t);

inline number_vector load_numbers(const std::uint32_t *from) {
  number_vector numbers;
  std::memcpy(&numbers, from, sizeof numbers);
  return numbers;
}

// A constant that is used in several places, in a register. GCC would make it anew in each of them, which takes three
// instructions.
inline number_vector constant(std::uint32_t number) {
  number_vector numbers = number - number_vector{};
#if defined(__SSE2__)
  asm("" : "+x"(numbers));
#endif
  return numbers;
}

// Some numbers before `end`, fewer than a vector holds, in its last lanes; the other lanes are 0, and are not loaded.
// Where the processor cannot load single lanes, a whole vector of numbers must be there.
#if defined(__AVX2__)
inline constexpr bool loads_lanes = true;

inline number_vector load_last(const std::uint32_t *end, std::size_t count) {
  constexpr signed_vector lanes = {8, 7, 6, 5, 4, 3, 2, 1};
  const signed_vector taken = lanes <= static_cast<std::int32_t>(count);
  // An address as a number: it may lie before the array.
  const auto *const from = reinterpret_cast<const int *>(reinterpret_cast<std::uintptr_t>(end) - vector_size);
  return reinterpret_cast<number_vector>(_mm256_maskload_epi32(from, reinterpret_cast<__m256i>(taken)));
}
#else
inline constexpr bool loads_lanes = false;

inline number_vector load_last(const std::uint32_t *end, std::size_t count) {
  constexpr signed_vector lanes = {4, 3, 2, 1};
  const signed_vector taken = lanes <= static_cast<std::int32_t>(count);
  return load_numbers(end - vector_numbers) & reinterpret_cast<number_vector>(taken);
}
#endif

// Visits all numbers as vectors: first those that do not fill one, with 0 in the other lanes. Where the processor
// cannot load single lanes, there must be a vector of numbers or more.
template <class Visit>
inline void for_each_vector(const std::uint32_t *numbers, std::size_t count, Visit visit) {
  const std::size_t rest = count % vector_numbers;
  const std::uint32_t *const end = numbers + count;
  visit(load_last(end, rest));
  for (; numbers != end - rest; numbers += vector_numbers) visit(load_numbers(numbers));
}

#if !defined(__SSSE3__)
// Stores the last bytes of some last lanes, of each as many as `sizes` says, side by side so that they end at a place;
// returns where they begin. A lane is stored whole, and the one before it over what is not to stay; of the first lane
// that overwrites what comes before.
inline byte *prepend_lanes(byte *at, const number_vector &words, const number_vector &sizes,
                           std::size_t count = vector_numbers) {
  const auto prepend = [&](std::size_t lane) PAVO_ZORV_INLINE_LAMBDA {
    store_word(at - 4, words[lane]);
    at -= sizes[lane];
  };
  static_assert(vector_numbers == 4, "as many lanes are written");
  // Unrolled by hand, which takes a fifth less time: in a loop GCC stores the vectors and loads each lane.
  constexpr std::size_t last = vector_numbers - 1;
  prepend(last);
  if (count > 1) prepend(last - 1);
  if (count > 2) prepend(last - 2);
  if (count > 3) prepend(last - 3);
  return at;
}
#endif

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

// The lanes whose highest bit is set, the first the lowest bit.
template <class Vector>
inline unsigned marked(const Vector &lanes) {
#if defined(__AVX2__)
  if constexpr (sizeof lanes == 32) {
    __m256 all;
    std::memcpy(&all, &lanes, sizeof all);
    return static_cast<unsigned>(_mm256_movemask_ps(all));
  }
#endif
#if defined(__SSE2__)
  if constexpr (sizeof lanes == 16) {
    __m128 all;
    std::memcpy(&all, &lanes, sizeof all);
    // No branches: there is no condition, but GCC counts how an intrinsic function might throw.
    return static_cast<unsigned>(_mm_movemask_ps(all));
  }
#endif
  unsigned result = 0;
  for (std::size_t index = 0; index < sizeof lanes / 4; ++index)
    result |= static_cast<std::uint32_t>(lanes[index]) >> 31 << index;
  return result;
}

}  // namespace pavo_zorv
