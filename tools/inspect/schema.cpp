// Writes schemas.
#include "schema.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <limits>
#include <string_view>

#include "json_text.hpp"
#include "stream.hpp"

namespace inspect {
namespace {

constexpr const char *package = "zorv";

void add_contained(const message_info &type, std::vector<const message_info *> &to) {
  if (std::ranges::find(to, &type) != to.end()) return;
  for (const field_info &field : type.fields) {
    if (field.nested != nullptr) add_contained(*field.nested, to);
  }
  to.push_back(&type);
}

bool is_8_bit(const field_info &field) { return field.width == 1 && field.kind != kind::flag; }

// --- The language of protoc ---

std::string proto_type(const field_info &field) {
  switch (field.kind) {
    case kind::flag:
      return "bool";
    case kind::string:
      return "string";
    case kind::bytes:
      return "bytes";
    case kind::nested:
    case kind::message_list:
      return fmt::format(".{}.{}", package, field.nested->name);  // a field may have the name of a message
    case kind::integer:
    case kind::integer_list:
      break;
  }
  return fmt::format("{}int{}", field.is_signed ? "" : "u", field.width == 8 ? 64 : 32);
}

std::string proto_message(const message_info &type) {
  std::string text = fmt::format("\nmessage {} {{\n", type.name);
  for (const field_info &field : type.fields) {
    text += fmt::format("  {} {} {} = {};{}\n", field.is_list() ? "repeated" : "optional", proto_type(field),
                        field.name, field.number, is_8_bit(field) ? "  // 8-bit" : "");
  }
  return text + "}\n";
}

// --- Descriptors: the messages of google/protobuf/descriptor.proto ---

class descriptor {
 public:
  void number(std::uint64_t field, std::uint64_t value) {
    varint(field << 3);
    varint(value);
  }
  void string(std::uint64_t field, std::string_view value) {
    bytes(field, {reinterpret_cast<const unsigned char *>(value.data()), value.size()});
  }
  void message(std::uint64_t field, const descriptor &content) { bytes(field, content.written); }

  byte_string written;

 private:
  void bytes(std::uint64_t field, byte_view value) {
    varint(field << 3 | static_cast<unsigned>(wire_type::delimited));
    varint(value.size());
    written.insert(written.end(), value.begin(), value.end());
  }

  // What comes before a message in a stream is such a number, too.
  void varint(std::uint64_t value) { append_prefix(written, value, prefix_form::varint); }
};

// The numbers of FieldDescriptorProto.Type.
std::uint64_t type_number(const field_info &field) {
  switch (field.kind) {
    case kind::flag:
      return 8;
    case kind::string:
      return 9;
    case kind::nested:
    case kind::message_list:
      return 11;
    case kind::bytes:
      return 12;
    case kind::integer:
    case kind::integer_list:
      break;
  }
  if (field.width == 8) return field.is_signed ? 3 : 4;
  return field.is_signed ? 5 : 13;
}

std::string camel_case(std::string_view name) {
  std::string result;
  for (std::size_t index = 0; index < name.size(); ++index) {
    const bool is_next_upper = name[index] == '_' && index + 1 < name.size();
    result += is_next_upper ? static_cast<char>(std::toupper(static_cast<unsigned char>(name[++index]))) : name[index];
  }
  return result;
}

descriptor field_descriptor(const field_info &field) {
  descriptor to;
  to.string(1, field.name);
  to.number(3, field.number);
  to.number(4, field.is_list() ? 3 : 1);  // repeated or optional
  to.number(5, type_number(field));
  if (field.nested != nullptr) to.string(6, proto_type(field));
  to.string(10, camel_case(field.name));
  return to;
}

descriptor message_descriptor(const message_info &type) {
  descriptor to;
  to.string(1, type.name);
  for (const field_info &field : type.fields) to.message(2, field_descriptor(field));
  return to;
}

// --- JSON Schema ---

class json_schema_writer {
 public:
  explicit json_schema_writer(std::string &text) : to_(text, {}) {}

