// Bytes as text: hexadecimal digits, hex dumps with offsets, base64.
#pragma once

#include <string>

#include "bytes.hpp"

namespace inspect {

enum class byte_form {
  automatic,
  raw,
  hex,     // pairs of digits with any whitespace, and comments from '#' to the end of the line
  dump,    // lines of an offset and bytes, as printed by hexdump -C, xxd, od -tx1, tcpdump -x and Wireshark
  base64,  // on any number of lines
};

// The bytes that an input stands for. With `automatic`, input that is text in one of the forms from beginning to end is
// read in that form, any other input is taken as raw bytes. Input that is not in the given form is an error.
byte_string parse_bytes(byte_string input, byte_form form);

// Bytes in a form, as lines of text; unchanged in the form `raw`.
std::string format_bytes(byte_view input, byte_form form);

}  // namespace inspect
