// What a command is about: which message, which files, and the messages in them.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "commands.hpp"
#include "results.hpp"
#include "types.hpp"
#include "walk.hpp"

namespace inspect {

struct subject {
  const message_type *type;  // null when it is not given
  std::vector<std::string> files;
};

// The first word is a message's name if there is a message of that name. With at most so many files (none: any number),
// a word too many can only be a wrong name.
subject subject_of(const request &asked, std::size_t most_files);

// The same for commands that read one file, the standard input when it is not named.
struct single_subject {
  const message_type *type;
  std::string file;
};
single_subject single_subject_of(const request &asked);

// A message's name, or wrong usage with the nearest name.
const message_type &type_named(const std::string &name);

// Calls `visit` with each message of a file and the name to speak of it by: "file", or "file[3]" in a stream. Refuses a
// stream that breaks off, when all before that has been visited.
using visitor = std::function<void(const std::string &name, byte_view message)>;
void for_each_message(const request &asked, const std::string &file, const visitor &visit);

// A message as the library decoded it and as the walk saw it.
struct decoded {
  decoded(const message_type &message, byte_view message_bytes)
      : type(message),
        input(message_bytes),
        content(message),
        result(content.decode(input)),
        walked(walk_message(message, input)) {}

  json to_json(bytes_form bytes = bytes_form::base64) const;

  // Says what went wrong, if anything did.
  exit_status report() const;

  const message_type &type;
  byte_view input;
  record content;
  int result;
  walk walked;
};

// The type that is given, or else the only one that it can be: then it says so.
const message_type &type_of(const message_type *given, const std::string &name, byte_view message);

void complain(std::string_view text);

// The worse of two.
inline exit_status worse(exit_status a, exit_status b) { return a > b ? a : b; }

}  // namespace inspect
