// Measuring: the bytes of an encoding, summed from the innermost messages outwards in one pass.
#pragma once

#include <cstddef>
#include <cstdint>

#include "message.hpp"

namespace pavo_zorv {

// The scalars of a message whose keys take so many bytes; only those after its bytes member where `AfterBytes`.
template <class Record, bool AfterBytes = false>
consteval presence_of<Record> scalars_with_keys_of(std::size_t size) {
  presence_of<Record> scalars = 0;
  bool counts = !AfterBytes;
  for_each_row<Record>([&](auto index) {
    constexpr auto &row = row_at<Record, index>;
    if (counts && row.is_scalar() && varint_size(key_of(row.number, row.wire)) == size)
      scalars |= presence_bit<Record, index>;
    counts |= row.type == kind::bytes;
  });
  return scalars;
}

// Keys and first bytes of the scalars that are present, counted together. A row then adds only what its value takes
// beyond one byte, which is usually nothing: up to a third less work for messages of many scalars.
template <class Record>
PAVO_ZORV_INLINE std::uint64_t measure_scalars(std::uint64_t presence) {
  constexpr auto one = scalars_with_keys_of<Record>(1), two = scalars_with_keys_of<Record>(2);
  return std::uint64_t{count_bits(presence & one)} * 2 + std::uint64_t{count_bits(presence & two)} * 3;
}

template <class Record>
PAVO_ZORV_INLINE std::uint64_t measure_fields(const Record &record, measurement &found) {
  constexpr auto after_bytes = scalars_with_keys_of<Record, true>(1) | scalars_with_keys_of<Record, true>(2);
  const auto presence = record.presence;
  message_size size{found, measure_scalars<Record>(presence)};
  for_each_row<Record>([&](auto index) PAVO_ZORV_INLINE_LAMBDA {
    row_at<Record, index>.measure(size, record, (presence & presence_bit<Record, index>) != 0);
  });
  const std::uint64_t bytes = size.template sum<Record>();
  // The last entry of the table is for what comes after the bytes member, of which scalars have been counted before
  // it.
  if (bytes != size.last_piece || (presence & after_bytes) != 0) ++found.segments;
  return bytes;
}

template <class Record>
PAVO_ZORV_NOINLINE std::uint64_t measure_apart(const Record &record, measurement &found) {
  return measure_fields(record, found);
}

template <class Record>
PAVO_ZORV_INLINE std::uint64_t measure_message(const Record &record, measurement &found) {
  if constexpr (is_small<Record>) {
    return measure_fields(record, found);
  } else {
    return measure_apart(record, found);
  }
}

// Exact, or SIZE_MAX and `overflowed` where size_t cannot hold the bytes: with 64 bits only bytes members make so
// many, and their sum says so itself; with 32 any long list does.
PAVO_ZORV_INLINE std::size_t size_in_memory(std::uint64_t bytes, measurement &found) {
  const auto size = static_cast<std::size_t>(bytes);
  if constexpr (sizeof size == sizeof bytes) return size;
  found.overflowed |= size != bytes;
  return found.overflowed ? SIZE_MAX : size;
}

template <class Record>
PAVO_ZORV_INLINE std::size_t measure(const Record &record, measurement &found) {
  return size_in_memory(measure_message(record, found), found);
}

}  // namespace pavo_zorv
