// compiles
// What the others do wrong, done right.
#include "pavo_zorv.hpp"

bool has_labels(const api_lbl_stack &stack) { return zorv::has<&api_lbl_stack::labels>(stack); }
int name(zorv::owned<api_intf> &intf) { return intf.set<&api_intf::field2>("eth0"); }
zorv::owned<api_intf> copy(const zorv::owned<api_intf> &intf) { return zorv::duplicate(*intf); }
