// Octets, owned and viewed.
#pragma once

#include <span>
#include <vector>

namespace inspect {

using octets = std::vector<unsigned char>;
using octet_view = std::span<const unsigned char>;

}  // namespace inspect
