// error: .*values that do not fit|not (usable in )?a constant expression
// Whether a 64-bit number fits is known only at run time.
#include "pavo_zorv.hpp"

void fill(zorv::owned<api_addr> &address, std::uint64_t number) { address.set<&api_addr::address>(number); }
