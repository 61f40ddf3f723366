// How the documents describe a field, derived from its row.
#pragma once

#include <string>
#include <type_traits>

#include "messages/all.hpp"
#include "pavo_zorv.hpp"

namespace docs {

template <class Integer>
std::string integer_text() {
  return std::string(std::is_signed_v<Integer> ? "signed " : "unsigned ") + std::to_string(sizeof(Integer) * 8) +
         "-bit";
}

// The kind: "unsigned 32-bit", "list of `api_exp_hop`", ...
template <class Record, std::size_t Index>
std::string kind_text() {
  using pavo_zorv::kind;
  using row = std::remove_cvref_t<decltype(pavo_zorv::row_at<Record, Index>)>;
  if constexpr (row::type == kind::flag) {
    return "flag";
  } else if constexpr (row::type == kind::integer) {
    return integer_text<typename row::element>();
  } else if constexpr (row::type == kind::string) {
    return "string";
  } else if constexpr (row::type == kind::bytes) {
    return "bytes";
  } else if constexpr (row::type == kind::integer_list) {
    return "list of " + integer_text<typename row::element>() + " integers";
  } else if constexpr (row::type == kind::message_list) {
    return std::string("list of `") + pavo_zorv::message_name<typename row::message> + "`";
  } else {
    return std::string("nested `") + pavo_zorv::message_name<typename row::message> + "`";
  }
}

inline std::string upper(std::string text) {
  for (char &c : text)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return text;
}

// The name of a field's presence constant.
template <class Record, std::size_t Index>
std::string presence_text() {
  return upper(pavo_zorv::message_name<Record>) + "_HAS_" + upper(pavo_zorv::row_at<Record, Index>.name);
}

}  // namespace docs
