// Streams of messages, each after its length.
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
  be32,    // 32 bits, the highest byte first
  le32,    // 32 bits, the lowest byte first
};

// One message of a stream.
struct frame {
  std::size_t offset;  // of the prefix
  std::size_t start;   // of the message
  std::size_t length;
};

struct frames {
  std::vector<frame> whole;
  std::optional<std::string> failure;  // of the stream after these
};

// Without prefixes the input is one message.
frames split(byte_view input, prefix_form form);

void append_prefix(byte_string &stream, std::size_t length, prefix_form form);

}  // namespace inspect
