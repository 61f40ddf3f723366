// The bottom of the library: attributes, loads and stores of words, bits, and two helpers for comparing.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Functions that are worth being copied into their callers although the compiler would not do it by itself. Builds
// that instrument every function turn this off.
#if defined(PAVO_ZORV_NO_FORCED_INLINING)
#define PAVO_ZORV_INLINE inline
#define PAVO_ZORV_INLINE_LAMBDA
#else
#define PAVO_ZORV_INLINE [[gnu::always_inline]] inline
#define PAVO_ZORV_INLINE_LAMBDA __attribute__((always_inline))
#endif
#define PAVO_ZORV_NOINLINE [[gnu::noinline]]

namespace pavo_zorv {

using byte = unsigned char;

// The bytes of a vector in the fast loops over runs.
#if defined(__AVX2__)
inline constexpr std::size_t vector_size = 32;
#else
inline constexpr std::size_t vector_size = 16;
#endif

// To or from the order of bytes on the wire, in which the first is the lowest.
template <class Word>
inline Word in_wire_order(Word word) {
  static_assert(sizeof word == 4 || sizeof word == 8);
  if constexpr (std::endian::native == std::endian::little) {
    return word;
  } else if constexpr (sizeof word == 8) {
    return __builtin_bswap64(word);
  } else {
    return __builtin_bswap32(word);
  }
}

// Eight bytes as a number, or four.
template <class Word = std::uint64_t>
inline Word load_word(const byte *at) {
  Word word;
  std::memcpy(&word, at, sizeof word);
  return in_wire_order(word);
}

// One to eight bytes as a number, the first the lowest, put together from loads that overlap.
inline std::uint64_t load_short(const byte *at, std::size_t size) {
  if (size >= 4) {
    return load_word<std::uint32_t>(at) | std::uint64_t{load_word<std::uint32_t>(at + size - 4)} << 8 * (size - 4);
  }
  return at[0] | std::uint32_t{at[size / 2]} << 8 * (size / 2) | std::uint32_t{at[size - 1]} << 8 * (size - 1);
}

template <class Word>
inline void store_word(byte *at, Word word) {
  word = in_wire_order(word);
  std::memcpy(at, &word, sizeof word);
}

// The lowest bit of each byte, and the highest.
inline constexpr std::uint64_t lowest_bits = 0x0101010101010101, highest_bits = lowest_bits << 7;

// The place of the lowest one, of which there is at least one: std::countr_zero looks whether there is.
inline unsigned lowest_one(std::uint64_t bits) { return static_cast<unsigned>(__builtin_ctzll(bits)); }

// The number of ones, without a call where the processor cannot be relied on to count them.
inline unsigned count_bits(std::uint64_t bits) {
#if (defined(__x86_64__) || defined(__i386__)) && !defined(__POPCNT__)
  bits -= bits >> 1 & 0x5555555555555555;
  bits = (bits & 0x3333333333333333) + (bits >> 2 & 0x3333333333333333);
  return static_cast<unsigned>(((bits + (bits >> 4)) & 0x0f0f0f0f0f0f0f0f) * lowest_bits >> 56);
#else
  return static_cast<unsigned>(std::popcount(bits));
#endif
}

// -1, 0 or 1.
template <class Value>
constexpr int compare_values(Value a, Value b) {
  return (a > b) - (a < b);
}

// A function of the C library that the compiler is not to replace by code of its own: what some make of a comparison
// of strings has the same sign as the result, but not the same value.
template <class Function>
inline Function *no_builtin(Function *function) {
  asm("" : "+r"(function));
  return function;
}

}  // namespace pavo_zorv
