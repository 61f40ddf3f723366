// Finds members by their paths.
#include "member_path.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>
#include <string_view>

#include "failure.hpp"

namespace inspect {
namespace {

// The number in "[3]".
std::optional<std::size_t> index_in(std::string_view brackets) {
  std::size_t index = 0;
  if (!brackets.starts_with('[') || !brackets.ends_with(']')) return std::nullopt;
  const char *const end = brackets.data() + brackets.size() - 1;
  const auto [rest, error] = std::from_chars(brackets.data() + 1, end, index);
  if (rest != end || error != std::errc{}) return std::nullopt;
  return index;
}

}  // namespace

member_path::member_path(const message_type &type, const std::string &text) {
  const message_info *inside = &type;
  std::string_view rest = text;
  while (true) {
    const std::string_view word = rest.substr(0, rest.find('.'));
    const std::string_view name = word.substr(0, word.find('['));
    const auto refuse = [&](std::string_view why) {
      throw usage_error(fmt::format("--path={}: {}: {}", text, word, why));
    };
    if (inside == nullptr) refuse("what comes before is no message");
    const field_info *const field = field_of(*inside, name);
    if (field == nullptr) refuse(fmt::format("{} has no such field", inside->name));
    const auto index = index_in(word.substr(name.size()));
    if (name.size() != word.size() && (!index || !field->is_list())) refuse("not an element of a list");
    steps_.push_back({field, index});
    inside = field->nested;
    if (word.size() == rest.size()) return;
    rest.remove_prefix(word.size() + 1);
  }
}

std::optional<json> member_path::of(const json &message) const { return find(message, 0); }

std::optional<json> member_path::find(const json &from, std::size_t depth) const {
  if (depth == steps_.size()) return from;
  const auto &[field, index] = steps_[depth];
  const auto found = from.find(field->name);
  if (found == from.end()) return std::nullopt;
  if (index) {
    if (*index >= found->size()) return std::nullopt;
    return find((*found)[*index], depth + 1);
  }
  if (!found->is_array() || depth + 1 == steps_.size()) return find(*found, depth + 1);
  json all = json::array();
  for (const json &each : *found) {
    if (auto member = find(each, depth + 1)) all.push_back(*std::move(member));
  }
  return all;
}

}  // namespace inspect
