// error: .*the constant does not fit
// An unsigned member cannot hold a negative number.
#include "pavo_zorv.hpp"

void fill(zorv::owned<srv6_sid_struct> &sid) { sid.set<&srv6_sid_struct::field3>(zorv::constant<-1>); }
