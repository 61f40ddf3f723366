// Records as JSON: one member for each field that is present, under the field's name.
//
// 64-bit numbers are strings, because JSON readers lose their last digits; bytes are base64. A string that is not UTF-8
// is an object, {"base64": "..."}.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "core/kinds.hpp"
#include "text_forms.hpp"
#include "types.hpp"

namespace inspect {

template <class Record>
json to_json(const Record &record, path_view stopped);

template <class Value>
json number_to_json(Value value) {
  if constexpr (sizeof(Value) == 8) {
    return std::to_string(value);
  } else {
    return value;
  }
}

inline json text_to_json(std::string_view text) {
  if (is_utf8(text)) return text;
  const octets raw(text.begin(), text.end());
  return {{"base64", to_base64(raw)}};
}

// The elements of a list of messages. In one that decoding stopped inside, those behind were not reached.
template <class Nested>
json list_to_json(const Nested *elements, std::size_t count, path_view stopped) {
  json list = json::array();
  const bool inside = !stopped.empty() && stopped.front().index.has_value();
  const std::size_t last = inside ? *stopped.front().index : count;
  for (std::size_t index = 0; index < count && index <= last; ++index) {
    list.push_back(to_json(elements[index], index == last ? stopped.subspan(1) : path_view{}));
  }
  return list;
}

template <class Row, class Record>
json member_to_json(const Row &row, const Record &record, path_view stopped) {
  if constexpr (Row::type == kind::flag) {
    return record.*row.value != 0;
  } else if constexpr (Row::type == kind::integer) {
    return number_to_json(record.*row.value);
  } else if constexpr (Row::type == kind::string) {
    return text_to_json(record.*row.value);
  } else if constexpr (Row::type == kind::bytes) {
    return to_base64(octet_view(record.*row.value, static_cast<std::size_t>(record.*row.length)));
  } else if constexpr (Row::type == kind::integers) {
    json list = json::array();
    for (std::uint32_t index = 0; index < record.*row.count; ++index) list.push_back((record.*row.elements)[index]);
    return list;
  } else if constexpr (Row::type == kind::messages) {
    return list_to_json(record.*row.elements, record.*row.count, stopped);
  } else {
    return to_json(record.*row.value, stopped.empty() ? stopped : stopped.subspan(1));
  }
}

// Whether decoding left something in a member whose presence bit it did not get to set.
template <class Row, class Record>
bool holds_part(const Row &row, const Record &record, path_view stopped) {
  if constexpr (Row::type == kind::messages) {
    return record.*row.elements != nullptr;
  } else if constexpr (Row::type == kind::message) {
    return !member_to_json(row, record, stopped).empty();
  } else {
    return false;
  }
}

template <class Record>
json to_json(const Record &record, path_view stopped) {
  json object = json::object();
  pavo_zorv::for_each_row<Record>([&](auto index) {
    constexpr auto &row = pavo_zorv::row_at<Record, index>;
    const bool present = (record.presence & pavo_zorv::presence_bit<Record, index>) != 0;
    const bool on_the_way = !stopped.empty() && stopped.front().field->number == row.number;
    const path_view inside = on_the_way ? stopped : path_view{};
    if (present || (on_the_way && holds_part(row, record, inside))) {
      object[row.name] = member_to_json(row, record, inside);
    }
  });
  return object;
}

}  // namespace inspect
