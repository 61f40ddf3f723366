// The bytes of a message with what they mean beside them, one field to a line, nested ones indented: as text.
#pragma once

#include <string>
#include <vector>

#include "annotate.hpp"
#include "colour.hpp"

namespace inspect {

// After the offset stands a mark: ? for an unknown field, ~ for what is read but would be written otherwise, ! for
// where the reading ends.
std::string hex_text(byte_view input, const std::vector<annotation> &rows, const painter &paint);

}  // namespace inspect
