// error: .*ignoring return value
// The number may not fit.
#include "pavo_zorv.hpp"

void fill(zorv::owned<api_addr> &address, int number) { address.try_set<&api_addr::address>(number); }
