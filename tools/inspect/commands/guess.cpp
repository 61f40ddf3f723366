// `guess`: which messages an input may be, the most likely first.
#include "../guess.hpp"

#include <fmt/format.h>

#include <span>

#include "../commands.hpp"
#include "../input.hpp"
#include "../target.hpp"

namespace inspect {
namespace {

std::string meaning(const candidate &each, std::size_t size) {
  switch (each.fit) {
    case fit::canonical:
      return "reads every byte and writes the same bytes";
    case fit::complete:
      return "reads every byte, but writes different bytes";
    case fit::partial:
      return fmt::format("skips {} of {} bytes", each.unknown, size);
    case fit::none:
      return fmt::format("stops at offset {}, knows {} of {} bytes", each.reached, each.surprise.known, size);
  }
  return {};
}

}  // namespace

exit_status guess_type(const command_options &options) {
  const std::string file = options.operands.empty() ? "-" : options.operands.front();
  exit_status status = ok;
  for_each_message(options, file, [&](const input_message &input) {
    const byte_view message = input.bytes;
    const std::vector<candidate> candidates = guess(message);
    std::string text = input.is_single ? "" : input.name + '\n';
    const std::size_t shown = options.all ? candidates.size() : likely_count(candidates);
    for (const candidate &each : std::span(candidates).first(shown)) {
      const bool is_tied = &each != candidates.data() && is_as_likely(each, candidates.front());
      text += fmt::format("{:<34}{}{}\n", each.type->name, meaning(each, message.size()),
                          is_tied ? "; as likely as the first" : "");
    }
    print(text);
    if (candidates.front().fit == fit::none) status = bad_input;
  });
  return status;
}

}  // namespace inspect
