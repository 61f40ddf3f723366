// Breaks lines at a comma, or where nothing else is left, between two characters.
#include "json_lines.hpp"

#include <algorithm>

namespace inspect {
namespace {

constexpr std::size_t enough = 96, most = 192;

// Where the line that starts at an offset and has no end before `end` is broken.
std::size_t broken(std::string_view json, std::size_t start, std::size_t end) {
  const std::size_t comma = json.substr(0, start + most).find(", ", start + enough);
  if (comma != json.npos) return comma + 2;
  std::size_t at = start + most;
  while (at < end && (static_cast<unsigned char>(json[at]) & 0xc0) == 0x80) ++at;
  return at;
}

}  // namespace

std::vector<std::int32_t> line_starts(std::string_view json) {
  std::vector<std::int32_t> starts;
  for (std::size_t start = 0; start < json.size();) {
    const std::size_t end = std::min(json.find('\n', start), json.size());
    for (; start + most < end; start = broken(json, start, end)) starts.push_back(static_cast<std::int32_t>(start));
    if (start < end) starts.push_back(static_cast<std::int32_t>(start));
    start = end + 1;
  }
  return starts;
}

}  // namespace inspect
