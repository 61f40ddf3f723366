// `check`: runs many messages through the library, and reports those that are not canonical, and totals.
#include <fmt/format.h>

#include <chrono>

#include "../check_report.hpp"
#include "../commands.hpp"
#include "../folder.hpp"
#include "../guess.hpp"
#include "../progress.hpp"
#include "../target.hpp"

namespace inspect {
namespace {

using clock = std::chrono::steady_clock;

class checking {
 public:
  checking(const command_options &options, const target &target)
      : options_(options),
        target_(target),
        progress_([&] { return count_files(); }),
        report_(make_report(options.report, options.all, painter(has_colours(options.colours)))) {}

  exit_status run() {
    const auto begin = clock::now();
    const folder_visitor visit{
        [&](const std::string &file) { check_file(file); }, [&](const std::string &) { ++totals_.skipped; },
        [&](const std::string &folder, const std::string &why) {
          add_error(folder, fmt::format("cannot read the folder {}: {}", folder, why), bad_usage);
        }};
    for (const std::string &name : target_.files) visit_files(name, visit);
    progress_.clear();
    if (options_.timing) totals_.seconds = std::chrono::duration<double>(clock::now() - begin).count();
    report_->end(totals_);
    return status_;
  }

 private:
  std::size_t count_files() const {
    std::size_t count = 0;
    const auto ignore = [](const auto &...) {};
    for (const std::string &name : target_.files) visit_files(name, {[&](const auto &) { ++count; }, ignore, ignore});
    return count;
  }

  // A file that cannot be read, or a stream that is cut off, does not prevent the others from being checked.
  void check_file(const std::string &file) {
    try {
      for_each_message(options_, file,
                       [&](const std::string &name, byte_view message) { check_message(name, message); });
    } catch (const std::runtime_error &error) {
      add_error(file, error.what(), dynamic_cast<const usage_error *>(&error) != nullptr ? bad_usage : bad_input);
    }
    progress_.step();
  }

  void add_error(const std::string &name, const std::string &why, exit_status status) {
    progress_.clear();
    report_->error(name, why);
    ++totals_.errors;
    status_ = worse(status_, status);
  }

  void check_message(const std::string &name, byte_view message) {
    const message_type &type = target_.type != nullptr ? *target_.type : unique_guess(message, name);
    check_result result{
        check_result::canonical, name, &type, message.size(), examiner_.examine(type, message), 0, nullptr, "", false};
    add(result);
    // A canonical message has no unknown fields, so only the others need the walk.
    if (!result.findings.is_canonical) return judge(result, message);
    if (!report_->takes_all()) return;
    progress_.clear();
    report_->message(result);
  }

  void judge(check_result &result, byte_view message) {
    const walk_outcome walked = outcome_of(*result.type, message);
    if (walked.failure) result.failure = &*walked.failure;
    if (!agree(result.findings.result, walked)) {
      result.verdict = check_result::contradictory;
      result.explanation = explain(*result.type, result.findings.result, walked);
      result.is_bad = true;
      status_ = disagreement;
    } else if (result.findings.result != CODEC_OK) {
      result.verdict = check_result::refused;
      result.is_bad = true;
      status_ = worse(status_, bad_input);
    } else {
      result.verdict = check_result::not_canonical;
      result.unknown_fields = walked.unknown_fields;
      totals_.unknown += result.unknown_fields;
      result.is_bad = options_.strict;
      if (options_.strict) status_ = worse(status_, bad_input);
    }
    progress_.clear();
    report_->message(result);
  }

  void add(const check_result &result) {
    const findings &found = result.findings;
    ++totals_.messages;
    totals_.bytes += result.size;
    totals_.decoded += found.result == CODEC_OK;
    totals_.canonical += found.is_canonical;
    add(totals_.memory, found.memory);
    add(totals_.dropped, found.dropped);
    if (result.size == 0) return;
    const double amplification = static_cast<double>(found.memory.bytes) / static_cast<double>(result.size);
    if (amplification > totals_.amplification) {
      totals_.amplification = amplification;
      totals_.most_amplified = result.name;
    }
  }

  static void add(counting_memory::usage &sum, const counting_memory::usage &more) {
    sum.blocks += more.blocks;
    sum.bytes += more.bytes;
  }

  const command_options &options_;
  const target &target_;
  progress progress_;
  std::unique_ptr<check_report> report_;
  examiner examiner_;
  check_totals totals_;
  exit_status status_ = ok;
};

}  // namespace

exit_status check(const command_options &options) {
  target target = target_of(options, SIZE_MAX);
  if (target.files.empty()) target.files.push_back("-");
  return checking(options, target).run();
}

}  // namespace inspect
