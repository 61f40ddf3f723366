// A second encoder, as naive as the decoder: bytes appended one by one, nested messages encoded apart and copied in.
// It knows the messages from their statement in messages.hpp, and nothing of the library but its header. What it makes
// may be longer than memory: of strings and bytes it keeps only where they lie, and bytes with a length and no block
// are a place without content.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "view.hpp"

namespace naive {

class encoding {
 public:
  explicit encoding(view record, bool referenced = false) : referenced_(referenced) {
    for (const member &member : record.type().members) {
      // A nested message needs no bit if there is something in it.
      if (member.kind == kind::nested) {
        const encoding inner(record.nested(member), referenced);
        if (record.has(member) || inner.length_ != 0) nested(member, inner);
      } else if (record.has(member)) {
        field(record, member);
      }
    }
    if (!is_split_ && length_ != 0) entries_.push_back({entry::message, 0, 0, nullptr, length_});
    if (is_split_ && length_ != split_) entries_.push_back({entry::rest, 0, split_, nullptr, length_ - split_});
  }

  // Whether a size can say how long it is.
  bool has_size() const { return !is_beyond_ && length_ <= SIZE_MAX; }
  std::uint64_t length() const { return length_; }
  std::size_t size() const {
    if (!has_size()) broken("a size of what is longer than memory");
    return static_cast<std::size_t>(length_);
  }
  std::size_t entries() const { return entries_.size(); }
  // What a buffer holds after a call. Each string and each block of bytes is written whole or not at all.
  std::vector<unsigned char> in_buffer(std::vector<unsigned char> before) const {
    for (const part &one : parts_) {
      if (one.first >= before.size()) break;
      const std::size_t room = before.size() - static_cast<std::size_t>(one.first);
      if (one.is_block && (one.block == nullptr || one.length > room)) continue;
      const unsigned char *const from = one.is_block ? one.block : plain_.data() + one.at;
      std::copy_n(from, std::min(room, static_cast<std::size_t>(one.length)), before.data() + one.first);
    }
    return before;
  }

  // All of it, with zeros for blocks that are not there.
  std::vector<unsigned char> bytes() const { return in_buffer(std::vector<unsigned char>(size())); }

  // The fields of the message one by one, the elements of a list each for itself.
  std::vector<std::vector<unsigned char>> fields() const {
    const std::vector<unsigned char> all = bytes();
    std::vector<std::vector<unsigned char>> result;
    auto start = all.begin();
    for (const std::uint64_t end_position : field_ends_) {
      const auto end = all.begin() + static_cast<std::ptrdiff_t>(end_position);
      result.emplace_back(start, end);
      start = end;
    }
    return result;
  }

  // An entry of the table after a call with a buffer, null or not, and its length. A message of which no byte is in
  // the buffer starts nowhere, and its rest at its place in the message, as a number.
  pavo_zorv_segment in_table(std::size_t index, const unsigned char *buffer, std::size_t length) const {
    const entry &one = entries_[index];
    if (one.what == entry::referenced) return {one.block, one.length};
    const bool has_start = buffer != nullptr && (one.message_start == 0 || one.message_start < length);
    std::uintptr_t start = has_start ? reinterpret_cast<std::uintptr_t>(buffer) : 0;
    if (has_start) start += static_cast<std::uintptr_t>(one.message_start);
    if (one.what == entry::rest) start += static_cast<std::uintptr_t>(one.position);
    return {reinterpret_cast<const unsigned char *>(start), one.length};
  }

  // Whether an entry is of the outermost message, and whether it is of bytes outside the buffer.
  bool is_outermost(std::size_t index) const { return entries_[index].message_start == 0; }
  bool is_referenced(std::size_t index) const { return entries_[index].what == entry::referenced; }

