// compiles
// Correct versions of what the other sources do wrong.
#include "pavo_zorv.hpp"

bool has_labels(const api_lbl_stack &stack) { return zorv::has<&api_lbl_stack::labels>(stack); }
int name(zorv::owned<api_intf> &intf) { return intf.set<&api_intf::field2>("eth0"); }
zorv::owned<api_intf> copy(const zorv::owned<api_intf> &intf) { return zorv::duplicate(*intf); }
void number(zorv::owned<api_addr> &address) { address.set<&api_addr::address>(4294967295u); }
void number(zorv::owned<api_addr> &address, std::uint32_t number) { address.set<&api_addr::address>(number); }
int number(zorv::owned<api_addr> &address, std::int64_t number) { return address.try_set<&api_addr::address>(number); }
void number(zorv::owned<srv6_sid_struct> &sid) { sid.set<&srv6_sid_struct::field3>(zorv::constant<255>); }
void number(zorv::owned<api_aa_list> &list, api_policy &element) { list.set_in<&api_policy::field9>(element, -1); }
void flag(zorv::owned<api_msg> &message) { message.set<&api_msg::field15>(true); }
void ignore(zorv::owned<api_intf> &intf) { (void)intf.set<&api_intf::field2>("eth0"); }
#ifdef __cpp_consteval
void constant(zorv::owned<api_addr> &address) { address.set<&api_addr::address>(7); }
#endif
