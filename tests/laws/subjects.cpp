// The messages of the library, all of them.
#include "laws.hpp"

namespace test {

const std::vector<const naive::message *> &subjects() {
  static const auto result = naive::pointers_to(naive::messages());
  return result;
}

}  // namespace test
