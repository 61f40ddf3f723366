// Writes the text form from a walk: what is in the bytes, in their order, also of a message that cannot be decoded, one
// field to a line, as protoc does. The line for a log that pavo_zorv_text.hpp writes shows a record.
#include <fmt/format.h>

#include "text_format.hpp"
#include "walk.hpp"

namespace inspect {

std::string quoted(byte_view content) {
  std::string text = "\"";
  for (const unsigned char each : content) {
    switch (each) {
      case '\n':
        text += "\\n";
        break;
      case '\r':
        text += "\\r";
        break;
      case '\t':
        text += "\\t";
        break;
      case '"':
      case '\'':
      case '\\':
        text += '\\';
        text += static_cast<char>(each);
        break;
      default:
        text += each < ' ' || each > '~' ? fmt::format("\\{:03o}", each) : std::string(1, static_cast<char>(each));
    }
  }
  return text + '"';
}

namespace {

std::string value_text(const walked_field &here, byte_view message) {
  const field_info &field = *here.field;
  if (field.wire == wire_type::delimited) return quoted(message.subspan(here.content, here.end - here.content));
  if (field.kind == kind::flag) return here.number != 0 ? "true" : "false";
  if (!field.is_signed) return fmt::format("{}", field.width == 1 ? here.number & 0xff : here.number);
  return field.width == 8 ? fmt::format("{}", static_cast<std::int64_t>(here.number))
                          : fmt::format("{}", static_cast<std::int32_t>(here.number));
}

}  // namespace

std::string to_text_format(const message_type &type, byte_view message) {
  std::string text;
  unsigned depth = 0;
  const auto margin = [&] { return std::string(2 * depth, ' '); };
  const auto close_down_to = [&](unsigned level) {
    while (depth > level) {
      --depth;
      text += margin() + "}\n";
    }
  };
  walk_message(type, message, [&](const walked_field &here) {
    close_down_to(here.depth);
    if (here.field == nullptr) return;
    if (here.field->nested != nullptr) {
      text += fmt::format("{}{} {{\n", margin(), here.field->name);
      ++depth;
    } else {
      text += fmt::format("{}{}: {}\n", margin(), here.field->name, value_text(here, message));
    }
  });
  close_down_to(0);
  return text;
}

}  // namespace inspect
