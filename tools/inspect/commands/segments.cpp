// `segments`: the segment table of an encoding, drawn as ranges of bytes.
#include <fmt/format.h>

#include <algorithm>

#include "../commands.hpp"
#include "../input.hpp"
#include "../segment_table.hpp"
#include "../target.hpp"
#include "../text_encodings.hpp"

namespace inspect {
namespace {

constexpr std::size_t width = 40;

// The range of an entry, as part of a bar that represents the whole encoding.
std::string bar(const segment &entry, std::size_t length) {
  if (entry.is_referenced) return fmt::format("{:<{}}", fmt::format("(at offset {} of the input)", entry.start), width);
  const std::size_t first = std::min(entry.start * width / length, width - 1);
  const std::size_t last = std::clamp((entry.start + entry.length) * width / length, first + 1, width);
  return std::string(first, '.') + std::string(last - first, '#') + std::string(width - last, '.');
}

std::string drawing_of(const segment_table &table, const char *mode) {
  std::string text = fmt::format("{}: {}, {} entr{}\n", mode, byte_count(table.length), table.entries.size(),
                                 table.entries.size() == 1 ? "y" : "ies");
  if (!table.entries.empty()) text += fmt::format("{:>5}  {:>7}  {:>7}\n", "entry", "start", "length");
  for (std::size_t index = 0; index < table.entries.size(); ++index) {
    const segment &each = table.entries[index];
    const std::string start = each.is_referenced ? "-" : fmt::format("{}", each.start);
    text += fmt::format("{:>5}  {:>7}  {:>7}  {}  {:{}}{}\n", index, start, each.length, bar(each, table.length), "",
                        2 * each.depth, each.name);
  }
  return text;
}

}  // namespace

exit_status segments(const command_options &options) {
  const auto [type, file] = single_target_of(options);
  exit_status status = ok;
  for_each_message(options, file, [&, type = type](const input_message &each) {
    const byte_view message = each.bytes;
    const message_type &known = type_of(type, each.name, message);
    status = worse(status, decoded(known, message).report(each.name));
    const segment_table copied = segments_of(known, message, false);
    const segment_table referenced = segments_of(known, message, true);
    if (!each.is_single) print(each.name + '\n');
    print(drawing_of(copied, "copied") + '\n' + drawing_of(referenced, "referenced"));
    if (!copied.as_expected || !referenced.as_expected) {
      print_error("*** DEFECT: the segment table does not have one entry for each message or piece of a message ***\n");
      status = disagreement;
    }
  });
  return status;
}

}  // namespace inspect
