// Strings: owned, NUL-terminated. Bytes are copied as they come; a NUL among them shortens the string from then on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <tuple>

#include "core/blocks.hpp"
#include "core/emptiness.hpp"
#include "core/message.hpp"
#include "core/writer.hpp"

namespace pavo_zorv {

// All messages share what asks for memory.
PAVO_ZORV_NOINLINE inline step decode_text(char *&value, const byte *at, const byte *end,
                                           const decode_context &decoding) {
  const delimited characters = read_delimited(at, end);
  if (characters.first == nullptr) return failed(CODEC_ERR_TRUNCATED);
  char *const copy = decoding.memory.text(characters.length());
  if (copy == nullptr) return failed(CODEC_ERR_NO_MEMORY);
  copy_bytes(copy, characters.first, characters.length());
  copy[characters.length()] = '\0';
  value = copy;
  return {characters.last, CODEC_OK};
}

PAVO_ZORV_INLINE bool copy_text(char *&value, const char *text, const copy_context &copying) {
  const std::size_t length = std::strlen(text);
  value = copying.memory.text(length);
  if (value == nullptr) return false;
  copy_bytes(value, text, length + 1);
  return true;
}

template <class Record>
struct string : row {
  static constexpr kind type = kind::string;
  static constexpr wire_type wire = wire_type::delimited;
  char *Record::*value;

  consteval string(unsigned field_number, const char *field_name, char *Record::*member)
      : row{field_number, field_name}, value(member) {}

  static constexpr bool owns() { return true; }
  static constexpr bool holds_bytes() { return false; }
  constexpr auto members() const { return std::tuple{value}; }

  // A second string is refused, and a missing allocator found, before the length is read.
  PAVO_ZORV_INLINE step decode(Record &record, const byte *at, const byte *end, const decode_context &decoding,
                               bool seen) const {
    if (seen) return failed(CODEC_ERR_TRUNCATED);
    if (decoding.memory.missing()) return failed(CODEC_ERR_NO_MEMORY);
    return decode_text(record.*value, at, end, decoding);
  }

  PAVO_ZORV_INLINE void measure(message_size &total, const Record &record, bool present) const {
    if (!present || record.*value == nullptr) return;
    const std::size_t length = std::strlen(record.*value);
    total.bytes += prefix_size(number, length) + length;
  }

  template <class Writer, class Entries>
  PAVO_ZORV_INLINE typename Writer::position write(Writer &writer, typename Writer::position at, const Record &record,
                                                   bool present, Entries &) const {
    if (!present || record.*value == nullptr) return at;
    const std::size_t length = std::strlen(record.*value);
    at = writer.prepend_block(at, record.*value, length);
    at = writer.prepend_varint(at, static_cast<std::uint32_t>(length));
    return prepend_key(writer, at, number, wire);
  }

  PAVO_ZORV_INLINE void collect(const Record &record, owned_memory &all) const {
    all.pointers |= reinterpret_cast<std::uintptr_t>(record.*value);
  }

  PAVO_ZORV_INLINE bool copy(Record &record, const Record &source, copy_context &copying) const {
    return source.*value == nullptr || copy_text(record.*value, source.*value, copying);
  }

  PAVO_ZORV_INLINE void release(Record &record, const releaser &releaser) const {
    releaser.release_block(record.*value);
  }

  PAVO_ZORV_INLINE int compare(const Record &a, const Record &b) const {
    return no_builtin(std::strcmp)(a.*value, b.*value);
  }
};

}  // namespace pavo_zorv
