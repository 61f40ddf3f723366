// The ways in which hexadecimal digits are written: by other tools, in logs and in programs.
#pragma once

#include <optional>
#include <string_view>

#include "bytes.hpp"

namespace inspect {

// Reads
//   0807, 08 07, 0 8 0 7            digits with any whitespace, and comments from # to the end of the line
//   08:07, 08-07, 08,07             pairs with one separator
//   0x0807, 0x08 0x07, 0x08, 0x07   with prefixes
//   \x08\x07, b"\x08\x07"           escapes
//   {0x08, 0x07}                    an array, with its declaration and comments as C has them
// Empty if the text is none of these from beginning to end. An odd number of digits is an error.
std::optional<byte_string> bytes_of_hex(std::string_view text);

}  // namespace inspect
