// Encoding: the choice of a writer. A small message is measured, and written in place. Another one, for a buffer that
// is no longer than the scratch block on the stack, is written to the end of that block, and copied from there. For a
// longer buffer, and with a table of segments, it is measured first, for its end must be known.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "measure.hpp"
#include "scratch.hpp"
#include "segments.hpp"
#include "write.hpp"
#include "writer.hpp"

namespace pavo_zorv {

// What encoding in two passes needs of a message. It is the same code for all messages, because each is long, or has a
// table, or does not fit: then the cost of these calls does not matter.
struct two_passes {
  std::uint64_t (*measure)(const void *record, measurement &found);
  void (*write)(const void *record, writer &to, byte *end);
  void (*write_clipped)(const void *record, clipped_writer &to, std::size_t end);

  template <class Record>
  static two_passes of() {
    return {
        [](const void *record, measurement &found) {
          return measure_message(*static_cast<const Record *>(record), found);
        },
        [](const void *record, writer &to, byte *end) { write_apart(*static_cast<const Record *>(record), to, end); },
        [](const void *record, clipped_writer &to, std::size_t end) {
          write_apart(*static_cast<const Record *>(record), to, end);
        }};
  }
};

PAVO_ZORV_NOINLINE inline std::size_t encode_in_two_passes(const void *record, two_passes message, byte *buffer,
                                                           std::size_t length, pavo_zorv_segment *segments,
                                                           std::uint32_t *segment_count, std::uint32_t options) {
  measurement found{is_referenced(options)};
  const std::size_t size = size_in_memory(message.measure(record, found), found);
  segment_table entries{segments, segment_count != nullptr && segments != nullptr ? *segment_count : 0, found.segments};
  if (segment_count != nullptr)
    *segment_count = static_cast<std::uint32_t>(std::min<std::uint64_t>(found.segments, UINT32_MAX));
  if (found.overflowed) return size;
  segment_table *const table = entries.capacity != 0 ? &entries : nullptr;
  if (buffer == nullptr) length = 0;
  if (buffer != nullptr && size <= length && !found.has_null_bytes) {
    auto to = writer::exact(buffer, table, found.referenced);
    message.write(record, to, buffer + size);
  } else if (length != 0 || table != nullptr) {
    clipped_writer to(buffer, length, table, found.referenced);
    message.write_clipped(record, to, size);
  }
  return size;
}

template <class Record>
PAVO_ZORV_NOINLINE std::size_t encode_measured(const Record &record, byte *buffer, std::size_t length,
                                               pavo_zorv_segment *segments, std::uint32_t *segment_count,
                                               std::uint32_t options) {
  return encode_in_two_passes(&record, two_passes::of<Record>(), buffer, length, segments, segment_count, options);
}

template <class Record>
PAVO_ZORV_NOINLINE std::size_t encode_by_scratch(const Record &record, byte *buffer, std::size_t length,
                                                 std::uint32_t options) {
  constexpr std::size_t slop = slop_of<Record>();
  byte scratch[slop + scratch_size];
#if !defined(PAVO_ZORV_STACK_PROBES)
  static_assert(sizeof scratch <= 4096 - 256, "with what else is in the frame, it would not stay below a page");
#endif
  auto to = writer::scratch(scratch, slop, is_referenced(options));
  byte *const end = scratch + sizeof scratch;
  const byte *const start = write_apart(record, to, end);
  const auto size = static_cast<std::size_t>(end - start);
  if (to.overflowed() || size > length) return encode_measured(record, buffer, length, nullptr, nullptr, options);
  std::memcpy(buffer, start, size);
  return size;
}

// Measuring a small message takes less than copying its encoding.
template <class Record>
PAVO_ZORV_NOINLINE std::size_t encode_small(const Record &record, byte *buffer, std::size_t length,
                                            std::uint32_t options) {
  measurement found{is_referenced(options)};
  const std::size_t size = measure(record, found);
  if (size > length || found.overflowed || found.has_null_bytes) [[unlikely]]
    return encode_measured(record, buffer, length, nullptr, nullptr, options);
  unchecked_writer to(buffer, found.referenced);
  write_fields(record, to, buffer + size);
  return size;
}

template <class Record>
std::size_t encode(const Record &record, byte *buffer, std::size_t length, pavo_zorv_segment *segments,
                   std::uint32_t *segment_count, std::uint32_t options = 0) {
  if (segment_count != nullptr) return encode_measured(record, buffer, length, segments, segment_count, options);
  if (buffer == nullptr) {
    measurement found{is_referenced(options)};
    return measure(record, found);
  }
  if constexpr (is_small<Record>) return encode_small(record, buffer, length, options);
  if (length <= scratch_size) return encode_by_scratch(record, buffer, length, options);
  return encode_measured(record, buffer, length, nullptr, nullptr, options);
}

}  // namespace pavo_zorv
