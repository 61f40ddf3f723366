// Base64, hexadecimal digits and UTF-8.
#include "text_encodings.hpp"

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>

#include "pavo_zorv_text.hpp"

namespace inspect {

std::string to_base64(byte_view input) {
  std::string text;
  const auto append = [&](std::string_view piece) { text += piece; };
  zorv::detail::put_base64(append, input);
  return text;
}

std::optional<byte_string> from_base64(std::string_view text) {
  constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const bool is_padded = text.size() % 4 == 0;
  for (int padding = 0; padding < 2 && is_padded && text.ends_with('='); ++padding) text.remove_suffix(1);
  if (text.size() % 4 == 1) return std::nullopt;
  byte_string result;
  std::uint32_t bits = 0;
  unsigned count = 0;
  for (const char character : text) {
    const std::size_t digit = digits.find(character == '-' ? '+' : character == '_' ? '/' : character);
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

bool is_utf8(std::string_view text) { return zorv::detail::is_utf8(text); }

}  // namespace inspect
