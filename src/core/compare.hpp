// Comparing: field by field, presence before values; the first difference is the result, as it is.
#pragma once

#include <cstddef>
#include <utility>

#include "message.hpp"

namespace pavo_zorv {

template <class Record, std::size_t Index>
inline int compare_fields(const Record &a, const Record &b) {
  const bool in_a = (a.presence & presence_bit<Record, Index>) != 0;
  const bool in_b = (b.presence & presence_bit<Record, Index>) != 0;
  if (in_a != in_b) return in_a ? 1 : -1;
  return in_a ? row_at<Record, Index>.compare(a, b) : 0;
}

template <class Record>
PAVO_ZORV_NOINLINE int compare_messages(const Record &a, const Record &b) {
  return [&]<std::size_t... Index>(std::index_sequence<Index...>) {
    int result = 0;
    static_cast<void>(((result = compare_fields<Record, Index>(a, b), result != 0) || ...));
    return result;
  }
  (std::make_index_sequence<field_count<Record>>{});
}

}  // namespace pavo_zorv