 private:
  // A stretch of the encoding, one after another: plain bytes or a block. Positions count from the first byte.
  struct part {
    bool is_block;
    std::uint64_t first, length;
    const unsigned char *block;  // null for bytes that are not there
    std::size_t at;              // of plain bytes, in `plain_`
  };
  struct entry {
    enum { message, rest, referenced } what;
    std::uint64_t message_start;  // of the message, or of the message whose rest this is
    std::uint64_t position;       // of the rest within its message
    const unsigned char *block;   // referenced bytes
    std::uint64_t length;
  };

  void field(view record, const member &member) {
    switch (member.kind) {
      case kind::flag:
        key(member);
        byte(static_cast<unsigned char>(record.number(member)));
        return end_field();
      case kind::integer:
        key(member);
        varint(record.number(member));
        return end_field();
      case kind::string:
        if (record.text(member) == nullptr) return;
        return delimited(member, record.pointer(member), std::strlen(record.text(member)));
      case kind::bytes:
        if (!referenced_) return delimited(member, record.pointer(member), record.count(member));
        return reference(member, record.pointer(member), record.count(member));
      case kind::integer_list:
        for (std::uint64_t i = 0; i < record.count(member); ++i) {
          key(member);
          varint(record.element_number(member, i));
          end_field();
        }
        return;
      case kind::message_list:
        for (std::uint64_t i = 0; i < record.count(member); ++i) {
          nested(member, encoding(record.element(member, i), referenced_));
        }
        return;
      case kind::nested:
        break;
    }
    broken("a member of no kind");
  }

  void key(const member &member) { varint(member.number << 3 | member.wire_type()); }

  void varint(std::uint64_t value) {
    for (; value >= 128; value /= 128) byte(static_cast<unsigned char>(value % 128 + 128));
    byte(static_cast<unsigned char>(value));
  }

  void byte(unsigned char value) {
    if (parts_.empty() || parts_.back().is_block) parts_.push_back({false, length_, 0, nullptr, plain_.size()});
    plain_.push_back(value);
    ++parts_.back().length;
    add(1);
  }

  // A length takes 32 bits, whatever it is.
  void delimited(const member &member, const unsigned char *block, std::uint64_t length) {
    key(member);
    varint(static_cast<std::uint32_t>(length));
    if (length != 0) parts_.push_back({true, length_, length, block, 0});
    add(length);
    end_field();
  }

  // The bytes stay where they are: the table has an entry for what is before them, for them, and for the rest.
  void reference(const member &member, const unsigned char *block, std::uint64_t length) {
    key(member);
    varint(static_cast<std::uint32_t>(length));
    end_field();
    if (length == 0) return;
    is_split_ = true;
    split_ = length_;
    entries_.push_back({entry::message, 0, 0, nullptr, split_});
    entries_.push_back({entry::referenced, 0, 0, block, length});
  }

  void nested(const member &member, const encoding &inner) {
    key(member);
    varint(static_cast<std::uint32_t>(inner.length_));
    for (part one : inner.parts_) {
      one.first += length_;
      one.at += plain_.size();
      parts_.push_back(one);
    }
    for (entry one : inner.entries_) {
      one.message_start += length_;
      entries_.push_back(one);
    }
    plain_.insert(plain_.end(), inner.plain_.begin(), inner.plain_.end());
    is_beyond_ |= inner.is_beyond_;
    add(inner.length_);
    end_field();
  }

  void end_field() { field_ends_.push_back(length_); }

  // What 64 bits cannot count stays at the most that they can: it is not empty.
  void add(std::uint64_t length) {
    if (length > UINT64_MAX - length_) is_beyond_ = true;
    length_ = is_beyond_ ? UINT64_MAX : length_ + length;
  }

  bool referenced_;
  std::vector<unsigned char> plain_;
  std::vector<part> parts_;
  std::vector<entry> entries_;
  std::vector<std::uint64_t> field_ends_;
  std::uint64_t length_ = 0;
  bool is_beyond_ = false;
  bool is_split_ = false;
  std::uint64_t split_ = 0;
};

}  // namespace naive
