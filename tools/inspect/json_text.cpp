// Writes trees as JSON.
#include "json_text.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace inspect {

void json_writer::value(const nlohmann::ordered_json &tree) {
  using shape = nlohmann::ordered_json::value_t;
  switch (tree.type()) {
    case shape::object:
      begin_object();
      for (const auto &[key, each] : tree.items()) {
        name(key);
        value(each);
      }
      return end_object();
    case shape::array:
      if (std::ranges::any_of(tree, [](const auto &each) { return each.is_structured(); })) {
        begin_list();
      } else {
        begin_short_list();
      }
      for (const auto &each : tree) value(each);
      return end_list();
    case shape::string:
      return string(tree.get_ref<const std::string &>());
    case shape::boolean:
      return flag(tree.get<bool>());
    case shape::number_unsigned:
      return number(tree.get<std::uint64_t>());
    default:  // no record has anything else
      return number(tree.get<std::int64_t>());
  }
}

}  // namespace inspect
