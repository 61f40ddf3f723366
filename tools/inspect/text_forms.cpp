// Base64 and UTF-8.
#include "text_forms.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace inspect {
namespace {

constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// The octets of a UTF-8 character by its first one; 0 when none begins with it.
std::size_t utf8_length(unsigned char first) {
  if (first < 0x80) return 1;
  if (first < 0xc2) return 0;
  if (first < 0xe0) return 2;
  if (first < 0xf0) return 3;
  return first < 0xf5 ? 4 : 0;
}

// Not the long form of a shorter character, no surrogate, nothing above U+10FFFF: the second octet tells.
bool second_fits(unsigned char first, unsigned char second) {
  switch (first) {
    case 0xe0:
      return second >= 0xa0;
    case 0xed:
      return second < 0xa0;
    case 0xf0:
      return second >= 0x90;
    case 0xf4:
      return second < 0x90;
    default:
      return true;
  }
}

}  // namespace

std::string to_base64(octet_view input) {
  std::string text;
  for (std::size_t at = 0; at < input.size(); at += 3) {
    const std::size_t count = std::min<std::size_t>(3, input.size() - at);
    std::uint32_t group = 0;
    for (std::size_t index = 0; index < 3; ++index) group = group << 8 | (index < count ? input[at + index] : 0u);
    for (std::size_t index = 0; index < 4; ++index) {
      text += index <= count ? digits[group >> (18 - 6 * index) & 63] : '=';
    }
  }
  return text;
}

std::optional<octets> from_base64(std::string_view text) {
  octets result;
  if (text.size() % 4 != 0) return std::nullopt;
  for (std::size_t at = 0; at < text.size(); at += 4) {
    std::size_t count = 4;
    if (at + 4 == text.size()) count -= text.ends_with("==") ? 2u : text.ends_with("=") ? 1u : 0u;
    std::uint32_t group = 0;
    for (std::size_t index = 0; index < count; ++index) {
      const std::size_t digit = digits.find(text[at + index]);
      if (digit == std::string_view::npos) return std::nullopt;
      group |= static_cast<std::uint32_t>(digit) << (18 - 6 * index);
    }
    for (std::size_t index = 0; index + 1 < count; ++index) {
      result.push_back(static_cast<unsigned char>(group >> (16 - 8 * index)));
    }
  }
  if (to_base64(result) != text) return std::nullopt;
  return result;
}

bool is_utf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const auto octet = [&](std::size_t index) { return static_cast<unsigned char>(text[at + index]); };
    const std::size_t length = utf8_length(octet(0));
    if (length == 0 || length > text.size() - at) return false;
    for (std::size_t index = 1; index < length; ++index) {
      if ((octet(index) & 0xc0) != 0x80) return false;
    }
    if (length > 1 && !second_fits(octet(0), octet(1))) return false;
    at += length;
  }
  return true;
}

}  // namespace inspect
