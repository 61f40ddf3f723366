// Suggestions for misspelt names.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace inspect {

// The candidate that is most similar to a name, or begins with it; none if none is similar. Case does not matter.
std::optional<std::string_view> nearest(std::string_view given, std::span<const std::string_view> candidates);

// "; did you mean hex?", or nothing.
std::string suggestion(std::string_view given, std::span<const std::string_view> candidates);

}  // namespace inspect
