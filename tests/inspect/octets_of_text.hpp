// Octets that a test gives as text.
#pragma once

#include <string_view>

#include "octets.hpp"

namespace inspect {

inline octets of(std::string_view text) { return octets(text.begin(), text.end()); }

}  // namespace inspect
