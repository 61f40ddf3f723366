// The messages as data, made from the schema and the library's exported functions.
#include "types.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "json_read.hpp"
#include "json_write.hpp"
#include "messages/all.hpp"

namespace inspect {
namespace {

// Calls an exported function, with an options word of 0 where it takes one.
template <class Function, class... Arguments>
auto call(Function function, Arguments... arguments) {
  if constexpr (std::is_invocable_v<Function, Arguments..., std::uint32_t>) {
    return function(arguments..., std::uint32_t{0});
  } else {
    return function(arguments...);
  }
}

template <class Record, auto Function>
int decode_record(void *record, octet_view input, arena &memory) {
  return call(Function, static_cast<Record *>(record), input.data(), input.size(), &arena::allocate,
              static_cast<void *>(&memory));
}

template <class Record, auto Function>
octets encode_record(const void *record) {
  const auto run = [&](unsigned char *buffer, std::size_t length) {
    return call(Function, static_cast<const Record *>(record), buffer, length,
                static_cast<pavo_zorv_segment *>(nullptr), static_cast<std::uint32_t *>(nullptr));
  };
  octets result(run(nullptr, 0));
  run(result.data(), result.size());
  return result;
}

template <class Record>
json write_record(const void *record, path_view stopped) {
  return to_json(*static_cast<const Record *>(record), stopped);
}

template <class Record>
void read_record(const json &from, void *record, arena &memory) {
  json_reader(memory).read(from, *static_cast<Record *>(record));
}

template <class Record>
extern const message_type type_of;

template <class Record, std::size_t Index>
field_type make_field() {
  constexpr auto &row = pavo_zorv::row_at<Record, Index>;
  using row_type = std::remove_cvref_t<decltype(row)>;
  field_type field{row.number, row.name, row.type, row.wire, 0, false, nullptr};
  if constexpr (row.type == kind::integer || row.type == kind::integers) {
    field.bits = sizeof(typename row_type::element) * 8;
    field.is_signed = std::is_signed_v<typename row_type::element>;
  } else if constexpr (row.type == kind::message || row.type == kind::messages) {
    field.nested = &type_of<typename row_type::nested>;
  }
  return field;
}

template <class Record>
std::vector<field_type> make_fields() {
  std::vector<field_type> fields;
  pavo_zorv::for_each_row<Record>([&](auto index) { fields.push_back(make_field<Record, index>()); });
  return fields;
}

#define INSPECT_TYPE(message)                                                                   \
  template <>                                                                                   \
  const message_type type_of<message>{#message,                                                 \
                                      make_fields<message>(),                                   \
                                      sizeof(message),                                          \
                                      decode_record<message, pavo_zorv_##message##_decode_ext>, \
                                      encode_record<message, pavo_zorv_##message##_encode_ext>, \
                                      write_record<message>,                                    \
                                      read_record<message>};
PAVO_ZORV_ALL_MESSAGES(INSPECT_TYPE)
#undef INSPECT_TYPE

#define INSPECT_LISTED(message) &type_of<message>,
const message_type *const types[] = {PAVO_ZORV_ALL_MESSAGES(INSPECT_LISTED)};
#undef INSPECT_LISTED

}  // namespace

const field_type *message_type::field(std::uint32_t number) const {
  return number - 1 < fields.size() ? &fields[number - 1] : nullptr;
}

std::span<const message_type *const> all_types() { return types; }

const message_type *find_type(std::string_view name) {
  const auto found = std::ranges::find_if(types, [&](const message_type *type) { return type->name == name; });
  return found != std::end(types) ? *found : nullptr;
}

std::string describe(const field_type &field) {
  switch (field.kind) {
    case kind::flag:
      return "flag";
    case kind::string:
      return "string";
    case kind::bytes:
      return "bytes";
    case kind::integer:
      return fmt::format("{} {}-bit", field.is_signed ? "signed" : "unsigned", field.bits);
    case kind::integers:
      return fmt::format("list of unsigned {}-bit", field.bits);
    case kind::message:
      return field.nested->name;
    case kind::messages:
      return fmt::format("list of {}", field.nested->name);
  }
  return {};
}

const char *wire_type_name(std::uint32_t key) {
  static constexpr const char *names[] = {"varint",    "fixed64", "delimited",   "group start",
                                          "group end", "fixed32", "wire type 6", "wire type 7"};
  return names[key & 7];
}

std::string to_string(path_view steps) {
  std::string text;
  for (const step &each : steps) {
    if (!text.empty()) text += '.';
    text += each.field->name;
    if (each.index) text += fmt::format("[{}]", *each.index);
  }
  return text;
}

json record::write(path_view stopped) const { return type_.write(content_, stopped); }

void record::read(const json &from) { type_.read(from, content_, memory_); }

}  // namespace inspect
