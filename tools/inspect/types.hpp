// The messages as data: their names, their fields, and what can be done with a record whose type is known only now.
#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "arena.hpp"
#include "core/schema.hpp"
#include "octets.hpp"
#include "path.hpp"

namespace inspect {

using json = nlohmann::ordered_json;
using pavo_zorv::kind;
using pavo_zorv::wire_type;

struct message_type;

struct field_type {
  unsigned number;
  const char *name;
  inspect::kind kind;
  wire_type wire;
  unsigned bits;  // of the number, or of a list's elements; else 0
  bool is_signed;
  const message_type *nested;  // of a message or a list of them; else null
};

struct message_type {
  const char *name;
  std::vector<field_type> fields;
  std::size_t record_size;

  int (*decode)(void *record, octet_view input, arena &memory);
  octets (*encode)(const void *record);
  json (*write)(const void *record, path_view stopped);
  void (*read)(const json &from, void *record, arena &memory);

  // Null for a number that the message does not have.
  const field_type *field(std::uint32_t number) const;
};

std::span<const message_type *const> all_types();
const message_type *find_type(std::string_view name);

// "list of unsigned 8-bit", "nested api_addr", ...
std::string describe(const field_type &field);

const char *wire_type_name(std::uint32_t key);

// A record of any message, with all memory that it leads to.
class record {
 public:
  explicit record(const message_type &type) : type_(type), content_(memory_.zeroed(type.record_size)) {}
  record(const record &) = delete;
  record &operator=(const record &) = delete;

  int decode(octet_view input) { return type_.decode(content_, input, memory_); }
  octets encode() const { return type_.encode(content_); }

  // Of a record that was not decoded to its end, `stopped` is the way to where decoding stopped.
  json write(path_view stopped = {}) const;
  void read(const json &from);

 private:
  const message_type &type_;
  arena memory_;
  void *content_;
};

}  // namespace inspect
