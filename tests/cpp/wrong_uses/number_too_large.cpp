// error: .*values that do not fit|the_value_does_not_fit
// A member of 32 bits cannot hold 2^32 + 1.
#include "pavo_zorv.hpp"

void fill(zorv::owned<api_addr> &address) { address.set<&api_addr::address>(4294967297); }
