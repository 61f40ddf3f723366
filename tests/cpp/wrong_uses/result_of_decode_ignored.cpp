// error: .*ignoring return value
// What was decoded would be released at once.
#include "pavo_zorv.hpp"

void read(zorv::bytes input) { zorv::decode<api_intf>(input); }
