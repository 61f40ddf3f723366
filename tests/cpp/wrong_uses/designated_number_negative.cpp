// error: .*values that do not fit|the_value_does_not_fit
// An unsigned member cannot hold a negative number.
#include "pavo_zorv.hpp"

auto make() { return zorv::try_make<api_addr>(zorv::field<&api_addr::address> = -1); }
