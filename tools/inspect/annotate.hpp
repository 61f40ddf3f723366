// What every byte of a message means, in rows that any page can be made of: the one description behind the text and
// the HTML of `hex`.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "bytes.hpp"
#include "types.hpp"
#include "walk.hpp"

namespace inspect {

// How a row stands out.
enum class standing {
  plain,
  unknown,    // skipped: no field of this message
  tolerated,  // read, but no encoder of this library writes it so
  unread,     // lost to a failure further on
  failed,     // from the byte on that cannot be read
};

enum class role { key, length, value, excess };  // excess: bytes of a varint that add nothing

// One field, without the fields inside it, or what is left over after a failure.
struct annotation {
  standing stands = standing::plain;
  unsigned depth = 0;
  std::size_t start = 0;
  std::size_t end = 0;        // of the bytes of this row
  std::size_t whole_end = 0;  // of the field with all that lies in it
  std::string around;         // the way to the containing message: "hops[1]."
  std::string name;           // "field5[0]"; "unknown field 31"
  std::string key;            // "5 varint"
  std::string kind;           // "unsigned 32-bit"
  std::string meaning;        // " = 7", ": 12 bytes", ...
  std::string remarks;        // ", over-long key"
  std::vector<role> roles;    // of each byte of the row
  bool is_container = false;  // the rows that follow, one deeper, are inside
};

// Every byte of the input stands in one row, also those after a failure.
std::vector<annotation> annotate(byte_view input, const walk &walked);

}  // namespace inspect
