// Registers all contestants.
#include "contest.hpp"

namespace contest {

void enter_all(roll &all) {
  enter_library(all);
  enter_protobuf(all);
  enter_protobuf_c(all);
  enter_nanopb(all);
  enter_protozero(all);
  enter_floor(all);
}

}  // namespace contest
