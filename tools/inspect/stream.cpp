// Length prefixes, read and written.
#include "stream.hpp"

#include "failure.hpp"

namespace inspect {
namespace {

first_message with_length(byte_view stream, std::size_t start, std::uint64_t length) {
  const bool is_complete = length <= stream.size() - start;
  return {is_complete ? first_message::complete : first_message::incomplete, start, length};
}

first_message after_varint(byte_view stream) {
  std::uint64_t length = 0;
  for (std::size_t index = 0; index < stream.size(); ++index) {
    if (index == 10) return {first_message::invalid};
    length |= std::uint64_t{stream[index] & 0x7fu} << 7 * index;
    if (stream[index] < 0x80) return with_length(stream, index + 1, length);
  }
  return {first_message::cut_prefix};
}

first_message after_32_bits(byte_view stream, bool is_big_endian) {
  if (stream.size() < 4) return {first_message::cut_prefix};
  std::uint64_t length = 0;
  for (std::size_t index = 0; index < 4; ++index) length = length << 8 | stream[is_big_endian ? index : 3 - index];
  return with_length(stream, 4, length);
}

}  // namespace

first_message first_message_of(byte_view stream, prefix_form form) {
  return form == prefix_form::varint ? after_varint(stream) : after_32_bits(stream, form == prefix_form::be32);
}

void append_prefix(byte_string &stream, std::size_t length, prefix_form form) {
  if (form == prefix_form::none || form == prefix_form::lines) return;
  if (form == prefix_form::varint) {
    for (; length >= 0x80; length >>= 7) stream.push_back(static_cast<unsigned char>(length | 0x80));
    stream.push_back(static_cast<unsigned char>(length));
    return;
  }
  if (length > 0xffffffff)
    throw input_error("a message of more than 4294967295 bytes cannot have a 32-bit length prefix");
  for (unsigned index = 0; index < 4; ++index) {
    stream.push_back(static_cast<unsigned char>(length >> 8 * (form == prefix_form::be32 ? 3 - index : index)));
  }
}

}  // namespace inspect
