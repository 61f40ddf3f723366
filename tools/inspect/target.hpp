// What a command works on: the message type, the files, and the messages in them.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "commands.hpp"
#include "messages.hpp"
#include "results.hpp"
#include "types.hpp"
#include "walk.hpp"

namespace inspect {

struct target {
  const message_type *type;  // null if not given
  std::vector<std::string> files;
};

// The first operand is a message type if there is one of that name, or if there would be more than `max_files` files
// otherwise: then an unknown name is a usage error.
target target_of(const command_options &options, std::size_t max_files);

// The same for commands that read one file, by default the standard input.
struct single_target {
  const message_type *type;
  std::string file;
};
single_target single_target_of(const command_options &options);

// "standard input" for "-".
std::string name_of(const std::string &file);

// The message of that name; otherwise a usage error that suggests the nearest name.
const message_type &type_named(const std::string &name);

// Calls `visit` with each message of a file as soon as it has arrived. A stream that is cut off is an error after the
// messages before it have been visited.
using message_visitor = std::function<void(const input_message &message)>;
void for_each_message(const command_options &options, const std::string &file, const message_visitor &visit);

// The same with the name of the message: "file", or "file[3]" in a stream.
using visitor = std::function<void(const std::string &name, byte_view message)>;
void for_each_message(const command_options &options, const std::string &file, const visitor &visit);

// A message as decoded by the library and as read by the walk.
struct decoded {
  decoded(const message_type &message, byte_view message_bytes)
      : type(message),
        input(message_bytes),
        content(message),
        result(content.decode(input)),
        walked(outcome_of(message, input)) {}

  // The path to where decoding stopped; empty if it did not.
  path_view stopped() const { return walked.failure ? path_view(walked.failure->path) : path_view{}; }

  // Prints what went wrong, if anything did, after the name of the message.
  exit_status report(std::string_view name) const;

  const message_type &type;
  byte_view input;
  record content;
  int result;
  walk_outcome walked;
};

// The given type, or else the only one that the message can be, which is then reported.
const message_type &type_of(const message_type *given, const std::string &name, byte_view message);

void print_error(std::string_view text);

// The more severe of two.
inline exit_status worse(exit_status a, exit_status b) { return a > b ? a : b; }

}  // namespace inspect
