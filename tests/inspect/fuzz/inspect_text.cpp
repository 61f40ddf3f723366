// A fuzzing target for JSON and the text form: any text is refused with a position inside it, or gives a message that
// survives a round trip through both forms. The last byte of the input selects the message type and the form.
#include <string>

#include "json_parse.hpp"
#include "property.hpp"
#include "text_format.hpp"
#include "types.hpp"

namespace {

using namespace inspect;

byte_view view_of(const std::string &text) {
  return {reinterpret_cast<const unsigned char *>(text.data()), text.size()};
}

byte_string encoded(const message_type &type, const node &from, json_bytes bytes) {
  record content(type);
  content.read(from, bytes);
  return content.encode();
}

void try_text(const message_type &type, bool is_json, json_bytes bytes, byte_view text) {
  byte_string message;
  try {
    message = encoded(type, is_json ? parse_json(text) : parse_text_format(type, text), bytes);
  } catch (const text_error &error) {
    require(error.at <= text.size(), "the position of an error is in the text");
    require(std::string(with_position(error, text, "file").what()).starts_with("file: line "),
            "an error names its line");
    return;
  }
  record content(type);
  require(content.decode(message) == CODEC_OK, "what was read is encoded to a valid message");
  const std::string json_text = content.to_text({.bytes = bytes});
  require(encoded(type, parse_json(view_of(json_text)), bytes) == message,
          "a message survives a round trip through JSON");
  const std::string plain_text = to_text_format(type, message);
  require(encoded(type, parse_text_format(type, view_of(plain_text)), bytes) == message,
          "a message survives a round trip through the text form");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
  if (size == 0) return 0;
  const unsigned choice = data[size - 1];
  const auto types = inspect::all_types();
  try_text(*types[choice / 4 % types.size()], choice % 2 == 0,
           choice % 4 < 2 ? inspect::json_bytes::base64 : inspect::json_bytes::hex, {data, size - 1});
  return 0;
}
