// error: .*they have no presence bit
// A count has no presence bit.
#include "pavo_zorv.hpp"

bool has_labels(const api_lbl_stack &stack) { return zorv::has<&api_lbl_stack::label_count>(stack); }
