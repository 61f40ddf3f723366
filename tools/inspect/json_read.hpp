// Records from JSON of the form that json_write.hpp describes. What is there becomes present; nothing else does.
#pragma once

#include <fmt/format.h>

#include <charconv>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "core/kinds.hpp"
#include "failure.hpp"
#include "text_forms.hpp"
#include "types.hpp"

namespace inspect {

class json_reader {
 public:
  explicit json_reader(arena &memory) : memory_(memory) {}

  template <class Record>
  void read(const json &from, Record &record) {
    if (!from.is_object()) refuse("an object is wanted");
    refuse_unknown_names<Record>(from);
    pavo_zorv::for_each_row<Record>([&](auto index) {
      constexpr auto &row = pavo_zorv::row_at<Record, index>;
      const auto found = from.find(row.name);
      if (found == from.end()) return;
      within(row.name, [&] { read_member(row, *found, record); });
      record.presence |= pavo_zorv::presence_bit<Record, index>;
    });
  }

 private:
  [[noreturn]] void refuse(std::string_view why) const {
    std::string where;
    for (const std::string &name : way_) where += where.empty() || name.front() == '[' ? name : "." + name;
    throw refused(where.empty() ? std::string(why) : fmt::format("{}: {}", where, why));
  }

  template <class Work>
  void within(std::string name, Work work) {
    way_.push_back(std::move(name));
    work();
    way_.pop_back();
  }

  template <class Record>
  void refuse_unknown_names(const json &from) {
    for (const auto &member : from.items()) {
      bool known = false;
      pavo_zorv::for_each_row<Record>(
          [&](auto index) { known |= pavo_zorv::row_at<Record, index>.name == member.key(); });
      if (!known) within(member.key(), [&] { refuse("no such field"); });
    }
  }

  template <class Row, class Record>
  void read_member(const Row &row, const json &from, Record &record) {
    if constexpr (Row::type == kind::flag) {
      if (!from.is_boolean()) refuse("true or false is wanted");
      record.*row.value = from.get<bool>();
    } else if constexpr (Row::type == kind::integer) {
      record.*row.value = number<typename Row::element>(from);
    } else if constexpr (Row::type == kind::string) {
      record.*row.value = text(from);
    } else if constexpr (Row::type == kind::bytes) {
      const octets content = raw(from);
      record.*row.value = block<unsigned char>(content.data(), content.size());
      record.*row.length = content.size();
    } else if constexpr (Row::type == kind::integers) {
      record.*row.elements = list<typename Row::element>(
          from, record.*row.count,
          [&](const json &each, typename Row::element &element) { element = number<typename Row::element>(each); });
    } else if constexpr (Row::type == kind::messages) {
      record.*row.elements = list<typename Row::nested>(
          from, record.*row.count, [&](const json &each, typename Row::nested &element) { read(each, element); });
    } else {
      read(from, record.*row.value);
    }
  }

  template <class Value>
  Value number(const json &from) const {
    using limits = std::numeric_limits<Value>;
    if (from.is_number_unsigned() && std::in_range<Value>(from.get<std::uint64_t>())) return from.get<Value>();
    if (from.is_number_integer() && !from.is_number_unsigned() && std::in_range<Value>(from.get<std::int64_t>())) {
      return from.get<Value>();
    }
    if (sizeof(Value) == 8 && from.is_string()) {
      const auto &digits = from.get_ref<const std::string &>();
      Value value = 0;
      const auto [rest, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
      if (error == std::errc{} && rest == digits.data() + digits.size()) return value;
    }
    refuse(fmt::format("a whole number from {} to {} is wanted", +limits::min(), +limits::max()));
  }

  octets raw(const json &from) const {
    if (from.is_string()) {
      if (auto content = from_base64(from.get_ref<const std::string &>())) return *std::move(content);
    }
    refuse("a string of base64 is wanted");
  }

  char *text(const json &from) {
    const bool is_object = from.is_object() && from.size() == 1 && from.contains("base64");
    if (!is_object && !from.is_string()) refuse("a string, or an object with only \"base64\", is wanted");
    const octets decoded = is_object ? raw(from["base64"]) : octets{};
    const std::string content = is_object ? std::string(decoded.begin(), decoded.end()) : from.get<std::string>();
    if (content.find('\0') != std::string::npos) refuse("a string cannot hold a NUL");
    return block<char>(content.c_str(), content.size() + 1);
  }

  template <class Element, class Source>
  Element *block(const Source *content, std::size_t size) {
    auto *const copy = memory_.array<Element>(size);
    if (size != 0) std::memcpy(copy, content, size);
    return copy;
  }

  template <class Element, class Read>
  Element *list(const json &from, std::uint32_t &count, Read read_element) {
    if (!from.is_array()) refuse("an array is wanted");
    if (!std::in_range<std::uint32_t>(from.size())) refuse("an array has fewer than 4294967296 elements");
    auto *const elements = memory_.array<Element>(from.size());
    for (std::size_t index = 0; index < from.size(); ++index) {
      within(fmt::format("[{}]", index), [&] { read_element(from[index], elements[index]); });
    }
    count = static_cast<std::uint32_t>(from.size());
    return elements;
  }

  arena &memory_;
  std::vector<std::string> way_;
};

}  // namespace inspect
