// Finds the most similar of some names.
#include "suggest.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>
#include <vector>

namespace inspect {
namespace {

char lower(char each) { return static_cast<char>(std::tolower(static_cast<unsigned char>(each))); }

bool begins_with(std::string_view name, std::string_view given) {
  return name.size() >= given.size() && std::ranges::equal(name.substr(0, given.size()), given, {}, lower, lower);
}

// The fewest insertions, deletions and replacements that make one of the other.
std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (lower(a[i]) != lower(b[j]));
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

// What a beginning leaves out counts as one difference, and a little more the more it is.
constexpr std::size_t shortest_beginning = 3;

std::pair<std::size_t, std::size_t> difference_of(std::string_view given, std::string_view name) {
  const std::size_t changes = distance(given, name);
  if (given.size() < shortest_beginning || !begins_with(name, given)) return {changes, 0};
  return {std::min<std::size_t>(changes, 1), changes};
}

}  // namespace

std::optional<std::string_view> nearest(std::string_view given, std::span<const std::string_view> candidates) {
  if (candidates.empty()) return std::nullopt;
  const auto found =
      std::ranges::min_element(candidates, {}, [&](std::string_view name) { return difference_of(given, name); });
  const std::size_t allowed = given.size() <= 3 ? 1 : std::max<std::size_t>(2, 2 * given.size() / 5);
  if (difference_of(given, *found).first > allowed) return std::nullopt;
  return *found;
}

std::string suggestion(std::string_view given, std::span<const std::string_view> candidates) {
  const auto found = nearest(given, candidates);
  return found ? fmt::format("; did you mean {}?", *found) : "";
}

}  // namespace inspect
