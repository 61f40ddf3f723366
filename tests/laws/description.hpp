// Messages as data: what the rows of a schema say, with the five operations, for tests that treat all messages alike.
// So the laws are compiled once, not once for every message.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <tuple>
#include <type_traits>
#include <vector>

#include "core/kinds.hpp"
#include "pavo_zorv_messages.h"
#include "support.hpp"

namespace test {

using pavo_zorv::kind;

struct message_type;

struct field {
  unsigned number = 0;
  const char *name = nullptr;
  pavo_zorv::kind kind = {};
  std::size_t offset = 0;        // of the value, the pointer, or the record held inline
  std::size_t count_offset = 0;  // of a list's count, or the length of bytes
  std::size_t width = 0;         // bytes of an integer, or of the integers of a list
  bool is_signed = false;
  const message_type *nested = nullptr;

  bool is_number() const { return kind == kind::flag || kind == kind::integer; }
  bool is_list() const { return kind == kind::integer_list || kind == kind::message_list; }
  bool is_varint() const { return is_number() || kind == kind::integer_list; }
  std::size_t element_size() const;
};

struct message_type {
  const char *name;
  std::size_t size;
  std::size_t presence_offset;
  std::size_t presence_width;
  bool takes_options;
  std::vector<field> fields;

  int (*decode)(void *, const unsigned char *, std::size_t, pavo_zorv_allocate, void *, std::uint32_t);
  std::size_t (*encode)(const void *, unsigned char *, std::size_t, pavo_zorv_segment *, std::uint32_t *,
                        std::uint32_t);
  int (*duplicate)(void *, const void *, pavo_zorv_allocate, void *);
  void (*free)(void *, pavo_zorv_release, void *, std::uint32_t);
  int (*compare)(const void *, const void *);

  // The presence bits that belong to fields.
  std::uint32_t mask() const { return static_cast<std::uint32_t>((std::uint64_t{1} << fields.size()) - 1); }
  // Those that the flags have room for.
  std::uint32_t all_bits() const { return static_cast<std::uint32_t>((std::uint64_t{1} << 8 * presence_width) - 1); }

  // The options words that make a difference.
  std::vector<std::uint32_t> modes() const {
    return takes_options ? std::vector<std::uint32_t>{0, PAVO_ZORV_REFERENCE} : std::vector<std::uint32_t>{0};
  }
};

inline void PrintTo(const message_type *type, std::ostream *out) { *out << type->name; }

inline std::size_t field::element_size() const { return kind == kind::message_list ? nested->size : width; }

inline bool is_referenced(std::uint32_t options) { return (options & PAVO_ZORV_REFERENCE) != 0; }

// A record of some message, somewhere.
class view {
 public:
  view(const message_type &type, void *record) : type_(&type), record_(static_cast<unsigned char *>(record)) {}

  const message_type &type() const { return *type_; }
  void *data() const { return record_; }

  std::uint32_t presence() const {
    return static_cast<std::uint32_t>(integer(type_->presence_offset, type_->presence_width));
  }
  void set_presence(std::uint32_t bits) const { set_integer(type_->presence_offset, type_->presence_width, bits); }
  bool has(const field &field) const { return (presence() >> (field.number - 1) & 1) != 0; }
  void set_has(const field &field, bool has) const {
    const std::uint32_t bit = std::uint32_t{1} << (field.number - 1);
    set_presence(has ? presence() | bit : presence() & ~bit);
  }

  // A flag or an integer: the pattern of its own width.
  std::uint64_t number(const field &field) const { return integer(field.offset, field.width); }
  void set_number(const field &field, std::uint64_t value) const { set_integer(field.offset, field.width, value); }

  // A string, a block of bytes or an array.
  unsigned char *pointer(const field &field) const {
    unsigned char *result;
    std::memcpy(&result, record_ + field.offset, sizeof result);
    return result;
  }
  void set_pointer(const field &field, void *pointer) const {
    std::memcpy(record_ + field.offset, &pointer, sizeof pointer);
  }
  const char *text(const field &field) const { return reinterpret_cast<const char *>(pointer(field)); }

  // The elements of a list, or the length of bytes.
  std::uint64_t count(const field &field) const { return integer(field.count_offset, count_width(field)); }
  void set_count(const field &field, std::uint64_t count) const {
    set_integer(field.count_offset, count_width(field), count);
  }

  view nested(const field &field) const { return {*field.nested, record_ + field.offset}; }
  view element(const field &field, std::uint64_t index) const {
    return {*field.nested, pointer(field) + index * field.nested->size};
  }
  std::uint64_t element_number(const field &field, std::uint64_t index) const {
    return load(pointer(field) + index * field.width, field.width);
  }
  void set_element_number(const field &field, std::uint64_t index, std::uint64_t value) const {
    store(pointer(field) + index * field.width, field.width, value);
  }

