// Guesses by reading the input as every message.
#include "guess.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <tuple>

#include "failure.hpp"
#include "walk.hpp"

namespace inspect {
namespace {

candidate read_as(const message_type &type, byte_view input) {
  std::size_t unknown = 0;
  const walk_outcome walked = walk_message(type, input, [&](const walked_field &each) {
    if (each.field == nullptr) unknown += each.end - each.start;
  });
  candidate result{&type, fit::none, walked.failure ? walked.failure->offset : input.size(), unknown,
                   surprise_of(type, input)};
  if (walked.failure) return result;
  record content(type);
  if (content.decode(input) != CODEC_OK) return result;
  result.fit = std::ranges::equal(content.encode(), input) ? fit::canonical
               : result.unknown == 0                       ? fit::complete
                                                           : fit::partial;
  return result;
}

// Sums of the same numbers in another order differ in their last digits.
constexpr double no_difference = 1e-6;

}  // namespace

std::vector<candidate> guess(byte_view input) {
  std::vector<candidate> candidates;
  for (const message_type *type : all_types()) candidates.push_back(read_as(*type, input));
  const auto order = [](const candidate &each) {
    return std::tuple(std::llround(each.surprise.bits / no_difference), each.type->size);
  };
  std::ranges::stable_sort(candidates, {}, order);
  return candidates;
}

bool is_as_likely(const candidate &a, const candidate &b) {
  return std::llround(a.surprise.bits / no_difference) == std::llround(b.surprise.bits / no_difference);
}

std::size_t likely_count(const std::vector<candidate> &candidates) {
  constexpr double likely = 10;
  const double most = candidates.front().surprise.bits + likely;
  return static_cast<std::size_t>(
      std::ranges::count_if(candidates, [&](const candidate &each) { return each.surprise.bits <= most; }));
}

const message_type &unique_guess(byte_view input, const std::string &name) {
  const std::vector<candidate> candidates = guess(input);
  const fit best = std::ranges::min(candidates, {}, &candidate::fit).fit;
  if (best == fit::partial || best == fit::none) {
    throw usage_error(fmt::format(
        "{}: TYPE is required: no message reads every byte of it, the most likely is {}; `decode --raw` needs none",
        name, candidates.front().type->name));
  }
  std::vector<const message_type *> fitting;
  for (const candidate &each : candidates) {
    if (each.fit == best) fitting.push_back(each.type);
  }
  if (fitting.size() == 1) return *fitting.front();
  constexpr std::size_t named = 4;
  std::string names;
  for (const message_type *type : std::span(fitting).first(std::min(fitting.size(), named))) {
    names += fmt::format("{}{}", names.empty() ? "" : ", ", type->name);
  }
  throw usage_error(fmt::format("{}: TYPE is required: {} messages fit equally well ({}{})", name, fitting.size(),
                                names, fitting.size() > named ? ", ..." : ""));
}

}  // namespace inspect
