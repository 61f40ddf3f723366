// Measuring: the bytes of an encoding, summed from the innermost messages outwards in one pass.
#pragma once

#include <cstdint>

#include "message.hpp"

namespace pavo_zorv {

// The bytes of one message while its fields are added up.
struct measuring {
  survey &found;
  std::uint64_t bytes = 0;
  std::uint64_t blocks = 0;      // the bytes of bytes members, and of messages that hold such
  std::uint64_t last_piece = 0;  // where the bytes of the message's last table entry begin

  // Only what holds a bytes member can be longer than memory, and make a sum of 64 bits overflow: it is summed apart
  // from all else, which is added without a look.
  PAVO_ZORV_INLINE void add_block(std::uint64_t length) { blocks = saturating_sum(blocks, length); }

  // A nested message after its key and length.
  template <class Nested>
  PAVO_ZORV_INLINE void add_message(unsigned number, std::uint64_t inner) {
    bytes += varint_size(key_of(number, wire_type::delimited)) + length_size(inner);
    if constexpr (holds_bytes<Nested>) {
      add_block(inner);
    } else {
      bytes += inner;
    }
  }

  template <class Record>
  PAVO_ZORV_INLINE std::uint64_t sum() {
    if constexpr (!holds_bytes<Record>) return bytes;
    return saturating_sum(bytes, blocks);
  }

  PAVO_ZORV_INLINE std::uint64_t saturating_sum(std::uint64_t a, std::uint64_t b) {
    std::uint64_t sum;
    if (!__builtin_add_overflow(a, b, &sum)) [[likely]]
      return sum;
    found.overflowed = true;
    return UINT64_MAX;
  }

  // Of the length as it is written, in 32 bits.
  static constexpr std::size_t length_size(std::uint64_t length) {
    return length < 0x80 ? 1 : varint_size(static_cast<std::uint32_t>(length));
  }
};

// The rows of flags and integers whose keys take as many bytes.
template <class Record>
consteval presence_of<Record> scalars_with_keys_of(std::size_t size) {
  presence_of<Record> rows = 0;
  for_each_row<Record>([&](auto index) {
    constexpr auto &row = row_at<Record, index>;
    constexpr bool scalar = row.type == kind::flag || row.type == kind::integer;
    if (scalar && varint_size(key_of(row.number, row.wire)) == size) rows |= presence_bit<Record, index>;
  });
  return rows;
}

// Keys and first bytes of the flags and integers that are present, counted together: then a row adds only what its
// value takes beyond one byte, which is mostly nothing.
template <class Record>
PAVO_ZORV_INLINE std::uint64_t measure_scalars(std::uint64_t presence) {
  constexpr auto one = scalars_with_keys_of<Record>(1), two = scalars_with_keys_of<Record>(2);
  std::uint64_t bytes = 0;
  if constexpr (one != 0) bytes += count_bits<one>(presence) * 2;
  if constexpr (two != 0) bytes += count_bits<two>(presence) * 3;
  return bytes;
}

// The second bytes of integers of eight bits: one test for all, since hardly any has one.
template <class Record>
PAVO_ZORV_INLINE std::uint64_t measure_second_bytes(const Record &record, std::uint64_t presence) {
  unsigned all = 0;
  for_each_row<Record>([&](auto index) __attribute__((always_inline)) {
    constexpr auto &row = row_at<Record, index>;
    if constexpr (row.in_eight_bits()) all |= record.*row.value;
  });
  std::uint64_t bytes = 0;
  if (all < 0x80) return bytes;
  for_each_row<Record>([&](auto index) __attribute__((always_inline)) {
    constexpr auto &row = row_at<Record, index>;
    if constexpr (row.in_eight_bits()) bytes += presence >> index & record.*row.value >> 7;
  });
  return bytes;
}

// The rows after the bytes member: what they add belongs to the last piece of the message.
template <class Record>
consteval presence_of<Record> rows_after_bytes() {
  presence_of<Record> rows = 0;
  bool behind = false;
  for_each_row<Record>([&](auto index) {
    if (behind) rows |= presence_bit<Record, index>;
    behind |= row_at<Record, index>.type == kind::bytes;
  });
  return rows;
}

template <class Record>
PAVO_ZORV_INLINE std::uint64_t measure_fields(const Record &record, survey &found) {
  const auto presence = record.presence;
  // The only field of a message, where it is a scalar: then the rest is of one that is present, and nothing is counted.
  if constexpr (field_count<Record> == 1 && scalars_with_keys_of<Record>(1) != 0) {
    if (count_bits<presence_mask<Record>>(presence) == 0) [[unlikely]]
      return 0;
  }
  constexpr auto behind = rows_after_bytes<Record>();
  measuring total{found,
                  measure_scalars<Record>(presence & ~std::uint64_t{behind}) + measure_second_bytes(record, presence)};
  for_each_row<Record>([&](auto index) __attribute__((always_inline)) {
    row_at<Record, index>.measure(total, record, (presence & presence_bit<Record, index>) != 0);
  });
  if constexpr (behind != 0) total.bytes += measure_scalars<Record>(presence & behind);
  const std::uint64_t bytes = total.template sum<Record>();
  if (bytes != total.last_piece) ++found.segments;
  return bytes;
}

template <class Record>
std::uint64_t measure_message(const Record &record, survey &found) {
  return measure_fields(record, found);
}

}  // namespace pavo_zorv
