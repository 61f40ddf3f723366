// Results in words.
#pragma once

#include <string>

#include "walk.hpp"

namespace inspect {

// For a failed decode, lines with the result, the position and the reason; empty for a success. The result comes from
// the library, position and reason from the walk.
std::string explain(const message_type &type, int result, const walk_outcome &walked);

// Whether the walk confirms the library's result. The walk cannot run out of memory.
bool agree(int result, const walk_outcome &walked);

}  // namespace inspect
