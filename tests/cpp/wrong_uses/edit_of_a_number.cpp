// error: .*a nested message or a list
// A number is set with its presence.
#include "pavo_zorv.hpp"

void fill(api_addr &address) { zorv::edit<&api_addr::address>(address) = 7; }
