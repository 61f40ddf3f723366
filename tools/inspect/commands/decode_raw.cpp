// `decode --raw`: input whose message is not known, and why it is none of the known ones.
#include <fmt/format.h>

#include <algorithm>
#include <span>

#include "../commands.hpp"
#include "../guess.hpp"
#include "../input.hpp"
#include "../raw_text.hpp"
#include "../target.hpp"

namespace inspect {
namespace {

std::string why_not(const candidate &each, byte_view message) {
  if (each.fit == fit::partial) return fmt::format("skips {} of {} bytes", each.unknown, message.size());
  const walk_outcome walked = outcome_of(*each.type, message);
  return walked.failure ? fmt::format("offset {}: {}", walked.failure->offset, walked.failure->reason)
                        : "not enough memory";
}

// Which messages it is, or why it is none: of those that are the most likely.
std::string explanation(const std::string &name, byte_view message) {
  constexpr std::size_t shown = 3;
  const std::vector<candidate> candidates = guess(message);
  const auto reads_all = [](const candidate &each) { return each.fit == fit::canonical || each.fit == fit::complete; };
  const auto reading = std::ranges::find_if(candidates, reads_all);
  if (reading != candidates.end()) {
    return fmt::format("{} may be {}; `zorv-inspect guess` says more\n", name, reading->type->name);
  }
  std::string text = fmt::format("{} is none of the {} messages, because\n", name, candidates.size());
  for (const candidate &each : std::span(candidates).first(shown)) {
    text += fmt::format("  {}: {}\n", each.type->name, why_not(each, message));
  }
  return text + fmt::format("  ({} others are less likely)\n", candidates.size() - shown);
}

}  // namespace

exit_status decode_raw(const command_options &options) {
  const auto [type, file] = single_target_of(options);
  if (type != nullptr) throw usage_error("--raw takes no TYPE: it shows input whose message is not known");
  exit_status status = ok;
  for_each_message(options, file, [&](const input_message &message) {
    if (!message.is_single) print(message.name + '\n');
    const raw_text raw = to_raw_text(message.bytes);
    print(raw.text);
    if (raw.failure) {
      print_error(fmt::format("{}: offset {}: {}\n", message.name, raw.failure->offset, raw.failure->reason));
      status = bad_input;
    }
    print_error(explanation(message.name, message.bytes));
  });
  return status;
}

}  // namespace inspect
