// Colours as ANSI sequences.
#include "colour.hpp"

#include <unistd.h>

#include <cstdlib>

namespace inspect {

bool has_colours(colour_choice choice) {
  if (choice != colour_choice::when_terminal) return choice == colour_choice::always;
  const char *const forbidden = std::getenv("NO_COLOR");
  if (forbidden != nullptr && *forbidden != '\0') return false;
  const char *const terminal = std::getenv("TERM");
  return isatty(STDOUT_FILENO) == 1 && terminal != nullptr && std::string_view(terminal) != "dumb";
}

std::string_view painter::sequence(colour chosen) {
  static constexpr std::string_view sequences[] = {"\x1b[0m",  "\x1b[2m",  "\x1b[1m",  "\x1b[31m", "\x1b[32m",
                                                   "\x1b[33m", "\x1b[34m", "\x1b[35m", "\x1b[36m", "\x1b[1;37;41m"};
  return sequences[static_cast<std::size_t>(chosen)];
}

std::string painter::operator()(colour chosen, std::string_view text) const {
  std::string painted;
  append(painted, chosen, text);
  return painted;
}

}  // namespace inspect
