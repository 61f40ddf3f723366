// Streams of messages, and the length prefixes in them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "bytes.hpp"

namespace inspect {

enum class prefix_form {
  none,
  varint,  // as Protocol Buffers libraries write "delimited" messages
  be16,    // 16 bits, big-endian
  be32,    // 32 bits, big-endian
  le32,    // 32 bits, little-endian
  lines,   // no prefixes: a message is a line of text
};

// What is known about the first message of a stream from its first bytes.
struct first_message {
  enum { complete, incomplete, cut_prefix, invalid } state;
  std::size_t start = 0;     // where the message begins, after the prefix
  std::uint64_t length = 0;  // according to the prefix, if that is complete
};

// The stream may go on after these bytes.
first_message first_message_of(byte_view stream, prefix_form form);

void append_prefix(byte_string &stream, std::size_t length, prefix_form form);

}  // namespace inspect
