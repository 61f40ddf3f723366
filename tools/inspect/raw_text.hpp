// Input whose message is not known, as text: field numbers and values, nested as far as they parse.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "bytes.hpp"

namespace inspect {

struct raw_failure {
  std::size_t offset;
  std::string reason;
};

struct raw_text {
  std::string text;                    // of what was read, as `protoc --decode_raw` prints it
  std::optional<raw_failure> failure;  // why the rest cannot be read
};

raw_text to_raw_text(byte_view input);

}  // namespace inspect
