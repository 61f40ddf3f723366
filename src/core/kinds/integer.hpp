// Integers of 8, 32 and 64 bits. Values wider than the member are cut when they are read; a signed one is written as
// the pattern of its own width, so -1 takes five bytes with 32 bits and ten with 64.
#pragma once

#include <concepts>
#include <type_traits>

#include "../encode.hpp"
#include "../measure.hpp"
#include "../message.hpp"

namespace pavo_zorv {

template <class Value>
concept integer_member = std::same_as<Value, std::uint8_t> || std::same_as<Value, std::uint32_t> ||
    std::same_as<Value, std::int32_t> || std::same_as<Value, std::uint64_t> || std::same_as<Value, std::int64_t>;

template <class Record, integer_member Value>
struct integer_row : row {
  static constexpr kind type = kind::integer;
  static constexpr wire_type wire = wire_type::varint;
  using element = Value;
  Value Record::*value;

  // What travels: the member's pattern, eight bits as part of a 32-bit number.
  using on_wire = std::conditional_t<sizeof(Value) == 8, std::uint64_t, std::uint32_t>;

  static constexpr bool in_eight_bits() { return sizeof(Value) == 1; }
  static constexpr bool owns() { return false; }
  static constexpr bool holds_bytes() { return false; }
  constexpr auto members() const { return std::tuple{value}; }

  PAVO_ZORV_INLINE step decode(Record &record, const byte *at, const byte *end, const decoding &, bool) const {
    const auto [next, number_read] = read_number<on_wire>(at, end);
    if (next == nullptr) return failed(CODEC_ERR_TRUNCATED);
    record.*value = static_cast<Value>(number_read);
    return {next, CODEC_OK};
  }

  // What the value takes beyond one byte: the rest is measured with all scalars of the message.
  PAVO_ZORV_INLINE void measure(measuring &total, const Record &record, bool present) const {
    if constexpr (in_eight_bits()) return;
    const auto travels = static_cast<on_wire>(record.*value);
    if (travels >= 0x80 && present) total.bytes += long_varint_size(travels) - 1;
  }

  template <class Sink, class Entries>
  PAVO_ZORV_INLINE typename Sink::place write(const Sink &sink, typename Sink::place at, const Record &record,
                                              bool present, bool, Entries &) const {
    if (!present) return at;
    at = sink.prepend_varint(at, static_cast<on_wire>(record.*value));
    return prepend_key(sink, at, number, wire);
  }

  PAVO_ZORV_INLINE int compare(const Record &a, const Record &b) const { return compare_values(a.*value, b.*value); }
};

template <class Record, integer_member Value>
consteval auto scalar(unsigned number, const char *name, Value Record::*value) {
  return integer_row<Record, Value>{{number, name}, value};
}

}  // namespace pavo_zorv
