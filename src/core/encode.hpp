// Encoding: writing goes backwards, so that a nested message is whole before its length is written: no length is
// computed twice or remembered, at any depth. A long message is measured first, for its end must be known. One for a
// short buffer is not: it is written aside, to the end of a block that is long enough, and copied from there.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "blocks.hpp"
#include "message.hpp"

namespace pavo_zorv {

// Where bytes are written one by one, and nothing before them is touched.
struct bytes_before {
  using place = byte *;
  PAVO_ZORV_INLINE static place prepend_byte(place at, byte value) {
    *--at = value;
    return at;
  }

  template <class Value>
  PAVO_ZORV_INLINE static place prepend_varint(place at, Value value);
};

// A varint, last byte first.
template <class Sink, class Value>
PAVO_ZORV_NOINLINE typename Sink::place prepend_long_varint(const Sink &sink, typename Sink::place at, Value value) {
  unsigned shift = 7 * (static_cast<unsigned>(varint_size(value)) - 1);
  at = sink.prepend_byte(at, static_cast<byte>(value >> shift));
  while (shift != 0) {
    shift -= 7;
    at = sink.prepend_byte(at, static_cast<byte>(value >> shift | 0x80));
  }
  return at;
}

template <class Value>
bytes_before::place bytes_before::prepend_varint(place at, Value value) {
  return value < 0x80 ? prepend_byte(at, static_cast<byte>(value)) : prepend_long_varint(bytes_before{}, at, value);
}

// The same where eight bytes can be stored at once: those before the varint are not yet written. One of three or four
// bytes needs no room but its own.
template <class Value>
PAVO_ZORV_NOINLINE byte *prepend_word(byte *first, byte *at, Value value) {
  if (value < 0x200000) {
    at[-1] = static_cast<byte>(value >> 14);
    at[-2] = static_cast<byte>(value >> 7 | 0x80);
    at[-3] = static_cast<byte>(value | 0x80);
    return at - 3;
  }
  if (value < 0x10000000) {
    store_word(at - 4, static_cast<std::uint32_t>(varint_word(value, 4)));
    return at - 4;
  }
  const auto size = static_cast<unsigned>(long_varint_size(value));
  if (size > 8 || at - first < 8) return prepend_long_varint(bytes_before{}, at, value);
  store_word(at - 8, varint_word(value, size) << 8 * (8 - size));
  return at - size;
}

// Writes without a look at each byte: the whole encoding is known to fit. Aside, where that is not known, what has no
// bound asks for room above the floor, below which there is room for the rest; what finds none goes on below the floor,
// and all that was written is worth nothing.
struct quick_sink {
  using place = byte *;
  byte *first;
  segment_table *table;
  byte *floor = nullptr;

  bool is_full(const byte *at) const { return at < floor; }
  place full() const { return floor - 1; }

  PAVO_ZORV_INLINE bool has_room(const byte *at, std::uint64_t size) const {
    return floor == nullptr || (!is_full(at) && static_cast<std::uint64_t>(at - floor) >= size);
  }

  byte *start_of(place message) const { return message; }

  PAVO_ZORV_INLINE place prepend_byte(place at, byte value) const {
    *--at = value;
    return at;
  }

  template <class Value>
  PAVO_ZORV_INLINE place prepend_varint(place at, Value value) const {
    if (value < 0x80) return prepend_byte(at, static_cast<byte>(value));
    if (value < 0x4000)
      return prepend_byte(prepend_byte(at, static_cast<byte>(value >> 7)), static_cast<byte>(value | 0x80));
    return prepend_word(first, at, value);
  }

  // A block that is not there leaves a gap, and there is none in what is written aside.
  PAVO_ZORV_NOINLINE place prepend_block(place at, const void *block, std::uint64_t length) const {
    if (floor != nullptr && (!has_room(at, length) || (block == nullptr && length != 0))) return full();
    const auto size = static_cast<std::size_t>(length);
    at -= size;
    copy_bytes(at, block, size);
    return at;
  }
};

// Writes what lies below the length of a short buffer, byte by byte; a block that does not fit whole is left out.
// Nothing is inlined: what is written in vain need not be fast.
struct clipped_sink {
  using place = std::size_t;
  byte *buffer;
  std::size_t length;
  segment_table *table;

  static constexpr bool is_full(place) { return false; }

  // A message after the end of the buffer has none; the outermost keeps the one it was given.
  byte *start_of(place message) const { return message == 0 || message < length ? buffer + message : nullptr; }

  place prepend_byte(place at, byte value) const {
    if (--at < length) buffer[at] = value;
    return at;
  }

  template <class Value>
  PAVO_ZORV_NOINLINE place prepend_varint(place at, Value value) const {
    return prepend_long_varint(*this, at, value);
  }

