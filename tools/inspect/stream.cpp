// Length prefixes, read and written.
#include "stream.hpp"

#include <fmt/format.h>

#include <cstdint>

#include "failure.hpp"

namespace inspect {
namespace {

struct prefix {
  std::uint64_t length;
  std::size_t size;
};

// Empty if the input ends inside the prefix, or if it is longer than any prefix can be.
std::optional<prefix> read_prefix(byte_view input, prefix_form form) {
  if (form == prefix_form::varint) {
    std::uint64_t length = 0;
    for (std::size_t index = 0; index < input.size() && index < 10; ++index) {
      length |= std::uint64_t{input[index] & 0x7fu} << 7 * index;
      if (input[index] < 0x80) return prefix{length, index + 1};
    }
    return std::nullopt;
  }
  if (input.size() < 4) return std::nullopt;
  std::uint64_t length = 0;
  for (std::size_t index = 0; index < 4; ++index) {
    length = length << 8 | input[form == prefix_form::be32 ? index : 3 - index];
  }
  return prefix{length, 4};
}

}  // namespace

frames split(byte_view input, prefix_form form) {
  if (form == prefix_form::none) return {{{0, 0, input.size()}}, {}};
  frames found;
  std::size_t at = 0;
  while (at != input.size()) {
    const auto prefix = read_prefix(input.subspan(at), form);
    const std::string which = fmt::format("message {} of the stream, at offset {}", found.complete.size(), at);
    if (!prefix) {
      found.failure = fmt::format("{}: the length prefix is cut off or invalid", which);
      break;
    }
    const std::size_t left = input.size() - at - prefix->size;
    if (prefix->length > left) {
      found.failure = fmt::format("{}: length {} exceeds the {} bytes left", which, prefix->length, left);
      break;
    }
    const auto length = static_cast<std::size_t>(prefix->length);
    found.complete.push_back({at, at + prefix->size, length});
    at += prefix->size + length;
  }
  return found;
}

void append_prefix(byte_string &stream, std::size_t length, prefix_form form) {
  if (form == prefix_form::none) return;
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
