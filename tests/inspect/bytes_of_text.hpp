// Bytes given as text.
#pragma once

#include <string_view>

#include "bytes.hpp"

namespace inspect {

inline byte_string of(std::string_view text) { return byte_string(text.begin(), text.end()); }

}  // namespace inspect
