// The segment table of an encoding, with what each entry is.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "types.hpp"

namespace inspect {

struct segment {
  std::string name;   // "hops[1]", "field6, referenced"; the message's own name for the outermost
  unsigned depth;     // of the message
  std::size_t start;  // in the encoding; of referenced bytes, in the input
  std::uint64_t length;
  bool is_referenced;
};

struct segment_table {
  std::size_t length;  // of the encoding, without the referenced bytes
  std::vector<segment> entries;
  bool as_expected;  // whether the library gives as many entries as the encoding has messages and pieces
};

// Decodes the input, encodes it again and names the entries. With `referenced`, both are done in reference mode.
segment_table segments_of(const message_type &type, byte_view input, bool referenced);

}  // namespace inspect
