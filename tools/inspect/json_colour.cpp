// Finds the parts of a JSON text.
#include "json_colour.hpp"

#include <algorithm>

namespace inspect {
namespace {

// The end of the string that begins at an offset.
std::size_t string_end(std::string_view text, std::size_t at) {
  for (++at; at < text.size() && text[at] != '"'; ++at) at += text[at] == '\\';
  return std::min(text.size(), at + 1);
}

}  // namespace

std::string coloured_json(std::string_view text, const painter &paint) {
  constexpr std::string_view between = "{}[],: \n";
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at + 1;
    colour chosen = colour::plain;
    if (text[at] == '"') {
      end = string_end(text, at);
      chosen = end < text.size() && text[end] == ':' ? colour::blue : colour::green;
    } else if (between.find(text[at]) == between.npos) {
      end = std::min(text.size(), text.find_first_of(between, at));
      chosen = text[at] == 't' || text[at] == 'f' ? colour::magenta : colour::cyan;
    }
    paint.append(result, chosen, text.substr(at, end - at));
    at = end;
  }
  return result;
}

}  // namespace inspect
