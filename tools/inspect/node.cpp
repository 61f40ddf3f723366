// Complaints about text, with line and column.
#include "node.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace inspect {

refused refusal(const misread &what, byte_view text) {
  const byte_view before = text.first(std::min(what.at, text.size()));
  const auto line = 1 + std::ranges::count(before, '\n');
  const auto last_line = std::find(before.rbegin(), before.rend(), '\n').base();
  const auto is_character = [](unsigned char byte) { return (byte & 0xc0) != 0x80; };
  const auto column = 1 + std::count_if(last_line, before.end(), is_character);
  return refused(
      fmt::format("line {}, column {}: {}{}{}", line, column, what.path, what.path.empty() ? "" : ": ", what.what()));
}

}  // namespace inspect
