// `index`: the messages of a stream, with their places.
#include <fmt/format.h>

#include "../commands.hpp"
#include "../guess.hpp"
#include "../input.hpp"
#include "../subject.hpp"
#include "pavo_zorv_memory.h"

namespace inspect {
namespace {

std::string state(const message_type *type, byte_view message) {
  if (type != nullptr) return pavo_zorv_result_name(walk_message(*type, message).result());
  const std::vector<reading> readings = guess(message);
  if (message.empty()) return "any";
  if (readings[0].fit == fit::none) return "no message reads it";
  return fmt::format("{}{}", readings[0].type->name, readings[0].fit == readings[1].fit ? "?" : "");
}

}  // namespace

exit_status index_stream(const request &asked) {
  const auto [type, file] = single_subject_of(asked);
  if (asked.stream == prefix_form::none) throw unusable("--stream is needed: it says how the lengths are written");
  const byte_string content = bytes_of(read_file(file), asked.input);
  const frames found = split(content, asked.stream);
  std::string text =
      fmt::format("{:>8}  {:>10}  {:>8}  {}\n", "number", "offset", "bytes", type != nullptr ? "result" : "message");
  for (std::size_t index = 0; index < found.whole.size(); ++index) {
    const frame &each = found.whole[index];
    text += fmt::format("{:>8}  {:>10}  {:>8}  {}\n", index, each.offset, each.length,
                        state(type, byte_view(content).subspan(each.start, each.length)));
  }
  print(text);
  if (found.failure) throw refused(*found.failure);
  return all_well;
}

}  // namespace inspect
