// The annotated bytes as text.
#include "hex_text.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace inspect {
namespace {

constexpr std::size_t bytes_in_row = 12;

char mark_of(standing stands) {
  switch (stands) {
    case standing::unknown:
      return '?';
    case standing::tolerated:
      return '~';
    case standing::unread:
    case standing::failed:
      return '!';
    case standing::plain:
      break;
  }
  return ' ';
}

colour colour_of(standing stands) {
  switch (stands) {
    case standing::unknown:
      return colour::magenta;
    case standing::tolerated:
      return colour::yellow;
    case standing::unread:
    case standing::failed:
      return colour::red;
    case standing::plain:
      break;
  }
  return colour::plain;
}

// Of a byte: by what it is, unless the row as a whole has something to say.
colour colour_of(const annotation &row, std::size_t index) {
  if (row.stands == standing::failed && index == 0) return colour::failure;
  if (row.stands != standing::plain && row.stands != standing::tolerated) return colour_of(row.stands);
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

std::string words(const annotation &row, const painter &paint) {
  std::string text(2 * row.depth, ' ');
  if (row.name.empty()) return text + paint(colour_of(row.stands), row.meaning);
  text += paint(colour::faint, row.around);
  text += paint(row.stands == standing::unknown ? colour::magenta : colour::bold, row.name);
  text += paint(colour::faint, fmt::format(" ({}{}{})", row.key, row.kind.empty() ? "" : ", ", row.kind));
  return text + row.meaning + paint(colour::yellow, row.remarks);
}

// The bytes of a row wrapped into lines; the words stand beside the first.
void append(std::string &text, byte_view input, const annotation &row, const painter &paint) {
  std::size_t at = row.start;
  do {
    const std::size_t stop = std::min(row.end, at + bytes_in_row);
    text += paint(colour::faint, fmt::format("{:06x}", at));
    text += at == row.start ? paint(colour_of(row.stands), std::string(1, mark_of(row.stands))) : " ";
    for (std::size_t index = at; index < stop; ++index) {
      text += ' ' + paint(colour_of(row, index - row.start), fmt::format("{:02x}", input[index]));
    }
    if (at == row.start) text += std::string(3 * (bytes_in_row - (stop - at)) + 3, ' ') + words(row, paint);
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
