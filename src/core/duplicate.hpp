// Copying: the record byte by byte, then a block of its own for every pointer.
#pragma once

#include <cstring>

#include "clear.hpp"
#include "message.hpp"

namespace pavo_zorv {

template <class Record>
void own_message(Record &record, const Record &source, copying &copy) {
  for_each_row<Record>([&](auto index) __attribute__((always_inline)) {
    constexpr auto &row = row_at<Record, index>;
    if constexpr (row.owns()) {
      if (!row.own(record, source, copy)) {
        record.presence = static_cast<presence_of<Record>>(record.presence & ~presence_bit<Record, index>);
        copy.complete = false;
      }
    }
  });
}

template <class Record>
int duplicate(Record &destination, const Record &source, pavo_zorv_allocate allocate, void *context) {
  copy_over(destination, source);
  copying copy{{allocate, context}};
  own_message(destination, source, copy);
  return copy.complete ? CODEC_OK : CODEC_ERR_NO_MEMORY;
}

}  // namespace pavo_zorv
