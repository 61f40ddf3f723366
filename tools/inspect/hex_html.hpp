// The annotated bytes as one self-contained page: fields fold, and the field or bytes under the pointer are highlighted
// on both sides.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "annotate.hpp"

namespace inspect {

struct html_message {
  std::string name;
  std::string type;
  byte_view bytes;
  const std::vector<annotation> &rows;
};

std::string html_section(const html_message &message);
std::string html_page(std::string_view sections);

}  // namespace inspect
