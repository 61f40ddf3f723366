// `decode`: messages as JSON, including what was read before a failure. Those of a stream or a capture are in
// objects that say which message it is.
#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "../commands.hpp"
#include "../input.hpp"
#include "../json_colour.hpp"
#include "../member_path.hpp"
#include "../target.hpp"
#include "pavo_zorv_memory.h"

namespace inspect {
namespace {

class decoding {
 public:
  explicit decoding(const command_options &options) : options_(options), has_colours_(has_colours(options.colours)) {}

  exit_status run() {
    const auto [type, file] = single_target_of(options_);
    for_each_message(options_, file, [&, given = type](const input_message &message) {
      const decoded read(type_of(given, message.name, message.bytes), message.bytes);
      text_.clear();
      if (append(message, read, given == nullptr)) print(has_colours_ ? coloured_json(text_, painter(true)) : text_);
      status_ = worse(status_, read.report(message.name));
      report_unknown(message.name, read.walked.unknown_fields);
    });
    return status_;
  }

 private:
  // False if the message does not have the member that was asked for.
  bool append(const input_message &message, const decoded &read, bool is_guessed) {
    std::optional<json> member;
    if (!options_.path.empty()) {
      member = member_path(read.type, options_.path).of(read.content.to_json(options_.json(), read.stopped()));
      if (!member) return false;
    }
    // Colours are found in the whole text. Without them, it is printed while it is written, so that it is never in
    // memory.
    json_writer to(text_, options_.json(), has_colours_ ? nullptr : print_and_clear);
    const auto append_content = [&] { member ? to.value(*member) : read.content.write(to, read.stopped()); };
    if (message.is_single || options_.at) {
      append_content();
    } else {
      to.begin_object();
      append_origin(to, message);
      if (is_guessed) to.member("type", read.type.name);
      append_failure(to, read);
      to.name(member ? "value" : "message");
      append_content();
      to.end_object();
    }
    text_ += '\n';
    return true;
  }

  static void print_and_clear(std::string &text) {
    print(text);
    text.clear();
  }

  static void report_unknown(const std::string &name, std::size_t count) {
    if (count == 0) return;
    print_error(fmt::format("{}: {} unknown field{} skipped\n", name, count, count == 1 ? "" : "s"));
  }

  static void append_origin(json_writer &to, const input_message &message) {
    to.name("number");
    to.number(message.number);
    if (message.offset) {
      to.name("offset");
      to.number(*message.offset);
    }
    if (!message.packet) return;
    const auto append_known = [&](const char *name, const std::string &value) {
      if (!value.empty()) to.member(name, value);
    };
    append_known("time", message.packet->time);
    append_known("from", message.packet->from);
    append_known("to", message.packet->to);
  }

  static void append_failure(json_writer &to, const decoded &read) {
    if (!read.walked.failure) return;
    to.member("error", pavo_zorv_result_name(read.walked.failure->result));
    to.name("error_offset");
    to.number(read.walked.failure->offset);
    to.member("reason", read.walked.failure->reason);
  }

  const command_options &options_;
  bool has_colours_;
  std::string text_;
  exit_status status_ = ok;
};

}  // namespace

exit_status decode(const command_options &options) {
  return options.raw ? decode_raw(options) : decoding(options).run();
}

}  // namespace inspect
