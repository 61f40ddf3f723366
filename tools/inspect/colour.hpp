// Colours of a terminal, and whether they are wanted.
#pragma once

#include <string>
#include <string_view>

namespace inspect {

enum class colour { plain, faint, bold, red, green, yellow, blue, magenta, cyan, failure };

// Whether the standard output is a terminal that shows colours, and NO_COLOR (no-color.org) does not forbid them.
bool terminal_has_colours();

// Paints text, or leaves it as it is.
class painter {
 public:
  explicit painter(bool is_on) : is_on_(is_on) {}
  std::string operator()(colour chosen, std::string_view text) const;

 private:
  bool is_on_;
};

}  // namespace inspect
