// The messages of the library: all 31.
#include "laws.hpp"

namespace test {

const std::vector<const naive::message *> &subjects() {
  static const auto result = naive::pointers_to(naive::messages());
  return result;
}

}  // namespace test
