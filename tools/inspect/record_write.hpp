// Writes records as JSON: one member, named like the field, for each field that is present.
//
// 64-bit numbers are strings, because many JSON readers would round them; bytes are base64. A string that is not UTF-8
// is an object, {"base64": "..."}. Hexadecimal digits or the length can be written instead of base64.
#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "address.hpp"
#include "core/kinds.hpp"
#include "json_text.hpp"
#include "text_encodings.hpp"
#include "types.hpp"

namespace inspect {

// What one call writes, and where.
struct json_target {
  json_writer &to;
  json_form form;

  // For the content of a member: the path to where decoding stopped, without the member's own step.
  json_target inside() const {
    return {to, {form.bytes, form.octets, form.stopped.subspan(form.stopped.empty() ? 0 : 1)}};
  }
  json_target not_stopped() const { return {to, {form.bytes, form.octets, {}}}; }
};

template <class Record>
void write_json(const Record &record, json_target target);

template <class Value>
void write_number(Value value, json_writer &to) {
  if constexpr (sizeof(Value) == 8) {
    const fmt::format_int digits(value);
    to.string({digits.data(), digits.size()});
  } else {
    to.number(value);
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

inline void write_string(std::string_view text, const json_target &target) {
  if (is_utf8(text)) return target.to.string(text);
  static constexpr const char *names[] = {"base64", "hex", "length"};
  const byte_view raw(reinterpret_cast<const unsigned char *>(text.data()), text.size());
  target.to.begin_object();
  target.to.name(names[static_cast<std::size_t>(target.form.bytes)]);
  target.to.string(bytes_to_text(raw, target.form.bytes));
  target.to.end_object();
}

// The elements of a list of messages. If decoding stopped inside one, the elements after it were not reached.
template <class Nested>
void write_list(const Nested *elements, std::size_t count, const json_target &target) {
  const path_view stopped = target.form.stopped;
  const bool stops_here = !stopped.empty() && stopped.front().index.has_value();
  const std::size_t last = stops_here ? *stopped.front().index : count;
  target.to.begin_list(true);
  for (std::size_t index = 0; index < count && index <= last; ++index) {
    write_json(elements[index], index == last ? target.inside() : target.not_stopped());
  }
  target.to.end_list();
}

// The elements of a list of 8-bit numbers as one string, if the form says so; false if they are written as numbers.
inline bool write_octets(byte_view elements, const json_target &target) {
  if (target.form.octets == octets_form::hex) {
    target.to.string(to_hex(elements));
  } else if (target.form.octets == octets_form::address && is_address_size(elements.size())) {
    target.to.string(address_text(elements));
  } else {
    return false;
  }
  return true;
}

template <class Row, class Record>
void write_member(const Row &row, const Record &record, const json_target &target) {
  if constexpr (Row::type == kind::flag) {
    target.to.flag(record.*row.value != 0);
  } else if constexpr (Row::type == kind::integer) {
    write_number(record.*row.value, target.to);
  } else if constexpr (Row::type == kind::string) {
    write_string(record.*row.value, target);
  } else if constexpr (Row::type == kind::bytes) {
    const byte_view content(record.*row.value, static_cast<std::size_t>(record.*row.length));
    target.to.string(bytes_to_text(content, target.form.bytes));
  } else if constexpr (Row::type == kind::integer_list) {
    if constexpr (sizeof(typename Row::element) == 1) {
      if (write_octets({record.*row.elements, record.*row.count}, target)) return;
    }
    target.to.begin_list(false);
    for (std::uint32_t index = 0; index < record.*row.count; ++index) {
      write_number((record.*row.elements)[index], target.to);
    }
    target.to.end_list();
  } else if constexpr (Row::type == kind::message_list) {
    write_list(record.*row.elements, record.*row.count, target);
  } else {
    write_json(record.*row.value, target.inside());
  }
}

// Whether decoding stored something in a member but failed before setting its presence bit.
template <class Row, class Record>
bool holds_part(const Row &row, const Record &record, const json_form &form) {
  if constexpr (Row::type == kind::message_list) {
    return record.*row.elements != nullptr;
  } else if constexpr (Row::type == kind::nested) {
    std::string text;
    json_writer trial(text, json_layout::one_line);
    write_member(row, record, {trial, form});
    return text != "{}";
  } else {
    return false;
  }
}

template <class Record>
void write_json(const Record &record, json_target target) {
  target.to.begin_object();
  pavo_zorv::for_each_row<Record>([&](auto index) {
    constexpr auto &row = pavo_zorv::row_at<Record, index>;
    const path_view stopped = target.form.stopped;
    const bool present = (record.presence & pavo_zorv::presence_bit<Record, index>) != 0;
    const bool on_path = !stopped.empty() && stopped.front().field->number == row.number;
    const json_target here = on_path ? target : target.not_stopped();
    if (present || (on_path && holds_part(row, record, here.form))) {
      target.to.name(row.name);
      write_member(row, record, here);
    }
  });
  target.to.end_object();
}

}  // namespace inspect
