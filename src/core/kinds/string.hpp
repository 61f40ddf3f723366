// Strings: owned, NUL-terminated. Bytes are copied as they come; a NUL among them shortens the string from then on.
#pragma once

#include <cstring>

#include "../blocks.hpp"
#include "../encode.hpp"
#include "../glance.hpp"
#include "../measure.hpp"
#include "../message.hpp"

namespace pavo_zorv {

template <class Record>
struct string_row : row {
  static constexpr kind type = kind::string;
  static constexpr wire_type wire = wire_type::delimited;
  char *Record::*value;

  static constexpr bool owns() { return true; }
  static constexpr bool holds_bytes() { return false; }
  constexpr auto members() const { return std::tuple{value}; }

  // A second string is refused, and a missing allocator found, before the length is read.
  PAVO_ZORV_INLINE step decode(Record &record, const byte *at, const byte *end, const decoding &input,
                               bool seen) const {
    if (seen) return failed(CODEC_ERR_TRUNCATED);
    if (input.memory.missing()) return failed(CODEC_ERR_NO_MEMORY);
    const delimited characters = read_delimited(at, end);
    if (characters.first == nullptr) return failed(CODEC_ERR_TRUNCATED);
    char *const copy = input.memory.text(characters.length());
    if (copy == nullptr) return failed(CODEC_ERR_NO_MEMORY);
    copy_bytes(copy, characters.first, characters.length());
    copy[characters.length()] = '\0';
    record.*value = copy;
    return {characters.last, CODEC_OK};
  }

  PAVO_ZORV_INLINE void measure(measuring &total, const Record &record, bool present) const {
    if (!present || record.*value == nullptr) return;
    const std::size_t length = std::strlen(record.*value);
    total.bytes += varint_size(key_of(number, wire)) + measuring::length_size(length) + length;
  }

  template <class Sink, class Entries>
  PAVO_ZORV_INLINE typename Sink::place write(const Sink &sink, typename Sink::place at, const Record &record,
                                              bool present, bool, Entries &) const {
    if (!present || record.*value == nullptr) return at;
    const std::size_t length = std::strlen(record.*value);
    at = sink.prepend_block(at, record.*value, length);
    at = sink.prepend_varint(at, static_cast<std::uint32_t>(length));
    return prepend_key(sink, at, number, wire);
  }

  PAVO_ZORV_INLINE void collect(const Record &record, possessions &all) const {
    all.blocks |= reinterpret_cast<std::uintptr_t>(record.*value);
  }

  PAVO_ZORV_INLINE bool own(Record &record, const Record &source, copying &copying) const {
    const char *const text = source.*value;
    if (text == nullptr) return true;
    const std::size_t length = std::strlen(text);
    char *const copy = copying.memory.text(length);
    record.*value = copy;
    if (copy == nullptr) return false;
    copy_bytes(copy, text, length + 1);
    return true;
  }

  PAVO_ZORV_INLINE void release(Record &record, const releaser &releaser) const { releaser.give_back(record.*value); }

  PAVO_ZORV_INLINE int compare(const Record &a, const Record &b) const {
    return as_it_is(std::strcmp)(a.*value, b.*value);
  }
};

template <class Record>
consteval auto string(unsigned number, const char *name, char *Record::*value) {
  return string_row<Record>{{number, name}, value};
}

}  // namespace pavo_zorv
