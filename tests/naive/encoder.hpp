// A second encoder, as naive as the decoder: bytes appended one by one, nested messages encoded apart and copied in.
// It knows the messages from their statement in messages.hpp, and nothing of the library but its header. What it makes
// may be longer than memory: members of bytes with a length and no block are places without content.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "decoder.hpp"

namespace naive {

class encoding {
 public:
  // A stretch of the encoding, one after another: plain bytes; a block, which is written whole or not at all; or the
  // place of a block that is not there. Positions count from the message's first byte.
  struct part {
    enum { plain, block, gap } what;
    std::uint64_t first, length;
    std::size_t at;  // in `bytes_`
  };
  struct entry {
    enum { message, rest, referenced } what;
    std::uint64_t message_start;  // of the message, or of the message whose rest this is
    std::uint64_t position;       // of the rest within its message
    const unsigned char *block;   // referenced bytes
    std::uint64_t length;
  };

  static encoding of(const message &type, const unsigned char *record, bool referenced) {
    encoding out;
    bool is_split = false;
    std::uint64_t split = 0;
    for (std::size_t i = 0; i < type.members.size(); ++i) {
      const member &field = type.members[i];
      const bool present = (presence_of(type, record) >> i & 1) != 0;
      const auto number = static_cast<unsigned>(i + 1);
      const unsigned char *const at = record + field.offset;
      if (field.what == sort::message) {
        const encoding inner = of(*field.nested, at, referenced);
        if (present || inner.length_ != 0) out.nested(number, inner);
      } else if (!present) {
        continue;
      } else if (field.what == sort::flag) {
        out.varint(number * 8);
        out.byte(*at);
      } else if (field.what == sort::number) {
        out.varint(number * 8);
        out.varint(load(at, field.width));
      } else if (field.what == sort::bytes) {
        const std::uint64_t length = count_of(field, record);
        out.varint(number * 8 + 2);
        out.varint(static_cast<std::uint32_t>(length));
        if (!referenced) {
          out.block(pointer_at(at), length);
        } else if (length != 0) {
          is_split = true;
          split = out.length_;
          out.entries_.push_back({entry::message, 0, 0, nullptr, split});
          out.entries_.push_back({entry::referenced, 0, 0, pointer_at(at), length});
        }
      } else if (field.what == sort::text) {
        const unsigned char *const text = pointer_at(at);
        if (text == nullptr) continue;
        const std::size_t length = std::strlen(reinterpret_cast<const char *>(text));
        out.varint(number * 8 + 2);
        out.varint(static_cast<std::uint32_t>(length));
        out.block(text, length);
      } else {
        const unsigned char *const array = pointer_at(at);
        for (std::uint64_t index = 0; index < count_of(field, record); ++index) {
          const unsigned char *const element = array + index * field.element_size();
          if (field.what == sort::messages) {
            out.nested(number, of(*field.nested, element, referenced));
          } else {
            out.varint(number * 8);
            out.varint(load(element, field.width));
          }
        }
      }
    }
    if (!is_split && out.length_ != 0) out.entries_.push_back({entry::message, 0, 0, nullptr, out.length_});
    if (is_split && out.length_ != split) {
      out.entries_.push_back({entry::rest, 0, split, nullptr, out.length_ - split});
    }
    return out;
  }

  // Whether a size can say how long it is.
  bool has_size() const { return !is_beyond_ && length_ <= SIZE_MAX; }
  std::uint64_t length() const { return length_; }
  const std::vector<part> &parts() const { return parts_; }
  std::size_t entries() const { return entries_.size(); }

  // What a buffer holds after a call, which held `fill` everywhere before.
  std::vector<unsigned char> in_buffer(std::size_t length, unsigned char fill) const {
    std::vector<unsigned char> result(length, fill);
    for (const part &one : parts_) {
      if (one.first >= length || one.what == part::gap) continue;
      const std::size_t room = length - static_cast<std::size_t>(one.first);
      if (one.what == part::block && one.length > room) continue;
      std::copy_n(bytes_.data() + one.at, std::min(room, static_cast<std::size_t>(one.length)),
                  result.data() + one.first);
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

 private:
  void byte(unsigned char value) {
    if (parts_.empty() || parts_.back().what != part::plain) {
      parts_.push_back({part::plain, length_, 0, bytes_.size()});
    }
    bytes_.push_back(value);
    ++parts_.back().length;
    add(1);
  }

  void varint(std::uint64_t value) {
    for (; value >= 128; value /= 128) byte(static_cast<unsigned char>(value % 128 + 128));
    byte(static_cast<unsigned char>(value));
  }

  void block(const unsigned char *start, std::uint64_t length) {
    if (length == 0) return;
    parts_.push_back({start != nullptr ? part::block : part::gap, length_, length, bytes_.size()});
    if (start != nullptr) bytes_.insert(bytes_.end(), start, start + length);
    add(length);
  }

  void nested(unsigned number, const encoding &inner) {
    varint(number * 8 + 2);
    varint(static_cast<std::uint32_t>(inner.length_));
    for (part one : inner.parts_) {
      one.first += length_;
      one.at += bytes_.size();
      parts_.push_back(one);
    }
    for (entry one : inner.entries_) {
      one.message_start += length_;
      entries_.push_back(one);
    }
    bytes_.insert(bytes_.end(), inner.bytes_.begin(), inner.bytes_.end());
    is_beyond_ |= inner.is_beyond_;
    add(inner.length_);
  }

  // What 64 bits cannot count stays at the most that they can: it is not empty.
  void add(std::uint64_t length) {
    if (length > UINT64_MAX - length_) is_beyond_ = true;
    length_ = is_beyond_ ? UINT64_MAX : length_ + length;
  }

  std::vector<unsigned char> bytes_;
  std::vector<part> parts_;
  std::vector<entry> entries_;
  std::uint64_t length_ = 0;
  bool is_beyond_ = false;
};

}  // namespace naive
