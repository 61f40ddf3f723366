// A fuzzing target for binary input: any input is refused, or gives bytes that survive a round trip through every form;
// a stream is split into messages that do not overlap; for each message the walk agrees with the library, and every
// byte is in exactly one row; the readers that go on past failures take any message. The last byte of the input selects
// the form, the length prefix and the message type.
#include <algorithm>
#include <memory>
#include <string>

#include "annotate.hpp"
#include "byte_forms.hpp"
#include "colour.hpp"
#include "failure.hpp"
#include "hex_html.hpp"
#include "hex_text.hpp"
#include "input.hpp"
#include "messages.hpp"
#include "property.hpp"
#include "raw_text.hpp"
#include "results.hpp"
#include "surprise.hpp"
#include "types.hpp"
#include "walk.hpp"

namespace {

using namespace inspect;

byte_string owned(const std::string &text) { return byte_string(text.begin(), text.end()); }

void try_message(const message_type &type, byte_view message) {
  const walk walked = walk_message(type, message);
  require(agree(record(type).decode(message), walked), "the walk agrees with the library");
  const auto rows = annotate(message, walked);
  std::size_t at = 0;
  for (const annotation &row : rows) {
    require(row.start == at && row.roles.size() == row.end - row.start, "rows do not overlap");
    at = row.end;
  }
  require(at == message.size(), "every byte is in a row");
  require(html_section({"input", type.name, message, rows}).ends_with("</section>\n"), "rows can be made into a page");
  require(surprise_of(type, message).known <= message.size(), "no byte is known twice");
  const raw_text raw = to_raw_text(message);
  require(!raw.failure || raw.failure->offset <= message.size(), "a failure is inside the input");
  if (message.empty()) return;
  const byte_string again = parse_bytes(owned(hex_text(message, rows, painter(false))), byte_form::dump);
  require(std::ranges::equal(again, message), "annotated bytes can be read as a dump");
}

void try_forms(const byte_string &content) {
  for (const byte_form form : {byte_form::hex, byte_form::base64}) {
    require(parse_bytes(owned(format_bytes(content, form)), form) == content,
            "bytes survive a round trip through each form");
  }
  if (content.empty()) return;
  require(parse_bytes(owned(format_bytes(content, byte_form::dump)), byte_form::automatic) == content,
          "a dump is detected");
}

void try_stream(const message_type &type, const byte_string &content, prefix_form form) {
  input_options options;
  options.input = byte_form::raw;
  options.stream = form;
  const auto source = open_messages(std::make_unique<input_file>("input", content), options);
  input_message message;
  std::size_t at = 0, count = 0;
  try {
    while (source->next(message)) {
      if (!message.is_single) {
        require(message.number == count++ && message.offset == at, "no message is missing");
        const byte_view rest = byte_view(content).subspan(at);
        const first_message found = first_message_of(rest, form);
        require(found.state == first_message::complete && found.length == message.bytes.size() &&
                    std::ranges::equal(rest.subspan(found.start, message.bytes.size()), message.bytes),
                "a message is what follows its prefix");
        at += found.start + message.bytes.size();
      }
      try_message(type, message.bytes);
    }
  } catch (const input_error &) {
    return;
  }
  require(form == prefix_form::none || at == content.size(), "a stream without a failure is read to its end");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
  if (size == 0) return 0;
  const unsigned choice = data[size - 1];
  const auto types = inspect::all_types();
  const message_type &type = *types[choice % types.size()];
  try {
    const byte_string content = parse_bytes(byte_string(data, data + size - 1), static_cast<byte_form>(choice % 5));
    try_forms(content);
    try_stream(type, content, static_cast<prefix_form>(choice / 5 % 4));
  } catch (const input_error &) {
  }
  return 0;
}
