// Streams of messages, each behind its length.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "octets.hpp"

namespace inspect {

enum class prefix_form {
  none,
  varint,  // as Protocol Buffers libraries write "delimited" messages
  be32,    // 32 bits, the highest octet first
  le32,    // 32 bits, the lowest octet first
};

// One message of a stream.
struct frame {
  std::size_t offset;  // of the prefix
  std::size_t start;   // of the message
  std::size_t length;
};

struct frames {
  std::vector<frame> whole;
  std::optional<std::string> failure;  // of the stream behind these
};

// Without prefixes the input is one message.
frames split(octet_view input, prefix_form form);

void append_prefix(octets &stream, std::size_t length, prefix_form form);

}  // namespace inspect
