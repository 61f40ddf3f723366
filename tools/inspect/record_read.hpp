// Builds records from JSON or the text form. Exactly the fields that are given become present.
#pragma once

#include <fmt/format.h>

#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "address.hpp"
#include "core/kinds.hpp"
#include "node.hpp"
#include "text_encodings.hpp"
#include "types.hpp"

namespace inspect {

class record_reader {
 public:
  record_reader(arena &memory, json_bytes bytes) : memory_(memory), bytes_(bytes) {}

  template <class Record>
  void read(const node &from, Record &record) {
    std::uint32_t seen = 0;
    for (const member &each : expect<node::object>(from, "an object")) {
      path_.push_back({each.name, 0});
      read_named(each, record, seen);
      path_.pop_back();
    }
  }

 private:
  // The name of a field, or the index of a list element.
  struct path_step {
    std::string_view name;
    std::size_t index;
  };

  [[noreturn]] void refuse(std::size_t at, const std::string &why) const {
    std::string where;
    for (const auto &[name, index] : path_) {
      if (name.empty()) {
        where += fmt::format("[{}]", index);
      } else {
        where += where.empty() ? name : fmt::format(".{}", name);
      }
    }
    throw text_error(at, where, why);
  }

  template <class Shape>
  const Shape &expect(const node &from, const char *shape) const {
    const auto *const found = std::get_if<Shape>(&from.value);
    if (found == nullptr) refuse(from.at, fmt::format("expected {}", shape));
    return *found;
  }

  template <class Record>
  void read_named(const member &named, Record &record, std::uint32_t &seen) {
    bool known = false;
    pavo_zorv::for_each_row<Record>([&](auto index) {
      constexpr auto &row = pavo_zorv::row_at<Record, index>;
      if (known || !is_name_of(row.name, named.name)) return;
      known = true;
      if ((seen >> index & 1) != 0) refuse(named.at, "duplicate field");
      seen |= 1u << index;
      if (std::holds_alternative<node::null>(named.content.value)) return;
      read_member(row, named.content, record);
      record.presence |= pavo_zorv::presence_bit<Record, index>;
    });
    if (!known) refuse(named.at, no_such_field(*pavo_zorv::find_message(pavo_zorv::message_name<Record>), named.name));
  }

  template <class Row, class Record>
  void read_member(const Row &row, const node &from, Record &record) {
    if constexpr (Row::type == kind::flag) {
      record.*row.value = expect<bool>(from, "true or false");
    } else if constexpr (Row::type == kind::integer) {
      record.*row.value = number<typename Row::element>(from);
    } else if constexpr (Row::type == kind::string) {
      record.*row.value = text(from);
    } else if constexpr (Row::type == kind::bytes) {
      const byte_string content = raw(from);
      record.*row.value = block<unsigned char>(content.data(), content.size());
      record.*row.length = content.size();
    } else if constexpr (Row::type == kind::integer_list) {
      if constexpr (sizeof(typename Row::element) == 1) {
        if (const auto *const written = std::get_if<std::string>(&from.value)) {
          const byte_string content = octets(from, *written);
          record.*row.elements = block<unsigned char>(content.data(), content.size());
          record.*row.count = static_cast<std::uint32_t>(content.size());
          return;
        }
      }
      record.*row.elements = list<typename Row::element>(
          from, record.*row.count,
          [&](const node &each, typename Row::element &element) { element = number<typename Row::element>(each); });
    } else if constexpr (Row::type == kind::message_list) {
      record.*row.elements = list<typename Row::message>(
          from, record.*row.count, [&](const node &each, typename Row::message &element) { read(each, element); });
    } else {
      read(from, record.*row.value);
    }
  }

  // Numbers may be in quotes. 64-bit numbers are written in quotes, for JSON readers that would round them.
  template <class Value>
  Value number(const node &from) const {
    const auto *const quoted = std::get_if<std::string>(&from.value);
    const std::string &digits = quoted != nullptr ? *quoted : expect<node::number>(from, "a number").digits;
    const char *const end = digits.data() + digits.size();
    Value value = 0;
    const auto [rest, error] = std::from_chars(digits.data(), end, value);
    if (rest == end && error == std::errc{}) return value;
    const bool is_integer = !digits.empty() && digits.find_first_not_of("0123456789", digits[0] == '-') == digits.npos;
    using limits = std::numeric_limits<Value>;
    refuse(from.at, is_integer ? fmt::format("{} is out of range {} to {}", digits, +limits::min(), +limits::max())
                               : fmt::format("{} is not an integer", quoted != nullptr ? '"' + digits + '"' : digits));
  }

  byte_string raw(const node &from) const {
    if (const auto *const content = std::get_if<node::raw>(&from.value)) return content->content;
    const bool is_hex = bytes_ == json_bytes::hex;
    const char *const expected = is_hex ? "a string of hexadecimal digits" : "a string in base64";
    const std::string &written = expect<std::string>(from, expected);
    auto content = is_hex ? from_hex(written) : from_base64(written);
    if (!content) refuse(from.at, fmt::format("expected {}", expected));
    return *std::move(content);
  }

  // A list of 8-bit numbers as one string: an address, or hexadecimal digits.
  byte_string octets(const node &from, const std::string &written) const {
    auto content = parse_address(written);
    if (!content) content = from_hex(written);
    if (!content || !std::in_range<std::uint32_t>(content->size())) {
      refuse(from.at, "expected an array, an address, or a string of hexadecimal digits");
    }
    return *std::move(content);
  }

  char *text(const node &from) const {
    std::string content;
    if (const auto *const plain = std::get_if<std::string>(&from.value)) {
      content = *plain;
    } else {
      const byte_string decoded = raw(unwrapped(from));
      content.assign(decoded.begin(), decoded.end());
    }
    if (content.find('\0') != content.npos) refuse(from.at, "a string cannot contain a NUL");
    return block<char>(content.c_str(), content.size() + 1);
  }

  // A string that is not UTF-8 is an object with a single member, its bytes.
  const node &unwrapped(const node &from) const {
    if (std::holds_alternative<node::raw>(from.value)) return from;
    const char *const name = bytes_ == json_bytes::hex ? "hex" : "base64";
    const auto *const object = std::get_if<node::object>(&from.value);
    if (object == nullptr || object->size() != 1 || object->front().name != name) {
      refuse(from.at, fmt::format("expected a string, or an object with the single member \"{}\"", name));
    }
    return object->front().content;
  }

  template <class Element, class Source>
  Element *block(const Source *content, std::size_t size) const {
    auto *const copy = memory_.array<Element>(size);
    if (size != 0) std::memcpy(copy, content, size);
    return copy;
  }

  template <class Element, class Read>
  Element *list(const node &from, std::uint32_t &count, Read read_element) {
    const auto &written = expect<node::list>(from, "an array");
    if (!std::in_range<std::uint32_t>(written.size()))
      refuse(from.at, "an array cannot have more than 4294967295 elements");
    auto *const elements = memory_.array<Element>(written.size());
    for (std::size_t index = 0; index < written.size(); ++index) {
      path_.push_back({{}, index});
      read_element(written[index], elements[index]);
      path_.pop_back();
    }
    count = static_cast<std::uint32_t>(written.size());
    return elements;
  }

  arena &memory_;
  json_bytes bytes_;
  std::vector<path_step> path_;
};

}  // namespace inspect
