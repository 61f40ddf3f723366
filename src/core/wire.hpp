// The wire format: keys, and every routine for one varint, one length or one unknown field. Nothing here knows a
// message.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "bits.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

enum class wire_type : unsigned { varint = 0, fixed64 = 1, delimited = 2, fixed32 = 5 };

// A key as it is read: the field's number and its wire type.
constexpr std::uint32_t key_of(unsigned number, wire_type type) { return number << 3 | static_cast<unsigned>(type); }

// Of keys, only the number is compared: an over-long key names the same field, and so does one with another wire type.
constexpr std::uint32_t number_of(std::uint32_t key) { return key >> 3; }

// A canonical key, as it is on the wire: one byte, or two for numbers from 16 on.
template <unsigned Size>
struct key_bytes {
  byte first;
  byte second;

  constexpr explicit key_bytes(std::uint32_t key)
      : first(static_cast<byte>(Size == 1 ? key : key | 0x80)), second(static_cast<byte>(key >> 7)) {}

  // At the low end of a word.
  constexpr std::uint32_t word() const { return Size == 1 ? first : first | std::uint32_t{second} << 8; }
};

// The caller's whole buffer. A load may pass the end of a message, but never that of the buffer that it lies in.
struct buffer {
  const byte *first;
  const byte *limit;
  std::size_t size() const { return static_cast<std::size_t>(limit - first); }
};

// --- The size of a varint ---

// Bytes of a value that is not 0: its bits divided by seven, rounded up. The zeros before the highest bit are taken
// off by `^`, which the compiler joins with the search for that bit into one instruction.
template <class Value>
requires(sizeof(Value) == 4 || sizeof(Value) == 8) constexpr std::size_t long_varint_size(Value value) {
  const auto highest = static_cast<unsigned>(std::countl_zero(value)) ^ static_cast<unsigned>(8 * sizeof value - 1);
  return (highest * 9 + 73) / 64;
}

template <class Value>
requires(sizeof(Value) == 4 || sizeof(Value) == 8) constexpr std::size_t varint_size(Value value) {
  return long_varint_size(static_cast<Value>(value | 1));
}

// The bytes of a length, which is written as its lowest 32 bits.
constexpr std::size_t length_size(std::uint64_t length) {
  return length < 0x80 ? 1 : varint_size(static_cast<std::uint32_t>(length));
}

// Of delimited content, the bytes before it: the key and the length.
constexpr std::size_t prefix_size(unsigned number, std::uint64_t length) {
  return varint_size(key_of(number, wire_type::delimited)) + length_size(length);
}

// --- A varint as a word ---

// A varint of a size up to eight bytes, as the low ones of a word. The seven-bit groups are spread by halves.
constexpr std::uint64_t varint_word(std::uint64_t value, unsigned size) {
  value = (value & 0xfffffff) | (value & 0xfffffff0000000) << 4;
  value = (value & 0x3fff00003fff) | (value & 0xfffc0000fffc000) << 2;
  value = (value & 0x7f007f007f007f) | (value & 0x3f803f803f803f80) << 1;
  return value | (highest_bits & ((std::uint64_t{1} << 8 * (size - 1)) - 1));
}

// Seven bits of each of four bytes, joined; of a vector, of each 32 bits.
template <class Word>
constexpr Word seven_of_each(Word word) {
  word = (word & 0x7f007f) | (word & 0x7f007f00) >> 1;
  return (word & 0x3fff) | (word & 0x3fff0000) >> 2;
}

// The varint of up to five bytes at the low end of a word, cut to 32 bits; of longer ones, five bytes are taken.
constexpr std::uint32_t varint_value(std::uint64_t word) {
  const auto four = static_cast<std::uint32_t>(word), ends = ~four & 0x80808080;
  const std::uint32_t value = seven_of_each(four & (ends ^ (ends - 1)));
  const std::uint32_t fifth = static_cast<std::uint32_t>(word >> 32) << 28;
  return value | (fifth & (static_cast<std::uint32_t>(ends != 0) - 1));
}

// --- Reading ---

// Where reading goes on, and what was read; `next` is null when the input ended inside the varint.
template <class Value>
struct varint {
  const byte *next;
  Value value;
};

