// Encodings of bytes as text: base64, hexadecimal digits, UTF-8.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "bytes.hpp"

namespace inspect {

std::string to_base64(byte_view input);

// Accepts the URL alphabet as well, with or without padding. Empty if there is anything else in the text, or if unused
// bits are not zero.
std::optional<byte_string> from_base64(std::string_view text);

// The value of a hexadecimal digit; -1 for anything else.
int digit_value(unsigned char character);

// Empty unless the text is pairs of digits.
std::optional<byte_string> from_hex(std::string_view text);

// "1 byte", "7 bytes".
std::string byte_count(std::uint64_t count);

bool is_utf8(std::string_view text);

}  // namespace inspect
