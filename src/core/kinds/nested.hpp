// Nested messages: a whole record held inline, with presence bits of its own beside the containing record's bit.
#pragma once

#include <type_traits>

#include "../clear.hpp"
#include "../encode.hpp"
#include "../glance.hpp"
#include "../measure.hpp"
#include "../message.hpp"

namespace pavo_zorv {

template <class Record, class Nested>
struct nested_row : row {
  static constexpr kind type = kind::nested;
  static constexpr wire_type wire = wire_type::delimited;
  using nested = Nested;
  Nested Record::*value;

  static constexpr bool owns() { return owns_memory<Nested>; }
  static constexpr bool holds_bytes() { return pavo_zorv::holds_bytes<Nested>; }
  constexpr auto members() const { return std::tuple{value}; }

  // The last occurrence counts. What an earlier one owned is dropped, not released.
  PAVO_ZORV_INLINE step decode(Record &record, const byte *at, const byte *end, const decoding &input,
                               bool seen) const {
    const delimited bytes = read_delimited(at, end);
    if (bytes.first == nullptr) return failed(CODEC_ERR_TRUNCATED);
    if (seen) clear_message(record.*value);
    return {bytes.last, decode_message(record.*value, bytes.first, bytes.last, input)};
  }

  // Content is sent also where the containing record's bit is clear; an empty message only where it is set.
  PAVO_ZORV_INLINE void measure(measuring &total, const Record &record, bool present) const {
    if (!present && is_blank(record.*value)) return;
    std::uint64_t inner;
    if constexpr (is_small<Nested>) {
      inner = measure_fields(record.*value, total.found);
    } else {
      inner = measure_message(record.*value, total.found);
    }
    if (inner == 0 && !present) return;
    total.template add_message<Nested>(number, inner);
  }

  template <class Sink, class Entries>
  PAVO_ZORV_INLINE typename Sink::place write(const Sink &sink, typename Sink::place at, const Record &record,
                                              bool present, bool referenced, Entries &) const {
    if (!present && is_blank(record.*value)) return at;
    const auto end = at;
    if constexpr (is_small<Nested> && std::is_same_v<Sink, quick_sink>) {
      at = write_fields(record.*value, sink, end, referenced);
    } else {
      at = write_message(record.*value, sink, end, referenced);
    }
    if (at == end && !present) return at;
    at = sink.prepend_varint(at, static_cast<std::uint32_t>(end - at));
    return prepend_key(sink, at, number, wire);
  }

  PAVO_ZORV_INLINE void collect(const Record &record, possessions &all) const { collect_owned(record.*value, all); }

  // The containing record's bit stays, whatever becomes of the members inside.
  PAVO_ZORV_INLINE bool own(Record &record, const Record &source, copying &copying) const {
    if (!owns_and_counts_nothing(source.*value)) own_message(record.*value, source.*value, copying);
    return true;
  }

  PAVO_ZORV_INLINE void release(Record &record, const releaser &releaser) const {
    if (!owns_nothing(record.*value)) release_message(record.*value, releaser);
  }

  PAVO_ZORV_INLINE int compare(const Record &a, const Record &b) const { return compare_messages(a.*value, b.*value); }
};

template <class Record, class Nested>
requires std::is_class_v<Nested>
consteval auto nested(unsigned number, const char *name, Nested Record::*value) {
  return nested_row<Record, Nested>{{number, name}, value};
}

}  // namespace pavo_zorv
