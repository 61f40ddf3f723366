// Which messages an input may be.
#pragma once

#include <string>
#include <vector>

#include "types.hpp"

namespace inspect {

// How well a message type fits an input, best first.
enum class fit {
  canonical,  // every byte belongs to a field, and encoding gives the same bytes
  complete,   // every byte belongs to a field
  partial,    // some fields are unknown
  none,       // it does not decode
};

struct candidate {
  const message_type *type;
  inspect::fit fit;
  std::size_t reached;  // bytes before the failure; all of them if there is none
  std::size_t unknown;  // bytes in unknown fields
  int evidence;         // points for plausible values: nested messages that decode, strings that are text
};

// Best first.
std::vector<candidate> guess(byte_view input);

// The message type that reads every byte, if no other fits as well. Otherwise a usage error that lists the types to
// choose from. `name` is that of the input.
const message_type &unique_guess(byte_view input, const std::string &name);

}  // namespace inspect
