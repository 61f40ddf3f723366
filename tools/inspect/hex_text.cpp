// Writes the annotated bytes as text.
#include "hex_text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string_view>

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

void append_description(std::string &text, const annotation &row, const painter &paint) {
  text.append(2 * row.depth, ' ');
  if (row.name.empty()) return paint.append(text, colour_of(row.state), row.meaning);
  paint.append(text, colour::faint, row.parent);
  paint.append(text, row.state == row_state::unknown ? colour::magenta : colour::bold, row.name);
  paint.append(text, colour::faint, " (", row.key, row.kind.empty() ? "" : ", ", row.kind, ")");
  text += row.meaning;
  paint.append(text, colour::yellow, row.remarks);
}

constexpr char hex_characters[] = "0123456789abcdef";

void append_offset(std::string &text, std::size_t offset, const painter &paint) {
  char written[16];
  char *first = std::end(written);
  for (; offset != 0 || first > std::end(written) - 6; offset >>= 4) *--first = hex_characters[offset & 15];
  paint.append(text, colour::faint, std::string_view(first, static_cast<std::size_t>(std::end(written) - first)));
}

void append_byte(std::string &text, unsigned char byte, colour chosen, const painter &paint) {
  const char pair[] = {hex_characters[byte >> 4], hex_characters[byte & 15]};
  text += ' ';
  paint.append(text, chosen, std::string_view(pair, 2));
}

bool is_rest(const annotation &row) { return row.state == row_state::unread || row.state == row_state::failed; }

}  // namespace

// The bytes of a row, wrapped into lines; the description is in the first.
void append_hex(std::string &text, byte_view input, const annotation &row, const painter &paint, std::size_t max_rest) {
  const std::size_t end = is_rest(row) && row.end - row.start > max_rest ? row.start + max_rest : row.end;
  std::size_t at = row.start;
  do {
    const std::size_t stop = row.is_address ? end : std::min(end, at + bytes_per_line);
    append_offset(text, at, paint);
    const char mark = at == row.start ? mark_of(row.state) : ' ';
    paint.append(text, colour_of(row.state), std::string_view(&mark, 1));
    for (std::size_t index = at; index < stop; ++index) {
      append_byte(text, input[index], colour_of(row, index - row.start), paint);
    }
    if (at == row.start) {
      text.append(3 * (bytes_per_line - std::min(bytes_per_line, stop - at)) + 3, ' ');
      append_description(text, row, paint);
    }
    text += '\n';
    at = stop;
  } while (at < end);
  if (end != row.end) text += fmt::format("        ({} more bytes; --all shows them)\n", row.end - end);
}

std::string hex_text(byte_view input, const std::vector<annotation> &rows, const painter &paint) {
  std::string text;
  for (const annotation &row : rows) append_hex(text, input, row, paint);
  return text;
}

}  // namespace inspect
