// What a record owns, what a copy of it asks for and holds, and whether two records are the same, member by member.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "random_record.hpp"

namespace test {

// The blocks that a record owns, in the order in which they are released.
inline void add_owned_blocks(view record, bool referenced, std::vector<void *> &blocks) {
  for (const field &field : record.type().fields) {
    if (field.is_number()) continue;
    if (field.kind == kind::nested) {
      add_owned_blocks(record.nested(field), referenced, blocks);
      continue;
    }
    void *const block = record.pointer(field);
    if (block == nullptr || (field.kind == kind::bytes && referenced)) continue;
    for (std::uint64_t i = 0; field.kind == kind::message_list && i < record.count(field); ++i) {
      add_owned_blocks(record.element(field, i), referenced, blocks);
    }
    blocks.push_back(block);
  }
}

inline std::vector<void *> owned_blocks(view record, bool referenced = false) {
  std::vector<void *> blocks;
  add_owned_blocks(record, referenced, blocks);
  return blocks;
}

// The presence bits of no field, of a record and those held inline in it.
inline void add_unowned_bits(view record, std::vector<std::uint32_t> &bits) {
  bits.push_back(record.presence() & ~record.type().mask());
  for (const field &field : record.type().fields) {
    if (field.kind == kind::nested) add_unowned_bits(record.nested(field), bits);
  }
}

inline std::vector<std::uint32_t> unowned_bits(view record) {
  std::vector<std::uint32_t> bits;
  add_unowned_bits(record, bits);
  return bits;
}

// Fills a record with rubbish, so that what an operation leaves untouched shows.
inline void litter(view record, dice &dice) {
  auto *const start = static_cast<unsigned char *>(record.data());
  for (std::size_t i = 0; i < record.type().size; ++i) start[i] = dice.byte();
}

inline bool same_content(const void *a, const void *b, std::uint64_t length) {
  return length == 0 || std::memcmp(a, b, static_cast<std::size_t>(length)) == 0;
}

// Where two records differ: the member's name, or nothing. Pointers need not be the same, what they lead to must; with
// `same_bytes`, bytes members must point to the same place. All presence bits count, those of no field too.
inline std::string difference(view a, view b, bool same_bytes) {
  for (const field &field : a.type().fields) {
    const std::string name = field.name;
    if (field.is_number()) {
      if (a.number(field) != b.number(field)) return name;
      continue;
    }
    if (field.kind == kind::nested) {
      const std::string inner = difference(a.nested(field), b.nested(field), same_bytes);
      if (!inner.empty()) return name + "." + inner;
      continue;
    }
    if (field.kind != kind::string && a.count(field) != b.count(field)) return name + "'s count";
    const bool both = a.pointer(field) != nullptr && b.pointer(field) != nullptr;
    if (!both || (field.kind == kind::bytes && same_bytes)) {
      if (a.pointer(field) != b.pointer(field)) return name;
    } else if (field.kind == kind::string) {
      if (std::strcmp(a.text(field), b.text(field)) != 0) return name;
    } else if (field.kind == kind::bytes || field.kind == kind::integer_list) {
      const std::uint64_t size = a.count(field) * (field.kind == kind::bytes ? 1 : field.width);
      if (!same_content(a.pointer(field), b.pointer(field), size)) return name;
    } else {
      for (std::uint64_t i = 0; i < a.count(field); ++i) {
        const std::string inner = difference(a.element(field, i), b.element(field, i), same_bytes);
        if (!inner.empty()) return name + "[" + std::to_string(i) + "]." + inner;
      }
    }
  }
  return a.presence() == b.presence() ? "" : "presence";
}

// Follows a copy through its source: what is asked for, in order, and what each member of the copy must then be.
class copying_model {
 public:
  std::size_t fail_at = accountant::never;
  std::size_t fail_from = accountant::never;

  std::vector<std::size_t> sizes;
  bool complete = true;

  // Where the copy is not what it must be: the member's name, or nothing.
  std::string check(view source, view copy) {
    std::uint32_t presence = source.presence();
    for (const field &field : source.type().fields) {
      bool failed = false;
      const std::string wrong = check_member(field, source, copy, failed);
      if (!wrong.empty()) return wrong;
      if (failed) presence &= ~(std::uint32_t{1} << (field.number - 1));
    }
    return ((copy.presence() ^ presence) & source.type().mask()) == 0 ? "" : "presence";
  }

 private:
  bool granted(std::size_t size) {
    sizes.push_back(size);
    const bool result = sizes.size() - 1 != fail_at && sizes.size() - 1 < fail_from;
    complete &= result;
    return result;
  }

  std::string check_member(const field &field, view source, view copy, bool &failed) {
    const std::string name = field.name;
    if (field.is_number()) return source.number(field) == copy.number(field) ? "" : name;
    if (field.kind == kind::nested) {
      const std::string inner = check(source.nested(field), copy.nested(field));
      return inner.empty() ? "" : name + "." + inner;
    }

    const unsigned char *const from = source.pointer(field);
    const unsigned char *const to = copy.pointer(field);
    const bool is_text = field.kind == kind::string;
    const std::uint64_t count = from == nullptr ? 0
                                : is_text       ? std::strlen(source.text(field)) + 1
                                                : source.count(field);
    const std::uint64_t size = field.is_list() ? count * field.element_size() : count;
    failed = count != 0 && !granted(static_cast<std::size_t>(size));
    if (count == 0 || failed) return to == nullptr && (is_text || copy.count(field) == 0) ? "" : name;

    if (to == nullptr || to == from || (!is_text && copy.count(field) != count)) return name;
    if (field.kind != kind::message_list) return same_content(from, to, size) ? "" : name;
    for (std::uint64_t i = 0; i < count; ++i) {
      const std::string inner = check(source.element(field, i), copy.element(field, i));
      if (!inner.empty()) return name + "[" + std::to_string(i) + "]." + inner;
    }
    return "";
  }
};

}  // namespace test
