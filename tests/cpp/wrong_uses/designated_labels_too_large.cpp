// error: .*narrowing
// Labels have 32 bits.
#include "pavo_zorv.hpp"

auto make() { return zorv::try_make<api_lbl_stack>(zorv::field<&api_lbl_stack::labels> = {4294967296}); }
