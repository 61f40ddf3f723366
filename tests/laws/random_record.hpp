// Random records of any message. What they point to lives in an arena of the test.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "naive/view.hpp"
#include "random.hpp"
#include "support.hpp"

namespace test {

using naive::kind;
using naive::member;
using naive::view;
using naive::view_of;

// Memory for what records point to, all of it released at once. Blocks are of exactly the size asked for: the
// sanitizer sees one byte more.
class arena {
 public:
  void *block(std::size_t size) {
    blocks_.emplace_back(std::malloc(size), std::free);
    return blocks_.back().get();
  }
  template <class Element>
  Element *array(std::size_t count) {
    return static_cast<Element *>(block(count * sizeof(Element)));
  }

 private:
  std::vector<std::unique_ptr<void, void (*)(void *)>> blocks_;
};

// What a record is like.
struct shape {
  // Survives the wire: no member without its bit, no bit without content, flags 0 or 1.
  bool canonical = true;
  // For the others: the greatest stored flag, and members that only some operations accept.
  unsigned greatest_flag = 127;
  bool null_strings = true;  // a string may be null though its bit is set
  bool null_arrays = false;  // a list without its bit may have a count and no array
  bool null_bytes = false;   // bytes may have a length and no block
  unsigned presence = 50;    // percent
  unsigned longest_list = 3;
  unsigned longest_text = 12;
  bool few_values = false;  // so few that records resemble each other
};

namespace shapes {
inline constexpr shape canonical{};
inline constexpr shape full{.presence = 100};
inline constexpr shape alike{.presence = 80, .longest_list = 2, .longest_text = 2, .few_values = true};
// Anything whose encoding can be read again.
inline constexpr shape readable{.canonical = false};
// Anything that may be copied.
inline constexpr shape copyable{.canonical = false, .greatest_flag = 255, .null_arrays = true};
// Anything that may be encoded.
inline constexpr shape encodable{.canonical = false, .greatest_flag = 255, .null_arrays = true, .null_bytes = true};
// Anything that may be compared.
inline constexpr shape comparable{.canonical = false,
                                  .greatest_flag = 255,
                                  .null_strings = false,
                                  .longest_list = 2,
                                  .longest_text = 2,
                                  .few_values = true};
}  // namespace shapes

class record_maker {
 public:
  record_maker(random_numbers &random, arena &arena, const shape &shape)
      : random_(random), arena_(arena), shape_(shape) {}

  void fill(view record) {
    const naive::message &type = record.type();
    std::memset(record.data(), shape_.canonical ? 0 : 0x5c, type.size);
    record.set_presence(shape_.canonical ? 0 : any_spare_bits(type));
    for (const member &member : type.members) fill_field(record, member);
  }

  // Makes one member anew, at any depth. Where bits belong to no member, these too.
  void change(view record) {
    const naive::message &type = record.type();
    if (!shape_.canonical) record.set_presence((record.presence() & type.mask()) | any_spare_bits(type));
    const member &member = type.members[static_cast<std::size_t>(random_.below(type.members.size()))];
    const bool inside = record.has(member) && random_.percent(70);
    if (inside && member.kind == kind::nested) return change(record.nested(member));
    if (inside && member.kind == kind::message_list && record.count(member) != 0) {
      return change(record.element(member, random_.below(record.count(member))));
    }
    fill_field(record, member);
  }

 private:
  std::uint32_t any_spare_bits(const naive::message &type) {
    return static_cast<std::uint32_t>(random_.any()) & type.all_bits() & ~type.mask();
  }