  PAVO_ZORV_NOINLINE place prepend_block(place at, const void *block, std::uint64_t bytes) const {
    const auto size = static_cast<std::size_t>(bytes);
    at -= size;
    if (block != nullptr && at < length && size <= length - at) std::memcpy(buffer + at, block, size);
    return at;
  }
};

template <class Sink>
PAVO_ZORV_INLINE typename Sink::place prepend_key(const Sink &sink, typename Sink::place at, unsigned number,
                                                  wire_type type) {
  return sink.prepend_varint(at, key_of(number, type));
}

// The table's entries for one message: one that covers it or, where a bytes member is referenced, the piece before the
// referenced bytes, these bytes, and the rest after them. A message's own entry, or its rest, comes after those of
// the messages it contains, so it is taken first.
template <class Sink>
class message_entries {
 public:
  using place = typename Sink::place;

  message_entries(const Sink &sink, place end) : sink_(sink), end_(end), split_(end) {
    if (sink.table != nullptr) last_ = sink.table->take();
  }

  bool wanted() const { return sink_.table != nullptr; }

  // Splits the message at a place, between a length prefix and what follows the bytes it announces.
  void split(place at, const byte *block, std::uint64_t length) {
    if (at == end_) {
      sink_.table->put_back();
      rest_ = false;
    }
    sink_.table->set(sink_.table->take(), block, length);
    first_ = sink_.table->take();
    split_ = at;
    is_split_ = true;
  }

  void finish(place start) const {
    if (sink_.table == nullptr) return;
    byte *const base = sink_.start_of(start);
    if (is_split_) {
      sink_.table->set(first_, base, static_cast<std::size_t>(split_ - start));
      if (rest_) sink_.table->set(last_, behind(base, split_ - start), static_cast<std::size_t>(end_ - split_));
    } else if (start == end_) {
      sink_.table->put_back();
    } else {
      sink_.table->set(last_, base, static_cast<std::size_t>(end_ - start));
    }
  }

 private:
  // As numbers, because a message after the end of the buffer has no base.
  template <class Distance>
  static byte *behind(byte *base, Distance distance) {
    return reinterpret_cast<byte *>(reinterpret_cast<std::uintptr_t>(base) + static_cast<std::uintptr_t>(distance));
  }

