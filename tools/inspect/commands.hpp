// The commands of zorv-inspect, and the options they take.
#pragma once

#include <string>
#include <vector>

#include "check_report.hpp"
#include "colour.hpp"
#include "failure.hpp"
#include "json_text.hpp"
#include "message_form.hpp"
#include "messages.hpp"

namespace inspect {

enum class schema_form { proto, descriptor, as_json_schema };

struct command_options : input_options {
  std::vector<std::string> operands;  // a message's name, if given, then files
  std::string output;                 // a file; the standard output when empty
  json_bytes bytes = json_bytes::base64;
  json_byte_lists octets = json_byte_lists::numbers;
  colour_choice colours = colour_choice::when_terminal;
  message_form from = message_form::automatic;
  message_form to = message_form::as_json;
  std::string path;    // of the member to show; the whole message when empty
  bool lines = false;  // each message on one line
  bool html = false;
  bool raw = false;     // fields without their message
  bool all = false;     // show all differences, messages, types or bytes
  bool strict = false;  // non-canonical messages are refused
  bool timing = false;
  schema_form schema = schema_form::proto;
  report_form report = report_form::as_text;

  json_options json() const { return {lines ? json_layout::one_line : json_layout::lines, bytes, octets}; }
};

exit_status types(const command_options &options);
exit_status decode(const command_options &options);
exit_status decode_raw(const command_options &options);
exit_status encode(const command_options &options);
exit_status hex(const command_options &options);
exit_status diff(const command_options &options);
exit_status check(const command_options &options);
exit_status schema(const command_options &options);
exit_status segments(const command_options &options);
exit_status guess_type(const command_options &options);
exit_status convert(const command_options &options);
exit_status index_stream(const command_options &options);
exit_status page(const command_options &options);

}  // namespace inspect
