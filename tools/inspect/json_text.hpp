// JSON as readable text: one member to a line, lists of numbers on one line.
#pragma once

#include <string>

#include "types.hpp"

namespace inspect {

std::string to_text(const json &value);

}  // namespace inspect
