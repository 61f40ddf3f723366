// The entry points of the module that the page calls: the tool's own functions, on bytes and text in its memory.
//
// Arguments are blocks that the page has asked for with `allocate`. What a call gives back is in one block, `result`,
// until the next call. Messages are held in two places, so that two can be compared.
#include "engine.hpp"

#include <fmt/format.h>

#include <memory>
#include <nlohmann/json.hpp>

#include "annotate.hpp"
#include "byte_forms.hpp"
#include "c_source.hpp"
#include "difference.hpp"
#include "document.hpp"
#include "guess.hpp"
#include "hex_text.hpp"
#include "json_lines.hpp"
#include "json_parse.hpp"
#include "message_form.hpp"
#include "messages.hpp"
#include "rest.hpp"
#include "segment_table.hpp"
#include "text_format.hpp"

#define EXPORTED(name) extern "C" __attribute__((export_name(#name)))

namespace inspect {
namespace {

constexpr std::string_view raw_choice = "the form \"bytes\"";  // as page.html calls it

std::unique_ptr<document> held[2];
byte_string result;
std::unique_ptr<message_source> source;  // of the messages in an input
byte_string last_message;                // of them
std::string notes;                       // about them
byte_view being_read;                    // the text in which an error has its place

const document &held_at(std::uint32_t place) {
  if (place > 1 || !held[place]) throw input_error("no message is open");
  return *held[place];
}

void give_bytes(byte_string bytes) { result = std::move(bytes); }
void give_text(std::string_view text) { result.assign(text.begin(), text.end()); }
void give_json(const json &value) { give_text(value.dump()); }

template <class Element>
void give_array(const std::vector<Element> &elements) {
  const auto *const first = reinterpret_cast<const unsigned char *>(elements.data());
  result.assign(first, first + elements.size() * sizeof(Element));
}

std::string_view characters(const char *data, std::size_t size) { return {data, size}; }

const message_type &type_named(std::string_view name) {
  const message_type *const type = find_type(name);
  if (type == nullptr) throw input_error(fmt::format("{}: no such message", name));
  return *type;
}

const char *words_of(fit fit) {
  switch (fit) {
    case fit::canonical:
      return "reads every byte and writes the same bytes";
    case fit::complete:
      return "reads every byte, but writes different bytes";
    case fit::partial:
      return "skips some bytes";
    case fit::none:
      break;
  }
  return "does not read it";
}

}  // namespace

text_place place_of(const text_error &error) {
  if (being_read.empty()) return {fmt::format("{}{}{}", error.path, error.path.empty() ? "" : ": ", error.what()), -1};
  return {with_position(error, being_read, "").what(),
          static_cast<std::int32_t>(std::min(error.at, being_read.size()))};
}

void note(std::string_view text) { notes += text; }

// --- Memory ---

EXPORTED(allocate) void *allocate(std::size_t size) { return std::malloc(size); }
EXPORTED(release) void release(void *block) { std::free(block); }
EXPORTED(result_data) const unsigned char *result_data() { return result.data(); }
EXPORTED(result_size) std::size_t result_size() { return result.size(); }

// --- The tables ---

EXPORTED(types) void types() {
  auto list = json::array();
  for (const message_type *type : all_types()) {
    auto fields = json::array();
    for (const field_info &field : type->fields) {
      fields.push_back({{"number", field.number},
                        {"name", field.name},
                        {"kind", describe(field)},
                        {"message", field.nested != nullptr ? field.nested->name : ""}});
    }
    list.push_back({{"name", type->name}, {"fields", fields}});
  }
  give_json(list);
}

// --- Reading ---

// The form that an input seems to have: 0 bytes, 1 JSON, 2 text.
EXPORTED(form_of) std::uint32_t form_of(const unsigned char *data, std::size_t size) {
  switch (detect({data, size})) {
    case message_form::as_json:
      return 1;
    case message_form::as_text:
      return 2;
    default:
      return 0;
  }
}

EXPORTED(bytes_of) void bytes_of(const unsigned char *data, std::size_t size, std::uint32_t form) {
  give_bytes(parse_bytes(byte_string(data, data + size), static_cast<byte_form>(form), {"the input", raw_choice}));
}

// An input that may be one message or many. `stream` is a prefix_form; a port of 0 is any.
EXPORTED(open_input)
void open_input(const unsigned char *data, std::size_t size, std::uint32_t form, std::uint32_t stream,
                std::uint32_t port) {
  notes.clear();
  input_options options;
  options.raw_choice = raw_choice;
  options.input = static_cast<byte_form>(form);
  options.stream = static_cast<prefix_form>(stream);
  if (port != 0) options.port = port;
  source = open_messages(std::make_unique<input_file>("the input", byte_string(data, data + size)), options);
}

// What is known about the next message of the input; null at the end. Its bytes are those of `input_bytes`.
EXPORTED(next_input) void next_input() {
  input_message next;
  if (!source || !source->next(next)) return give_json(nullptr);
  last_message.assign(next.bytes.begin(), next.bytes.end());
  const packet_origin origin = next.packet.value_or(packet_origin{});
  give_json({{"number", next.number},
             {"isSingle", next.is_single},
             {"time", origin.time},
             {"from", origin.from},
             {"to", origin.to}});
}
EXPORTED(input_bytes) void input_bytes() { give_bytes(last_message); }
EXPORTED(input_notes) void input_notes() { give_text(notes); }

// The bytes of a message that is given as JSON or in the text form.
EXPORTED(encode)
void encode(const char *name, std::size_t name_size, const unsigned char *data, std::size_t size, bool is_json) {
  const message_type &type = type_named(characters(name, name_size));
  being_read = {data, size};
  record content(type);
  content.read(is_json ? parse_json(being_read) : parse_text_format(type, being_read));
  being_read = {};
  give_bytes(content.encode());
}

// All messages, the most likely first.
EXPORTED(guess_types) void guess_types(const unsigned char *data, std::size_t size) {
  auto list = json::array();
  for (const candidate &each : guess({data, size})) {
    list.push_back({{"name", each.type->name},
                    {"fits", each.fit != fit::none},
                    {"whole", each.fit == fit::canonical || each.fit == fit::complete},
                    {"words", words_of(each.fit)}});
  }
  give_json(list);
}

// --- A message ---

EXPORTED(open_message)
void open_message(std::uint32_t place, const char *name, std::size_t name_size, const unsigned char *data,
                  std::size_t size) {
  held[place & 1] = std::make_unique<document>(type_named(characters(name, name_size)), byte_string(data, data + size));
  give_json(held_at(place & 1).summary());
}

EXPORTED(nodes) void nodes(std::uint32_t place) { give_array(held_at(place).nodes()); }
EXPORTED(describe_nodes) void describe_nodes(std::uint32_t place, std::size_t first, std::size_t count) {
  give_json(held_at(place).describe(first, count));
}
EXPORTED(json_text) void json_text(std::uint32_t place) { give_text(held_at(place).json_text()); }
EXPORTED(json_line_starts) void json_line_starts(std::uint32_t place) {
  give_array(line_starts(held_at(place).json_text()));
}
EXPORTED(rest) void rest(std::uint32_t place) { give_json(possible_rest(held_at(place))); }

EXPORTED(segments) void segments(std::uint32_t place, bool referenced) {
  const segment_table table = segments_of(held_at(place).type(), held_at(place).bytes(), referenced);
  auto entries = json::array();
  for (const segment &each : table.entries) {
    entries.push_back({each.name, each.depth, each.start, each.length, each.is_referenced});
  }
  give_json(json{{"length", table.length}, {"entries", entries}});
}

// --- The same message with a change ---

EXPORTED(with_value)
void with_value(std::uint32_t place, std::size_t node, const char *value, std::size_t size) {
  give_bytes(held_at(place).with_value(node, characters(value, size)));
}
EXPORTED(with_field) void with_field(std::uint32_t place, std::int32_t container, std::uint32_t number) {
  give_bytes(held_at(place).with_field(
      container < 0 ? std::nullopt : std::optional<std::size_t>(static_cast<std::size_t>(container)), number));
}
EXPORTED(with_element) void with_element(std::uint32_t place, std::size_t list) {
  give_bytes(held_at(place).with_element(list));
}
EXPORTED(without) void without(std::uint32_t place, std::size_t node) { give_bytes(held_at(place).without(node)); }

// --- Two messages, and other forms ---

EXPORTED(differences_of_both) void differences_of_both() {
  const document &a = held_at(0), &b = held_at(1);
  if (&a.type() != &b.type()) throw input_error("messages of different types cannot be compared");
  auto list = json::array();
  for (const difference &each : differences(a.type(), a.to_json(), b.to_json())) {
    list.push_back({{"path", each.path}, {"a", each.a}, {"b", each.b}});
  }
  give_json(json{{"order", a.content().compare(b.content())}, {"differences", list}});
}

// In a form of bytes, or 16 the text form, 17 source in C, 18 the annotated bytes.
EXPORTED(written) void written(std::uint32_t place, std::uint32_t form) {
  const document &from = held_at(place);
  if (form == 16) return give_text(to_text_format(from.type(), from.bytes()));
  if (form == 17) return give_text(c_source(from.type(), from.content()));
  if (form == 18) return give_text(hex_text(from.bytes(), annotate(from.bytes(), from.walked()), painter(false)));
  give_text(format_bytes(from.bytes(), static_cast<byte_form>(form)));
}

}  // namespace inspect
