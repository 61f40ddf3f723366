// Random records of any message. What they point to lives in an arena of the test.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "description.hpp"

namespace test {

// The same numbers everywhere for the same seed.
class dice {
 public:
  explicit dice(std::uint64_t seed) : engine_(seed) {}
  std::uint64_t any() { return engine_(); }
  std::uint64_t below(std::uint64_t limit) { return engine_() % limit; }
  std::uint64_t from(std::uint64_t first, std::uint64_t last) { return first + below(last - first + 1); }
  bool percent(unsigned chance) { return below(100) < chance; }
  unsigned char byte() { return static_cast<unsigned char>(any()); }

  // Every number of bits equally often, and the edges of every number of varint bytes.
  std::uint64_t number() {
    const std::uint64_t bits = below(65);
    if (bits == 0) return 0;
    if (percent(20)) return (std::uint64_t{1} << below(10) * 7) - below(2);
    return any() >> (64 - bits);
  }

  // A number of three varint bytes, as most labels are.
  std::uint64_t label() { return from(0x4000, 0x1fffff); }

 private:
  std::mt19937_64 engine_;
};

// Memory for what records point to, all of it given back at once. Blocks are of exactly the size asked for: the
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

// What kind of record is wanted.
struct recipe {
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

namespace recipes {
inline constexpr recipe canonical{};
inline constexpr recipe full{.presence = 100};
inline constexpr recipe alike{.presence = 80, .longest_list = 2, .longest_text = 2, .few_values = true};
// Anything whose encoding can be read again.
inline constexpr recipe readable{.canonical = false};
// Anything that may be copied.
inline constexpr recipe copyable{.canonical = false, .greatest_flag = 255, .null_arrays = true};
// Anything that may be encoded.
inline constexpr recipe encodable{.canonical = false, .greatest_flag = 255, .null_arrays = true, .null_bytes = true};
// Anything that may be compared.
inline constexpr recipe comparable{.canonical = false,
                                   .greatest_flag = 255,
                                   .null_strings = false,
                                   .longest_list = 2,
                                   .longest_text = 2,
                                   .few_values = true};
}  // namespace recipes

class record_maker {
 public:
  record_maker(dice &dice, arena &arena, const recipe &recipe) : dice_(dice), arena_(arena), recipe_(recipe) {}

  void fill(view record) {
    const message_type &type = record.type();
    std::memset(record.data(), recipe_.canonical ? 0 : 0x5c, type.size);
    record.set_presence(recipe_.canonical ? 0 : unowned_bits(type));
    for (const field &field : type.fields) fill_field(record, field);
  }

  // Makes one member anew, at any depth. Where bits belong to no field, these too.
  void change(view record) {
    const message_type &type = record.type();
    if (!recipe_.canonical) record.set_presence((record.presence() & type.mask()) | unowned_bits(type));
    const field &field = type.fields[static_cast<std::size_t>(dice_.below(type.fields.size()))];
    const bool inside = record.has(field) && dice_.percent(70);
    if (inside && field.kind == kind::nested) return change(record.nested(field));
    if (inside && field.kind == kind::message_list && record.count(field) != 0) {
      return change(record.element(field, dice_.below(record.count(field))));
    }
    fill_field(record, field);
  }

 private:
  std::uint32_t unowned_bits(const message_type &type) {
    return static_cast<std::uint32_t>(dice_.any()) & type.all_bits() & ~type.mask();
  }

