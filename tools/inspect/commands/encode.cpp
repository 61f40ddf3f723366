// `encode`: messages from JSON. In a stream, one value follows the other.
#include "../commands.hpp"
#include "../input.hpp"
#include "../json_parse.hpp"
#include "../subject.hpp"

namespace inspect {
namespace {

bool is_blank(byte_view text) {
  for (const unsigned char each : text) {
    if (each != ' ' && each != '\t' && each != '\r' && each != '\n') return false;
  }
  return true;
}

void append_message(byte_string &stream, const message_type &type, const node &from, const request &asked) {
  record content(type);
  content.read(from, asked.bytes);
  const byte_string message = content.encode();
  append_prefix(stream, message.size(), asked.stream);
  stream.insert(stream.end(), message.begin(), message.end());
}

}  // namespace

exit_status encode(const request &asked) {
  const auto [type, file] = single_subject_of(asked);
  if (type == nullptr) throw unusable("TYPE is needed: JSON does not tell which message it is");
  const byte_string text = read_file(file);
  byte_string result;
  try {
    if (asked.stream == prefix_form::none) {
      append_message(result, *type, parse_json(text), asked);
    } else {
      for (std::size_t at = 0; !is_blank(byte_view(text).subspan(at));) {
        append_message(result, *type, parse_json(text, at, false, at), asked);
      }
    }
  } catch (const misread &what) {
    throw refusal(what, text);
  }
  write_file(asked.output, result);
  return all_well;
}

}  // namespace inspect
