// Options for writing a record as JSON.
#pragma once

#include "path.hpp"

namespace inspect {

// How bytes are written. `length` cannot be read back.
enum class bytes_form { base64, hex, length };

struct json_form {
  bytes_form bytes = bytes_form::base64;
  path_view stopped = {};  // where decoding stopped, if it failed
};

}  // namespace inspect
