// error: .*values that do not fit|the_value_does_not_fit
// An unsigned member cannot hold a negative number.
#include "pavo_zorv.hpp"

void fill(zorv::owned<api_addr> &address) { address.set<&api_addr::address>(-1); }
