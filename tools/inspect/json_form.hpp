// Options for writing a record as JSON.
#pragma once

#include "path.hpp"

namespace inspect {

// How bytes are written. `length` cannot be read back.
enum class bytes_form { base64, hex, length };

// How lists of 8-bit numbers are written: as numbers, as hexadecimal digits, or as an address if there are 4 or 16. All
// of it is read back.
enum class octets_form { numbers, hex, address };

struct json_form {
  bytes_form bytes = bytes_form::base64;
  octets_form octets = octets_form::numbers;
  path_view stopped = {};  // where decoding stopped, if it failed
};

}  // namespace inspect
