// An independent walk over the bytes of a message: what the library reads, where, in which order, and where it fails.
// It shares the schema with the library but no decoding code, so that each can be checked against the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "bytes.hpp"
#include "path.hpp"
#include "pavo_zorv.h"
#include "types.hpp"

namespace inspect {

// One field of the input. The fields inside a nested message follow it, one level deeper.
struct walked_field {
  const field_info *field = nullptr;      // null for an unknown field, which is skipped
  std::optional<std::size_t> index = {};  // of a list element
  bool is_repeated = false;               // an earlier occurrence exists
  unsigned depth = 0;
  std::uint32_t key = 0;
  std::size_t start = 0;    // of the key
  std::size_t value = 0;    // of what follows the key: varint, length or fixed bytes
  std::size_t content = 0;  // of what follows the length; without a length the same as `value`
  std::size_t end = 0;
  std::uint64_t number = 0;  // the value of the varint or length, before it is truncated to the member's width
};

// Where and why decoding fails.
struct walk_failure {
  int result;
  std::size_t offset;  // of the key, length or value that cannot be read
  inspect::path path;
  unsigned depth;      // as for a field
  std::string reason;  // "field 2 of api_exp_path: second run of a list; the first starts at offset 0"
};

struct walk_outcome {
  std::optional<walk_failure> failure;
  std::size_t unknown_fields = 0;  // that were skipped

  int result() const { return failure ? failure->result : CODEC_OK; }
};

struct walk : walk_outcome {
  std::vector<walked_field> fields;
};

// What decoding does with an allocator that never fails.
walk walk_message(const message_info &type, byte_view input);

// The same in constant memory: `visit` is called with each field, in the order of the input.
using field_visitor = std::function<void(const walked_field &)>;
walk_outcome walk_message(const message_info &type, byte_view input, const field_visitor &visit);

// Only how it ends.
walk_outcome outcome_of(const message_info &type, byte_view input);

}  // namespace inspect
