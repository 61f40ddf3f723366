// Bytes members: a block and its 64-bit length. In reference mode the bytes stay where they are: in the input when a
// message is decoded, at the member's pointer when it is encoded.
#pragma once

#include <algorithm>
#include <cstring>

#include "../blocks.hpp"
#include "../encode.hpp"
#include "../glance.hpp"
#include "../measure.hpp"
#include "../message.hpp"

namespace pavo_zorv {

template <class Record>
struct bytes_row : row {
  static constexpr kind type = kind::bytes;
  static constexpr wire_type wire = wire_type::delimited;
  unsigned char *Record::*value;
  std::uint64_t Record::*length;

  static constexpr bool owns() { return true; }
  static constexpr bool holds_bytes() { return true; }
  constexpr auto members() const { return std::tuple{value, length}; }

  // A second bytes field is refused, also after an empty one, and a missing allocator found, before the length is
  // read.
  PAVO_ZORV_INLINE step decode(Record &record, const byte *at, const byte *end, const decoding &input,
                               bool seen) const {
    if (seen) return failed(CODEC_ERR_TRUNCATED);
    if (!input.referenced() && input.memory.missing()) return failed(CODEC_ERR_NO_MEMORY);
    const delimited bytes = read_delimited(at, end);
    if (bytes.first == nullptr) return failed(CODEC_ERR_TRUNCATED);
    if (input.referenced()) {
      record.*value = const_cast<byte *>(bytes.first);
    } else {
      auto *const copy = static_cast<byte *>(input.memory.block(bytes.length()));
      if (copy == nullptr) return failed(CODEC_ERR_NO_MEMORY);
      copy_bytes(copy, bytes.first, bytes.length());
      record.*value = copy;
    }
    record.*length = bytes.length();
    return {bytes.last, CODEC_OK};
  }

  PAVO_ZORV_INLINE void measure(measuring &total, const Record &record, bool present) const {
    if (!present) return;
    total.bytes += varint_size(key_of(number, wire)) + measuring::length_size(record.*length);
    if (!total.found.referenced) {
      total.add_block(record.*length);
      if (record.*value == nullptr && record.*length != 0) total.found.gaps = true;
    } else if (record.*length != 0) {
      total.found.segments += 2;
      total.last_piece = total.template sum<Record>();
    }
  }

  template <class Sink, class Entries>
  PAVO_ZORV_INLINE typename Sink::place write(const Sink &sink, typename Sink::place at, const Record &record,
                                              bool present, bool referenced, Entries &entries) const {
    if (!present) return at;
    if (!referenced) {
      at = sink.prepend_block(at, record.*value, record.*length);
    } else if (record.*length != 0 && entries.wanted()) {
      entries.split(at, record.*value, record.*length);
    }
    at = sink.prepend_varint(at, static_cast<std::uint32_t>(record.*length));
    return prepend_key(sink, at, number, wire);
  }

  PAVO_ZORV_INLINE void collect(const Record &record, possessions &all) const {
    all.blocks |= reinterpret_cast<std::uintptr_t>(record.*value);
    all.bytes |= record.*length;
  }

  PAVO_ZORV_INLINE bool own(Record &record, const Record &source, copying &copying) const {
    const std::uint64_t size = source.*length;
    record.*value = nullptr;
    record.*length = 0;
    if (size == 0) return true;
    if (size != static_cast<std::size_t>(size)) return false;
    auto *const copy = static_cast<unsigned char *>(copying.memory.block(static_cast<std::size_t>(size)));
    if (copy == nullptr) return false;
    copy_bytes(copy, source.*value, static_cast<std::size_t>(size));
    record.*value = copy;
    record.*length = size;
    return true;
  }

  PAVO_ZORV_INLINE void release(Record &record, const releaser &releaser) const {
    if (!releaser.referenced) releaser.give_back(record.*value);
  }

  PAVO_ZORV_INLINE int compare(const Record &a, const Record &b) const {
    const std::uint64_t common = std::min(a.*length, b.*length);
    if (common != 0) {
      const int difference = as_it_is(std::memcmp)(a.*value, b.*value, static_cast<std::size_t>(common));
      if (difference != 0) return difference;
    }
    return compare_values(a.*length, b.*length);
  }
};

template <class Record>
consteval auto bytes(unsigned number, const char *name, unsigned char *Record::*value, std::uint64_t Record::*length) {
  return bytes_row<Record>{{number, name}, value, length};
}

}  // namespace pavo_zorv
