// A member of a message, picked by its path: "p2p_auto_policy_notif.label_stack.labels[0]", "hops.field1".
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "types.hpp"

namespace inspect {

class member_path {
 public:
  // A usage error if the message has no such member.
  member_path(const message_type &type, const std::string &text);

  // The member in the JSON of a message; empty if it is absent. Of a list without an index in the path, the members of
  // all its elements.
  std::optional<json> of(const json &message) const;

 private:
  struct name_and_index {
    const field_info *field;
    std::optional<std::size_t> index;
  };

  std::optional<json> find(const json &from, std::size_t depth) const;

  std::vector<name_and_index> steps_;
};

}  // namespace inspect
