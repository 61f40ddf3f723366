// Terminal colours, and whether to use them.
#pragma once

#include <string>
#include <string_view>

namespace inspect {

enum class colour { plain, faint, bold, red, green, yellow, blue, magenta, cyan, failure };

// Whether the standard output is a terminal with colours, and NO_COLOR (no-color.org) is not set.
bool terminal_has_colours();

// Colours text, or leaves it unchanged.
class painter {
 public:
  explicit painter(bool is_on) : is_on_(is_on) {}
  std::string operator()(colour chosen, std::string_view text) const;

 private:
  bool is_on_;
};

}  // namespace inspect
