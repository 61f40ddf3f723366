// error: .*deleted
// A record is copied with duplicate, so that copies are explicit.
#include "pavo_zorv.hpp"

zorv::owned<api_intf> copy(const zorv::owned<api_intf> &intf) { return intf; }
