// `diff`: where two messages differ. The library's `compare` says whether they differ and which is greater; this tool
// finds where, from their JSON.
#include <fmt/format.h>

#include "../commands.hpp"
#include "../difference.hpp"
#include "../input.hpp"
#include "../target.hpp"

namespace inspect {
namespace {

struct named_message {
  std::string name;
  byte_string bytes;
};

named_message message_in(const command_options &options, const std::string &file) {
  named_message result;
  std::size_t count = 0;
  for_each_message(options, file, [&](const std::string &name, byte_view message) {
    result = {name, byte_string(message.begin(), message.end())};
    ++count;
  });
  if (count != 1) {
    throw usage_error(fmt::format("{}: {} messages in the stream; choose one with --at", name_of(file), count));
  }
  return result;
}

std::string list_text(const std::vector<difference> &found, bool all, const painter &paint) {
  std::string text;
  for (const difference &each : found) {
    text += fmt::format("{}: {} | {}\n", paint(colour::bold, each.path), paint(colour::red, each.a),
                        paint(colour::green, each.b));
    if (!all) break;
  }
  if (!all && found.size() > 1) text += fmt::format("({} more; --all shows them)\n", found.size() - 1);
  return text;
}

json json_of(const decoded &message) {
  return message.content.to_json({.byte_lists = json_byte_lists::address}, message.stopped());
}

}  // namespace

exit_status diff(const command_options &options) {
  const target target = target_of(options, 2);
  if (target.files.size() != 2) throw usage_error("diff takes two files");
  const named_message a = message_in(options, target.files[0]), b = message_in(options, target.files[1]);
  const message_type &type = type_of(target.type, a.name, a.bytes);
  const decoded first(type, a.bytes), second(type, b.bytes);
  const exit_status status = worse(first.report(a.name), second.report(b.name));

  const int order = first.content.compare(second.content);
  const std::vector<difference> found = differences(type, json_of(first), json_of(second));
  if (order == 0 && found.empty()) return status;
  print(fmt::format("{} | {}: the {} is greater\n{}", target.files[0], target.files[1], order > 0 ? "first" : "second",
                    list_text(found, options.all, painter(has_colours(options.colours)))));
  if (status == ok && (order == 0) != found.empty()) {
    print_error(fmt::format("*** DEFECT: pavo_zorv_{}_compare returns {}, but {} differences were found ***\n",
                            type.name, order, found.size()));
    return disagreement;
  }
  return worse(status, bad_input);
}

}  // namespace inspect
