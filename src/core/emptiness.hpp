// Checks that let a nested message be skipped as a whole: an envelope holds one of its payloads, the others are empty.
#pragma once

#include <cstdint>

#include "schema.hpp"

namespace pavo_zorv {

// Whether no presence bit of a field is set in a message and those inside it: then its encoding is empty. The other
// bits are masked out first: nobody may ever have written them.
template <class Record>
PAVO_ZORV_INLINE bool is_empty(const Record &record) {
  bool empty = (record.presence & presence_mask<Record>) == 0;
  for_each_row<Record>([&](auto index) PAVO_ZORV_INLINE_LAMBDA {
    constexpr auto &row = row_at<Record, index>;
    if constexpr (row.type == kind::nested) empty = empty && is_empty(record.*row.value);
  });
  return empty;
}

// The pointers, counts and lengths of a message and those inside it, each put together by "or". They are kept in three
// widths: widening every count would cost an instruction each.
struct owned_memory {
  std::uintptr_t pointers = 0;
  std::uint32_t counts = 0;
  std::uint64_t lengths = 0;
};

template <class Record>
PAVO_ZORV_INLINE void collect_owned(const Record &record, owned_memory &all) {
  for_each_row<Record>([&](auto index) PAVO_ZORV_INLINE_LAMBDA {
    constexpr auto &row = row_at<Record, index>;
    if constexpr (row.owns()) row.collect(record, all);
  });
}

// Whether there is nothing in a message to release.
template <class Record>
PAVO_ZORV_INLINE bool owns_nothing(const Record &record) {
  owned_memory all;
  collect_owned(record, all);
  return all.pointers == 0;
}

// Whether a message counts nothing either: then there is nothing to copy besides the record.
template <class Record>
PAVO_ZORV_INLINE bool owns_and_counts_nothing(const Record &record) {
  owned_memory all;
  collect_owned(record, all);
  return (all.pointers | all.counts | all.lengths) == 0;
}

}  // namespace pavo_zorv
