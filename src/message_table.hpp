// Every message as data, made from the schemas: for tools and tests that learn only when they run which message they
// are about. The library itself does not need it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "core/schema.hpp"
#include "core/wire.hpp"

namespace pavo_zorv {

struct message_info;

struct field_info {
  unsigned number;
  const char *name;
  pavo_zorv::kind kind;
  wire_type wire;
  unsigned width;  // bytes of a flag or a number, or of the integers of a list; else 0
  bool is_signed;
  const message_info *nested;  // also of the messages of a list; else null
  std::size_t offset;          // of the member in the record
  std::size_t count_offset;    // of the count or the length beside it; else 0

  constexpr bool is_list() const { return kind == kind::integer_list || kind == kind::message_list; }
  constexpr std::uint32_t presence_bit() const { return std::uint32_t{1} << (number - 1); }
};

struct message_info {
  const char *name;
  std::span<const field_info> fields;
  std::size_t size;  // of the record
  std::size_t presence_offset;
  unsigned presence_width;
};

// A message after those that it contains.
std::span<const message_info *const> message_table();

// Null when there is none of that name.
const message_info *find_message(std::string_view name);

}  // namespace pavo_zorv
