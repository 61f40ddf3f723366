// Base64, hexadecimal digits and UTF-8.
#include "text_encodings.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace inspect {
namespace {

constexpr std::string_view base64_digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// The length of the UTF-8 character that begins with this byte; 0 if none does.
std::size_t utf8_length(unsigned char first) {
  if (first < 0x80) return 1;
  if (first < 0xc2) return 0;
  if (first < 0xe0) return 2;
  if (first < 0xf0) return 3;
  return first < 0xf5 ? 4 : 0;
}

// Whether the second byte excludes over-long forms, surrogates and characters above U+10FFFF.
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

std::string to_base64(byte_view input) {
  std::string text;
  for (std::size_t at = 0; at < input.size(); at += 3) {
    const std::size_t count = std::min<std::size_t>(3, input.size() - at);
    std::uint32_t group = 0;
    for (std::size_t index = 0; index < 3; ++index) group = group << 8 | (index < count ? input[at + index] : 0u);
    for (std::size_t index = 0; index < 4; ++index) {
      text += index <= count ? base64_digits[group >> (18 - 6 * index) & 63] : '=';
    }
  }
  return text;
}

std::optional<byte_string> from_base64(std::string_view text) {
  const bool is_padded = text.size() % 4 == 0;
  for (int padding = 0; padding < 2 && is_padded && text.ends_with('='); ++padding) text.remove_suffix(1);
  if (text.size() % 4 == 1) return std::nullopt;
  byte_string result;
  std::uint32_t bits = 0;
  unsigned count = 0;
  for (const char character : text) {
    const std::size_t digit = base64_digits.find(character == '-' ? '+' : character == '_' ? '/' : character);
    if (digit == std::string_view::npos) return std::nullopt;
    bits = bits << 6 | static_cast<std::uint32_t>(digit);
    count += 6;
    if (count >= 8) {
      count -= 8;
      result.push_back(static_cast<unsigned char>(bits >> count));
      bits &= (1u << count) - 1;
    }
  }
  if (bits != 0) return std::nullopt;
  return result;
}

std::string to_hex(byte_view input) {
  std::string text;
  text.reserve(2 * input.size());
  for (const unsigned char byte : input) {
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 15];
  }
  return text;
}

int digit_value(unsigned char character) {
  if (character >= '0' && character <= '9') return character - '0';
  if (character >= 'a' && character <= 'f') return character - 'a' + 10;
  if (character >= 'A' && character <= 'F') return character - 'A' + 10;
  return -1;
}

std::optional<byte_string> from_hex(std::string_view text) {
  if (text.size() % 2 != 0) return std::nullopt;
  byte_string result;
  for (std::size_t at = 0; at < text.size(); at += 2) {
    const int high = digit_value(static_cast<unsigned char>(text[at]));
    const int low = digit_value(static_cast<unsigned char>(text[at + 1]));
    if (high < 0 || low < 0) return std::nullopt;
    result.push_back(static_cast<unsigned char>(high << 4 | low));
  }
  return result;
}

std::string byte_count(std::uint64_t count) { return fmt::format("{} byte{}", count, count == 1 ? "" : "s"); }

bool is_utf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[at + index]); };
    const std::size_t length = utf8_length(byte(0));
    if (length == 0 || length > text.size() - at) return false;
    for (std::size_t index = 1; index < length; ++index) {
      if ((byte(index) & 0xc0) != 0x80) return false;
    }
    if (length > 1 && !second_fits(byte(0), byte(1))) return false;
    at += length;
  }
  return true;
}

}  // namespace inspect
