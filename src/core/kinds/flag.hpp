// Flags: read as 0 or 1, but written as the stored byte, whatever it is. A byte of 128 or more makes an unterminated
// varint; callers store only 0 or 1.
#pragma once

#include "../encode.hpp"
#include "../measure.hpp"
#include "../message.hpp"

namespace pavo_zorv {

template <class Record>
struct flag_row : row {
  static constexpr kind type = kind::flag;
  static constexpr wire_type wire = wire_type::varint;
  std::uint8_t Record::*value;

  static constexpr bool owns() { return false; }
  static constexpr bool holds_bytes() { return false; }
  constexpr auto members() const { return std::tuple{value}; }

  PAVO_ZORV_INLINE step decode(Record &record, const byte *at, const byte *end, const decoding &, bool) const {
    const auto [next, number_read] = read_varint<std::uint32_t>(at, end);
    if (next == nullptr) return failed(CODEC_ERR_TRUNCATED);
    record.*value = number_read != 0;
    return {next, CODEC_OK};
  }

  // Measured with all scalars of the message.
  PAVO_ZORV_INLINE void measure(measuring &, const Record &, bool) const {}

  template <class Sink, class Entries>
  PAVO_ZORV_INLINE typename Sink::place write(const Sink &sink, typename Sink::place at, const Record &record,
                                              bool present, bool, Entries &) const {
    if (!present) return at;
    at = sink.prepend_byte(at, record.*value);
    return prepend_key(sink, at, number, wire);
  }

  PAVO_ZORV_INLINE int compare(const Record &a, const Record &b) const { return compare_values(a.*value, b.*value); }
};

template <class Record>
consteval auto flag(unsigned number, const char *name, std::uint8_t Record::*value) {
  return flag_row<Record>{{number, name}, value};
}

}  // namespace pavo_zorv
