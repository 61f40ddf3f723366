// The messages of the library: all 31.
#include "laws.hpp"
#include "messages/all.hpp"

namespace test {

const std::vector<const message_type *> &subjects() {
  static const auto result = std::apply(
      []<class... Records>(std::type_identity<Records>...) {
        return std::vector<const message_type *>{&describe<Records>()...};
      },
      pavo_zorv::all_messages{});
  return result;
}

}  // namespace test