// Steps over a varint; null when the input ends inside it.
inline const byte *skip_varint(const byte *at, const byte *end) {
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
  for (unsigned shift = 0; shift < 8 * sizeof(Value); shift += 7) {
    if (at == end) return {nullptr, 0};
    const byte next = *at++;
    value = static_cast<Value>(value | static_cast<Value>(next & 0x7f) << shift);
    if (next < 0x80) return {at, value};
  }
  return {skip_varint(at, end), value};
}

// For what is almost always one byte or two: keys, lengths and elements.
template <class Value>
inline varint<Value> read_varint(const byte *at, const byte *end) {
  if (at != end && *at < 0x80) [[likely]]
    return {at + 1, *at};
  if (end - at >= 2 && at[1] < 0x80) return {at + 2, static_cast<Value>((at[0] & 0x7f) | at[1] << 7)};
  return read_long_varint<Value>(at, end);
}

// For numbers of any size: up to four bytes are taken as one word, without a branch on how many they are.
template <class Value>
inline varint<Value> read_number(const byte *at, const byte *end) {
  if (at != end && *at < 0x80) [[likely]]
    return {at + 1, *at};
  if (end - at >= 4) {
    const std::uint32_t word = load_word<std::uint32_t>(at), ends = ~word & 0x80808080;
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

inline delimited read_delimited(const byte *at, const byte *end) {
  const auto [first, length] = read_varint<std::uint32_t>(at, end);
  if (first == nullptr || length > static_cast<std::size_t>(end - first)) return {nullptr, nullptr};
  return {first, first + length};
}

// Steps over a length and the bytes after it; null when either runs past the end.
inline const byte *skip_delimited(const byte *at, const byte *end) { return read_delimited(at, end).last; }

// What reading a field came to: a result and, if that is CODEC_OK, the place after the field. After a failure `next`
// says nothing.
struct step {
  const byte *next;
  int result;
};

constexpr step failed(int result) { return {nullptr, result}; }

// Steps over the value of an unknown field. One of known size that runs past the end is no error: it ends the message.
PAVO_ZORV_NOINLINE inline step skip_unknown(std::uint32_t key, const byte *at, const byte *end) {
  std::size_t size = 0;
  switch (static_cast<wire_type>(key & 7)) {
    case wire_type::varint:
      at = skip_varint(at, end);
      return at != nullptr ? step{at, CODEC_OK} : failed(CODEC_ERR_TRUNCATED);
    case wire_type::fixed64:
      size = 8;
      break;
    case wire_type::fixed32:
      size = 4;
      break;
    case wire_type::delimited: {
      const auto [next, length] = read_varint<std::uint32_t>(at, end);
      if (next == nullptr) return failed(CODEC_ERR_TRUNCATED);
      at = next;
      size = length;
      break;
    }
    default:
      return failed(CODEC_ERR_BAD_WIRE_TYPE);
  }
  return {size < static_cast<std::size_t>(end - at) ? at + size : end, CODEC_OK};
}

// --- Writing, from the last byte to the first ---

// A varint that ends before `at`; returns where it begins. No other byte is touched.
template <class Value>
PAVO_ZORV_NOINLINE byte *prepend_long_varint(byte *at, Value value) {
  unsigned shift = 7 * (static_cast<unsigned>(varint_size(value)) - 1);
  *--at = static_cast<byte>(value >> shift);
  while (shift != 0) {
    shift -= 7;
    *--at = static_cast<byte>(value >> shift | 0x80);
  }
  return at;
}

template <class Value>
inline byte *prepend_varint(byte *at, Value value) {
  if (value >= 0x80) return prepend_long_varint(at, value);
  *--at = static_cast<byte>(value);
  return at;
}

// The same for a value of three bytes or more where up to eight can be stored at once: those before the varint, down
// to `first`, are not yet written.
template <class Value>
PAVO_ZORV_NOINLINE byte *prepend_word(const byte *first, byte *at, Value value) {
  if (value < 0x200000) {
    at[-1] = static_cast<byte>(value >> 14);
    at[-2] = static_cast<byte>(value >> 7 | 0x80);
    at[-3] = static_cast<byte>(value | 0x80);
    return at - 3;
  }
  if (value < 0x10000000) {
    store_word(at - 4, static_cast<std::uint32_t>(varint_word(value, 4)));
    return at - 4;
  }
  const auto size = static_cast<unsigned>(long_varint_size(value));
  if (size > 8 || at - first < 8) return prepend_long_varint(at, value);
  store_word(at - 8, varint_word(value, size) << 8 * (8 - size));
  return at - size;
}

}  // namespace pavo_zorv
