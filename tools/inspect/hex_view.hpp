// The octets of a message with what they mean beside them, one field to a line, nested ones indented.
#pragma once

#include <string>

#include "walk.hpp"

namespace inspect {

// Every octet of the input stands in it once, also those behind a failure.
std::string hex_view(octet_view input, const walk &walked);

}  // namespace inspect
