// Bytes inside text: base64 or hexadecimal digits for what is not text, UTF-8 for what is.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "bytes.hpp"

namespace inspect {

std::string to_base64(byte_view input);

// Also of the alphabet for URLs, and with or without padding; nothing for a text with anything else, or with bits left
// over.
std::optional<byte_string> from_base64(std::string_view text);

std::string to_hex(byte_view input);

// The value of a hexadecimal digit; -1 of anything else.
int digit_value(unsigned char character);

// Nothing unless the text is pairs of digits.
std::optional<byte_string> from_hex(std::string_view text);

// "1 byte", "7 bytes".
std::string counted(std::uint64_t count);

bool is_utf8(std::string_view text);

}  // namespace inspect
