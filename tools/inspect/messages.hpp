// From input to messages, one at a time: a file that is one message, a stream of messages, lines of text, or a capture.
#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

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
  std::string filter;                                            // of the packets of a capture, as libpcap has them
  std::optional<std::size_t> port;                               // of UDP and TCP: only packets from or to it
  std::string_view raw_choice = "--input=raw";                   // for errors: what reads text as bytes
};

// Where a message in a capture comes from. Empty if unknown.
struct packet_origin {
  std::string time;      // of its last packet
  std::string from, to;  // "192.0.2.1:4711"
};

// " 2026-11-22T12:00:01.500000Z 192.0.2.1:40000 > 192.0.2.2:4711", as far as it is known.
std::string to_string(const packet_origin &origin);

// The part of some bytes that `skip` and `length` choose; empty if there are fewer bytes than are to be skipped.
std::optional<byte_view> limited(byte_view bytes, const input_options &options);

struct input_message {
  byte_view bytes;        // valid until the next message is asked for
  std::string name;       // "file", "file[3]"
  bool is_single = true;  // the input is this message and nothing else
  std::size_t number = 0;
  std::optional<std::size_t> offset;    // in a stream, of its length prefix
  std::optional<packet_origin> packet;  // in a capture
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
