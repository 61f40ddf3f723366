// Setting numbers and flags in C++: values that always fit, values that may not fit, and what does not compile.
#include <cinttypes>
#include <cstdio>
#include <cstdlib>

#include "pavo_zorv.hpp"

int main() {
  zorv::owned<srv6_sid_struct> sid;
  //! [certain]
  sid.set<&srv6_sid_struct::field1>(true);                // a flag takes only bool
  sid.set<&srv6_sid_struct::field3>(std::uint8_t{40});    // every value of this type fits
  sid.set<&srv6_sid_struct::field4>(zorv::constant<24>);  // a constant that fits
  // sid.set<&srv6_sid_struct::field5>(zorv::constant<256>);  does not compile
  // sid.set<&srv6_sid_struct::field2>(1);                    nor does this: a flag is not a number
  //! [certain]

  zorv::owned<api_addr> address;
  //! [checked]
  for (const char *const argument : {"7", "-1", "4294967297"}) {
    const int result = address.try_set<&api_addr::address>(std::strtoll(argument, nullptr, 10));
    std::printf("%s: %s\n", argument, zorv::result_text(result));
  }
  //! [checked]

  //! [read]
  const bool flag = sid.get<&srv6_sid_struct::field1>();
  const std::uint32_t number = address.get<&api_addr::address>();  // still 7
  //! [read]
  std::printf("%s, %" PRIu32 "\n", flag ? "true" : "false", number);
  return 0;
}
