// Integers of 8, 32 and 64 bits. Values wider than the member are cut when they are read; a signed one is written as
// the pattern of its own width, so -1 takes five bytes with 32 bits and ten with 64.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <type_traits>

#include "core/message.hpp"
#include "core/writer.hpp"

namespace pavo_zorv {

template <class Value>
concept integer_member = std::same_as<Value, std::uint8_t> || std::same_as<Value, std::uint32_t> ||
    std::same_as<Value, std::int32_t> || std::same_as<Value, std::uint64_t> || std::same_as<Value, std::int64_t>;

template <class Record, integer_member Value>
struct integer : row {
  static constexpr kind type = kind::integer;
  static constexpr wire_type wire = wire_type::varint;
  using element = Value;
  Value Record::*value;

  // What travels: the member's pattern, eight bits as part of a 32-bit number.
  using on_wire = std::conditional_t<sizeof(Value) == 8, std::uint64_t, std::uint32_t>;

  consteval integer(unsigned field_number, const char *field_name, Value Record::*member)
      : row{field_number, field_name}, value(member) {}

  static constexpr bool is_scalar() { return true; }
  static constexpr bool owns() { return false; }
  static constexpr bool holds_bytes() { return false; }
  constexpr auto members() const { return std::tuple{value}; }

  PAVO_ZORV_INLINE step decode(Record &record, const byte *at, const byte *end, const decode_context &, bool) const {
    const auto [next, number_read] = read_number<on_wire>(at, end);
    if (next == nullptr) return failed(CODEC_ERR_TRUNCATED);
    record.*value = static_cast<Value>(number_read);
    return {next, CODEC_OK};
  }

  // What the value takes beyond one byte: the rest is measured with all scalars of the message.
  PAVO_ZORV_INLINE void measure(message_size &total, const Record &record, bool present) const {
    const auto travels = static_cast<on_wire>(record.*value);
    // Eight bits take two bytes at most: a seventh less work for the result of a trace.
    if constexpr (sizeof(Value) == 1) {
      if (travels >= 0x80) [[unlikely]]
        total.bytes += std::size_t{present};
    } else if (travels >= 0x80 && present) {
      total.bytes += long_varint_size(travels) - 1;
    }
  }

  template <class Writer, class Entries>
  PAVO_ZORV_INLINE typename Writer::position write(Writer &writer, typename Writer::position at, const Record &record,
                                                   bool present, Entries &) const {
    if (!present) return at;
    at = writer.prepend_varint(at, static_cast<on_wire>(record.*value));
    return prepend_key(writer, at, number, wire);
  }

  PAVO_ZORV_INLINE int compare(const Record &a, const Record &b) const { return compare_values(a.*value, b.*value); }
};

}  // namespace pavo_zorv