  const Sink &sink_;
  place end_;
  place split_;
  std::uint64_t last_ = 0;
  std::uint64_t first_ = 0;
  bool is_split_ = false;
  bool rest_ = true;
};

template <class Record, class Sink>
PAVO_ZORV_INLINE typename Sink::place write_fields(const Record &record, const Sink &sink, typename Sink::place end,
                                                   bool referenced) {
  if constexpr (!is_small<Record>) {
    if (sink.is_full(end)) return end;
  }
  message_entries<Sink> entries(sink, end);
  const auto presence = record.presence;
  auto at = end;
  [&]<std::size_t... Index>(std::index_sequence<Index...>) __attribute__((always_inline)) {
    constexpr std::size_t last = sizeof...(Index) - 1;
    ((at = row_at<Record, last - Index>.write(sink, at, record, (presence & presence_bit<Record, last - Index>) != 0,
                                              referenced, entries)),
     ...);
  }
  (std::make_index_sequence<field_count<Record>>{});
  entries.finish(at);
  return at;
}

template <class Record, class Sink>
typename Sink::place write_message(const Record &record, const Sink &sink, typename Sink::place end, bool referenced) {
  return write_fields(record, sink, end, referenced);
}

// Compiled to be small, and apart: what is written in vain need not be fast.
template <class Record>
[[gnu::cold]] PAVO_ZORV_NOINLINE std::size_t write_message(const Record &record, const clipped_sink &sink,
                                                           std::size_t end, bool referenced) {
  return write_fields(record, sink, end, referenced);
}

// Writes an encoding of known size into a buffer or a table, or both; returns the size. What the quick way stores at
// once reaches before the bytes that it is about, so it has no place for gaps, where the buffer stays as it is.
template <class Record>
PAVO_ZORV_NOINLINE std::size_t write(const Record &record, manner found, std::size_t bytes, byte *buffer,
                                     std::size_t length, segment_table *table) {
  if (buffer != nullptr && bytes <= length && !found.gaps) {
    write_message(record, quick_sink{buffer, table}, buffer + bytes, found.referenced);
  } else if (length != 0 || table != nullptr) {
    write_message(record, clipped_sink{buffer, length, table}, bytes, found.referenced);
  }
  return bytes;
}

// Exact, or SIZE_MAX and `overflowed` where size_t cannot hold the bytes: with 64 bits only bytes members make so
// many, and their sum says so itself; with 32 any long list does.
template <class Record>
PAVO_ZORV_INLINE std::size_t measured_size(const Record &record, survey &found) {
  const std::uint64_t bytes = is_small<Record> ? measure_fields(record, found) : measure_message(record, found);
  const auto size = static_cast<std::size_t>(bytes);
  if constexpr (sizeof size == sizeof bytes) return size;
  found.overflowed |= size != bytes;
  return found.overflowed ? SIZE_MAX : size;
}

template <class Record>
PAVO_ZORV_NOINLINE std::size_t encode_measured(const Record &record, byte *buffer, std::size_t length,
                                               pavo_zorv_segment *segments, std::uint32_t *segment_count,
                                               std::uint32_t options) {
  survey found{{(options & PAVO_ZORV_REFERENCE) != 0}};
  const std::size_t size = measured_size(record, found);
  if (segment_count == nullptr) return found.overflowed ? size : write(record, found, size, buffer, length, nullptr);
  segment_table table{segments, segments != nullptr ? *segment_count : 0, found.segments};
  *segment_count = static_cast<std::uint32_t>(std::min<std::uint64_t>(found.segments, UINT32_MAX));
  if ((buffer == nullptr && table.capacity == 0) || found.overflowed) return size;
  return write(record, found, size, buffer, buffer != nullptr ? length : 0, table.capacity != 0 ? &table : nullptr);
}

// The bytes that a message writes without asking for room: a field has no more than twelve besides what asks. Only
// small messages inside it do not ask either.
template <class Record>
consteval std::size_t bytes_unasked() {
  std::size_t own = 12 * field_count<Record>, inner = 0;
  for_each_row<Record>([&](auto index) {
    using this_row = std::remove_cvref_t<decltype(row_at<Record, index>)>;
    if constexpr (this_row::type == kind::nested || this_row::type == kind::message_list) {
      using nested = typename this_row::nested;
      if constexpr (this_row::type == kind::nested && is_small<nested>) {
        own += bytes_unasked<nested>();
      } else {
        inner = std::max(inner, bytes_unasked<nested>());
      }
    }
  });
  return own + inner;
}

// Encodings up to this length are written aside: nearly half of what encoding them takes is measuring. A frame larger
// than a page could step over the one that guards the end of a stack, unless the compiler touches each page in order.
#if defined(PAVO_ZORV_STACK_PROBES)
inline constexpr std::size_t most_aside = 8192;
#else
inline constexpr std::size_t most_aside = 3072;
#endif

template <class Record>
PAVO_ZORV_NOINLINE std::size_t write_aside(const Record &record, byte *buffer, std::size_t length,
                                           std::uint32_t options) {
  byte space[bytes_unasked<Record>() + 1 + most_aside];
#if !defined(PAVO_ZORV_STACK_PROBES)
  static_assert(sizeof space <= 4096 - 256, "with what else stands in the frame, it would not stay below a page");
#endif
  byte *const end = space + sizeof space;
  const quick_sink sink{space, nullptr, end - most_aside};
  const byte *const start = write_message(record, sink, end, (options & PAVO_ZORV_REFERENCE) != 0);
  const auto size = static_cast<std::size_t>(end - start);
  if (size > length) return encode_measured(record, buffer, length, nullptr, nullptr, options);
  std::memcpy(buffer, start, size);
  return size;
}

// To measure a small message takes less than a copy. It is written in the same function, which then takes little more
// than its bytes.
template <class Record>
PAVO_ZORV_NOINLINE std::size_t write_small(const Record &record, byte *buffer, std::size_t length,
                                           std::uint32_t options) {
  survey found{{(options & PAVO_ZORV_REFERENCE) != 0}};
  const std::size_t size = measured_size(record, found);
  if (size > length || found.overflowed || found.gaps) [[unlikely]]
    return encode_measured(record, buffer, length, nullptr, nullptr, options);
  write_fields(record, quick_sink{buffer, nullptr}, buffer + size, found.referenced);
  return size;
}

template <class Record>
std::size_t encode(const Record &record, byte *buffer, std::size_t length, pavo_zorv_segment *segments,
                   std::uint32_t *segment_count, std::uint32_t options = 0) {
  if (segment_count == nullptr && buffer == nullptr) {
    survey found{{(options & PAVO_ZORV_REFERENCE) != 0}};
    return measured_size(record, found);
  }
  if (segment_count == nullptr) {
    if constexpr (is_small<Record>) {
      return write_small(record, buffer, length, options);
    } else if (length <= most_aside) {
      return write_aside(record, buffer, length, options);
    }
  }
  return encode_measured(record, buffer, length, segments, segment_count, options);
}

}  // namespace pavo_zorv
