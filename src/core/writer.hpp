// Where bytes go. An encoding is written from its last byte to its first, so that a nested message is complete before
// its length is written. A writer holds no position: that is handed from field to field, and stays in a register.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "blocks.hpp"
#include "segments.hpp"
#include "wire.hpp"

namespace pavo_zorv {

// Writes a small message of which the size is known, without a table of segments. Writing a string calls nothing of the
// library and looks at no state of the writer, so that the compiler need not measure the string again: up to a sixth
// less work.
class unchecked_writer {
 public:
  using position = byte *;

  unchecked_writer(byte *first, bool referenced) : first_(first), referenced_(referenced) {}

  byte *first() const { return first_; }
  bool referenced() const { return referenced_; }  // bytes members are left where they are
  segment_table *table() const { return nullptr; }

  // Where a message lies that was written down to `at`.
  byte *address(position at) const { return at; }

  PAVO_ZORV_INLINE position prepend_byte(position at, byte value) const {
    *--at = value;
    return at;
  }

  // As a function of `first`, in wire.hpp, it would take 3 % more instructions for an OAM result.
  template <class Value>
  PAVO_ZORV_INLINE position prepend_varint(position at, Value value) const {
    if (value < 0x80) return prepend_byte(at, static_cast<byte>(value));
    if (value < 0x4000)
      return prepend_byte(prepend_byte(at, static_cast<byte>(value >> 7)), static_cast<byte>(value | 0x80));
    return prepend_word(first_, at, value);
  }

  PAVO_ZORV_INLINE position prepend_block(position at, const void *block, std::uint64_t length) const {
    const auto size = static_cast<std::size_t>(length);
    at -= size;
    copy_bytes(at, block, size);
    return at;
  }

 private:
  byte *first_;
  bool referenced_;
};

// Writes without a look at each byte. One class for both uses, so that each message is compiled once for them:
//
//   exact     The size of the encoding is known, and it ends where it should: reserving always succeeds.
//   scratch   The size is not known. What has no bound of its own, strings, bytes and lists, reserves its bytes above
//             the limit first; all else that a message may write fits into the slop below the limit.
//
// A store may reach before the bytes it is about, down to `first`: those are not yet written.
class writer : public unchecked_writer {
 public:
  static writer exact(byte *buffer, segment_table *table, bool referenced) { return {buffer, 0, table, referenced}; }
  static writer scratch(byte *space, std::size_t slop, bool referenced) {
    return {space, reinterpret_cast<std::uintptr_t>(space + slop), nullptr, referenced};
  }

  segment_table *table() const { return table_; }

  // Whether so many bytes are free above the limit.
  PAVO_ZORV_INLINE bool has_room(const byte *at, std::uint64_t size) const {
    const auto address = reinterpret_cast<std::uintptr_t>(at);
    return address >= limit_ && address - limit_ >= size;
  }

  // The same for bytes that are to be written. Once it has failed, writing is overflowed for good: what is still
  // written stays inside the block, and is thrown away.
  PAVO_ZORV_INLINE bool reserve(const byte *at, std::uint64_t size) {
    if (has_room(at, size)) [[likely]]
      return true;
    overflowed_ = true;
    return false;
  }

  bool overflowed() const { return overflowed_; }

  // A null block of some length leaves the caller's buffer as it was, which scratch memory cannot do: such an encoding
  // is measured, and goes to the clipped writer.
  PAVO_ZORV_NOINLINE position prepend_block(position at, const void *block, std::uint64_t length) {
    if (!reserve(at, length)) return at;
    if (block == nullptr && length != 0) {
      overflowed_ = true;
      return at;
    }
    return unchecked_writer::prepend_block(at, block, length);
  }

 private:
  writer(byte *first, std::uintptr_t limit, segment_table *table, bool referenced)
      : unchecked_writer(first, referenced), limit_(limit), table_(table) {}

  std::uintptr_t limit_;  // an address; 0 where the size is known, so that nothing lies below it
  segment_table *table_;
  bool overflowed_ = false;
};

// Writes what lies below the length of a short buffer, byte by byte; a block that does not fit whole is left out, and
// a null one leaves the buffer as it was. A cold path: nothing is inlined.
class clipped_writer {
 public:
  // From the start of the encoding, which may end beyond all memory.
  using position = std::size_t;

  clipped_writer(byte *buffer, std::size_t length, segment_table *table, bool referenced)
      : buffer_(buffer), length_(length), table_(table), referenced_(referenced) {}

  segment_table *table() const { return table_; }
  bool referenced() const { return referenced_; }
  static constexpr bool reserve(position, std::uint64_t) { return true; }

  // Null for a message past the end of the buffer; but the outermost one, at 0, is where the buffer is.
  byte *address(position at) const { return at == 0 || at < length_ ? buffer_ + at : nullptr; }

  position prepend_byte(position at, byte value) const {
    if (--at < length_) buffer_[at] = value;
    return at;
  }

  template <class Value>
  PAVO_ZORV_NOINLINE position prepend_varint(position at, Value value) const {
    byte bytes[varint_size(UINT64_MAX)];
    const byte *const first = pavo_zorv::prepend_varint(bytes + sizeof bytes, value);
    for (const byte *next = bytes + sizeof bytes; next != first;) at = prepend_byte(at, *--next);
    return at;
  }

  PAVO_ZORV_NOINLINE position prepend_block(position at, const void *block, std::uint64_t length) const {
    const auto size = static_cast<std::size_t>(length);
    at -= size;
    if (block != nullptr && at < length_ && size <= length_ - at) std::memcpy(buffer_ + at, block, size);
    return at;
  }

 private:
  byte *buffer_;
  std::size_t length_;
  segment_table *table_;
  bool referenced_;
};

template <class Writer>
PAVO_ZORV_INLINE typename Writer::position prepend_key(const Writer &writer, typename Writer::position at,
                                                       unsigned number, wire_type type) {
  return writer.prepend_varint(at, key_of(number, type));
}

}  // namespace pavo_zorv
