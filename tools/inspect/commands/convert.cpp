// `convert`: the same message in another form. From bytes to bytes, nothing is read into it.
#include <nlohmann/json.hpp>
#include <string_view>

#include "../commands.hpp"
#include "../input.hpp"
#include "../json_parse.hpp"
#include "../json_text.hpp"
#include "../subject.hpp"
#include "../text_format.hpp"

namespace inspect {
namespace {

bool is_bytes(message_form form) { return form != message_form::as_json && form != message_form::as_text; }

wire_form wire_form_of(message_form form) {
  switch (form) {
    case message_form::raw:
      return wire_form::raw;
    case message_form::hex:
      return wire_form::hex;
    case message_form::dump:
      return wire_form::dump;
    case message_form::base64:
      return wire_form::base64;
    default:
      return wire_form::detected;
  }
}

// JSON begins with a brace; the text form with a name, and then a colon or a brace.
message_form detect(byte_view input) {
  const std::string_view text(reinterpret_cast<const char *>(input.data()), input.size());
  std::size_t first = text.find_first_not_of(" \t\r\n");
  while (first < text.size() && text[first] == '#') first = text.find_first_not_of(" \t\r\n", text.find('\n', first));
  if (first == text.npos) return message_form::raw;
  if (text[first] == '{') return message_form::as_json;
  const std::size_t mark = text.find_first_of(":{<", first);
  if (mark == text.npos) return message_form::detected;
  const std::string_view name = text.substr(first, text.find_last_not_of(" \t", mark - 1) + 1 - first);
  for (const message_type *type : all_types()) {
    if (type->field(name) != nullptr) return message_form::as_text;
  }
  return message_form::detected;
}

byte_string bytes_of_text(const message_type *type, byte_view text, const request &asked, message_form from) {
  if (type == nullptr) throw unusable("TYPE is needed: text does not tell which message it is");
  record content(*type);
  try {
    content.read(from == message_form::as_json ? parse_json(text) : parse_text_format(*type, text), asked.bytes);
  } catch (const misread &what) {
    throw refusal(what, text);
  }
  return content.encode();
}

void write_text(const request &asked, std::string_view text) {
  write_file(asked.output, byte_view(reinterpret_cast<const unsigned char *>(text.data()), text.size()));
}

}  // namespace

exit_status convert(const request &asked) {
  const auto [type, file] = single_subject_of(asked);
  const byte_string input = read_file(file);
  const message_form from = asked.from == message_form::detected ? detect(input) : asked.from;
  const byte_string message =
      is_bytes(from) ? bytes_of(input, wire_form_of(from)) : bytes_of_text(type, input, asked, from);
  if (is_bytes(asked.to)) {
    write_text(asked, in_form(message, wire_form_of(asked.to)));
    return all_well;
  }
  const decoded read(type_of(type, file == "-" ? "standard input" : file, message), message);
  // What the library keeps of a message it says by encoding it; of one that fails that would be too little.
  const byte_string kept = read.walked.failure ? message : read.content.encode();
  write_text(asked,
             asked.to == message_form::as_json ? to_text(read.to_json(asked.bytes)) : to_text_format(read.type, kept));
  return read.report();
}

}  // namespace inspect
