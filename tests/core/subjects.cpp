// The messages of the tests, for the laws that hold for every message of the library: so these are tried on all kinds
// of member in every place.
#include "laws.hpp"
#include "test_messages.hpp"

namespace test {

const std::vector<const message_type *> &subjects() {
  static const std::vector<const message_type *> result = {
      &describe<leaf>(),  &describe<branch>(),     &describe<parcel>(),
      &describe<crate>(), &describe<everything>(), &describe<widest>(),
  };
  return result;
}

}  // namespace test
