// JSON in colours.
#pragma once

#include <string>
#include <string_view>

#include "colour.hpp"

namespace inspect {

// The same text with names, strings, numbers and the other values in a colour each.
std::string coloured_json(std::string_view text, const painter &paint);

}  // namespace inspect
