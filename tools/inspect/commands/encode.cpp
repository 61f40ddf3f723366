// `encode`: messages from JSON; for a stream, from one value after another.
#include <algorithm>

#include "../commands.hpp"
#include "../input.hpp"
#include "../json_parse.hpp"
#include "../target.hpp"

namespace inspect {
namespace {

bool is_blank(byte_view text) {
  for (const unsigned char each : text) {
    if (each != ' ' && each != '\t' && each != '\r' && each != '\n') return false;
  }
  return true;
}

// What `decode` prints of a stream are objects with a message inside.
const node &message_in(const message_type &type, const node &from) {
  const auto *const object = std::get_if<node::object>(&from.value);
  if (object == nullptr || field_of(type, "message") != nullptr) return from;
  const auto found = std::ranges::find(*object, "message", &member::name);
  return found != object->end() ? found->content : from;
}

void append_message(byte_string &stream, const message_type &type, const node &from, const command_options &options) {
  record content(type);
  content.read(message_in(type, from), options.bytes);
  const byte_string message = content.encode();
  append_prefix(stream, message.size(), options.stream);
  stream.insert(stream.end(), message.begin(), message.end());
}

}  // namespace

exit_status encode(const command_options &options) {
  const auto [type, file] = single_target_of(options);
  if (type == nullptr) throw usage_error("TYPE is required: JSON does not say which message it is");
  refuse_to_replace(file, options.output);
  const byte_string text = read_file(file);
  byte_string result;
  try {
    if (options.stream == prefix_form::none) {
      append_message(result, *type, parse_json(text), options);
    } else {
      for (std::size_t at = 0; !is_blank(byte_view(text).subspan(at));) {
        append_message(result, *type, parse_json(text, at, false, at), options);
      }
    }
  } catch (const text_error &error) {
    throw with_position(error, text, name_of(file));
  }
  write_file(options.output, result);
  return ok;
}

}  // namespace inspect
