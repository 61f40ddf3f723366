// The messages as data: their names, their fields, and operations on records whose type is known only at run time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>
#include <string_view>

#include "arena.hpp"
#include "bytes.hpp"
#include "json_text.hpp"
#include "message_table.hpp"
#include "path.hpp"
#include "pavo_zorv.h"

namespace inspect {

using json = nlohmann::ordered_json;
using pavo_zorv::field_info;
using pavo_zorv::kind;
using pavo_zorv::message_info;
using pavo_zorv::wire_type;

struct node;

struct message_type : message_info {
  bool takes_options;

  // The exported functions. Those without an options word ignore it.
  int (*decode)(void *record, byte_view input, pavo_zorv_allocate allocate, void *context, std::uint32_t options);
  std::size_t (*encode)(const void *record, unsigned char *buffer, std::size_t length, pavo_zorv_segment *segments,
                        std::uint32_t *count, std::uint32_t options);
  void (*release)(void *record, pavo_zorv_release release, void *context, std::uint32_t options);
  int (*compare)(const void *a, const void *b);

  void (*write)(const void *record, path_view stopped, json_writer &to);
  void (*read)(const node &from, void *record, arena &memory, json_bytes bytes);
};

// Null if the message has no such field.
const field_info *field_of(const message_info &type, std::uint32_t number);
const field_info *field_of(const message_info &type, std::string_view name);

std::span<const message_type *const> all_types();
const message_type *find_type(std::string_view name);

// The message with the most similar name; null if none is similar.
const message_type *nearest_type(std::string_view name);

// "api_msg has no such field; did you mean to_igp?"
std::string no_such_field(const message_info &type, std::string_view given);

// Whether a name in JSON denotes a field: the field's name, as it is or in lowerCamelCase.
bool is_name_of(std::string_view field, std::string_view given);

// "flag", "signed 32-bit", "api_addr", "list of unsigned 8-bit", ...
std::string describe(const field_info &field);

// The same for one element of a list: "unsigned 8-bit", "api_addr".
std::string describe_element(const field_info &field);

const char *wire_type_name(std::uint32_t key);

// A record of any message, with all memory that it points to.
class record {
 public:
  explicit record(const message_type &type) : type_(type), content_(memory_.zeroed(type.size)) {}
  record(const record &) = delete;
  record &operator=(const record &) = delete;

  int decode(byte_view input, std::uint32_t options = 0) {
    return type_.decode(content_, input, &arena::allocate, &memory_, options);
  }
  byte_string encode() const;
  int compare(const record &other) const { return type_.compare(content_, other.content_); }

  // As JSON: its text, the same as a tree, or as a part of something greater. With the path to where decoding stopped,
  // there is only what it has read before.
  std::string to_text(const json_options &options = {}, path_view stopped = {}) const;
  json to_json(json_options options = {}, path_view stopped = {}) const;
  void write(json_writer &to, path_view stopped = {}) const { type_.write(content_, stopped, to); }

  void read(const node &from, json_bytes bytes = json_bytes::base64);

  const void *content() const { return content_; }

 private:
  const message_type &type_;
  arena memory_;
  void *content_;
};

}  // namespace inspect
