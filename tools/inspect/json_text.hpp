// JSON as text that is easy on the eye: one member to a line, lists of numbers on one line.
#pragma once

#include <string>

#include "types.hpp"

namespace inspect {

std::string to_text(const json &value);

}  // namespace inspect
