// `index`: the messages of a stream, with their offsets, or of a capture, with their packets.
#include <fmt/format.h>

#include "../commands.hpp"
#include "../guess.hpp"
#include "../input.hpp"
#include "../target.hpp"
#include "pavo_zorv_memory.h"

namespace inspect {
namespace {

std::string state(const message_type *type, byte_view message) {
  if (type != nullptr) return pavo_zorv_result_name(outcome_of(*type, message).result());
  const std::vector<candidate> candidates = guess(message);
  if (message.empty()) return "any";
  if (candidates[0].fit == fit::none) return "no message reads it";
  return fmt::format("{}{}", candidates[0].type->name, likely_count(candidates) > 1 ? "?" : "");
}

}  // namespace

exit_status index_stream(const command_options &options) {
  const auto [type, file] = single_target_of(options);
  bool is_begun = false;
  for_each_message(options, file, [&, type = type](const input_message &each) {
    if (each.is_single) throw usage_error("--stream is required: it says how the lengths are encoded");
    const std::string result = state(type, each.bytes);
    const char *const last_column = type != nullptr ? "result" : "message";
    if (each.packet) {
      if (!is_begun) print(fmt::format("{:>8}  {:>8}  {:<28}{}\n", "number", "bytes", last_column, "packet"));
      print(fmt::format("{:>8}  {:>8}  {:<27}{}\n", each.number, each.bytes.size(), result, to_string(*each.packet)));
    } else {
      if (!is_begun) print(fmt::format("{:>8}  {:>10}  {:>8}  {}\n", "number", "offset", "bytes", last_column));
      const std::string offset = each.offset ? fmt::format("{}", *each.offset) : "-";
      print(fmt::format("{:>8}  {:>10}  {:>8}  {}\n", each.number, offset, each.bytes.size(), result));
    }
    is_begun = true;
  });
  return ok;
}

}  // namespace inspect
