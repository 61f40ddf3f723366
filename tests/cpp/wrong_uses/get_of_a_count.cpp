// error: .*they have no presence bit
// A count is read as the size of its list.
#include "pavo_zorv.hpp"

auto count(const api_lbl_stack &stack) { return zorv::get<&api_lbl_stack::label_count>(stack); }
