// Writing: the fields of a message, from the last to the first.
#pragma once

#include <cstddef>
#include <type_traits>

#include "message.hpp"
#include "segments.hpp"
#include "writer.hpp"

namespace pavo_zorv {

template <class Record, class Writer>
PAVO_ZORV_INLINE typename Writer::position write_fields(const Record &record, Writer &writer,
                                                        typename Writer::position end) {
  message_entries<Writer> entries(writer, end);
  const auto presence = record.presence;
  auto at = end;
  for_each_row_backwards<Record>([&](auto index) PAVO_ZORV_INLINE_LAMBDA {
    const bool present = (presence & presence_bit<Record, index>) != 0;
    at = row_at<Record, index>.write(writer, at, record, present, entries);
  });
  entries.finish(at);
  return at;
}

template <class Record, class Writer>
PAVO_ZORV_NOINLINE typename Writer::position write_apart(const Record &record, Writer &writer,
                                                         typename Writer::position end) {
  return write_fields(record, writer, end);
}

// Compiled to be small, and apart from what is fast.
template <class Record>
[[gnu::cold]] PAVO_ZORV_NOINLINE std::size_t write_apart(const Record &record, clipped_writer &writer,
                                                         std::size_t end) {
  return write_fields(record, writer, end);
}

template <class Record, class Writer>
PAVO_ZORV_INLINE typename Writer::position write_message(const Record &record, Writer &writer,
                                                         typename Writer::position end) {
  if constexpr (is_small<Record> && !std::is_same_v<Writer, clipped_writer>) {
    return write_fields(record, writer, end);
  } else {
    return write_apart(record, writer, end);
  }
}

}  // namespace pavo_zorv
