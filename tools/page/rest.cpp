// Tries the rest by itself, as fields of the message that reading ended in, and as a message.
#include "rest.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "document.hpp"
#include "guess.hpp"

namespace inspect {
namespace {

// The message that reading ended in: the one that holds the last field of the path.
const message_info &message_of(const message_info &outermost, path_view path) {
  const message_info *message = &outermost;
  for (std::size_t step = 0; step + 1 < path.size(); ++step) message = path[step].field->nested;
  return *message;
}

std::string words_of(const walked_field &here, byte_view rest, const message_info &message) {
  const field_info *const field = field_of(message, here.key >> 3);
  const std::string name = field != nullptr ? field->name : "unknown field";
  std::string text = fmt::format("{} ({} {})", name, here.key >> 3, wire_type_name(here.key));
  if (static_cast<wire_type>(here.key & 7) == wire_type::varint) return text + fmt::format(" = {}", here.number);
  const byte_view content = rest.subspan(here.content, here.end - here.content);
  const bool is_text =
      !content.empty() && std::ranges::all_of(content, [](unsigned char each) { return each >= ' ' && each <= '~'; });
  text += fmt::format(": {} bytes", content.size());
  if (is_text) text += fmt::format(" \"{}\"", std::string(content.begin(), content.end()).substr(0, 60));
  return text;
}

}  // namespace

nlohmann::ordered_json possible_rest(const document &from) {
  constexpr std::size_t most_bytes = 65536, most_fields = 20, most_types = 5;
  auto fields = json::array(), types = json::array();
  const auto &failure = from.walked().failure;
  if (!failure) return {{"fields", fields}, {"types", types}};
  byte_view rest = from.bytes().subspan(failure->offset);
  rest = rest.first(std::min(rest.size(), most_bytes));
  const message_info &message = message_of(from.type(), failure->path);

  // Without a table every field is unknown, and is only delimited.
  constexpr message_info no_message{"the rest", {}, 0, 0, 0};
  const walk walked = walk_message(no_message, rest);
  for (const walked_field &each : walked.fields) {
    if (fields.size() == most_fields) break;
    fields.push_back({{"start", failure->offset + each.start},
                      {"end", failure->offset + each.end},
                      {"words", words_of(each, rest, message)}});
  }
  if (!rest.empty()) {
    for (const candidate &each : guess(rest)) {
      const bool reads_all = each.fit == fit::canonical || each.fit == fit::complete;
      if (reads_all && types.size() < most_types) types.push_back(each.type->name);
    }
  }
  return {{"fields", fields}, {"message", message.name}, {"types", types}, {"whole", !walked.failure}};
}

}  // namespace inspect
