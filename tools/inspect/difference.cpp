// Finds the differences between two messages from their JSON.
#include "difference.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace inspect {
namespace {

// A value on one line; only the beginning of a long one.
std::string shown(const json &value) {
  constexpr std::size_t max_size = 72;
  const std::string text = value.dump();
  return text.size() <= max_size ? text : text.substr(0, max_size) + "...";
}

class comparison {
 public:
  void messages(const message_info &type, const json &a, const json &b) {
    for (const field_info &field : type.fields) {
      const auto in_a = a.find(field.name), in_b = b.find(field.name);
      if (in_a == a.end() && in_b == b.end()) continue;
      path_.push_back({&field, {}});
      if (in_a == a.end() || in_b == b.end()) {
        add(in_a == a.end() ? "absent" : shown(*in_a), in_b == b.end() ? "absent" : shown(*in_b));
      } else if (in_a->is_array() && in_b->is_array()) {
        lists(field, *in_a, *in_b);
      } else {
        values(field, *in_a, *in_b);
      }
      path_.pop_back();
    }
  }

  std::vector<difference> found;

 private:
  void values(const field_info &field, const json &a, const json &b) {
    if (a.is_object() && b.is_object() && field.nested != nullptr) {
      messages(*field.nested, a, b);
    } else if (a != b) {
      add(shown(a), shown(b));
    }
  }

  void lists(const field_info &field, const json &a, const json &b) {
    for (std::size_t index = 0; index < std::min(a.size(), b.size()); ++index) {
      path_.back().index = index;
      values(field, a[index], b[index]);
    }
    path_.back().index.reset();
    if (a.size() != b.size()) add(element_count(a), element_count(b));
  }

  static std::string element_count(const json &list) {
    return fmt::format("{} element{}", list.size(), list.size() == 1 ? "" : "s");
  }

  void add(std::string a, std::string b) { found.push_back({to_string(path_), std::move(a), std::move(b)}); }

  path path_;
};

}  // namespace

std::vector<difference> differences(const message_type &type, const json &a, const json &b) {
  comparison comparison;
  comparison.messages(type, a, b);
  return std::move(comparison.found);
}

}  // namespace inspect
