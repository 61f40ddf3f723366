// error: .*a number or a flag
// A string is read through its pointer.
#include "pavo_zorv.hpp"

auto name(const api_intf &intf) { return zorv::get<&api_intf::field2>(intf); }
