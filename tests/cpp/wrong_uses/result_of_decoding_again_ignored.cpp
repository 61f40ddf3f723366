// error: .*ignoring return value
// The octets may be no message.
#include "pavo_zorv.hpp"

void read(zorv::owned<api_intf> &intf, zorv::octets input) { intf.decode(input); }
