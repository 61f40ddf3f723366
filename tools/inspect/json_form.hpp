// What can be chosen about a record's JSON.
#pragma once

#include "path.hpp"

namespace inspect {

// How bytes are shown. Only the first two can be read back.
enum class bytes_form { base64, hex, length };

struct json_form {
  bytes_form bytes = bytes_form::base64;
  path_view stopped = {};  // where decoding stopped, of a record that was not decoded to its end
};

}  // namespace inspect
