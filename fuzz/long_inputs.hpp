// Inputs that are too long for a corpus: messages that end near a length that matters, generated for each replay and
// always the same.
#pragma once

#include <cstddef>

namespace fuzz {

// Calls a function with each of them; returns their number.
std::size_t for_each_long_input(void (*use)(const unsigned char *data, std::size_t size));

}  // namespace fuzz
