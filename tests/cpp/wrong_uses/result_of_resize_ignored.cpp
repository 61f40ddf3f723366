// error: .*ignoring return value
// There may be no memory for the elements.
#include "pavo_zorv.hpp"

void fill(zorv::owned<api_aa_list> &list) { list.resize<&api_aa_list::policies>(3); }
