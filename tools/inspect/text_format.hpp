// Messages in the text form of Protocol Buffers, as protoc --decode prints and --encode reads them.
#pragma once

#include <string>

#include "node.hpp"
#include "types.hpp"

namespace inspect {

// The fields that can be read, without unknown ones.
std::string to_text_format(const message_type &type, byte_view message);

// Bytes as a string of this form.
std::string quoted(byte_view content);

// Throws `text_error`.
node parse_text_format(const message_type &type, byte_view text);

}  // namespace inspect
