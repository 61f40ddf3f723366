// error: .*the constant does not fit
// A member of 8 bits cannot hold 256.
#include "pavo_zorv.hpp"

void fill(zorv::owned<srv6_sid_struct> &sid) { sid.set<&srv6_sid_struct::field3>(zorv::constant<256>); }
