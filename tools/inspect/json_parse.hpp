// JSON text as nodes.
#pragma once

#include "node.hpp"

namespace inspect {

// Reads one value; throws `misread` where the text is not JSON. `end` is where it ended: with `whole`, only blanks may
// follow.
node parse_json(byte_view text, std::size_t begin, bool whole, std::size_t &end);

inline node parse_json(byte_view text) {
  std::size_t end = 0;
  return parse_json(text, 0, true, end);
}

}  // namespace inspect