  void fill_field(view record, const member &member) {
    const bool wanted = random_.percent(shape_.presence);
    const bool filled = wanted || !shape_.canonical;
    record.set_has(member, wanted);
    switch (member.kind) {
      case kind::flag:
        record.set_number(member, filled ? random_.below(shape_.canonical ? 2 : shape_.greatest_flag + 1) : 0);
        break;
      case kind::integer:
        record.set_number(member, filled ? number() : 0);
        break;
      case kind::string: {
        const bool may_be_null = !shape_.canonical && (shape_.null_strings || !wanted);
        record.set_pointer(member, filled && !(may_be_null && random_.percent(25)) ? text() : nullptr);
        break;
      }
      case kind::bytes: {
        const std::size_t length = filled ? text_length() : 0;
        record.set_count(member, length);
        record.set_pointer(member, filled ? bytes_or_null(length) : nullptr);
        break;
      }
      case kind::nested:
        if (filled) {
          fill(record.nested(member));
        } else {
          std::memset(record.nested(member).data(), 0, member.nested->size);
        }
        break;
      case kind::integer_list:
      case kind::message_list:
        fill_list(record, member, wanted);
        break;
    }
  }

  void fill_list(view record, const member &member, bool wanted) {
    const std::size_t count = list_length(member, wanted);
    const bool may_be_null = shape_.null_arrays && !wanted;
    const bool labels = count > 3 && random_.percent(50);
    const bool null = shape_.canonical ? count == 0 : may_be_null && random_.percent(25);
    record.set_count(member, count);
    record.set_pointer(member, null ? nullptr : arena_.block(count * member.element_size()));
    for (std::size_t i = 0; !null && i < count; ++i) {
      if (member.kind == kind::integer_list) {
        record.set_element_number(member, i, labels && random_.percent(97) ? random_.label() : number());
      } else {
        fill(record.element(member, i));
      }
    }
  }

  std::size_t list_length(const member &member, bool wanted) {
    if (shape_.canonical && !wanted) return 0;
    // Now and then so long that it is worth a loop of its own.
    if (member.kind == kind::integer_list && !shape_.few_values && random_.percent(4))
      return static_cast<std::size_t>(random_.from(1, 100));
    return static_cast<std::size_t>(random_.from(shape_.canonical ? 1 : 0, shape_.longest_list));
  }

  std::uint64_t number() {
    static constexpr std::uint64_t few[] = {0, 1, 0x7f, 0x80, 0x7fffffff, 0x80000000, 0xffffffffffffffff};
    return shape_.few_values ? few[random_.below(std::size(few))] : random_.number();
  }

  std::size_t text_length() {
    // Now and then so long that the length takes two bytes.
    if (!shape_.few_values && random_.percent(3)) return static_cast<std::size_t>(random_.from(126, 131));
    return static_cast<std::size_t>(random_.from(0, shape_.longest_text));
  }

  unsigned char text_byte() {
    static constexpr unsigned char few[] = {'a', 'b', 0xff};
    return shape_.few_values ? few[random_.below(std::size(few))] : static_cast<unsigned char>(random_.from(1, 255));
  }

  char *text() {
    const std::size_t length = text_length();
    char *const result = arena_.array<char>(length + 1);
    for (std::size_t i = 0; i < length; ++i) result[i] = static_cast<char>(text_byte());
    result[length] = '\0';
    return result;
  }

  unsigned char *bytes_or_null(std::size_t length) {
    if (shape_.null_bytes && random_.percent(25)) return nullptr;
    auto *const result = arena_.array<unsigned char>(length);
    for (std::size_t i = 0; i < length; ++i) result[i] = random_.percent(20) ? std::uint8_t{0} : text_byte();
    return result;
  }

  random_numbers &random_;
  arena &arena_;
  const shape &shape_;
};

// A record with what it points to.
class random_record : public view {
 public:
  random_record(const naive::message &type, random_numbers &random, const shape &shape)
      : view(type, nullptr), arena_(std::make_unique<arena>()) {
    static_cast<view &>(*this) = view(type, arena_->block(type.size));
    record_maker(random, *arena_, shape).fill(*this);
  }
  void change(random_numbers &random, const shape &shape) { record_maker(random, *arena_, shape).change(*this); }
  template <class Record>
  Record &as() const {
    return *reinterpret_cast<Record *>(data());
  }

 private:
  std::unique_ptr<arena> arena_;
};

// Fills a record with random bytes, so that what an operation leaves untouched shows.
inline void fill_with_rubbish(view record, random_numbers &random) {
  for (std::size_t i = 0; i < record.type().size; ++i) record.data()[i] = random.byte();
}

}  // namespace test
