// A record as source in C.
#pragma once

#include <string>

#include "types.hpp"

namespace inspect {

// Declares `message`, from which the library encodes what the record holds.
std::string c_source(const message_type &type, const record &content);

}  // namespace inspect
