// Parse errors with line and column.
#include "node.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace inspect {

input_error with_position(const text_error &error, byte_view text, const std::string &file) {
  const byte_view before = text.first(std::min(error.at, text.size()));
  const auto line = 1 + std::ranges::count(before, '\n');
  const auto last_line = std::find(before.rbegin(), before.rend(), '\n').base();
  const auto is_character = [](unsigned char byte) { return (byte & 0xc0) != 0x80; };
  const auto column = 1 + std::count_if(last_line, before.end(), is_character);
  return input_error(fmt::format("{}{}line {}, column {}: {}{}{}", file, file.empty() ? "" : ": ", line, column,
                                 error.path, error.path.empty() ? "" : ": ", error.what()));
}

}  // namespace inspect
