// The commands of zorv-inspect, and what the command line can say to them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "failure.hpp"
#include "json_form.hpp"
#include "stream.hpp"
#include "wire_forms.hpp"

namespace inspect {

// What `convert` reads and writes: bytes in a form, or a message as text.
enum class message_form { detected, raw, hex, dump, base64, as_json, as_text };

enum class colour_choice { when_terminal, always, never };

struct request {
  std::vector<std::string> words;  // a message's name, if it is given, then files
  std::string output;              // a file's name; the standard output when empty
  wire_form input = wire_form::detected;
  prefix_form stream = prefix_form::none;
  std::optional<std::size_t> at;  // only this message of a stream
  bytes_form bytes = bytes_form::base64;
  colour_choice colours = colour_choice::when_terminal;
  message_form from = message_form::detected;
  message_form to = message_form::as_json;
  bool html = false;
  bool all = false;     // differences, or files that have nothing to tell
  bool strict = false;  // what is not canonical is refused
  bool timing = false;
};

exit_status types(const request &asked);
exit_status decode(const request &asked);
exit_status encode(const request &asked);
exit_status hex(const request &asked);
exit_status diff(const request &asked);
exit_status check(const request &asked);
exit_status segments(const request &asked);
exit_status guess_type(const request &asked);
exit_status convert(const request &asked);
exit_status index_stream(const request &asked);

}  // namespace inspect
