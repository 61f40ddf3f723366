// Streams of length-prefixed messages.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "bytes.hpp"

namespace inspect {

enum class prefix_form {
  none,
  varint,  // as Protocol Buffers libraries write "delimited" messages
  be32,    // 32 bits, big-endian
  le32,    // 32 bits, little-endian
};

// One message of a stream.
struct frame {
  std::size_t offset;  // of the prefix
  std::size_t start;   // of the message
  std::size_t length;
};

struct frames {
  std::vector<frame> complete;
  std::optional<std::string> failure;  // why the rest of the stream cannot be read
};

// Without length prefixes the input is one message.
frames split(byte_view input, prefix_form form);

void append_prefix(byte_string &stream, std::size_t length, prefix_form form);

}  // namespace inspect
