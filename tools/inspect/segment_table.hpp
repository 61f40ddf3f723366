// The segment table of an encoding, with a name for each entry.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "types.hpp"

namespace inspect {

struct segment {
  std::string name;   // "hops[1]", "field6, referenced"; for the outermost message its type
  unsigned depth;     // of the message in the nesting
  std::size_t start;  // in the encoding, or in the input for referenced bytes
  std::uint64_t length;
  bool is_referenced;
};

struct segment_table {
  std::size_t length;  // of the encoding, without referenced bytes
  std::vector<segment> entries;
  bool as_expected;  // the library's table has one entry for each message or piece of a message in the encoding
};

// Decodes the input, encodes it again and names the entries. With `referenced`, uses reference mode for both.
segment_table segments_of(const message_type &type, byte_view input, bool referenced);

}  // namespace inspect
