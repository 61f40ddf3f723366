// An independent walk over the bytes of a message: what the library reads where, in which order, and where it gives
// up. It shares the schema with the library, and no reading code, so that each can be held against the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "bytes.hpp"
#include "path.hpp"
#include "pavo_zorv.h"
#include "types.hpp"

namespace inspect {

// One field of the input. Those inside a nested message follow it, one deeper.
struct walked_field {
  const field_type *field = nullptr;      // null for an unknown field, which is skipped
  std::optional<std::size_t> index = {};  // of a list's element
  bool again = false;                     // replaces an earlier occurrence
  unsigned depth = 0;
  std::uint32_t key = 0;
  std::size_t start = 0;    // of the key
  std::size_t value = 0;    // of the varint, the length or the fixed bytes after the key
  std::size_t content = 0;  // of the bytes after a length; else the same as `value`
  std::size_t end = 0;
  std::uint64_t number = 0;  // the varint's or the length's value, before it is cut to a member's width
};

// Where and why the reading ends.
struct walk_failure {
  int result;
  std::size_t offset;  // of the key, length or value that cannot be read
  inspect::path path;
  unsigned depth;      // as of a field
  std::string reason;  // "field 2 of api_exp_path: a second run, first run at offset 0"
};

struct walk {
  std::vector<walked_field> fields;
  std::optional<walk_failure> failure;

  int result() const { return failure ? failure->result : CODEC_OK; }
};

// As the library decodes it with an allocator that never fails.
walk walk_message(const message_type &type, byte_view input);

}  // namespace inspect
