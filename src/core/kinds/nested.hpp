// Nested messages: a whole record held inline, with presence bits of its own beside the containing record's bit.
#pragma once

#include <cstdint>
#include <tuple>
#include <type_traits>

#include "core/emptiness.hpp"
#include "core/message.hpp"
#include "core/writer.hpp"

namespace pavo_zorv {

template <class Record, class Message>
requires std::is_class_v<Message>
struct nested : row {
  static constexpr kind type = kind::nested;
  static constexpr wire_type wire = wire_type::delimited;
  using message = Message;
  Message Record::*value;

  consteval nested(unsigned field_number, const char *field_name, Message Record::*member)
      : row{field_number, field_name}, value(member) {}

  static constexpr bool repeats_or_nests() { return true; }
  static constexpr bool owns() { return owns_memory<Message>; }
  static constexpr bool holds_bytes() { return pavo_zorv::holds_bytes<Message>; }
  constexpr auto members() const { return std::tuple{value}; }

  // The last occurrence counts. What an earlier one owned is dropped, not released.
  PAVO_ZORV_INLINE step decode(Record &record, const byte *at, const byte *end, const decode_context &decoding,
                               bool seen) const {
    const delimited content = read_delimited(at, end);
    if (content.first == nullptr) return failed(CODEC_ERR_TRUNCATED);
    if (seen) clear_record(record.*value);
    return {content.last, decode_message(record.*value, content.first, content.last, decoding)};
  }

  // Content is sent also where the containing record's bit is clear; an empty message only where it is set.
  PAVO_ZORV_INLINE void measure(message_size &total, const Record &record, bool present) const {
    if (!present && is_empty(record.*value)) return;
    const std::uint64_t inner = measure_message(record.*value, total.found);
    if (inner == 0 && !present) return;
    total.template add_message<Message>(number, inner);
  }

  template <class Writer, class Entries>
  PAVO_ZORV_INLINE typename Writer::position write(Writer &writer, typename Writer::position at, const Record &record,
                                                   bool present, Entries &) const {
    if (!present && is_empty(record.*value)) return at;
    // A message that is not small is not begun below the limit: the slop has no place for it.
    if (!is_small<Message> && !writer.reserve(at, 0)) return at;
    const auto end = at;
    at = write_message(record.*value, writer, end);
    if (at == end && !present) return at;
    at = writer.prepend_varint(at, static_cast<std::uint32_t>(end - at));
    return prepend_key(writer, at, number, wire);
  }

  PAVO_ZORV_INLINE void collect(const Record &record, owned_memory &all) const { collect_owned(record.*value, all); }

  // The containing record's bit stays, whatever becomes of the members inside.
  PAVO_ZORV_INLINE bool copy(Record &record, const Record &source, copy_context &copying) const {
    if (!owns_and_counts_nothing(source.*value)) copy_members(record.*value, source.*value, copying);
    return true;
  }

  PAVO_ZORV_INLINE void release(Record &record, const releaser &releaser) const {
    if (!owns_nothing(record.*value)) release_message(record.*value, releaser);
  }

  PAVO_ZORV_INLINE int compare(const Record &a, const Record &b) const { return compare_messages(a.*value, b.*value); }
};

}  // namespace pavo_zorv
