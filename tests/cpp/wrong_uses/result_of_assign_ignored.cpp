// error: .*(unused|ignoring return value)
// There may be no memory for the name.
#include "pavo_zorv.hpp"

void fill(zorv::owned<api_intf> &intf) { intf.assign(zorv::field<&api_intf::field2> = "eth0"); }
