// Writes records as JSON: one member, named like the field, for each field that is present.
//
// 64-bit numbers are strings, because many JSON readers would round them; bytes are base64. A string that is not UTF-8
// is an object, {"base64": "..."}. Hexadecimal digits or the length can be written instead of base64.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "core/kinds.hpp"
#include "text_encodings.hpp"
#include "types.hpp"

namespace inspect {

template <class Record>
json to_json(const Record &record, const json_form &form);

// The form for the content of a member: the path to where decoding stopped, without the member's own step.
inline json_form inside(json_form form) {
  if (!form.stopped.empty()) form.stopped = form.stopped.subspan(1);
  return form;
}

template <class Value>
json number_to_json(Value value) {
  if constexpr (sizeof(Value) == 8) {
    return std::to_string(value);
  } else {
    return value;
  }
}

inline std::string bytes_to_text(byte_view content, bytes_form form) {
  switch (form) {
    case bytes_form::base64:
      return to_base64(content);
    case bytes_form::hex:
      return to_hex(content);
    case bytes_form::length:
      return byte_count(content.size());
  }
  return {};
}

inline json text_to_json(std::string_view text, bytes_form form) {
  if (is_utf8(text)) return text;
  static constexpr const char *names[] = {"base64", "hex", "length"};
  const byte_view raw(reinterpret_cast<const unsigned char *>(text.data()), text.size());
  return {{names[static_cast<std::size_t>(form)], bytes_to_text(raw, form)}};
}

// The elements of a list of messages. If decoding stopped inside one, the elements after it were not reached.
template <class Nested>
json list_to_json(const Nested *elements, std::size_t count, const json_form &form) {
  json list = json::array();
  const bool stops_here = !form.stopped.empty() && form.stopped.front().index.has_value();
  const std::size_t last = stops_here ? *form.stopped.front().index : count;
  for (std::size_t index = 0; index < count && index <= last; ++index) {
    list.push_back(to_json(elements[index], index == last ? inside(form) : json_form{form.bytes}));
  }
  return list;
}

template <class Row, class Record>
json member_to_json(const Row &row, const Record &record, const json_form &form) {
  if constexpr (Row::type == kind::flag) {
    return record.*row.value != 0;
  } else if constexpr (Row::type == kind::integer) {
    return number_to_json(record.*row.value);
  } else if constexpr (Row::type == kind::string) {
    return text_to_json(record.*row.value, form.bytes);
  } else if constexpr (Row::type == kind::bytes) {
    return bytes_to_text(byte_view(record.*row.value, static_cast<std::size_t>(record.*row.length)), form.bytes);
  } else if constexpr (Row::type == kind::integer_list) {
    json list = json::array();
    for (std::uint32_t index = 0; index < record.*row.count; ++index) list.push_back((record.*row.elements)[index]);
    return list;
  } else if constexpr (Row::type == kind::message_list) {
    return list_to_json(record.*row.elements, record.*row.count, form);
  } else {
    return to_json(record.*row.value, inside(form));
  }
}

// Whether decoding stored something in a member but failed before setting its presence bit.
template <class Row, class Record>
bool holds_part(const Row &row, const Record &record, const json_form &form) {
  if constexpr (Row::type == kind::message_list) {
    return record.*row.elements != nullptr;
  } else if constexpr (Row::type == kind::nested) {
    return !member_to_json(row, record, form).empty();
  } else {
    return false;
  }
}

template <class Record>
json to_json(const Record &record, const json_form &form) {
  json object = json::object();
  pavo_zorv::for_each_row<Record>([&](auto index) {
    constexpr auto &row = pavo_zorv::row_at<Record, index>;
    const bool present = (record.presence & pavo_zorv::presence_bit<Record, index>) != 0;
    const bool on_path = !form.stopped.empty() && form.stopped.front().field->number == row.number;
    const json_form here = on_path ? form : json_form{form.bytes};
    if (present || (on_path && holds_part(row, record, here))) object[row.name] = member_to_json(row, record, here);
  });
  return object;
}

}  // namespace inspect
