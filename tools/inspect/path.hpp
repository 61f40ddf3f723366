// The path from the outermost message to a field.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace pavo_zorv {
struct field_info;
}

namespace inspect {

struct step {
  const pavo_zorv::field_info *field;
  std::optional<std::size_t> index;  // of a list's element
};

using path = std::vector<step>;
using path_view = std::span<const step>;

// "hops[2].field5"; empty for the outermost message.
std::string to_string(path_view steps);

}  // namespace inspect
