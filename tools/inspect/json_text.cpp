// Writes JSON as text.
#include "json_text.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace inspect {
namespace {

// Whether its members or elements go on lines of their own.
bool needs_lines(const json &value) {
  return value.is_object() ? !value.empty()
                           : std::ranges::any_of(value, [](const json &each) { return each.is_structured(); });
}

void append(std::string &text, const json &value, std::size_t depth) {
  if (!value.is_structured()) {
    text += value.dump();
    return;
  }
  const std::string line_break = needs_lines(value) ? '\n' + std::string(2 * depth, ' ') : "";
  const std::string margin = line_break.empty() ? "" : line_break + "  ";
  text += value.is_object() ? '{' : '[';
  std::string separator = margin;
  for (const auto &[name, member] : value.items()) {
    text += separator;
    if (value.is_object()) text += json(name).dump() + ": ";
    append(text, member, depth + 1);
    separator = margin.empty() ? ", " : ',' + margin;
  }
  text += line_break + (value.is_object() ? '}' : ']');
}

}  // namespace

std::string to_text(const json &value) {
  std::string text;
  append(text, value, 0);
  return text + '\n';
}

}  // namespace inspect
