// `guess`: which messages an input may be, the most likely first.
#include "../guess.hpp"

#include <fmt/format.h>

#include "../commands.hpp"
#include "../input.hpp"
#include "../target.hpp"

namespace inspect {
namespace {

std::string line(const candidate &each, std::size_t size) {
  switch (each.fit) {
    case fit::canonical:
      return fmt::format("{:<34}reads every byte and writes the same bytes\n", each.type->name);
    case fit::complete:
      return fmt::format("{:<34}reads every byte, but writes different bytes\n", each.type->name);
    case fit::partial:
      return fmt::format("{:<34}skips {} of {} bytes\n", each.type->name, each.unknown, size);
    case fit::none:
      return fmt::format("{:<34}stops at offset {} of {}\n", each.type->name, each.reached, size);
  }
  return {};
}

}  // namespace

exit_status guess_type(const command_options &options) {
  const std::string file = options.operands.empty() ? "-" : options.operands.front();
  exit_status status = ok;
  for_each_message(options, file, [&](const std::string &name, byte_view message) {
    const std::vector<candidate> candidates = guess(message);
    std::string text = options.stream != prefix_form::none ? name + '\n' : "";
    // Messages that cannot decode the input are shown only if all others cannot either.
    const bool any = candidates.front().fit != fit::none;
    for (const candidate &each : candidates) {
      if (each.fit != fit::none || !any || options.all) text += line(each, message.size());
    }
    print(text);
    if (!any) status = bad_input;
  });
  return status;
}

}  // namespace inspect
