// What the tool gives up on, and the exit status that says so.
#pragma once

#include <stdexcept>

namespace inspect {

enum exit_status {
  all_well = 0,
  input_refused = 1,  // the input is not what it should be
  not_usable = 2,     // wrong usage, or a file that cannot be read or written
  disagreement = 3,   // the library and the tool's own walk do not agree about an input
};

struct refused : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct unusable : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace inspect
