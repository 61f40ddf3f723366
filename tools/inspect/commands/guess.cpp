// `guess`: which messages an input could be, the likeliest first.
#include "../guess.hpp"

#include <fmt/format.h>

#include "../commands.hpp"
#include "../input.hpp"
#include "../subject.hpp"

namespace inspect {
namespace {

std::string line(const reading &each, std::size_t size) {
  switch (each.fit) {
    case fit::canonical:
      return fmt::format("{:<34}reads every byte and writes the same\n", each.type->name);
    case fit::complete:
      return fmt::format("{:<34}reads every byte, but would write others\n", each.type->name);
    case fit::partial:
      return fmt::format("{:<34}skips {} of {} bytes\n", each.type->name, each.unknown, size);
    case fit::none:
      return fmt::format("{:<34}stops at offset {} of {}\n", each.type->name, each.reached, size);
  }
  return {};
}

}  // namespace

exit_status guess_type(const request &asked) {
  const std::string file = asked.words.empty() ? "-" : asked.words.front();
  exit_status status = all_well;
  for_each_message(asked, file, [&](const std::string &name, byte_view message) {
    const std::vector<reading> readings = guess(message);
    std::string text = asked.stream != prefix_form::none ? name + '\n' : "";
    // Those that do not decode are shown only when nothing else is.
    const bool any = readings.front().fit != fit::none;
    for (const reading &each : readings) {
      if (each.fit != fit::none || !any || asked.all) text += line(each, message.size());
    }
    print(text);
    if (!any) status = input_refused;
  });
  return status;
}

}  // namespace inspect
