// Octets inside JSON text: base64 for what is not text, UTF-8 for what is.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "octets.hpp"

namespace inspect {

std::string to_base64(octet_view input);

// Nothing unless the text is base64 with its padding, and of the one form that `to_base64` gives.
std::optional<octets> from_base64(std::string_view text);

bool is_utf8(std::string_view text);

}  // namespace inspect
