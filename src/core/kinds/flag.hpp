// Flags: read as 0 or 1, but written as the stored byte, whatever it is. A byte of 128 or more makes an unterminated
// varint; callers store only 0 or 1.
#pragma once

#include <cstdint>
#include <tuple>

#include "core/message.hpp"
#include "core/writer.hpp"

namespace pavo_zorv {

template <class Record>
struct flag : row {
  static constexpr kind type = kind::flag;
  static constexpr wire_type wire = wire_type::varint;
  std::uint8_t Record::*value;

  consteval flag(unsigned field_number, const char *field_name, std::uint8_t Record::*member)
      : row{field_number, field_name}, value(member) {}

  static constexpr bool is_scalar() { return true; }
  static constexpr bool owns() { return false; }
  static constexpr bool holds_bytes() { return false; }
  constexpr auto members() const { return std::tuple{value}; }

  PAVO_ZORV_INLINE step decode(Record &record, const byte *at, const byte *end, const decode_context &, bool) const {
    const auto [next, number_read] = read_varint<std::uint32_t>(at, end);
    if (next == nullptr) return failed(CODEC_ERR_TRUNCATED);
    record.*value = number_read != 0;
    return {next, CODEC_OK};
  }

  // Measured with all scalars of the message.
  PAVO_ZORV_INLINE void measure(message_size &, const Record &, bool) const {}

  template <class Writer, class Entries>
  PAVO_ZORV_INLINE typename Writer::position write(Writer &writer, typename Writer::position at, const Record &record,
                                                   bool present, Entries &) const {
    if (!present) return at;
    at = writer.prepend_byte(at, record.*value);
    return prepend_key(writer, at, number, wire);
  }

  PAVO_ZORV_INLINE int compare(const Record &a, const Record &b) const { return compare_values(a.*value, b.*value); }
};

}  // namespace pavo_zorv
