// Bytes, owned and viewed.
#pragma once

#include <span>
#include <vector>

namespace inspect {

using byte_string = std::vector<unsigned char>;
using byte_view = std::span<const unsigned char>;

}  // namespace inspect
