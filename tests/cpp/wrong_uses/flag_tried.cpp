// error: .*a flag takes bool
// A flag is true or false, so there is nothing to try.
#include "pavo_zorv.hpp"

int fill(zorv::owned<api_msg> &message) { return message.try_set<&api_msg::field15>(200); }
