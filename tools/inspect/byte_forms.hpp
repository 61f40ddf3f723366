// Bytes as text: hexadecimal digits, hex dumps with offsets, base64.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "bytes.hpp"

namespace inspect {

enum class byte_form {
  automatic,
  raw,
  hex,     // pairs of digits: 0807, 08 07, 08:07, 08-07, 08,07, 0x0807, 0x08 0x07, \x08\x07, or an array in C
  dump,    // lines of an offset and bytes, as printed by hexdump -C, xxd, od -tx1, and the command `hex`
  base64,  // on any number of lines
  pcap,    // a capture file, which is read packet by packet
};

// Only characters that occur in text: this alone rules out most messages.
bool is_text(byte_view input);

// The text from its first character that is neither whitespace nor in a comment, from # to the end of a line.
std::string_view after_comments(std::string_view text);

// What errors call an input, and the choice that reads it as raw bytes.
struct input_words {
  std::string name = "the input";
  std::string_view raw = "--input=raw";
};

// The bytes that an input stands for. With `automatic`, input that is text must be in one of the forms from beginning
// to end; any other input is taken as raw bytes. Input that is not in the given form is an error.
byte_string parse_bytes(byte_string input, byte_form form, const input_words &words = {});

// The same for a line of text; empty if there is nothing in the line, or only a comment.
std::optional<byte_string> parse_line(std::string_view line, byte_form form);

// Bytes in a form, as lines of text; unchanged in the form `raw`.
std::string format_bytes(byte_view input, byte_form form);

}  // namespace inspect