 private:
  static std::size_t count_width(const field &field) { return field.kind == kind::bytes ? 8 : 4; }

  template <class Value>
  static std::uint64_t load_as(const unsigned char *at) {
    Value value;
    std::memcpy(&value, at, sizeof value);
    return value;
  }
  static std::uint64_t load(const unsigned char *at, std::size_t width) {
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
  static void store(unsigned char *at, std::size_t width, std::uint64_t value) {
    if (width == 1) store_as<std::uint8_t>(at, value);
    if (width == 2) store_as<std::uint16_t>(at, value);
    if (width == 4) store_as<std::uint32_t>(at, value);
    if (width == 8) store_as<std::uint64_t>(at, value);
  }

  std::uint64_t integer(std::size_t offset, std::size_t width) const { return load(record_ + offset, width); }
  void set_integer(std::size_t offset, std::size_t width, std::uint64_t value) const {
    store(record_ + offset, width, value);
  }

  const message_type *type_;
  unsigned char *record_;
};

// --- From schemas to descriptions ---

// Whether a message's functions take the options word.
template <class Record>
inline constexpr bool takes_options = false;

#define PAVO_ZORV_TAKES_NO_OPTIONS(message)
#define PAVO_ZORV_TAKES_OPTIONS(message) \
  template <>                            \
  inline constexpr bool takes_options<message> = true;
PAVO_ZORV_EVERY_MESSAGE(PAVO_ZORV_TAKES_NO_OPTIONS, PAVO_ZORV_TAKES_OPTIONS)
#undef PAVO_ZORV_TAKES_OPTIONS
#undef PAVO_ZORV_TAKES_NO_OPTIONS

template <class Record>
const message_type &describe();

template <class Record, class Member>
std::size_t offset_of(Member Record::*member) {
  static const Record record{};
  return static_cast<std::size_t>(reinterpret_cast<const unsigned char *>(&(record.*member)) -
                                  reinterpret_cast<const unsigned char *>(&record));
}

template <class Record, std::size_t Index>
field describe_row() {
  constexpr auto &row = pavo_zorv::row_at<Record, Index>;
  using row_type = std::remove_cvref_t<decltype(row)>;
  field result;
  result.number = row.number;
  result.name = row.name;
  result.kind = row.type;
  result.offset = offset_of(std::get<0>(row.members()));
  if constexpr (std::tuple_size_v<decltype(row.members())> == 2) {
    result.count_offset = offset_of(std::get<1>(row.members()));
  }
  if constexpr (row.type == kind::flag) result.width = 1;
  if constexpr (row.type == kind::integer || row.type == kind::integer_list) {
    result.width = sizeof(typename row_type::element);
    result.is_signed = std::is_signed_v<typename row_type::element>;
  }
  if constexpr (row.type == kind::nested || row.type == kind::message_list) {
    result.nested = &describe<typename row_type::message>();
  }
  return result;
}

template <class Record>
const message_type &describe() {
  using calls = operations<Record>;
  static const message_type result = {calls::name, sizeof(Record), offset_of(&Record::presence),
                                      sizeof(Record::presence), takes_options<Record>,
                                      []<std::size_t... Index>(std::index_sequence<Index...>){
                                          return std::vector<field>{describe_row<Record, Index>()...};
}
(std::make_index_sequence<pavo_zorv::field_count<Record>>{}),
    [](void *out, const unsigned char *buffer, std::size_t length, pavo_zorv_allocate allocate, void *context,
       std::uint32_t options) {
      return calls::decode(static_cast<Record *>(out), buffer, length, allocate, context, options);
    },
    [](const void *in, unsigned char *buffer, std::size_t length, pavo_zorv_segment *segments, std::uint32_t *count,
       std::uint32_t options) {
      return calls::encode(static_cast<const Record *>(in), buffer, length, segments, count, options);
    },
    [](void *to, const void *from, pavo_zorv_allocate allocate, void *context) {
      return calls::duplicate(static_cast<Record *>(to), static_cast<const Record *>(from), allocate, context);
    },
    [](void *record, pavo_zorv_release release, void *context, std::uint32_t options) {
      calls::free(static_cast<Record *>(record), release, context, options);
    },
    [](const void *a, const void *b) {
      return calls::compare(static_cast<const Record *>(a), static_cast<const Record *>(b));
    },
};  // namespace test
return result;
}

// A record that has a type.
template <class Record>
view view_of(Record &record) {
  return {describe<Record>(), &record};
}

}  // namespace test
