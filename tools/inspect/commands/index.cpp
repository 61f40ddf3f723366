// `index`: the messages of a stream, with their offsets.
#include <fmt/format.h>

#include "../commands.hpp"
#include "../guess.hpp"
#include "../input.hpp"
#include "../target.hpp"
#include "pavo_zorv_memory.h"

namespace inspect {
namespace {

std::string state(const message_type *type, byte_view message) {
  if (type != nullptr) return pavo_zorv_result_name(walk_message(*type, message).result());
  const std::vector<candidate> candidates = guess(message);
  if (message.empty()) return "any";
  if (candidates[0].fit == fit::none) return "no message reads it";
  return fmt::format("{}{}", candidates[0].type->name, candidates[0].fit == candidates[1].fit ? "?" : "");
}

}  // namespace

exit_status index_stream(const command_options &options) {
  const auto [type, file] = single_target_of(options);
  if (options.stream == prefix_form::none)
    throw usage_error("--stream is required: it says how the lengths are encoded");
  const byte_string content = parse_bytes(read_file(file), options.input);
  const frames found = split(content, options.stream);
  std::string text =
      fmt::format("{:>8}  {:>10}  {:>8}  {}\n", "number", "offset", "bytes", type != nullptr ? "result" : "message");
  for (std::size_t index = 0; index < found.complete.size(); ++index) {
    const frame &each = found.complete[index];
    text += fmt::format("{:>8}  {:>10}  {:>8}  {}\n", index, each.offset, each.length,
                        state(type, byte_view(content).subspan(each.start, each.length)));
  }
  print(text);
  if (found.failure) throw input_error(*found.failure);
  return ok;
}

}  // namespace inspect