  void fill_field(view record, const field &field) {
    const bool wanted = dice_.percent(recipe_.presence);
    const bool filled = wanted || !recipe_.canonical;
    record.set_has(field, wanted);
    switch (field.kind) {
      case kind::flag:
        record.set_number(field, filled ? dice_.below(recipe_.canonical ? 2 : recipe_.greatest_flag + 1) : 0);
        break;
      case kind::integer:
        record.set_number(field, filled ? number() : 0);
        break;
      case kind::string: {
        const bool may_be_null = !recipe_.canonical && (recipe_.null_strings || !wanted);
        record.set_pointer(field, filled && !(may_be_null && dice_.percent(25)) ? text() : nullptr);
        break;
      }
      case kind::bytes: {
        const std::size_t length = filled ? text_length() : 0;
        record.set_count(field, length);
        record.set_pointer(field, filled ? bytes_or_null(length) : nullptr);
        break;
      }
      case kind::nested:
        if (filled) {
          fill(record.nested(field));
        } else {
          std::memset(record.nested(field).data(), 0, field.nested->size);
        }
        break;
      case kind::integer_list:
      case kind::message_list:
        fill_list(record, field, wanted);
        break;
    }
  }

  void fill_list(view record, const field &field, bool wanted) {
    const std::size_t count = list_length(field, wanted);
    const bool may_be_null = recipe_.null_arrays && !wanted;
    const bool labels = count > 3 && dice_.percent(50);
    const bool null = recipe_.canonical ? count == 0 : may_be_null && dice_.percent(25);
    record.set_count(field, count);
    record.set_pointer(field, null ? nullptr : arena_.block(count * field.element_size()));
    for (std::size_t i = 0; !null && i < count; ++i) {
      if (field.kind == kind::integer_list) {
        record.set_element_number(field, i, labels && dice_.percent(97) ? dice_.label() : number());
      } else {
        fill(record.element(field, i));
      }
    }
  }

  std::size_t list_length(const field &field, bool wanted) {
    if (recipe_.canonical && !wanted) return 0;
    // Now and then so long that it is worth a loop of its own.
    if (field.kind == kind::integer_list && !recipe_.few_values && dice_.percent(4))
      return static_cast<std::size_t>(dice_.from(1, 100));
    return static_cast<std::size_t>(dice_.from(recipe_.canonical ? 1 : 0, recipe_.longest_list));
  }

  std::uint64_t number() {
    static constexpr std::uint64_t few[] = {0, 1, 0x7f, 0x80, 0x7fffffff, 0x80000000, 0xffffffffffffffff};
    return recipe_.few_values ? few[dice_.below(std::size(few))] : dice_.number();
  }

  std::size_t text_length() {
    // Now and then so long that the length takes two bytes.
    if (!recipe_.few_values && dice_.percent(3)) return static_cast<std::size_t>(dice_.from(126, 131));
    return static_cast<std::size_t>(dice_.from(0, recipe_.longest_text));
  }

  unsigned char text_byte() {
    static constexpr unsigned char few[] = {'a', 'b', 0xff};
    return recipe_.few_values ? few[dice_.below(std::size(few))] : static_cast<unsigned char>(dice_.from(1, 255));
  }

  char *text() {
    const std::size_t length = text_length();
    char *const result = arena_.array<char>(length + 1);
    for (std::size_t i = 0; i < length; ++i) result[i] = static_cast<char>(text_byte());
    result[length] = '\0';
    return result;
  }

  unsigned char *bytes_or_null(std::size_t length) {
    if (recipe_.null_bytes && dice_.percent(25)) return nullptr;
    auto *const result = arena_.array<unsigned char>(length);
    for (std::size_t i = 0; i < length; ++i) result[i] = dice_.percent(20) ? std::uint8_t{0} : text_byte();
    return result;
  }

  dice &dice_;
  arena &arena_;
  const recipe &recipe_;
};

// A record with what it points to.
class random_record : public view {
 public:
  random_record(const message_type &type, dice &dice, const recipe &recipe)
      : view(type, nullptr), arena_(std::make_unique<arena>()) {
    static_cast<view &>(*this) = view(type, arena_->block(type.size));
    record_maker(dice, *arena_, recipe).fill(*this);
  }
  void change(dice &dice, const recipe &recipe) { record_maker(dice, *arena_, recipe).change(*this); }
  template <class Record>
  Record &as() const {
    return *static_cast<Record *>(data());
  }

 private:
  std::unique_ptr<arena> arena_;
};

}  // namespace test
