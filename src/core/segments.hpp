// The caller's segment table. Messages are written backwards, so it is filled from its last entry to its first.
#pragma once

#include <cstddef>
#include <cstdint>

#include "bits.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

struct segment_table {
  pavo_zorv_segment *entries;
  std::uint32_t capacity;
  std::uint64_t next;  // entries not yet taken: all those before it

  std::uint64_t take() { return --next; }
  void put_back() { ++next; }

  void set(std::uint64_t index, const byte *start, std::uint64_t length) const {
    if (index < capacity) entries[index] = {start, length};
  }
};

// The table's entries for one message: one that covers it or, where a bytes member is referenced, the piece before the
// referenced bytes, these bytes, and the rest after them. A message's own entry, or its rest, comes after those of the
// messages it contains, so it is taken first.
template <class Writer>
class message_entries {
 public:
  using position = typename Writer::position;

  message_entries(const Writer &writer, position end) : writer_(writer), end_(end), split_(end) {
    if (are_asked_for()) last_ = writer.table()->take();
  }

  bool are_asked_for() const { return writer_.table() != nullptr; }

  // Splits the message at a position, between a length and the bytes it announces, which are elsewhere.
  void split(position at, const byte *block, std::uint64_t length) {
    segment_table &table = *writer_.table();
    if (at == end_) {
      table.put_back();
      has_rest_ = false;
    }
    table.set(table.take(), block, length);
    first_ = table.take();
    split_ = at;
    is_split_ = true;
  }

  void finish(position start) const {
    if (!are_asked_for()) return;
    segment_table &table = *writer_.table();
    byte *const base = writer_.address(start);
    if (is_split_) {
      table.set(first_, base, static_cast<std::size_t>(split_ - start));
      if (has_rest_) table.set(last_, past(base, split_ - start), static_cast<std::size_t>(end_ - split_));
    } else if (start == end_) {
      table.put_back();
    } else {
      table.set(last_, base, static_cast<std::size_t>(end_ - start));
    }
  }

 private:
  // As numbers, because a message past the end of the buffer has no address.
  template <class Distance>
  static byte *past(byte *base, Distance distance) {
    return reinterpret_cast<byte *>(reinterpret_cast<std::uintptr_t>(base) + static_cast<std::uintptr_t>(distance));
  }

  const Writer &writer_;
  position end_;
  position split_;
  std::uint64_t last_ = 0;
  std::uint64_t first_ = 0;
  bool is_split_ = false;
  bool has_rest_ = true;
};

}  // namespace pavo_zorv
