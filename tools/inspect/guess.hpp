// Which messages an input could be.
#pragma once

#include <string>
#include <vector>

#include "types.hpp"

namespace inspect {

// How a message reads an input, from the best down.
enum class fit {
  canonical,  // every byte, and encoding gives the same ones
  complete,   // every byte belongs to a field
  partial,    // some fields are unknown
  none,       // it does not decode
};

struct reading {
  const message_type *type;
  inspect::fit fit;
  std::size_t reached;  // bytes before the failure; all without one
  std::size_t unknown;  // bytes of unknown fields
  int evidence;         // what speaks for it: nested messages that read well, texts that are text
};

// The best first.
std::vector<reading> guess(byte_view input);

// The one message that fits best, if it reads every byte and no other fits as well. Else wrong usage: it says which
// messages there are to choose from. `name` is that of the input.
const message_type &only_guess(byte_view input, const std::string &name);

}  // namespace inspect
