// error: .*a field of this record
// A field of another record.
#include "pavo_zorv.hpp"

auto make() { return zorv::try_make<api_addr>(zorv::field<&api_intf::field1> = 7u); }
