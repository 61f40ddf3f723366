// Writes JSON as pavo_zorv_text.hpp does, into a text.
#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

#include "pavo_zorv_text.hpp"

namespace inspect {

using zorv::json_byte_lists;
using zorv::json_bytes;
using zorv::json_layout;
using zorv::json_options;

// Takes what has been written so far out of a text that has become long.
using text_drain = void (*)(std::string &text);

class text_sink {
 public:
  text_sink(std::string &text, text_drain take) : text_(text), drain_(take) {}

  void operator()(std::string_view piece) const {
    text_ += piece;
    if (drain_ != nullptr && text_.size() > long_text) drain_(text_);
  }

 private:
  static constexpr std::size_t long_text = 1 << 16;

  std::string &text_;
  text_drain drain_;
};

// Appends values to a text, which is JSON if the calls are balanced.
class json_writer : public zorv::json_writer<text_sink> {
 public:
  json_writer(std::string &text, const json_options &options, text_drain take = nullptr)
      : zorv::json_writer<text_sink>(text_sink(text, take), options) {}

  // Any value, as a tree.
  void value(const nlohmann::ordered_json &tree);

  void member(std::string_view name_of_it, std::string_view value_of_it) {
    name(name_of_it);
    string(value_of_it);
  }
};

}  // namespace inspect
