// One message put through the library: whether it decodes, whether it is written as the library writes it, and what it
// costs.
#pragma once

#include <cstddef>
#include <vector>

#include "account.hpp"
#include "types.hpp"

namespace inspect {

struct findings {
  int result = 0;
  bool is_canonical = false;  // encoding gives the same bytes
  std::size_t encoded = 0;    // bytes of the encoding
  account::figures memory;    // asked for by decoding
  account::figures dropped;   // not given back on release: what replaced nested messages owned
};

// Keeps its memory from one message to the next.
class examiner {
 public:
  findings examine(const message_type &type, byte_view input);

 private:
  account account_;
  std::vector<std::max_align_t> record_;
  byte_string encoding_;
};

}  // namespace inspect
