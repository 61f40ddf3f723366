// Bytes of messages, put together from words of the wire format.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "broken.hpp"

namespace test {

using byte_string = std::vector<unsigned char>;

// From text: hexadecimal pairs, blanks between them as one likes.
inline byte_string hex(std::string_view text) {
  byte_string result;
  int high = -1;
  for (const char c : text) {
    if (c == ' ' || c == '\n') continue;
    const int digit = c >= '0' && c <= '9'   ? c - '0'
                      : c >= 'a' && c <= 'f' ? c - 'a' + 10
                      : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                             : -1;
    if (digit < 0) broken("not hexadecimal: " + std::string(text));
    if (high < 0) {
      high = digit;
    } else {
      result.push_back(static_cast<unsigned char>(high * 16 + digit));
      high = -1;
    }
  }
  if (high >= 0) broken("half a byte: " + std::string(text));
  return result;
}

inline void append(byte_string &left, const byte_string &right) { left.insert(left.end(), right.begin(), right.end()); }

inline byte_string operator+(byte_string left, const byte_string &right) {
  append(left, right);
  return left;
}

inline byte_string operator*(std::size_t times, const byte_string &what) {
  byte_string result(times * what.size());
  for (std::size_t at = 0; at < result.size(); at += what.size())
    std::memcpy(result.data() + at, what.data(), what.size());
  return result;
}

// A varint of its fewest bytes, of which there are at most ten.
inline std::size_t write_varint(std::uint64_t value, unsigned char *out) {
  std::size_t size = 0;
  for (; value >= 0x80; value >>= 7) out[size++] = static_cast<unsigned char>(value | 0x80);
  out[size++] = static_cast<unsigned char>(value);
  return size;
}

inline byte_string varint(std::uint64_t value) {
  unsigned char bytes[10];
  return byte_string(bytes, bytes + write_varint(value, bytes));
}

// The same with more bytes than it needs, all of which say nothing.
inline byte_string long_varint(std::uint64_t value, std::size_t more) {
  byte_string result = varint(value);
  for (; more-- != 0; result.push_back(0)) result.back() |= 0x80;
  return result;
}

// Of so many bytes, be it more than the value needs.
inline byte_string varint_of(std::size_t length, std::uint64_t value) {
  return long_varint(value, length - varint(value).size());
}

inline byte_string first_bytes(const byte_string &bytes, std::size_t count) {
  return byte_string(bytes.data(), bytes.data() + count);
}

inline byte_string key(std::uint64_t number, unsigned wire_type) { return varint(number << 3 | wire_type); }

// A length and what it announces.
inline byte_string delimited(const byte_string &content) { return varint(content.size()) + content; }

// Whole fields.
inline byte_string varint_field(std::uint64_t number, std::uint64_t value) { return key(number, 0) + varint(value); }
inline byte_string delimited_field(std::uint64_t number, const byte_string &content) {
  return key(number, 2) + delimited(content);
}

inline std::string show(const byte_string &bytes) {
  std::string result;
  for (const unsigned char each : bytes) {
    if (!result.empty()) result += ' ';
    result += "0123456789abcdef"[each >> 4];
    result += "0123456789abcdef"[each & 15];
  }
  return result;
}

}  // namespace test
