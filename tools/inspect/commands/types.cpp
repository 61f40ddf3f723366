// `types`: the messages, or the fields of one with their keys and offsets in the record.
#include <fmt/format.h>

#include <algorithm>

#include "../commands.hpp"
#include "../input.hpp"
#include "../target.hpp"
#include "core/wire.hpp"

namespace inspect {
namespace {

const char *plural(std::size_t count) { return count == 1 ? "" : "s"; }

std::string all_messages() {
  std::string text;
  for (const message_type *type : all_types()) {
    text += fmt::format("{:<34}{:>2} field{}\n", type->name, type->fields.size(), plural(type->fields.size()));
  }
  return text;
}

// The bytes of the key: one for field numbers up to 15, two for higher ones.
std::string key_bytes(const field_info &field) {
  const std::uint32_t key = pavo_zorv::key_of(field.number, field.wire);
  return key < 0x80 ? fmt::format("{:02x}", key) : fmt::format("{:02x} {:02x}", (key & 0x7f) | 0x80, key >> 7);
}

std::string offsets(const field_info &field) {
  if (field.count_offset == 0) return fmt::format("{}", field.offset);
  return fmt::format("{}, {} {}", field.offset, field.is_list() ? "count" : "length", field.count_offset);
}

std::string one_message(const message_type &type) {
  std::size_t names = 4, kinds = 4;
  for (const field_info &field : type.fields) {
    names = std::max(names, std::string_view(field.name).size());
    kinds = std::max(kinds, describe(field).size());
  }
  std::string text =
      fmt::format("{}: a record of {} bytes, presence flags of {} bits at offset {}{}\n", type.name, type.size,
                  8 * type.presence_width, type.presence_offset, type.takes_options ? "; takes an options word" : "");
  text += fmt::format("{:>2}  {:<{}}  {:<{}}  {:<5}  {:>9}  {}\n", "no", "name", names, "kind", kinds, "key",
                      "presence", "offset");
  for (const field_info &field : type.fields) {
    text += fmt::format("{:>2}  {:<{}}  {:<{}}  {:<5}  {:>#9x}  {}\n", field.number, field.name, names, describe(field),
                        kinds, key_bytes(field), field.presence_bit(), offsets(field));
  }
  return text;
}

}  // namespace

exit_status types(const command_options &options) {
  print(options.operands.empty() ? all_messages() : one_message(type_named(options.operands.front())));
  return ok;
}

}  // namespace inspect
