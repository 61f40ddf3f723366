// Builds the tree from a walk, and edits a message by editing its JSON.
#include "document.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "address.hpp"
#include "annotate.hpp"
#include "failure.hpp"
#include "json_parse.hpp"
#include "json_places.hpp"
#include "json_text.hpp"
#include "pavo_zorv_memory.h"
#include "text_encodings.hpp"

namespace inspect {
namespace {

std::int32_t narrow(std::size_t value) { return static_cast<std::int32_t>(value); }

byte_view bytes_of(std::string_view text) {
  return {reinterpret_cast<const unsigned char *>(text.data()), text.size()};
}

// The least that makes a field present.
std::string_view smallest_value(kind kind) {
  switch (kind) {
    case kind::flag:
      return "false";
    case kind::integer:
    case kind::integer_list:
      return "0";
    case kind::string:
    case kind::bytes:
      return "\"\"";
    case kind::nested:
    case kind::message_list:
      return "{}";
  }
  return {};
}

const char *state_name(row_state state) {
  static constexpr const char *names[] = {"plain", "unknown", "tolerated", "unread", "failed"};
  return names[static_cast<std::size_t>(state)];
}

// One letter for each byte.
std::string letters_of(const std::vector<role> &roles) {
  std::string text;
  for (const role each : roles) text += "klvx"[static_cast<std::size_t>(each)];
  return text;
}

byte_string encoded(const message_type &type, std::string_view json) {
  record content(type);
  content.read(parse_json(bytes_of(json)));
  return content.encode();
}

}  // namespace

document::document(const message_type &type, byte_string bytes)
    : type_(type), bytes_(std::move(bytes)), walked_(walk_message(type, bytes_)), content_(type) {
  if (bytes_.size() > INT32_MAX) throw input_error("the message has more than 2147483647 bytes");
  result_ = content_.decode(bytes_);
  add_fields();
  close(0);
  if (walked_.failure) add_rest();
  place_in_json();
}

std::int32_t document::add(tree_node node) {
  close(node.depth);
  node.parent = open_.empty() ? -1 : open_.back();
  const std::int32_t index = narrow(nodes_.size());
  node.next = index + 1;
  nodes_.push_back(node);
  open_.push_back(index);
  return index;
}

// Ends the nodes from a depth on.
void document::close(std::int32_t depth) {
  while (!open_.empty() && nodes_[static_cast<std::size_t>(open_.back())].depth >= depth) {
    nodes_[static_cast<std::size_t>(open_.back())].next = narrow(nodes_.size());
    open_.pop_back();
  }
}

// Lists are one level more than the walk has, so the depth is that of the nodes that are open.
void document::add_fields() {
  std::vector<std::int32_t> levels{0};  // the depth of the fields of each open message
  std::vector<std::int32_t> lists{-1};  // the list that is open in each
  for (std::size_t row = 0; row < walked_.fields.size(); ++row) {
    const walked_field &here = walked_.fields[row];
    levels.resize(here.depth + 1);
    lists.resize(here.depth + 1, -1);
    if (!here.index) {
      lists.back() = -1;
    } else if (*here.index == 0) {
      lists.back() = add({.kind = node_kind::list,
                          .depth = levels.back(),
                          .start = narrow(here.start),
                          .own_end = narrow(here.start),
                          .row = narrow(row),
                          .number = narrow(here.key >> 3)});
    }
    const std::int32_t depth = levels.back() + (here.index ? 1 : 0);
    const bool is_container = here.field != nullptr && here.field->nested != nullptr;
    add({.kind = node_kind::field,
         .depth = depth,
         .start = narrow(here.start),
         .own_end = narrow(is_container ? here.content : here.end),
         .end = narrow(here.end),
         .row = narrow(row),
         .number = narrow(here.key >> 3),
         .index = here.index ? narrow(*here.index) : -1});
    if (lists.back() >= 0) nodes_[static_cast<std::size_t>(lists.back())].end = narrow(here.end);
    if (is_container) {
      levels.push_back(depth + 1);
      lists.push_back(-1);
    }
  }
}

// In two nodes: up to the failure, and from there to the end.
void document::add_rest() {
  const std::size_t covered = nodes_.empty() ? 0 : static_cast<std::size_t>(nodes_.back().own_end);
  const auto add_node = [&](std::size_t from, std::size_t to) {
    add({.kind = node_kind::rest,
         .start = narrow(from),
         .own_end = narrow(to),
         .end = narrow(to),
         .row = narrow(walked_.fields.size())});
  };
  if (covered < walked_.failure->offset) add_node(covered, walked_.failure->offset);
  add_node(walked_.failure->offset, bytes_.size());
  close(0);
}

path_view document::stopped() const { return walked_.failure ? path_view(walked_.failure->path) : path_view{}; }

nlohmann::ordered_json document::to_json() const {
  return content_.to_json({.byte_lists = json_byte_lists::address}, stopped());
}

void document::place_in_json() {
  json_ = content_.to_text({}, stopped());
  if (json_.size() > INT32_MAX) throw input_error("the JSON has more than 2147483647 bytes");
  json_places places(json_);
  // The last occurrence of a field is the one that counts.
  const auto child_of = [&](std::int32_t parent, std::uint32_t number) {
    std::int32_t found = -1;
    std::int32_t each = parent < 0 ? 0 : parent + 1;
    const std::int32_t end = parent < 0 ? narrow(nodes_.size()) : nodes_[static_cast<std::size_t>(parent)].next;
    for (; each < end; each = nodes_[static_cast<std::size_t>(each)].next) {
      const tree_node &node = nodes_[static_cast<std::size_t>(each)];
      if (node.number == narrow(number)) found = each;
    }
    return found;
  };
  const auto place = [&](const auto &self, const message_info &message, std::int32_t parent) -> void {
    places.object([&](std::string_view name) {
      const field_info &field = *field_of(message, name);
      const std::int32_t child = child_of(parent, field.number);
      const auto value = [&](std::int32_t node) {
        const std::size_t start = places.at();
        if (field.nested != nullptr) {
          self(self, *field.nested, node);
        } else {
          places.skip();
        }
        if (node < 0) return;
        nodes_[static_cast<std::size_t>(node)].json_start = narrow(start);
        nodes_[static_cast<std::size_t>(node)].json_end = narrow(places.at());
      };
      if (child < 0) return places.skip();
      if (!field.is_list()) return value(child);
      const std::size_t start = places.at();
      std::int32_t element = child + 1;
      places.list([&] {
        const bool has_node = element < nodes_[static_cast<std::size_t>(child)].next;
        value(has_node ? element : -1);
        if (has_node) element = nodes_[static_cast<std::size_t>(element)].next;
      });
      nodes_[static_cast<std::size_t>(child)].json_start = narrow(start);
      nodes_[static_cast<std::size_t>(child)].json_end = narrow(places.at());
    });
  };
  place(place, type_, -1);
}

nlohmann::ordered_json document::summary() const {
  std::size_t unknown = 0;
  for (const walked_field &each : walked_.fields) {
    if (each.field == nullptr) unknown += each.end - each.start;
  }
  const byte_string again = content_.encode();
  nlohmann::ordered_json summary{{"type", type_.name},
                                 {"size", bytes_.size()},
                                 {"result", pavo_zorv_result_name(result_)},
                                 {"unknown", unknown},
                                 {"encoded", again.size()},
                                 {"canonical", !walked_.failure && std::ranges::equal(again, bytes_)}};
  if (result_ != walked_.result()) summary["disagreement"] = pavo_zorv_result_name(walked_.result());
  if (walked_.failure) {
    summary["failure"] = {{"offset", walked_.failure->offset},
                          {"path", to_string(walked_.failure->path)},
                          {"reason", walked_.failure->reason}};
  }
  return summary;
}

// A node that has a place in the JSON.
const tree_node &document::placed(std::size_t node) const {
  if (node >= nodes_.size() || nodes_[node].json_end == 0) throw input_error("only what the JSON has can be edited");
  return nodes_[node];
}

std::size_t document::elements_of(const tree_node &list) const {
  std::size_t last = static_cast<std::size_t>(list.row);
  const walked_field &first = field_at(list);
  for (std::size_t row = last + 1; row < walked_.fields.size() && walked_.fields[row].depth >= first.depth; ++row) {
    if (walked_.fields[row].depth != first.depth) continue;
    if (walked_.fields[row].field != first.field) break;
    last = row;
  }
  return *walked_.fields[last].index + 1;
}

nlohmann::ordered_json document::describe(std::size_t first, std::size_t count) const {
  json described = json::array();
  for (std::size_t node = first; node < nodes_.size() && node - first < count; ++node) {
    described.push_back(description_of(node));
  }
  return described;
}

// By itself, after the messages that it is in: several nodes may be one row of `hex`.
annotation document::row_of(std::size_t node) const {
  const tree_node &here = nodes_[node];
  walk part;
  if (here.kind == node_kind::rest) {
    if (!walked_.fields.empty()) {
      // What was read before, as if it were not inside anything.
      part.fields.push_back(walked_.fields.back());
      part.fields.back().depth = 0;
    }
    part.failure = walked_.failure;
    return annotate(bytes_, part)[part.fields.size() + node - first_rest()];
  }
  for (std::int32_t outer = here.parent; outer >= 0; outer = nodes_[static_cast<std::size_t>(outer)].parent) {
    const tree_node &container = nodes_[static_cast<std::size_t>(outer)];
    if (container.kind == node_kind::field) part.fields.insert(part.fields.begin(), field_at(container));
  }
  part.fields.push_back(field_at(here));
  return annotate(bytes_, part).back();
}

std::size_t document::first_rest() const {
  return nodes_.size() - (nodes_.size() > 1 && nodes_[nodes_.size() - 2].kind == node_kind::rest ? 2 : 1);
}

nlohmann::ordered_json document::description_of(std::size_t node) const {
  const tree_node &here = nodes_[node];
  const annotation words = row_of(node);
  json text{{"state", state_name(words.state)}, {"name", words.name}, {"kind", words.kind}, {"meaning", words.meaning}};
  if (here.kind == node_kind::list) {
    const field_info &field = *field_at(here).field;
    const std::size_t count = elements_of(here);
    text["state"] = state_name(row_state::plain);
    text["name"] = field.name;
    text["kind"] = inspect::describe(field);
    text["meaning"] = fmt::format(": {} element{}", count, count == 1 ? "" : "s");
  } else {
    text["key"] = words.key;
    text["remarks"] = words.remarks;
    text["roles"] = letters_of(words.roles);
  }
  text["parent"] = words.parent;
  if (here.kind == node_kind::rest) return text;
  const field_info *const field = field_at(here).field;
  if (field == nullptr) return text;
  constexpr std::int32_t most_text = 4096;  // longer values are edited in the JSON
  text["number"] = field->number;
  text["removable"] = here.json_end != 0;
  if (field->nested != nullptr && here.kind == node_kind::field) text["message"] = field->nested->name;
  if (field->nested == nullptr && here.json_end != 0 && here.json_end - here.json_start <= most_text) {
    text["value"] = json_.substr(static_cast<std::size_t>(here.json_start),
                                 static_cast<std::size_t>(here.json_end - here.json_start));
  }
  if (here.kind == node_kind::list && field->width == 1 && is_address_size(elements_of(here))) {
    byte_string bytes;
    for (std::size_t row = 0; row < elements_of(here); ++row) {
      bytes.push_back(static_cast<unsigned char>(walked_.fields[static_cast<std::size_t>(here.row) + row].number));
    }
    text["value"] = fmt::format("\"{}\"", address_text(bytes));
  }
  if (field->kind == kind::integer && field->width == 4 && is_address_name(field->name)) {
    text["address"] = address_text(static_cast<std::uint32_t>(field_at(here).number));
  }
  return text;
}

// --- Editing ---

byte_string document::with_value(std::size_t node, std::string_view value) const {
  const tree_node &here = placed(node);
  // By itself first, so that nothing but a value can be put in.
  parse_json(bytes_of(value));
  return encoded(type_, replaced(here.json_start, here.json_end, value));
}

byte_string document::with_field(std::optional<std::size_t> container, std::uint32_t number) const {
  const message_info *message = &type_;
  if (container && placed(*container).kind == node_kind::field) message = field_at(placed(*container)).field->nested;
  if (message == nullptr) throw input_error("not a message");
  const field_info *const field = field_of(*message, number);
  if (field == nullptr) throw input_error("no such field");
  const std::int32_t after_brace = (container ? placed(*container).json_start : 0) + 1;
  const bool is_empty = json_[static_cast<std::size_t>(after_brace)] == '}';
  const std::string_view value = smallest_value(field->kind);
  return encoded(type_, replaced(after_brace, after_brace,
                                 fmt::format("\"{}\": {}{}{}{}", field->name, field->is_list() ? "[" : "", value,
                                             field->is_list() ? "]" : "", is_empty ? "" : ",")));
}

byte_string document::with_element(std::size_t list) const {
  const tree_node &here = placed(list);
  if (here.kind != node_kind::list) throw input_error("not a list");
  const std::int32_t bracket = here.json_end - 1;
  return encoded(type_, replaced(bracket, bracket, fmt::format(", {}", smallest_value(field_at(here).field->kind))));
}

byte_string document::without(std::size_t node) const {
  const tree_node &here = placed(node);
  // A field that is null counts as absent; an element goes together with a comma, and the last one with its list.
  if (here.index < 0) return encoded(type_, replaced(here.json_start, here.json_end, "null"));
  const tree_node &list = nodes_[static_cast<std::size_t>(here.parent)];
  if (elements_of(list) == 1) return encoded(type_, replaced(list.json_start, list.json_end, "null"));
  if (here.index == 0) {
    return encoded(type_, replaced(here.json_start, nodes_[static_cast<std::size_t>(here.next)].json_start, ""));
  }
  const std::size_t comma = json_.rfind(',', static_cast<std::size_t>(here.json_start));
  return encoded(type_, replaced(narrow(comma), here.json_end, ""));
}

std::string document::replaced(std::int32_t start, std::int32_t end, std::string_view by) const {
  const std::string_view text = json_;
  return fmt::format("{}{}{}", text.substr(0, static_cast<std::size_t>(start)), by,
                     text.substr(static_cast<std::size_t>(end)));
}

}  // namespace inspect
