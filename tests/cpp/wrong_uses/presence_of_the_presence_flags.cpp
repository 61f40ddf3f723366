// error: .*they have no presence bit
// The presence flags have no presence bit.
#include "pavo_zorv.hpp"

bool is_there(const api_addr &address) { return zorv::has<&api_addr::presence>(address); }
