// The messages as data, made from the schema and the library's exported functions.
#include "types.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <nlohmann/json.hpp>
#include <type_traits>
#include <vector>

#include "decoded_members.hpp"
#include "messages/all.hpp"
#include "record_read.hpp"
#include "suggest.hpp"

namespace inspect {
namespace {

// Calls an exported function, with the options word where it takes one.
template <class Function, class... Arguments>
auto call(Function function, [[maybe_unused]] std::uint32_t options, Arguments... arguments) {
  if constexpr (std::is_invocable_v<Function, Arguments..., std::uint32_t>) {
    return function(arguments..., options);
  } else {
    return function(arguments...);
  }
}

template <class Record, auto Function>
int decode_record(void *record, byte_view input, pavo_zorv_allocate allocate, void *context, std::uint32_t options) {
  return call(Function, options, static_cast<Record *>(record), input.data(), input.size(), allocate, context);
}

template <class Record, auto Function>
std::size_t encode_record(const void *record, unsigned char *buffer, std::size_t length, pavo_zorv_segment *segments,
                          std::uint32_t *count, std::uint32_t options) {
  return call(Function, options, static_cast<const Record *>(record), buffer, length, segments, count);
}

template <class Record, auto Function>
void release_record(void *record, pavo_zorv_release release, void *context, std::uint32_t options) {
  call(Function, options, static_cast<Record *>(record), release, context);
}

template <class Record, auto Function>
int compare_records(const void *a, const void *b) {
  return Function(static_cast<const Record *>(a), static_cast<const Record *>(b));
}

template <class Record>
void write_record(const void *record, path_view stopped, json_writer &to) {
  to.record(*static_cast<const Record *>(record), decoded_members(stopped));
}

template <class Record>
void read_record(const node &from, void *record, arena &memory, json_bytes bytes) {
  record_reader(memory, bytes).read(from, *static_cast<Record *>(record));
}

template <class Record>
extern const message_type type_of;

#define INSPECT_TYPE(message)                                                                                  \
  template <>                                                                                                  \
  const message_type type_of<message>{*pavo_zorv::find_message(#message),                                      \
                                      std::is_invocable_v<decltype(pavo_zorv_##message##_free_ext), message *, \
                                                          pavo_zorv_release, void *, std::uint32_t>,           \
                                      decode_record<message, pavo_zorv_##message##_decode_ext>,                \
                                      encode_record<message, pavo_zorv_##message##_encode_ext>,                \
                                      release_record<message, pavo_zorv_##message##_free_ext>,                 \
                                      compare_records<message, pavo_zorv_##message##_compare>,                 \
                                      write_record<message>,                                                   \
                                      read_record<message>};
PAVO_ZORV_MESSAGES(INSPECT_TYPE)
#undef INSPECT_TYPE

#define INSPECT_LISTED(message) &type_of<message>,
const message_type *const types[] = {PAVO_ZORV_MESSAGES(INSPECT_LISTED)};
#undef INSPECT_LISTED

}  // namespace

const field_info *field_of(const message_info &type, std::uint32_t number) {
  return number - 1 < type.fields.size() ? &type.fields[number - 1] : nullptr;
}

const field_info *field_of(const message_info &type, std::string_view given) {
  const auto found =
      std::ranges::find_if(type.fields, [&](const field_info &each) { return is_name_of(each.name, given); });
  return found != type.fields.end() ? &*found : nullptr;
}

bool is_name_of(std::string_view field, std::string_view given) {
  if (field == given) return true;
  std::size_t at = 0;
  for (std::size_t index = 0; index < field.size(); ++index, ++at) {
    char expected = field[index];
    if (expected == '_' && ++index < field.size()) {
      expected = static_cast<char>(std::toupper(static_cast<unsigned char>(field[index])));
    }
    if (at == given.size() || given[at] != expected) return false;
  }
  return at == given.size();
}

std::span<const message_type *const> all_types() { return types; }

const message_type *find_type(std::string_view name) {
  const auto found = std::ranges::find_if(types, [&](const message_type *type) { return type->name == name; });
  return found != std::end(types) ? *found : nullptr;
}

const message_type *nearest_type(std::string_view name) {
  std::vector<std::string_view> names;
  for (const message_type *type : types) names.emplace_back(type->name);
  const auto found = nearest(name, names);
  return found ? find_type(*found) : nullptr;
}

std::string no_such_field(const message_info &type, std::string_view given) {
  std::vector<std::string_view> names;
  for (const field_info &field : type.fields) names.emplace_back(field.name);
  return fmt::format("{} has no such field{}", type.name, suggestion(given, names));
}

std::string describe_element(const field_info &field) {
  switch (field.kind) {
    case kind::flag:
      return "flag";
    case kind::string:
      return "string";
    case kind::bytes:
      return "bytes";
    case kind::integer:
    case kind::integer_list:
      return fmt::format("{} {}-bit", field.is_signed ? "signed" : "unsigned", 8 * field.width);
    case kind::nested:
    case kind::message_list:
      return field.nested->name;
  }
  return {};
}

std::string describe(const field_info &field) { return (field.is_list() ? "list of " : "") + describe_element(field); }

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

byte_string record::encode() const {
  byte_string result(type_.encode(content_, nullptr, 0, nullptr, nullptr, 0));
  type_.encode(content_, result.data(), result.size(), nullptr, nullptr, 0);
  return result;
}

std::string record::to_text(const json_options &options, path_view stopped) const {
  std::string text;
  json_writer to(text, options);
  write(to, stopped);
  return text += '\n';
}

json record::to_json(json_options options, path_view stopped) const {
  options.layout = json_layout::one_line;
  return json::parse(to_text(options, stopped));
}

void record::read(const node &from, json_bytes bytes) { type_.read(from, content_, memory_, bytes); }

}  // namespace inspect
