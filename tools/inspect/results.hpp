// What a result means in words.
#pragma once

#include <string>

#include "walk.hpp"

namespace inspect {

// Of a failed decode: the result, the place and the reason, in lines. The library found the result, the walk the place:
// they must agree.
std::string explain(const message_type &type, int result, const walk &walked);

// Whether the walk bears out what the library said. It knows nothing of memory.
bool agree(int result, const walk &walked);

}  // namespace inspect
