// Writes JSON as text: readable, with one member to a line and lists of numbers on one line, or all of it on one line.
#pragma once

#include <fmt/format.h>

#include <concepts>
#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace inspect {

enum class json_layout { readable, one_line };

// Appends values to a text, which is JSON if the calls are balanced.
class json_writer {
 public:
  // Takes what has been written so far out of a text that has become long.
  using drain = void (*)(std::string &text);

  json_writer(std::string &text, json_layout layout, drain take = nullptr)
      : text_(text), is_readable_(layout == json_layout::readable), drain_(take) {}

  void begin_object() { begin('{', true); }
  void end_object() { end('}'); }

  // The elements of a list of objects go on lines of their own.
  void begin_list(bool of_objects) { begin('[', of_objects); }
  void end_list() { end(']'); }

  // Before each value in an object.
  void name(std::string_view name) {
    separate();
    quote(name);
    text_ += ": ";
    is_named_ = true;
  }

  void number(std::integral auto value) {
    separate();
    const fmt::format_int digits(value);
    text_.append(digits.data(), digits.size());
  }
  void flag(bool value) {
    separate();
    text_ += value ? "true" : "false";
  }
  // In UTF-8.
  void string(std::string_view value) {
    separate();
    quote(value);
  }

  // Any of these, as a tree.
  void value(const nlohmann::ordered_json &tree);

  void member(std::string_view name_of_it, std::string_view value_of_it) {
    name(name_of_it);
    string(value_of_it);
  }

 private:
  void begin(char bracket, bool has_lines);
  void end(char bracket);
  void quote(std::string_view value);

  // Writes what comes between two values of the same object or list, or before the first.
  void separate() {
    if (is_named_) {
      is_named_ = false;
    } else if (depth_ != 0) {
      separate_element();
    }
  }
  void separate_element();
  void break_line();

  struct level {
    bool has_lines;
    bool is_empty;
  };
  static constexpr unsigned max_levels = 64;
  static constexpr std::size_t long_text = 1 << 16;

  std::string &text_;
  bool is_readable_;
  drain drain_;
  bool is_named_ = false;
  unsigned depth_ = 0;
  level levels_[max_levels];
};

}  // namespace inspect
