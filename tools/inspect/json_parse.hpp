// JSON text as nodes.
#pragma once

#include "node.hpp"

namespace inspect {

// Reads one value and sets `end` to the position after it; throws `text_error` if the text is not JSON. With `whole`,
// only whitespace may follow the value.
node parse_json(byte_view text, std::size_t begin, bool whole, std::size_t &end);

inline node parse_json(byte_view text) {
  std::size_t end = 0;
  return parse_json(text, 0, true, end);
}

}  // namespace inspect
