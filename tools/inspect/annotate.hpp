// What every byte of a message means, as rows: the one description from which `hex` makes both its text and its HTML.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "bytes.hpp"
#include "types.hpp"
#include "walk.hpp"

namespace inspect {

enum class row_state {
  plain,
  unknown,    // skipped: not a field of this message
  tolerated,  // read, but this library would write it differently
  unread,     // not stored, because of a failure further on
  failed,     // from the byte that cannot be read to the end
};

enum class role : unsigned char { key, length, value, excess };  // excess: bytes that a shorter varint would not have

// One field without the fields inside it, or the rest of the input after a failure.
struct annotation {
  row_state state = row_state::plain;
  unsigned depth = 0;
  std::size_t start = 0;
  std::size_t end = 0;        // of the bytes of this row
  std::size_t field_end = 0;  // of the field with everything inside it
  std::string parent;         // the path to the containing message: "hops[1]."
  std::string name;           // "field5[0]"; "unknown field 31"
  std::string key;            // "5 varint"
  std::string kind;           // "unsigned 32-bit"
  std::string meaning;        // " = 7", ": 12 bytes", ...
  std::string remarks;        // ", over-long key"
  std::vector<role> roles;    // one for each byte of the row
  bool is_address = false;    // the elements of a list that are an address: the bytes stay on one line
  bool is_container = false;  // the rows that follow, one level deeper, are inside
};

// Every byte of the input is in exactly one row, including those after a failure.
std::vector<annotation> annotate(byte_view input, const walk &walked);

// The same in constant memory: `visit` is called with each row.
using row_visitor = std::function<void(const annotation &)>;
void annotate(const message_type &type, byte_view input, const row_visitor &visit);

}  // namespace inspect
