// error: .*name one of its members
// A nested message has no value of its own.
#include "pavo_zorv.hpp"

void fill(zorv::owned<api_msg> &message) { message.set<&api_msg::oam_req>(1); }
