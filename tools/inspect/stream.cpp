// Length prefixes, read and written.
#include "stream.hpp"

#include "failure.hpp"
#include "pavo_zorv_framing.h"

namespace inspect {
namespace {

pavo_zorv_prefix library_form(prefix_form form) {
  switch (form) {
    case prefix_form::be16:
      return PAVO_ZORV_PREFIX_BE16;
    case prefix_form::be32:
      return PAVO_ZORV_PREFIX_BE32;
    case prefix_form::le32:
      return PAVO_ZORV_PREFIX_LE32;
    default:
      return PAVO_ZORV_PREFIX_VARINT;
  }
}

}  // namespace

first_message first_message_of(byte_view stream, prefix_form form) {
  pavo_zorv_frame frame;
  const int result = pavo_zorv_frame_read(&frame, library_form(form), stream.data(), stream.size(), UINT64_MAX);
  if (result < 0) return {first_message::invalid};
  if (frame.prefix == 0) return {first_message::cut_prefix};
  const bool is_complete = result == PAVO_ZORV_FRAME_COMPLETE;
  return {is_complete ? first_message::complete : first_message::incomplete, frame.prefix, frame.length};
}

void append_prefix(byte_string &stream, std::size_t length, prefix_form form) {
  if (form == prefix_form::none || form == prefix_form::lines) return;
  unsigned char prefix[PAVO_ZORV_PREFIX_SIZE];
  const std::size_t size = pavo_zorv_prefix_write(prefix, library_form(form), length);
  if (size == 0) {
    throw input_error(form == prefix_form::be16
                          ? "a message of more than 65535 bytes cannot have a 16-bit length prefix"
                          : "a message of more than 4294967295 bytes cannot have a 32-bit length prefix");
  }
  stream.insert(stream.end(), prefix, prefix + size);
}

}  // namespace inspect
