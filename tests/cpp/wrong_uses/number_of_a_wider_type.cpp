// error: .*values that do not fit|not (usable in )?a constant expression
// What a number of 64 bits is, is known at run time only.
#include "pavo_zorv.hpp"

void fill(zorv::owned<api_addr> &address, std::uint64_t number) { address.set<&api_addr::address>(number); }
