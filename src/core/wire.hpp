// The wire format: keys, varints and lengths, read forwards and written backwards. Nothing here knows a message.
#pragma once

#include <bit>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>

#define PAVO_ZORV_INLINE [[gnu::always_inline]] inline
#define PAVO_ZORV_NOINLINE [[gnu::noinline]]

namespace pavo_zorv {

using byte = unsigned char;

enum class wire_type : unsigned { varint = 0, fixed64 = 1, delimited = 2, fixed32 = 5 };

// A key as it is read: the field's number and its wire type.
constexpr std::uint32_t key_of(unsigned number, wire_type type) { return number << 3 | static_cast<unsigned>(type); }

// Of keys, only the number is compared: an over-long key names the same field, and so does one with another wire type.
constexpr std::uint32_t number_of(std::uint32_t key) { return key >> 3; }

// The caller's whole buffer. A load may pass the end of a message, but never that of the buffer that it lies in.
struct buffer {
  const byte *first;
  const byte *limit;
  std::size_t size() const { return static_cast<std::size_t>(limit - first); }
};

// The bytes of a vector for which the processor surely has a register: larger ones would be taken apart.
#if defined(__AVX2__)
inline constexpr std::size_t vector_size = 32;
#else
inline constexpr std::size_t vector_size = 16;
#endif

// Eight bytes as a number, the first the lowest.
PAVO_ZORV_INLINE std::uint64_t load_word(const byte *at) {
  std::uint64_t word;
  std::memcpy(&word, at, sizeof word);
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
  return word;
}

// Four bytes, in the same way.
PAVO_ZORV_INLINE std::uint32_t load_half_word(const byte *at) {
  std::uint32_t word;
  std::memcpy(&word, at, sizeof word);
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap32(word);
  return word;
}

// One to eight bytes as a number, the first the lowest, put together from loads that overlap.
PAVO_ZORV_INLINE std::uint64_t load_short(const byte *at, std::size_t size) {
  if (size >= 4) {
    return load_half_word(at) | std::uint64_t{load_half_word(at + size - 4)} << 8 * (size - 4);
  }
  return at[0] | std::uint32_t{at[size / 2]} << 8 * (size / 2) | std::uint32_t{at[size - 1]} << 8 * (size - 1);
}

template <class Word>
PAVO_ZORV_INLINE void store_word(byte *at, Word word) {
  if constexpr (std::endian::native == std::endian::big) {
    word = sizeof word == 8 ? static_cast<Word>(__builtin_bswap64(word))
                            : static_cast<Word>(__builtin_bswap32(static_cast<std::uint32_t>(word)));
  }
  std::memcpy(at, &word, sizeof word);
}

// The number of ones. Where the processor cannot be relied on to count them, the compiler would call a function; those
// of a mask of two bits, or of one that has none beyond the eighth, are counted faster than others.
template <std::uint64_t Mask = ~std::uint64_t{0}>
PAVO_ZORV_INLINE unsigned count_bits(std::uint64_t bits) {
  bits &= Mask;
#if (defined(__x86_64__) || defined(__i386__)) && !defined(__POPCNT__)
  constexpr std::uint64_t others = Mask & (Mask - 1);
  if constexpr ((others & (others - 1)) == 0) return unsigned{(bits & ~others) != 0} + unsigned{(bits & others) != 0};
  if constexpr (Mask <= 0xff)
    return ((static_cast<std::uint32_t>(bits) * 0x08040201 >> 3) & 0x11111111) * 0x11111111 >> 28;
  bits -= bits >> 1 & 0x5555555555555555;
  bits = (bits & 0x3333333333333333) + (bits >> 2 & 0x3333333333333333);
  return static_cast<unsigned>(((bits + (bits >> 4)) & 0x0f0f0f0f0f0f0f0f) * 0x0101010101010101 >> 56);
#else
  return static_cast<unsigned>(std::popcount(bits));
#endif
}

// Bytes of a value that is not 0 as a varint: one for every seven bits that are begun. The quotient is that of a
// division by seven, of the place of the highest bit. The zeros before it are taken away by `^`, which cancels out on
// processors that search for the place itself.
template <class Value>
requires(sizeof(Value) == 4 || sizeof(Value) == 8) constexpr std::size_t long_varint_size(Value value) {
  const auto highest = static_cast<unsigned>(std::countl_zero(value)) ^ static_cast<unsigned>(8 * sizeof value - 1);
  return (highest * 9 + 73) / 64;
}

template <class Value>
requires(sizeof(Value) == 4 || sizeof(Value) == 8) constexpr std::size_t varint_size(Value value) {
  return long_varint_size(static_cast<Value>(value | 1));
}

// A varint of a size up to eight bytes, as the low ones of a word. The seven-bit groups are spread by halves.
constexpr std::uint64_t varint_word(std::uint64_t value, unsigned size) {
  value = (value & 0xfffffff) | (value & 0xfffffff0000000) << 4;
  value = (value & 0x3fff00003fff) | (value & 0xfffc0000fffc000) << 2;
  value = (value & 0x7f007f007f007f) | (value & 0x3f803f803f803f80) << 1;
  return value | (0x8080808080808080 & ((std::uint64_t{1} << 8 * (size - 1)) - 1));
}

// Where reading goes on, and what was read; `next` is null when the input ended inside the varint.
template <class Value>
struct varint {
  const byte *next;
  Value value;
};

// Steps over a varint; null when the input ends inside it.
PAVO_ZORV_INLINE const byte *skip_varint(const byte *at, const byte *end) {
  while (at != end) {
    if (*at++ < 0x80) return at;
  }
  return nullptr;
}

// The general case: any number of bytes, of which those beyond the value's width add nothing.
template <class Value>
PAVO_ZORV_NOINLINE varint<Value> read_long_varint(const byte *at, const byte *end) {
  Value value = 0;
#pragma GCC unroll 10
  for (unsigned shift = 0; shift < sizeof(Value) * CHAR_BIT; shift += 7) {
    if (at == end) return {nullptr, 0};
    const byte next = *at++;
    value = static_cast<Value>(value | static_cast<Value>(next & 0x7f) << shift);
    if (next < 0x80) return {at, value};
  }
  return {skip_varint(at, end), value};
}

// Keys, lengths and elements mostly take one byte, or two.
template <class Value>
PAVO_ZORV_INLINE varint<Value> read_varint(const byte *at, const byte *end) {
  if (at != end && *at < 0x80) [[likely]]
    return {at + 1, *at};
  if (end - at >= 2 && at[1] < 0x80) return {at + 2, static_cast<Value>((at[0] & 0x7f) | at[1] << 7)};
  return read_long_varint<Value>(at, end);
}

// Seven bits of each of four bytes, put together.
constexpr std::uint32_t seven_of_each(std::uint32_t word) {
  word = (word & 0x7f007f) | (word & 0x7f007f00) >> 1;
  return (word & 0x3fff) | (word & 0x3fff0000) >> 2;
}

// The same for numbers of any size: up to four bytes are taken as one word, without a branch on how many they are.
template <class Value>
PAVO_ZORV_INLINE varint<Value> read_number(const byte *at, const byte *end) {
  if (at != end && *at < 0x80) [[likely]]
    return {at + 1, *at};
  if (end - at >= 4) {
    const std::uint32_t word = load_half_word(at), ends = ~word & 0x80808080;
    if (ends != 0) {
      const auto last = static_cast<unsigned>(std::countr_zero(ends)) / 8;
      return {at + last + 1, seven_of_each(word & (ends ^ (ends - 1)))};
    }
  }
  return read_long_varint<Value>(at, end);
}

// A length and the bytes after it; `first` is null when either runs past the end.
struct delimited {
  const byte *first;
  const byte *last;
  std::size_t length() const { return static_cast<std::size_t>(last - first); }
};

PAVO_ZORV_INLINE delimited read_delimited(const byte *at, const byte *end) {
  const auto [first, length] = read_varint<std::uint32_t>(at, end);
  if (first == nullptr || length > static_cast<std::size_t>(end - first)) return {nullptr, nullptr};
  return {first, first + length};
}

// Steps over a length and the bytes after it; null when either runs past the end.
PAVO_ZORV_INLINE const byte *skip_delimited(const byte *at, const byte *end) { return read_delimited(at, end).last; }

}  // namespace pavo_zorv