  void write(const std::vector<const message_info *> &messages) {
    to_.begin_object();
    to_.member("$schema", "https://json-schema.org/draft/2020-12/schema");
    to_.member("title", messages.back()->name);
    to_.member("$ref", reference(*messages.back()));
    to_.name("$defs");
    to_.begin_object();
    for (const message_info *type : messages) {
      to_.name(type->name);
      message(*type);
    }
    to_.end_object();
    to_.end_object();
  }

 private:
  static std::string reference(const message_info &type) { return fmt::format("#/$defs/{}", type.name); }

  void message(const message_info &type) {
    to_.begin_object();
    to_.member("type", "object");
    to_.name("properties");
    to_.begin_object();
    for (const field_info &field : type.fields) {
      to_.name(field.name);
      if (field.is_list()) {
        list(field);
      } else {
        value(field);
      }
    }
    to_.end_object();
    to_.name("additionalProperties");
    to_.flag(false);
    to_.end_object();
  }

  // Lists of 8-bit numbers may also be strings: addresses or hexadecimal digits.
  void list(const field_info &field) {
    to_.begin_object();
    if (field.width == 1) {
      to_.name("type");
      to_.begin_short_list();
      to_.string("array");
      to_.string("string");
      to_.end_list();
    } else {
      to_.member("type", "array");
    }
    to_.name("items");
    value(field);
    to_.end_object();
  }

  void value(const field_info &field) {
    switch (field.kind) {
      case kind::flag:
        return typed("boolean");
      case kind::string:
        return string();
      case kind::bytes:
        return typed("string");
      case kind::nested:
      case kind::message_list:
        to_.begin_object();
        to_.member("$ref", reference(*field.nested));
        to_.end_object();
        return;
      case kind::integer:
      case kind::integer_list:
        return integer(field);
    }
  }

  void typed(const char *type) {
    to_.begin_object();
    to_.member("type", type);
    to_.end_object();
  }

  // One that is not UTF-8 is an object with its bytes.
  void string() {
    to_.begin_object();
    to_.name("anyOf");
    to_.begin_list();
    typed("string");
    to_.begin_object();
    to_.member("type", "object");
    to_.name("maxProperties");
    to_.number(1);
    to_.name("properties");
    to_.begin_object();
    for (const char *form : {"base64", "hex"}) {
      to_.name(form);
      typed("string");
    }
    to_.end_object();
    to_.name("additionalProperties");
    to_.flag(false);
    to_.end_object();
    to_.end_list();
    to_.end_object();
  }

  // 64-bit numbers are strings.
  void integer(const field_info &field) {
    to_.begin_object();
    if (field.width == 8) {
      to_.member("type", "string");
      to_.member("pattern", field.is_signed ? "^-?[0-9]{1,19}$" : "^[0-9]{1,20}$");
    } else {
      const std::int64_t greatest = field.width == 1  ? std::numeric_limits<std::uint8_t>::max()
                                    : field.is_signed ? std::numeric_limits<std::int32_t>::max()
                                                      : std::numeric_limits<std::uint32_t>::max();
      to_.member("type", "integer");
      to_.name("minimum");
      to_.number(field.is_signed ? std::int64_t{std::numeric_limits<std::int32_t>::min()} : 0);
      to_.name("maximum");
      to_.number(greatest);
    }
    to_.end_object();
  }

  json_writer to_;
};

}  // namespace

std::vector<const message_info *> with_contained(const message_info &type) {
  std::vector<const message_info *> messages;
  add_contained(type, messages);
  return messages;
}

std::string proto_schema(const std::vector<const message_info *> &messages) {
  std::string text = fmt::format("syntax = \"proto2\";\n\npackage {};\n", package);
  for (const message_info *type : messages) text += proto_message(*type);
  return text;
}

byte_string descriptor_set(const std::vector<const message_info *> &messages) {
  descriptor file;
  file.string(1, "zorv.proto");
  file.string(2, package);
  for (const message_info *type : messages) file.message(4, message_descriptor(*type));
  descriptor set;
  set.message(1, file);
  return set.written;
}

std::string json_schema(const std::vector<const message_info *> &messages) {
  std::string text;
  json_schema_writer(text).write(messages);
  return text + '\n';
}

}  // namespace inspect
