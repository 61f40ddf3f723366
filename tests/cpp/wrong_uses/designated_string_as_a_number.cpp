// error: .*(no match for|no viable|cannot convert|invalid conversion)
// A string is not a number.
#include "pavo_zorv.hpp"

auto make() { return zorv::try_make<api_intf>(zorv::field<&api_intf::field2> = 7u); }
