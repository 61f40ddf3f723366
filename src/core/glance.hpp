// One look at a record that tells whether visiting its members is worth the while. An envelope mostly holds one of its
// payloads; the others are passed over.
#pragma once

#include <cstdint>

#include "schema.hpp"

namespace pavo_zorv {

// Whether no presence bit of a field is set in a message and those inside it: then its encoding is empty. The other
// bits are masked out first: nobody may ever have written them.
template <class Record>
PAVO_ZORV_INLINE bool is_blank(const Record &record) {
  bool blank = (record.presence & presence_mask<Record>) == 0;
  for_each_row<Record>([&](auto index) __attribute__((always_inline)) {
    constexpr auto &row = row_at<Record, index>;
    if constexpr (row.type == kind::nested) blank = blank && is_blank(record.*row.value);
  });
  return blank;
}

// Pointers, counts and lengths of a message and those inside it, put together: each kind apart, for to be widened each
// one would take an instruction more, and of a release only the pointers matter.
struct possessions {
  std::uintptr_t blocks = 0;
  std::uint32_t elements = 0;
  std::uint64_t bytes = 0;
};

template <class Record>
PAVO_ZORV_INLINE constexpr void collect_owned(const Record &record, possessions &all) {
  for_each_row<Record>([&](auto index) __attribute__((always_inline)) {
    constexpr auto &row = row_at<Record, index>;
    if constexpr (row.owns()) row.collect(record, all);
  });
}

// Whether there is nothing in a message to release.
template <class Record>
PAVO_ZORV_INLINE constexpr bool owns_nothing(const Record &record) {
  possessions all;
  collect_owned(record, all);
  return all.blocks == 0;
}

// Whether a message counts nothing either: then there is nothing to copy besides the record.
template <class Record>
PAVO_ZORV_INLINE constexpr bool owns_and_counts_nothing(const Record &record) {
  possessions all;
  collect_owned(record, all);
  return (all.blocks | all.elements | all.bytes) == 0;
}

}  // namespace pavo_zorv
