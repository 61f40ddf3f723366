// The messages as data: their names, their fields, and operations on records whose type is known only at run time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "arena.hpp"
#include "bytes.hpp"
#include "core/schema.hpp"
#include "core/wire.hpp"
#include "json_form.hpp"
#include "path.hpp"
#include "pavo_zorv.h"

namespace inspect {

using json = nlohmann::ordered_json;
using pavo_zorv::kind;
using pavo_zorv::wire_type;

struct message_type;
struct node;

struct field_type {
  unsigned number;
  const char *name;
  inspect::kind kind;
  wire_type wire;
  unsigned bits;  // of the integer, or of a list's elements; otherwise 0
  bool is_signed;
  const message_type *nested;               // of a nested message or a list of messages; otherwise null
  std::size_t offset;                       // of the member in the record
  std::optional<std::size_t> count_offset;  // of the member's count or length

  std::uint32_t presence_bit() const { return 1u << (number - 1); }
  bool is_list() const { return kind == kind::integer_list || kind == kind::message_list; }
};

struct message_type {
  const char *name;
  std::vector<field_type> fields;
  std::size_t record_size;
  std::size_t presence_offset;
  unsigned presence_bits;
  bool takes_options;

  // The exported functions. Those without an options word ignore it.
  int (*decode)(void *record, byte_view input, pavo_zorv_allocate allocate, void *context, std::uint32_t options);
  std::size_t (*encode)(const void *record, unsigned char *buffer, std::size_t length, pavo_zorv_segment *segments,
                        std::uint32_t *count, std::uint32_t options);
  void (*release)(void *record, pavo_zorv_release release, void *context, std::uint32_t options);
  int (*compare)(const void *a, const void *b);

  json (*write)(const void *record, const json_form &form);
  void (*read)(const node &from, void *record, arena &memory, bytes_form bytes);

  // Null if the message has no such field.
  const field_type *field(std::uint32_t number) const;
  const field_type *field(std::string_view name) const;
};

std::span<const message_type *const> all_types();
const message_type *find_type(std::string_view name);

// The message with the most similar name; null if none is similar.
const message_type *nearest_type(std::string_view name);

// Whether a name in JSON denotes a field: the field's name, as it is or in lowerCamelCase.
bool is_name_of(std::string_view field, std::string_view given);

// "flag", "signed 32-bit", "api_addr", "list of unsigned 8-bit", ...
std::string describe(const field_type &field);

// The same for one element of a list: "unsigned 8-bit", "api_addr".
std::string describe_element(const field_type &field);

const char *wire_type_name(std::uint32_t key);

// A record of any message, with all memory that it points to.
class record {
 public:
  explicit record(const message_type &type) : type_(type), content_(memory_.zeroed(type.record_size)) {}
  record(const record &) = delete;
  record &operator=(const record &) = delete;

  int decode(byte_view input, std::uint32_t options = 0) {
    return type_.decode(content_, input, &arena::allocate, &memory_, options);
  }
  byte_string encode() const;
  int compare(const record &other) const { return type_.compare(content_, other.content_); }

  json write(const json_form &form = {}) const;
  void read(const node &from, bytes_form bytes = bytes_form::base64);

  const void *content() const { return content_; }

 private:
  const message_type &type_;
  arena memory_;
  void *content_;
};

}  // namespace inspect
