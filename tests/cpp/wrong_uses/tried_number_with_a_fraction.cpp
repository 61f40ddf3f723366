// error: .*a whole number
// A fraction would be cut off.
#include "pavo_zorv.hpp"

int fill(zorv::owned<api_addr> &address) { return address.try_set<&api_addr::address>(1.5); }
