// error: .*values that do not fit|the_value_does_not_fit
// The same in an element of a list.
#include "pavo_zorv.hpp"

void fill(zorv::owned<api_aa_list> &list, api_policy &element) {
  list.set_in<&api_policy::field9>(element, 2147483648u);
}
