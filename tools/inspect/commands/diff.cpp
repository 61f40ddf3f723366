// `diff`: two messages held against each other. The library's `compare` says whether they differ and which is greater;
// where, this tool finds from their JSON.
#include <fmt/format.h>

#include "../commands.hpp"
#include "../difference.hpp"
#include "../input.hpp"
#include "../subject.hpp"

namespace inspect {
namespace {

byte_string message_in(const request &asked, const std::string &file) {
  byte_string result;
  std::size_t count = 0;
  for_each_message(asked, file, [&](const std::string &, byte_view message) {
    result.assign(message.begin(), message.end());
    ++count;
  });
  if (count != 1) throw unusable(fmt::format("{}: {} messages; --at says which one", file, count));
  return result;
}

std::string listed(const std::vector<difference> &found, bool all) {
  std::string text;
  for (const difference &each : found) {
    text += fmt::format("{}: {} | {}\n", each.path, each.a, each.b);
    if (!all) break;
  }
  if (!all && found.size() > 1) text += fmt::format("({} more: --all shows them)\n", found.size() - 1);
  return text;
}

}  // namespace

exit_status diff(const request &asked) {
  const subject about = subject_of(asked, 2);
  if (about.files.size() != 2) throw unusable("two files are needed");
  const byte_string a = message_in(asked, about.files[0]), b = message_in(asked, about.files[1]);
  const message_type &type = type_of(about.type, about.files[0], a);
  const decoded first(type, a), second(type, b);
  const exit_status status = worse(first.report(), second.report());

  const int order = first.content.compare(second.content);
  const std::vector<difference> found = differences(type, first.to_json(), second.to_json());
  if (order == 0 && found.empty()) return status;
  print(fmt::format("{} | {}: the {} is greater\n{}", about.files[0], about.files[1], order > 0 ? "first" : "second",
                    listed(found, asked.all)));
  if (status == all_well && (order == 0) != found.empty()) {
    complain(fmt::format("*** DEFECT: pavo_zorv_{}_compare says {}, and there are {} differences ***\n", type.name,
                         order, found.size()));
    return disagreement;
  }
  return worse(status, input_refused);
}

}  // namespace inspect
