// Errors that end a command, and the exit status of each.
#pragma once

#include <stdexcept>

namespace inspect {

enum exit_status {
  ok = 0,
  bad_input = 1,     // the input cannot be read, or two messages differ
  bad_usage = 2,     // wrong usage, or a file that cannot be read or written
  disagreement = 3,  // the library and the tool's own walk disagree about an input
};

struct input_error : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct usage_error : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace inspect
