// `check`: many messages put through the library, a line for each that has something to tell, and the sums.
#include <fmt/format.h>

#include <chrono>

#include "../commands.hpp"
#include "../examine.hpp"
#include "../guess.hpp"
#include "../input.hpp"
#include "../progress.hpp"
#include "../subject.hpp"
#include "../text_forms.hpp"
#include "pavo_zorv_memory.h"

namespace inspect {
namespace {

using clock = std::chrono::steady_clock;

std::string amount(const account::figures &figures) {
  return fmt::format("{} block{} with {}", figures.blocks, figures.blocks == 1 ? "" : "s", counted(figures.bytes));
}

double ratio(std::size_t bytes, std::size_t input) {
  return input == 0 ? 0 : static_cast<double>(bytes) / static_cast<double>(input);
}

struct totals {
  std::size_t messages = 0, bytes = 0;
  std::size_t decoded = 0, canonical = 0;
  std::size_t unknown = 0;
  account::figures memory, dropped;
  double amplification = 0;
  std::string amplified;  // the message with the greatest amplification
};

class checking {
 public:
  checking(const request &asked, const subject &about)
      : asked_(asked), about_(about), progress_([&] { return count_files(); }) {}

  exit_status run() {
    const auto begin = clock::now();
    for (const std::string &name : about_.files) {
      for_each_file(name, [&](const std::string &file) { check_file(file); });
    }
    progress_.clear();
    print(sums());
    if (asked_.timing) print(times(std::chrono::duration<double>(clock::now() - begin)));
    return status_;
  }

 private:
  std::size_t count_files() const {
    std::size_t count = 0;
    for (const std::string &name : about_.files) {
      for_each_file(name, [&](const std::string &) { ++count; });
    }
    return count;
  }

  // A file that cannot be read, or a stream that breaks off, does not keep the others from being checked.
  void check_file(const std::string &file) {
    try {
      const auto begin = clock::now();
      read_file(file, content_);
      reading_ += clock::now() - begin;
      content_ = bytes_of(std::move(content_), asked_.input);
      check_content(file);
    } catch (const std::runtime_error &error) {
      tell(fmt::format("{}\n", error.what()));
      status_ = worse(status_, dynamic_cast<const unusable *>(&error) != nullptr ? not_usable : input_refused);
    }
    progress_.step();
  }

  void check_content(const std::string &file) {
    if (asked_.stream == prefix_form::none) return check_message(file, content_);
    const frames found = split(content_, asked_.stream);
    for (std::size_t index = 0; index < found.whole.size(); ++index) {
      const frame &each = found.whole[index];
      check_message(fmt::format("{}[{}]", file, index), byte_view(content_).subspan(each.start, each.length));
    }
    if (found.failure) throw refused(fmt::format("{}: {}", file, *found.failure));
  }

  void check_message(const std::string &name, byte_view message) {
    const message_type &type = about_.type != nullptr ? *about_.type : only_guess(message, name);
    const findings found = examiner_.examine(type, message);
    add(name, message, found);
    // What is canonical holds nothing unknown: the walk is for the others.
    if (found.is_canonical) {
      if (asked_.all)
        tell(fmt::format("{}: {}, canonical, {}\n", name, described(type, message), costs(message, found)));
      return;
    }
    const walk walked = walk_message(type, message);
    if (!agree(found.result, walked)) {
      tell(fmt::format("{}: {}", name, explain(type, found.result, walked)));
      status_ = disagreement;
    } else if (found.result != CODEC_OK) {
      tell(fmt::format("{}: {}, {}\n", name, described(type, message), one_line(found.result, walked)));
      status_ = worse(status_, input_refused);
    } else {
      const std::size_t unknown = unknown_fields(walked);
      totals_.unknown += unknown;
      tell(fmt::format("{}: {}, not canonical: encodes to {}, {} unknown field{}, {}\n", name, described(type, message),
                       counted(found.encoded), unknown, unknown == 1 ? "" : "s", costs(message, found)));
      if (asked_.strict) status_ = worse(status_, input_refused);
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
      totals_.amplified = name;
    }
  }

  static void add(account::figures &sum, const account::figures &more) {
    sum.blocks += more.blocks;
    sum.bytes += more.bytes;
  }

  static std::string described(const message_type &type, byte_view message) {
    return fmt::format("{}, {}", type.name, counted(message.size()));
  }

  static std::string one_line(int result, const walk &walked) {
    if (!walked.failure) return pavo_zorv_result_name(result);
    return fmt::format("{} at offset {}: {}", pavo_zorv_result_name(result), walked.failure->offset,
                       walked.failure->reason);
  }

  static std::string costs(byte_view message, const findings &found) {
    std::string text =
        fmt::format("{} ({:.1f} per byte)", amount(found.memory), ratio(found.memory.bytes, message.size()));
    if (found.dropped.blocks != 0) text += fmt::format(", dropped {}", amount(found.dropped));
    return text;
  }

  static std::size_t unknown_fields(const walk &walked) {
    std::size_t count = 0;
    for (const walked_field &each : walked.fields) count += each.field == nullptr;
    return count;
  }

  void tell(const std::string &text) {
    progress_.clear();
    print(text);
  }

  std::string sums() const {
    std::string text = fmt::format("{} message{}, {}: {} decode, {} canonical, {} refused\n", totals_.messages,
                                   totals_.messages == 1 ? "" : "s", counted(totals_.bytes), totals_.decoded,
                                   totals_.canonical, totals_.messages - totals_.decoded);
    text += fmt::format("memory: {}", amount(totals_.memory));
    if (totals_.amplification > 0) {
      text += fmt::format("; at most {:.1f} per byte ({})", totals_.amplification, totals_.amplified);
    }
    return text + fmt::format("\ndropped: {}; unknown fields: {}\n", amount(totals_.dropped), totals_.unknown);
  }

  std::string times(std::chrono::duration<double> all) const {
    const double reading = std::chrono::duration<double>(reading_).count();
    return fmt::format("time: {:.3f} s, of it {:.3f} s in reading files; {:.0f} messages per second\n", all.count(),
                       reading, static_cast<double>(totals_.messages) / all.count());
  }

  const request &asked_;
  const subject &about_;
  progress progress_;
  examiner examiner_;
  byte_string content_;
  totals totals_;
  clock::duration reading_{};
  exit_status status_ = all_well;
};

}  // namespace

exit_status check(const request &asked) {
  subject about = subject_of(asked, SIZE_MAX);
  if (about.files.empty()) about.files.push_back("-");
  return checking(asked, about).run();
}

}  // namespace inspect
