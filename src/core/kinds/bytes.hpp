// Bytes members: a block and its 64-bit length. In reference mode the bytes stay where they are: in the input when a
// message is decoded, at the member's pointer when it is encoded.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <tuple>

#include "core/blocks.hpp"
#include "core/emptiness.hpp"
#include "core/message.hpp"
#include "core/writer.hpp"

namespace pavo_zorv {

template <class Record>
struct bytes : row {
  static constexpr kind type = kind::bytes;
  static constexpr wire_type wire = wire_type::delimited;
  unsigned char *Record::*value;
  std::uint64_t Record::*length;

  consteval bytes(unsigned field_number, const char *field_name, unsigned char *Record::*member,
                  std::uint64_t Record::*member_length)
      : row{field_number, field_name}, value(member), length(member_length) {}

  static constexpr bool owns() { return true; }
  static constexpr bool holds_bytes() { return true; }
  constexpr auto members() const { return std::tuple{value, length}; }

  // A second bytes field is refused, also after an empty one, and a missing allocator found, before the length is
  // read.
  PAVO_ZORV_INLINE step decode(Record &record, const byte *at, const byte *end, const decode_context &decoding,
                               bool seen) const {
    if (seen) return failed(CODEC_ERR_TRUNCATED);
    if (!decoding.referenced() && decoding.memory.missing()) return failed(CODEC_ERR_NO_MEMORY);
    const delimited content = read_delimited(at, end);
    if (content.first == nullptr) return failed(CODEC_ERR_TRUNCATED);
    if (decoding.referenced()) {
      record.*value = const_cast<byte *>(content.first);
    } else {
      auto *const copy = static_cast<byte *>(decoding.memory.block(content.length()));
      if (copy == nullptr) return failed(CODEC_ERR_NO_MEMORY);
      copy_bytes(copy, content.first, content.length());
      record.*value = copy;
    }
    record.*length = content.length();
    return {content.last, CODEC_OK};
  }

  PAVO_ZORV_INLINE void measure(message_size &total, const Record &record, bool present) const {
    if (!present) return;
    total.bytes += prefix_size(number, record.*length);
    if (!total.found.referenced) {
      total.add_block(record.*length);
      if (record.*value == nullptr && record.*length != 0) total.found.has_null_bytes = true;
    } else if (record.*length != 0) {
      total.found.segments += 2;
      total.last_piece = total.template sum<Record>();
    }
  }

  template <class Writer, class Entries>
  PAVO_ZORV_INLINE typename Writer::position write(Writer &writer, typename Writer::position at, const Record &record,
                                                   bool present, Entries &entries) const {
    if (!present) return at;
    if (!writer.referenced()) {
      at = writer.prepend_block(at, record.*value, record.*length);
    } else if (record.*length != 0 && entries.are_asked_for()) {
      entries.split(at, record.*value, record.*length);
    }
    at = writer.prepend_varint(at, static_cast<std::uint32_t>(record.*length));
    return prepend_key(writer, at, number, wire);
  }

  PAVO_ZORV_INLINE void collect(const Record &record, owned_memory &all) const {
    all.pointers |= reinterpret_cast<std::uintptr_t>(record.*value);
    all.lengths |= record.*length;
  }

  PAVO_ZORV_INLINE bool copy(Record &record, const Record &source, copy_context &copying) const {
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
    if (!releaser.referenced) releaser.release_block(record.*value);
  }

  PAVO_ZORV_INLINE int compare(const Record &a, const Record &b) const {
    const std::uint64_t common = std::min(a.*length, b.*length);
    if (common != 0) {
      const int difference = no_builtin(std::memcmp)(a.*value, b.*value, static_cast<std::size_t>(common));
      if (difference != 0) return difference;
    }
    return compare_values(a.*length, b.*length);
  }
};

}  // namespace pavo_zorv
