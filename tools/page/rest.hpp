// What the bytes after a failure might be.
#pragma once

#include <nlohmann/json_fwd.hpp>

namespace inspect {

class document;

// The fields that the rest is made of if it begins with a key, with the names that they would have where reading ended;
// and the messages that read the whole rest. Empty if reading did not fail.
nlohmann::ordered_json possible_rest(const document &from);

}  // namespace inspect
