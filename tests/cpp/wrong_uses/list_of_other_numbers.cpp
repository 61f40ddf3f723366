// error: .*a contiguous container of the list's elements
// Labels have 32 bits.
#include "pavo_zorv.hpp"

int fill(zorv::owned<api_lbl_stack> &stack) { return stack.set<&api_lbl_stack::labels>(std::vector<std::uint64_t>{1}); }
