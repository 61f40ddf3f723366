// Explains results.
#include "results.hpp"

#include <fmt/format.h>

#include "pavo_zorv_memory.h"

namespace inspect {
namespace {

std::string name_and_number(int result) { return fmt::format("{} ({})", pavo_zorv_result_name(result), result); }

std::string position(const message_type &type, const walk_failure &failure) {
  const std::string field = to_string(failure.path);
  return fmt::format("offset {} ({:#x}), {}", failure.offset, failure.offset,
                     field.empty() ? fmt::format("in {} itself", type.name) : field);
}

}  // namespace

bool agree(int result, const walk_outcome &walked) {
  return result == walked.result() || result == CODEC_ERR_NO_MEMORY;
}

std::string explain(const message_type &type, int result, const walk_outcome &walked) {
  if (!agree(result, walked)) {
    return fmt::format(
        "*** DEFECT: the library and this tool's own walk disagree about this input ***\n"
        "  pavo_zorv_{}_decode_ext: {}\n"
        "  the walk: {}{}\n"
        "One of them is wrong: please report this together with the input.\n",
        type.name, name_and_number(result), name_and_number(walked.result()),
        walked.failure ? fmt::format(", {}: {}", position(type, *walked.failure), walked.failure->reason) : "");
  }
  if (result == CODEC_ERR_NO_MEMORY)
    return fmt::format("{}: not enough memory to decode it\n", name_and_number(result));
  if (!walked.failure) return {};
  return fmt::format("{}\n  where: {}\n  why:   {}\n", name_and_number(result), position(type, *walked.failure),
                     walked.failure->reason);
}

}  // namespace inspect
