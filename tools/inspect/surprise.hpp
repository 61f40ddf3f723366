// How well a message type explains an input that may be broken, in one number.
#pragma once

#include <cstddef>

#include "bytes.hpp"
#include "types.hpp"

namespace inspect {

struct surprise {
  // How unlikely the input is, if it is this message: each key, value and defect adds the bits that it would take to
  // state it to somebody who knows the message. Less is better.
  double bits = 0;
  std::size_t known = 0;  // bytes in fields of this message and of those inside it, and in their keys and lengths
};

// Reads to the end, past everything that decoding refuses: a message that is cut off, a wrong wire type, a second run.
surprise surprise_of(const message_info &type, byte_view input);

}  // namespace inspect
