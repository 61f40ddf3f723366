// error: .*a flag takes bool
// A flag is true or false.
#include "pavo_zorv.hpp"

void fill(zorv::owned<api_msg> &message) { message.set<&api_msg::field15>(1); }
