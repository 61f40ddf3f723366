// `check`: runs many messages through the library; prints a line for each that is not canonical, and totals.
#include <fmt/format.h>

#include <chrono>

#include "../commands.hpp"
#include "../examine.hpp"
#include "../guess.hpp"
#include "../input.hpp"
#include "../progress.hpp"
#include "../target.hpp"
#include "../text_encodings.hpp"
#include "pavo_zorv_memory.h"

namespace inspect {
namespace {

using clock = std::chrono::steady_clock;

std::string usage_text(const counting_memory::usage &usage) {
  return fmt::format("{} in {} block{}", byte_count(usage.bytes), usage.blocks, usage.blocks == 1 ? "" : "s");
}

double ratio(std::size_t bytes, std::size_t input) {
  return input == 0 ? 0 : static_cast<double>(bytes) / static_cast<double>(input);
}

struct totals {
  std::size_t messages = 0, bytes = 0;
  std::size_t decoded = 0, canonical = 0;
  std::size_t unknown = 0;
  counting_memory::usage memory, dropped;
  double amplification = 0;    // the highest memory per input byte
  std::string most_amplified;  // the message with that amplification
};

class checking {
 public:
  checking(const command_options &options, const target &target)
      : options_(options), target_(target), progress_([&] { return count_files(); }) {}

  exit_status run() {
    const auto begin = clock::now();
    for (const std::string &name : target_.files) {
      for_each_file(name, [&](const std::string &file) { check_file(file); });
    }
    progress_.clear();
    print(totals_text());
    if (options_.timing) print(times_text(std::chrono::duration<double>(clock::now() - begin)));
    return status_;
  }

 private:
  std::size_t count_files() const {
    std::size_t count = 0;
    for (const std::string &name : target_.files) {
      for_each_file(name, [&](const std::string &) { ++count; });
    }
    return count;
  }

  // A file that cannot be read, or a stream that is cut off, does not prevent the others from being checked.
  void check_file(const std::string &file) {
    try {
      for_each_message(options_, file,
                       [&](const std::string &name, byte_view message) { check_message(name, message); });
    } catch (const std::runtime_error &error) {
      report(fmt::format("{}\n", error.what()));
      status_ = worse(status_, dynamic_cast<const usage_error *>(&error) != nullptr ? bad_usage : bad_input);
    }
    progress_.step();
  }

  void check_message(const std::string &name, byte_view message) {
    const message_type &type = target_.type != nullptr ? *target_.type : unique_guess(message, name);
    const findings found = examiner_.examine(type, message);
    add(name, message, found);
    // A canonical message has no unknown fields, so only the others need the walk.
    if (found.is_canonical) {
      if (options_.all)
        report(fmt::format("{}: {}, canonical, {}\n", name, described(type, message), costs(message, found)));
      return;
    }
    const walk walked = walk_message(type, message);
    if (!agree(found.result, walked)) {
      report(fmt::format("{}: {}", name, explain(type, found.result, walked)));
      status_ = disagreement;
    } else if (found.result != CODEC_OK) {
      report(fmt::format("{}: {}, {}\n", name, described(type, message), one_line(found.result, walked)));
      status_ = worse(status_, bad_input);
    } else {
      const std::size_t unknown = unknown_fields(walked);
      totals_.unknown += unknown;
      report(fmt::format("{}: {}, not canonical: encodes to {}, {} unknown field{}, {}\n", name,
                         described(type, message), byte_count(found.encoded), unknown, unknown == 1 ? "" : "s",
                         costs(message, found)));
      if (options_.strict) status_ = worse(status_, bad_input);
    }
  }

  void add(const std::string &name, byte_view message, const findings &found) {
    ++totals_.messages;
    totals_.bytes += message.size();
    totals_.decoded += found.result == CODEC_OK;
    totals_.canonical += found.is_canonical;
    add(totals_.memory, found.memory);
    add(totals_.dropped, found.dropped);
    const double amplification = ratio(found.memory.bytes, message.size());
    if (amplification > totals_.amplification) {
      totals_.amplification = amplification;
      totals_.most_amplified = name;
    }
  }

  static void add(counting_memory::usage &sum, const counting_memory::usage &more) {
    sum.blocks += more.blocks;
    sum.bytes += more.bytes;
  }

  static std::string described(const message_type &type, byte_view message) {
    return fmt::format("{}, {}", type.name, byte_count(message.size()));
  }

  static std::string one_line(int result, const walk &walked) {
    if (!walked.failure) return pavo_zorv_result_name(result);
    return fmt::format("{} at offset {}: {}", pavo_zorv_result_name(result), walked.failure->offset,
                       walked.failure->reason);
  }

  static std::string costs(byte_view message, const findings &found) {
    std::string text =
        fmt::format("{} ({:.1f} per input byte)", usage_text(found.memory), ratio(found.memory.bytes, message.size()));
    if (found.dropped.blocks != 0) text += fmt::format(", dropped {}", usage_text(found.dropped));
    return text;
  }

  static std::size_t unknown_fields(const walk &walked) {
    std::size_t count = 0;
    for (const walked_field &each : walked.fields) count += each.field == nullptr;
    return count;
  }

  void report(const std::string &text) {
    progress_.clear();
    print(text);
  }

  std::string totals_text() const {
    std::string text = fmt::format("{} message{}, {}: {} decode, {} canonical, {} refused\n", totals_.messages,
                                   totals_.messages == 1 ? "" : "s", byte_count(totals_.bytes), totals_.decoded,
                                   totals_.canonical, totals_.messages - totals_.decoded);
    text += fmt::format("memory: {}", usage_text(totals_.memory));
    if (totals_.amplification > 0) {
      text += fmt::format("; at most {:.1f} per input byte ({})", totals_.amplification, totals_.most_amplified);
    }
    return text + fmt::format("\ndropped: {}; unknown fields: {}\n", usage_text(totals_.dropped), totals_.unknown);
  }

  std::string times_text(std::chrono::duration<double> all) const {
    return fmt::format("time: {:.3f} s; {:.0f} messages per second\n", all.count(),
                       static_cast<double>(totals_.messages) / all.count());
  }

  const command_options &options_;
  const target &target_;
  progress progress_;
  examiner examiner_;
  totals totals_;
  exit_status status_ = ok;
};

}  // namespace

exit_status check(const command_options &options) {
  target target = target_of(options, SIZE_MAX);
  if (target.files.empty()) target.files.push_back("-");
  return checking(options, target).run();
}

}  // namespace inspect
