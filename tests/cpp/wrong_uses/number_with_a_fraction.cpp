// error: .*a whole number
// A fraction would be cut off.
#include "pavo_zorv.hpp"

void fill(zorv::owned<api_addr> &address) { address.set<&api_addr::address>(1.5); }
