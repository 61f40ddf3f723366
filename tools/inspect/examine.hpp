// Runs one message through the library: whether it decodes, whether it is canonical, and how much memory it takes.
#pragma once

#include <cstddef>
#include <vector>

#include "counting_memory.hpp"
#include "types.hpp"

namespace inspect {

struct findings {
  int result = 0;
  bool is_canonical = false;       // encoding it again gives the same bytes
  std::size_t encoded = 0;         // the size of the encoding
  counting_memory::usage memory;   // allocated by decoding
  counting_memory::usage dropped;  // not released: what a nested message owned before a later one replaced it
};

// Reuses its memory from one message to the next.
class examiner {
 public:
  findings examine(const message_type &type, byte_view input);

 private:
  counting_memory memory_;
  std::vector<std::max_align_t> record_;
  byte_string encoding_;
};

}  // namespace inspect
