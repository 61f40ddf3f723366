// Inputs that are too long for a corpus: messages that end near a length that matters, made anew for each replay and
// always the same.
#pragma once

#include <cstddef>

namespace fuzz {

// Hands each of them to a function; returns how many there were.
std::size_t for_each_long_input(void (*use)(const unsigned char *data, std::size_t size));

}  // namespace fuzz
