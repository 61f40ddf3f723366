// A record of some message, somewhere in memory: its members, found by what messages.hpp says of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "messages.hpp"

namespace naive {

// Whoever made the record knows whether it may be changed.
class view {
 public:
  view(const message &type, const void *record)
      : type_(&type), record_(static_cast<unsigned char *>(const_cast<void *>(record))) {}

  const message &type() const { return *type_; }
  unsigned char *data() const { return record_; }

  std::uint32_t presence() const {
    return static_cast<std::uint32_t>(load(record_ + type_->presence_offset, type_->presence_width));
  }
  void set_presence(std::uint32_t bits) const { store(record_ + type_->presence_offset, type_->presence_width, bits); }
  bool has(const member &member) const { return (presence() & member.presence_bit()) != 0; }
  void set_has(const member &member, bool has) const {
    set_presence(has ? presence() | member.presence_bit() : presence() & ~member.presence_bit());
  }

  // A flag or an integer: the pattern of its own width.
  std::uint64_t number(const member &member) const { return load(record_ + member.offset, member.width); }
  void set_number(const member &member, std::uint64_t value) const {
    store(record_ + member.offset, member.width, value);
  }

  // A string, a block of bytes or an array.
  unsigned char *pointer(const member &member) const {
    unsigned char *result;
    std::memcpy(&result, record_ + member.offset, sizeof result);
    return result;
  }
  void set_pointer(const member &member, const void *pointer) const {
    std::memcpy(record_ + member.offset, &pointer, sizeof pointer);
  }
  const char *text(const member &member) const { return reinterpret_cast<const char *>(pointer(member)); }

  // The elements of a list, or the length of bytes.
  std::uint64_t count(const member &member) const { return load(record_ + member.count_offset, member.count_width()); }
  void set_count(const member &member, std::uint64_t count) const {
    store(record_ + member.count_offset, member.count_width(), count);
  }

  view nested(const member &member) const { return {*member.nested, record_ + member.offset}; }
  view element(const member &member, std::uint64_t index) const {
    return {*member.nested, pointer(member) + index * member.nested->size};
  }
  std::uint64_t element_number(const member &member, std::uint64_t index) const {
    return load(pointer(member) + index * member.width, member.width);
  }
  void set_element_number(const member &member, std::uint64_t index, std::uint64_t value) const {
    store(pointer(member) + index * member.width, member.width, value);
  }

 private:
  template <class Value>
  static std::uint64_t load_as(const unsigned char *at) {
    Value value;
    std::memcpy(&value, at, sizeof value);
    return value;
  }
  static std::uint64_t load(const unsigned char *at, unsigned width) {
    return width == 1   ? load_as<std::uint8_t>(at)
           : width == 2 ? load_as<std::uint16_t>(at)
           : width == 4 ? load_as<std::uint32_t>(at)
                        : load_as<std::uint64_t>(at);
  }
  template <class Value>
  static void store_as(unsigned char *at, std::uint64_t value) {
    const auto cut = static_cast<Value>(value);
    std::memcpy(at, &cut, sizeof cut);
  }
  static void store(unsigned char *at, unsigned width, std::uint64_t value) {
    if (width == 1) store_as<std::uint8_t>(at, value);
    if (width == 2) store_as<std::uint16_t>(at, value);
    if (width == 4) store_as<std::uint32_t>(at, value);
    if (width == 8) store_as<std::uint64_t>(at, value);
  }

  const message *type_;
  unsigned char *record_;
};

template <class Record>
view view_of(const Record &record) {
  return {message_of<Record>(), &record};
}

// Calls `visit` with each block that a record owns, itself not counted, in the order in which they are released.
template <class Visit>
void for_each_owned_block(view record, bool referenced, const Visit &visit) {
  for (const member &member : record.type().members) {
    if (member.is_scalar()) continue;
    if (member.kind == kind::nested) {
      for_each_owned_block(record.nested(member), referenced, visit);
      continue;
    }
    unsigned char *const block = record.pointer(member);
    if (block == nullptr || (member.kind == kind::bytes && referenced)) continue;
    for (std::uint64_t i = 0; member.kind == kind::message_list && i < record.count(member); ++i) {
      for_each_owned_block(record.element(member, i), referenced, visit);
    }
    visit(block);
  }
}

inline std::vector<void *> owned_blocks(view record, bool referenced = false) {
  std::vector<void *> blocks;
  for_each_owned_block(record, referenced, [&](void *block) { blocks.push_back(block); });
  return blocks;
}

inline std::size_t blocks_owned(view record, bool referenced = false) {
  std::size_t count = 0;
  for_each_owned_block(record, referenced, [&](void *) { ++count; });
  return count;
}

// The presence bits of no field, of a record and of those held inline in it.
inline std::vector<std::uint32_t> spare_bits(view record) {
  std::vector<std::uint32_t> bits{record.presence() & ~record.type().mask()};
  for (const member &member : record.type().members) {
    if (member.kind != kind::nested) continue;
    const std::vector<std::uint32_t> inner = spare_bits(record.nested(member));
    bits.insert(bits.end(), inner.begin(), inner.end());
  }
  return bits;
}

// Where two records differ: the way to the member, as numbers of fields and indices of elements ("7.2[0].1"), and what
// of it, or nothing. All presence bits count, those of no field too. What pointers lead to must be
// the same; by reference, bytes must lie in the same place. `size_of` gives the size of a block of the first record, or
// a negative number when it is none.
template <class SizeOf>
class comparison {
 public:
  comparison(bool referenced, SizeOf size_of) : referenced_(referenced), size_of_(size_of) {}

  std::string difference(view a, view b) const {
    const std::string found = inside(a, b);
    return found.empty() ? "" : std::string(a.type().name) + ": " + found;
  }

 private:
  std::string inside(view a, view b) const {
    for (const member &member : a.type().members) {
      std::string found;
      if (member.kind == kind::nested) {
        found = inside(a.nested(member), b.nested(member));
        if (!found.empty()) found = "." + found;
      } else if (member.is_scalar()) {
        if (a.number(member) != b.number(member)) found = ", the value";
      } else {
        found = block(member, a, b);
      }
      if (!found.empty()) return std::to_string(member.number) + found;
    }
    return a.presence() == b.presence() ? "" : "the presence flags";
  }

  std::string block(const member &member, view a, view b) const {
    const unsigned char *const left = a.pointer(member);
    const unsigned char *const right = b.pointer(member);
    if (member.has_count() && a.count(member) != b.count(member)) return ", the count";
    if (left == nullptr || right == nullptr || (member.kind == kind::bytes && referenced_)) {
      return left == right ? "" : ", the pointer";
    }
    const std::int64_t seen = size_of_(left);
    // A string may go on after a NUL.
    const std::uint64_t size = member.kind == kind::string  ? static_cast<std::uint64_t>(seen)
                               : member.kind == kind::bytes ? b.count(member)
                                                            : b.count(member) * member.element_size();
    if (seen < 0 || static_cast<std::uint64_t>(seen) != size) return ", the size of the block";
    if (member.kind != kind::message_list) {
      return size == 0 || std::memcmp(left, right, static_cast<std::size_t>(size)) == 0 ? "" : ", the content";
    }
    for (std::uint64_t i = 0; i < b.count(member); ++i) {
      const std::string found = inside(a.element(member, i), b.element(member, i));
      if (!found.empty()) return "[" + std::to_string(i) + "]." + found;
    }
    return "";
  }

  bool referenced_;
  SizeOf size_of_;
};

}  // namespace naive
