// error: .*a flag takes bool
// A flag is true or false, although it is stored in 8 bits.
#include "pavo_zorv.hpp"

void fill(zorv::owned<api_msg> &message, std::uint8_t number) { message.set<&api_msg::field15>(number); }
