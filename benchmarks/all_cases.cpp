// Registers all contestants.
#include "contest.hpp"

namespace contest {

roll all_cases() {
  roll all;
  enter_library(all);
  enter_protobuf(all);
  enter_protobuf_c(all);
  enter_nanopb(all);
  enter_protozero(all);
  enter_floors(all);
  return all;
}

}  // namespace contest
