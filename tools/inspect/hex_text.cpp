// Writes the annotated bytes as text.
#include "hex_text.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace inspect {
namespace {

constexpr std::size_t bytes_per_line = 12;

char mark_of(row_state state) {
  switch (state) {
    case row_state::unknown:
      return '?';
    case row_state::tolerated:
      return '~';
    case row_state::unread:
    case row_state::failed:
      return '!';
    case row_state::plain:
      break;
  }
  return ' ';
}

colour colour_of(row_state state) {
  switch (state) {
    case row_state::unknown:
      return colour::magenta;
    case row_state::tolerated:
      return colour::yellow;
    case row_state::unread:
    case row_state::failed:
      return colour::red;
    case row_state::plain:
      break;
  }
  return colour::plain;
}

// The colour of a byte: by its role, unless the row's state determines it.
colour colour_of(const annotation &row, std::size_t index) {
  if (row.state == row_state::failed && index == 0) return colour::failure;
  if (row.state != row_state::plain && row.state != row_state::tolerated) return colour_of(row.state);
  switch (row.roles[index]) {
    case role::key:
      return colour::cyan;
    case role::length:
      return colour::blue;
    case role::excess:
      return colour::yellow;
    case role::value:
      break;
  }
  return colour::plain;
}

std::string description(const annotation &row, const painter &paint) {
  std::string text(2 * row.depth, ' ');
  if (row.name.empty()) return text + paint(colour_of(row.state), row.meaning);
  text += paint(colour::faint, row.parent);
  text += paint(row.state == row_state::unknown ? colour::magenta : colour::bold, row.name);
  text += paint(colour::faint, fmt::format(" ({}{}{})", row.key, row.kind.empty() ? "" : ", ", row.kind));
  return text + row.meaning + paint(colour::yellow, row.remarks);
}

// The bytes of a row, wrapped into lines; the description is in the first.
void append(std::string &text, byte_view input, const annotation &row, const painter &paint) {
  std::size_t at = row.start;
  do {
    const std::size_t stop = std::min(row.end, at + bytes_per_line);
    text += paint(colour::faint, fmt::format("{:06x}", at));
    text += at == row.start ? paint(colour_of(row.state), std::string(1, mark_of(row.state))) : " ";
    for (std::size_t index = at; index < stop; ++index) {
      text += ' ' + paint(colour_of(row, index - row.start), fmt::format("{:02x}", input[index]));
    }
    if (at == row.start) text += std::string(3 * (bytes_per_line - (stop - at)) + 3, ' ') + description(row, paint);
    text += '\n';
    at = stop;
  } while (at < row.end);
}

}  // namespace

std::string hex_text(byte_view input, const std::vector<annotation> &rows, const painter &paint) {
  std::string text;
  for (const annotation &row : rows) append(text, input, row, paint);
  return text;
}

}  // namespace inspect
