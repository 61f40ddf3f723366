// Writes JSON as text.
#include "json_text.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace inspect {

void json_writer::value(const nlohmann::ordered_json &tree) {
  if (tree.is_object()) {
    begin_object();
    for (const auto &[key, each] : tree.items()) {
      name(key);
      value(each);
    }
    end_object();
  } else if (tree.is_array()) {
    begin_list(std::ranges::any_of(tree, [](const auto &each) { return each.is_structured(); }));
    for (const auto &each : tree) value(each);
    end_list();
  } else {
    separate();
    text_ += tree.dump();
  }
}

void json_writer::begin(char bracket, bool has_lines) {
  separate();
  if (depth_ == max_levels) throw std::length_error("JSON nested too deeply");
  levels_[depth_++] = {has_lines && is_readable_, true};
  text_ += bracket;
}

void json_writer::end(char bracket) {
  const level ended = levels_[--depth_];
  if (ended.has_lines && !ended.is_empty) break_line();
  text_ += bracket;
}

void json_writer::separate_element() {
  level &here = levels_[depth_ - 1];
  if (!here.is_empty) text_ += ',';
  if (here.has_lines) {
    break_line();
  } else if (!here.is_empty) {
    text_ += ' ';
  }
  here.is_empty = false;
  if (drain_ != nullptr && text_.size() > long_text) drain_(text_);
}

void json_writer::break_line() {
  text_ += '\n';
  text_.append(2 * depth_, ' ');
}

void json_writer::quote(std::string_view value) {
  text_ += '"';
  for (const char character : value) {
    if (character == '"' || character == '\\') {
      text_ += '\\';
      text_ += character;
    } else if (static_cast<unsigned char>(character) >= ' ') {
      text_ += character;
    } else if (const std::size_t letter = std::string_view("\b\f\n\r\t").find(character); letter != value.npos) {
      text_ += '\\';
      text_ += "bfnrt"[letter];
    } else {
      text_ += fmt::format("\\u{:04x}", character);
    }
  }
  text_ += '"';
}

}  // namespace inspect
