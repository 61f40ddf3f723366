// error: .*ignoring return value
// The copy would be released at once.
#include "pavo_zorv.hpp"

void copy(const api_intf &intf) { zorv::duplicate(intf); }
