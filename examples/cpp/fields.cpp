// Records by the names of their fields in C++: made, read as views, and walked through; results without exceptions.
#include <cinttypes>
#include <cstdio>
#include <vector>

#include "pavo_zorv.hpp"

namespace {

//! [make]
using zorv::elements;
using zorv::field;
using zorv::fields;

zorv::expected<zorv::owned<api_aa_list>> make_policies() {
  return zorv::try_make<api_aa_list>(field<&api_aa_list::policies> = elements(
                                         fields(field<&api_policy::field1> = "to-node-51",
                                                field<&api_policy::field9> = -1, field<&api_policy::field10> = true),
                                         fields(field<&api_policy::field1> = "to-node-52",
                                                field<&api_policy::prefixes> = elements(fields(), fields()))));
}
//! [make]

//! [read]
void print(const api_policy &policy) {
  const std::string_view name = zorv::get<&api_policy::field1>(policy);
  std::printf("%.*s: %zu prefixes", static_cast<int>(name.size()), name.data(),
              zorv::get<&api_policy::prefixes>(policy).size());
  if (const auto number = zorv::find<&api_policy::field9>(policy)) std::printf(", field9 is %" PRId32, *number);
  std::printf("\n");
}
//! [read]

}  // namespace

int main() {
  const auto made = make_policies();
  if (!made) return 1;

  //! [receive]
  const std::vector<unsigned char> bytes = zorv::encode(**made);
  auto received = zorv::try_decode<api_aa_list>(bytes);
  if (!received) {
    std::printf("%s\n", zorv::result_text(received.error()));
    return 1;
  }
  for (const api_policy &policy : received->get<&api_aa_list::policies>()) print(policy);
  //! [receive]

  //! [edit]
  for (api_policy &policy : received->edit<&api_aa_list::policies>()) zorv::clear<&api_policy::field9>(policy);
  //! [edit]
  print(received->get<&api_aa_list::policies>().front());

  //! [fields]
  zorv::for_each_field<api_aa_list>([&](auto each) {
    std::printf("%u %s: %s\n", each.number, each.name, each.is_in(**received) ? "present" : "absent");
  });
  //! [fields]
  return 0;
}
