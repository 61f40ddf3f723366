// Colours as ANSI sequences.
#include "colour.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdlib>

namespace inspect {

bool terminal_has_colours() {
  const char *const forbidden = std::getenv("NO_COLOR");
  if (forbidden != nullptr && *forbidden != '\0') return false;
  const char *const terminal = std::getenv("TERM");
  return isatty(STDOUT_FILENO) == 1 && terminal != nullptr && std::string_view(terminal) != "dumb";
}

std::string painter::operator()(colour chosen, std::string_view text) const {
  static constexpr const char *codes[] = {"0", "2", "1", "31", "32", "33", "34", "35", "36", "1;37;41"};
  if (!is_on_ || chosen == colour::plain || text.empty()) return std::string(text);
  return fmt::format("\x1b[{}m{}\x1b[0m", codes[static_cast<std::size_t>(chosen)], text);
}

}  // namespace inspect
