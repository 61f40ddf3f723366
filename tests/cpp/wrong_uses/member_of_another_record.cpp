// error: .*a member of this record
// The member of another record.
#include "pavo_zorv.hpp"

bool has_labels(const api_lbl_stack &stack) { return zorv::has<&api_addr::address>(stack); }
