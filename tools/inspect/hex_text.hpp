// The annotated bytes as text: one field to a line, nested fields indented.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "annotate.hpp"
#include "colour.hpp"

namespace inspect {

// The mark after the offset is ? for an unknown field, ~ for what is read but would be written differently, and ! for
// what cannot be read.
std::string hex_text(byte_view input, const std::vector<annotation> &rows, const painter &paint);

// Appends the lines of one row. Of what a failure leaves unread, only the first `max_rest` bytes are shown.
void append_hex(std::string &text, byte_view input, const annotation &row, const painter &paint,
                std::size_t max_rest = SIZE_MAX);

}  // namespace inspect
