// error: .*ignoring return value
// There may be no memory for a string.
#include "pavo_zorv.hpp"

void fill(zorv::owned<api_intf> &intf) { intf.set<&api_intf::field2>("eth0"); }
