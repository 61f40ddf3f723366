// Where two messages differ.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "types.hpp"

namespace inspect {

struct difference {
  std::string path;  // "hops[1].field3"
  std::string a;     // what the first message has there: JSON, "absent", or a number of elements
  std::string b;
};

// All differences, in the order in which the library compares: fields by number, list elements before their count.
std::vector<difference> differences(const message_type &type, const json &a, const json &b);

}  // namespace inspect
