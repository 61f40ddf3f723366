// How the documents describe a field, derived from its row.
#pragma once

#include <string>

#include "message_table.hpp"

namespace docs {

inline std::string integer_text(const pavo_zorv::field_info &field) {
  return std::string(field.is_signed ? "signed " : "unsigned ") + std::to_string(field.width * 8) + "-bit";
}

// The kind: "unsigned 32-bit", "list of `api_exp_hop`", ...
inline std::string kind_text(const pavo_zorv::field_info &field) {
  switch (field.kind) {
    case pavo_zorv::kind::flag:
      return "flag";
    case pavo_zorv::kind::integer:
      return integer_text(field);
    case pavo_zorv::kind::string:
      return "string";
    case pavo_zorv::kind::bytes:
      return "bytes";
    case pavo_zorv::kind::integer_list:
      return "list of " + integer_text(field) + " integers";
    case pavo_zorv::kind::message_list:
      return std::string("list of `") + field.nested->name + "`";
    case pavo_zorv::kind::nested:
      return std::string("nested `") + field.nested->name + "`";
  }
  return "";
}

inline std::string upper(std::string text) {
  for (char &c : text)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return text;
}

// The name of a field's presence constant.
inline std::string presence_text(const pavo_zorv::message_info &message, const pavo_zorv::field_info &field) {
  return upper(message.name) + "_HAS_" + upper(field.name);
}

}  // namespace docs
