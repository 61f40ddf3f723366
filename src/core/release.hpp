// Releasing: every block that a record owns, in field order.
#pragma once

#include <cstdint>

#include "message.hpp"

namespace pavo_zorv {

template <class Record>
void release_message(Record &record, const releaser &releaser) {
  for_each_row<Record>([&](auto index) PAVO_ZORV_INLINE_LAMBDA {
    constexpr auto &row = row_at<Record, index>;
    if constexpr (row.owns()) row.release(record, releaser);
  });
}

template <class Record>
void release(Record &record, pavo_zorv_release release, void *context, std::uint32_t options = 0) {
  if constexpr (owns_memory<Record>) {
    release_message(record, releaser{release, context, is_referenced(options)});
  }
}

}  // namespace pavo_zorv
