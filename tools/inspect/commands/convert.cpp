// `convert`: a message in another form. From one form of bytes to another, the message is not decoded.
#include <string_view>

#include "../commands.hpp"
#include "../input.hpp"
#include "../json_parse.hpp"
#include "../target.hpp"
#include "../text_format.hpp"

namespace inspect {
namespace {

bool is_bytes(message_form form) { return form != message_form::as_json && form != message_form::as_text; }

byte_form byte_form_of(message_form form) {
  switch (form) {
    case message_form::raw:
      return byte_form::raw;
    case message_form::hex:
      return byte_form::hex;
    case message_form::dump:
      return byte_form::dump;
    case message_form::base64:
      return byte_form::base64;
    default:
      return byte_form::automatic;
  }
}

byte_string encode_text(const message_type *type, const std::string &name, byte_view text,
                        const command_options &options, message_form from) {
  if (type == nullptr) throw usage_error("TYPE is required: neither JSON nor the text form says which message it is");
  record content(*type);
  try {
    content.read(from == message_form::as_json ? parse_json(text) : parse_text_format(*type, text), options.bytes);
  } catch (const text_error &error) {
    throw with_position(error, text, name);
  }
  return content.encode();
}

void write_text(const command_options &options, std::string_view text) {
  write_file(options.output, byte_view(reinterpret_cast<const unsigned char *>(text.data()), text.size()));
}

}  // namespace

exit_status convert(const command_options &options) {
  const auto [type, file] = single_target_of(options);
  refuse_to_replace(file, options.output);
  const byte_string input = read_file(file);
  const message_form from = options.from == message_form::automatic ? detect(input) : options.from;
  const byte_string message = is_bytes(from) ? parse_bytes(input, byte_form_of(from), {name_of(file), "--from=raw"})
                                             : encode_text(type, name_of(file), input, options, from);
  if (is_bytes(options.to)) {
    write_text(options, format_bytes(message, byte_form_of(options.to)));
    return ok;
  }
  const decoded read(type_of(type, name_of(file), message), message);
  // Encoding shows what the library keeps of a message; after a failure that would be too little.
  const byte_string kept = read.walked.failure ? message : read.content.encode();
  write_text(options, options.to == message_form::as_json ? read.content.to_text(options.json(), read.stopped())
                                                          : to_text_format(read.type, kept));
  return read.report(name_of(file));
}

}  // namespace inspect
