// The forms in which bytes come as text: hexadecimal digits, hex dumps with offsets, base64.
#pragma once

#include <string>

#include "bytes.hpp"

namespace inspect {

enum class wire_form {
  detected,
  raw,
  hex,     // pairs of digits with blanks where one likes, and comments from '#' to the end of the line
  dump,    // lines of an offset and bytes, as hexdump -C, xxd, od -tx1, tcpdump -x and Wireshark print them
  base64,  // on as many lines as one likes
};

// The bytes that an input means. Without a form, text that is one of the forms as a whole is taken as such, the rest
// as it is. Refuses what is not in the form that is asked for.
byte_string bytes_of(byte_string input, wire_form form);

// Bytes in a form, as lines; raw ones as they are.
std::string in_form(byte_view input, wire_form form);

}  // namespace inspect
