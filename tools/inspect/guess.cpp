// Guesses by decoding the input as every message.
#include "guess.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <span>
#include <tuple>

#include "failure.hpp"
#include "text_encodings.hpp"
#include "walk.hpp"

namespace inspect {
namespace {

bool is_readable(byte_view characters) {
  const std::string_view text(reinterpret_cast<const char *>(characters.data()), characters.size());
  return is_utf8(text) && std::ranges::none_of(text, [](char each) { return each >= 0 && each < ' '; });
}

int evidence_of(byte_view input, const walked_field &here) {
  if (here.field == nullptr) return -2;
  switch (here.field->kind) {
    case kind::string:
      return is_readable(input.subspan(here.content, here.end - here.content)) ? 2 : -2;
    case kind::nested:
    case kind::message_list:
      return here.end != here.content ? 2 : 0;
    case kind::flag:
      return here.number <= 1 ? 1 : -1;
    case kind::integer_list:
      return here.field->width == 1 && here.number > 0xff ? -1 : 0;
    default:
      return 0;
  }
}

candidate read_as(const message_type &type, byte_view input) {
  const walk walked = walk_message(type, input);
  candidate result{&type, fit::none, walked.failure ? walked.failure->offset : input.size(), 0, 0};
  for (const walked_field &each : walked.fields) {
    result.evidence += evidence_of(input, each);
    if (each.field == nullptr) result.unknown += each.end - each.start;
  }
  if (walked.failure) return result;
  record content(type);
  if (content.decode(input) != CODEC_OK) return result;
  result.fit = std::ranges::equal(content.encode(), input) ? fit::canonical
               : result.unknown == 0                       ? fit::complete
                                                           : fit::partial;
  return result;
}

}  // namespace

std::vector<candidate> guess(byte_view input) {
  std::vector<candidate> candidates;
  for (const message_type *type : all_types()) candidates.push_back(read_as(*type, input));
  const auto order = [](const candidate &each) {
    return std::tuple(each.fit, each.unknown, -each.evidence, ~each.reached);
  };
  std::ranges::stable_sort(candidates, {}, order);
  return candidates;
}

const message_type &unique_guess(byte_view input, const std::string &name) {
  const std::vector<candidate> candidates = guess(input);
  const fit best = candidates.front().fit;
  if (best == fit::partial || best == fit::none) {
    throw usage_error(fmt::format("{}: TYPE is required: no message reads every byte of it", name));
  }
  const auto count = std::ranges::count(candidates, best, &candidate::fit);
  if (count == 1) return *candidates.front().type;
  std::string names;
  for (const candidate &each :
       std::span(candidates).first(static_cast<std::size_t>(std::min<std::ptrdiff_t>(count, 4)))) {
    names += fmt::format("{}{}", names.empty() ? "" : ", ", each.type->name);
  }
  throw usage_error(fmt::format("{}: TYPE is required: {} messages fit equally well ({}{})", name, count, names,
                                count > 4 ? ", ..." : ""));
}

}  // namespace inspect
