// One look at a record that tells whether visiting its members is worth the while. An envelope mostly holds one of its
// payloads; the others are passed over.
#pragma once

#include <cstdint>

#include "schema.hpp"

namespace pavo_zorv {

template <class Record>
PAVO_ZORV_INLINE constexpr void collect_presence(const Record &record, std::uint32_t &bits) {
  bits |= record.presence & presence_mask<Record>;
  for_each_row<Record>([&](auto index) __attribute__((always_inline)) {
    constexpr auto &row = row_at<Record, index>;
    if constexpr (row.type == kind::message) collect_presence(record.*row.value, bits);
  });
}

// Whether no presence bit is set in a message and those inside it: then its encoding is empty.
template <class Record>
PAVO_ZORV_INLINE constexpr bool is_blank(const Record &record) {
  std::uint32_t bits = 0;
  collect_presence(record, bits);
  return bits == 0;
}

template <class Record>
PAVO_ZORV_INLINE constexpr void collect_owned(const Record &record, std::uintptr_t &bits) {
  for_each_row<Record>([&](auto index) __attribute__((always_inline)) {
    constexpr auto &row = row_at<Record, index>;
    if constexpr (row.owns()) row.collect(record, bits);
  });
}

// Whether a message owns nothing at present, nor counts anything: then there is nothing to copy or to release in it.
template <class Record>
PAVO_ZORV_INLINE constexpr bool owns_nothing(const Record &record) {
  std::uintptr_t bits = 0;
  collect_owned(record, bits);
  return bits == 0;
}

}  // namespace pavo_zorv
