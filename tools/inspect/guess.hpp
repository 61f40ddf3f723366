// Which messages an input may be.
#pragma once

#include <string>
#include <vector>

#include "surprise.hpp"
#include "types.hpp"

namespace inspect {

// What the library does with an input as a message.
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
  inspect::surprise surprise;
};

// All messages, the most likely first: the one that explains the input with the fewest bits, whether it decodes or not.
// Of those that explain it equally well the one with the smallest record comes first.
std::vector<candidate> guess(byte_view input);

// Whether nothing in the input tells two candidates apart.
bool is_as_likely(const candidate &a, const candidate &b);

// How many candidates explain the input nearly as well as the first: what takes ten more bits is a thousand times less
// likely.
std::size_t likely_count(const std::vector<candidate> &candidates);

// The message type that reads every byte, if no other fits as well. Otherwise a usage error that lists the types to
// choose from. `name` is that of the input.
const message_type &unique_guess(byte_view input, const std::string &name);

}  // namespace inspect
