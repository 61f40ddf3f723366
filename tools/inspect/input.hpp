// Where octets come from and go to: files and the standard streams, raw or as hexadecimal text.
#pragma once

#include <string>

#include "octets.hpp"

namespace inspect {

enum class input_form { detected, raw, hex };

// The content of a file; of the standard input when the name is empty or "-".
octets read_file(const std::string &name);
void write_file(const std::string &name, octet_view content);

// The octets that an input means. Hexadecimal text is pairs of digits with blanks where one likes, and comments from
// '#' to the end of the line; without a form, input that consists of nothing else is taken as such.
octets octets_of(octets input, input_form form);

}  // namespace inspect
