// Copying: the record byte by byte, then a block of its own for every pointer.
#pragma once

#include "message.hpp"
#include "overwrite.hpp"

namespace pavo_zorv {

template <class Record>
void copy_members(Record &record, const Record &source, copy_context &copy) {
  for_each_row<Record>([&](auto index) PAVO_ZORV_INLINE_LAMBDA {
    constexpr auto &row = row_at<Record, index>;
    if constexpr (row.owns()) {
      if (!row.copy(record, source, copy)) {
        record.presence = static_cast<presence_of<Record>>(record.presence & ~presence_bit<Record, index>);
        copy.complete = false;
      }
    }
  });
}

template <class Record>
int duplicate(Record &destination, const Record &source, pavo_zorv_allocate allocate, void *context) {
  copy_record(destination, source);
  copy_context copy{{allocate, context}};
  copy_members(destination, source, copy);
  return copy.complete ? CODEC_OK : CODEC_ERR_NO_MEMORY;
}

}  // namespace pavo_zorv
