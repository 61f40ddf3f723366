// Where the lines of JSON begin, when long ones are broken: a list of numbers is one line, however many there are.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace inspect {

std::vector<std::int32_t> line_starts(std::string_view json);

}  // namespace inspect
