// What the entry points and the runtime of the module share.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "node.hpp"

namespace inspect {

// An error in words, and where it is in the text that is being read; -1 if the page did not give the text.
struct text_place {
  std::string text;
  std::int32_t at;
};
text_place place_of(const text_error &error);

// What is printed on the standard error, which the page shows.
void note(std::string_view text);

}  // namespace inspect
