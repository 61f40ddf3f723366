// From input to messages, one at a time: a file that is one message, a stream of messages, lines of text, or a capture.
#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "byte_forms.hpp"
#include "bytes.hpp"
#include "input.hpp"
#include "stream.hpp"

namespace inspect {

// How the input is read, as the options of the command line say.
struct input_options {
  byte_form input = byte_form::automatic;
  prefix_form stream = prefix_form::none;
  std::optional<std::size_t> at;  // only this message
  std::size_t skip = 0;           // bytes to leave out at the beginning of the input, of each line, or of each datagram
  std::size_t length = std::numeric_limits<std::size_t>::max();  // bytes to take after that
};

struct input_message {
  byte_view bytes;        // valid until the next message is asked for
  std::string name;       // "file", "file[3]"
  bool is_single = true;  // the input is this message and nothing else
  std::size_t number = 0;
  std::optional<std::size_t> offset;  // in a stream, of its length prefix
};

class message_source {
 public:
  message_source() = default;
  message_source(const message_source &) = delete;
  message_source &operator=(const message_source &) = delete;
  virtual ~message_source() = default;

  // The next message, as soon as it has arrived; false at the end. Throws `input_error` if the rest cannot be read.
  virtual bool next(input_message &message) = 0;
};

// A source takes memory for its longest message, not for all of the input, unless that is text.
std::unique_ptr<message_source> open_messages(const std::string &file, const input_options &options);
std::unique_ptr<message_source> open_messages(std::unique_ptr<input_file> file, const input_options &options);

}  // namespace inspect
