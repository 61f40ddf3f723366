// Terminal colours, and whether to use them.
#pragma once

#include <string>
#include <string_view>

namespace inspect {

enum class colour { plain, faint, bold, red, green, yellow, blue, magenta, cyan, failure };

enum class colour_choice { when_terminal, always, never };

// With `when_terminal`: whether the standard output is a terminal with colours, and NO_COLOR (no-color.org) is not set.
bool has_colours(colour_choice choice);

// Colours text, or leaves it unchanged.
class painter {
 public:
  explicit painter(bool is_on) : is_on_(is_on) {}
  std::string operator()(colour chosen, std::string_view text) const;

  // Appends the pieces, all in this colour.
  template <class... Pieces>
  void append(std::string &to, colour chosen, const Pieces &...pieces) const {
    const bool is_painted = is_on_ && chosen != colour::plain;
    const std::size_t before = to.size();
    if (is_painted) to += sequence(chosen);
    const std::size_t begin = to.size();
    ((to += pieces), ...);
    if (!is_painted) return;
    if (to.size() == begin) {
      to.resize(before);
    } else {
      to += sequence(colour::plain);
    }
  }

 private:
  static std::string_view sequence(colour chosen);

  bool is_on_;
};

}  // namespace inspect
