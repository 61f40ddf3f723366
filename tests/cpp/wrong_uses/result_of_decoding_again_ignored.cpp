// error: .*ignoring return value
// The bytes may not be a message.
#include "pavo_zorv.hpp"

void read(zorv::owned<api_intf> &intf, zorv::bytes input) { intf.decode(input); }
