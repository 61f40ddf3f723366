// Writes initialisers from the rows of the messages: arrays first, then the record that points to them.
#include "c_source.hpp"

#include <fmt/format.h>

#include <cctype>
#include <cstdint>
#include <limits>
#include <string_view>

#include "core/kinds.hpp"
#include "member_name.hpp"
#include "messages/all.hpp"

namespace inspect {
namespace {

template <class Record>
constexpr const char *record_name = nullptr;
#define INSPECT_NAMED(message) \
  template <>                  \
  constexpr const char *record_name<message> = #message;
PAVO_ZORV_MESSAGES(INSPECT_NAMED)
#undef INSPECT_NAMED

std::string upper_case(std::string_view name) {
  std::string text;
  for (const char each : name) text += static_cast<char>(std::toupper(static_cast<unsigned char>(each)));
  return text;
}

template <class Integer>
std::string literal(Integer value) {
  if constexpr (std::is_signed_v<Integer>) {
    // The least number has no literal.
    if (value == std::numeric_limits<Integer>::min()) return fmt::format("INT{}_MIN", 8 * sizeof value);
    return sizeof value == 8 ? fmt::format("INT64_C({})", value) : fmt::format("{}", value);
  } else {
    return sizeof value == 8 ? fmt::format("UINT64_C({})", value)
                             : fmt::format("{}{}", value, sizeof value == 4 ? "u" : "");
  }
}

template <class Integer>
constexpr const char *integer_name() {
  constexpr bool is_signed = std::is_signed_v<Integer>;
  switch (sizeof(Integer)) {
    case 1:
      return is_signed ? "int8_t" : "uint8_t";
    case 4:
      return is_signed ? "int32_t" : "uint32_t";
    default:
      return is_signed ? "int64_t" : "uint64_t";
  }
}

// All that is not printable ASCII in octal; a question mark could begin a trigraph.
std::string quoted(std::string_view characters) {
  std::string text = "\"";
  for (const char each : characters) {
    const bool is_plain = each >= ' ' && each <= '~' && each != '"' && each != '\\' && each != '?';
    text += is_plain ? std::string(1, each) : fmt::format("\\{:03o}", static_cast<unsigned char>(each));
  }
  return text + '"';
}

// Elements on lines of up to 100 columns.
class element_list {
 public:
  void add(const std::string &element) {
    if (!line_.empty() && line_.size() + element.size() > 96) flush();
    line_ += fmt::format("{}{},", line_.empty() ? "" : " ", element);
  }

  std::string text() {
    flush();
    return text_;
  }

 private:
  void flush() {
    if (!line_.empty()) text_ += fmt::format("    {}\n", line_);
    line_.clear();
  }

  std::string line_, text_;
};

class writer {
 public:
  // The declarations of the arrays that the records point to.
  std::string arrays;

  // The initialiser of a record; its path names the arrays. Empty if the record holds nothing.
  template <class Record>
  std::string initialiser(const Record &from, const std::string &path, std::size_t depth) {
    const std::string margin(4 * depth, ' ');
    std::string members, presence;
    pavo_zorv::for_each_row<Record>([&](auto index) {
      constexpr auto &row = pavo_zorv::row_at<Record, index>;
      const bool present = (from.presence & pavo_zorv::presence_bit<Record, index>) != 0;
      if (present) {
        presence += fmt::format("{}{}_HAS_{}", presence.empty() ? "" : fmt::format(" |\n{}    ", margin),
                                upper_case(record_name<Record>), upper_case(row.name));
      }
      if (present || row.type == kind::nested) {
        member<Record, index>(members, from, fmt::format("{}_{}", path, row.name), depth);
      }
    });
    if (!presence.empty()) members += fmt::format("{}.presence = {},\n", margin, presence);
    return members;
  }

 private:
  template <class Record, std::size_t Index>
  void member(std::string &members, const Record &from, const std::string &path, std::size_t depth) {
    constexpr auto &row = pavo_zorv::row_at<Record, Index>;
    const auto add = [&](std::string_view name, std::string_view value) {
      members += fmt::format("{:{}}.{} = {},\n", "", 4 * depth, name, value);
    };
    if constexpr (row.type == kind::integer_list || row.type == kind::message_list) {
      const std::uint32_t count = from.*row.count;
      if (count == 0 || from.*row.elements == nullptr) return;
      declare(path, from.*row.elements, count);
      add(pavo_zorv::member_name<row.elements>(), path);
      add(pavo_zorv::member_name<row.count>(), literal(count));
    } else if constexpr (row.type == kind::bytes) {
      if (from.*row.length == 0) return;
      declare(path, from.*row.value, static_cast<std::size_t>(from.*row.length));
      add(pavo_zorv::member_name<row.value>(), path);
      add(pavo_zorv::member_name<row.length>(), literal(from.*row.length));
    } else if constexpr (row.type == kind::string) {
      if (from.*row.value != nullptr) add(pavo_zorv::member_name<row.value>(), quoted(from.*row.value));
    } else if constexpr (row.type == kind::nested) {
      const std::string inside = initialiser(from.*row.value, path, depth + 1);
      if (!inside.empty()) {
        add(pavo_zorv::member_name<row.value>(), fmt::format("{{\n{}{:{}}}}", inside, "", 4 * depth));
      }
    } else {
      add(pavo_zorv::member_name<row.value>(), literal(from.*row.value));
    }
  }

  template <class Element>
  void declare(const std::string &name, const Element *elements, std::size_t count) {
    if constexpr (std::is_integral_v<Element>) {
      element_list list;
      for (std::size_t index = 0; index < count; ++index) list.add(literal(elements[index]));
      const char *const type = std::is_same_v<Element, unsigned char> ? "unsigned char" : integer_name<Element>();
      arrays += fmt::format("static {} {}[] = {{\n{}}};\n", type, name, list.text());
    } else {
      std::string list;
      for (std::size_t index = 0; index < count; ++index) {
        const std::string inside = initialiser(elements[index], fmt::format("{}_{}", name, index), 2);
        list += inside.empty() ? "    {0},\n" : fmt::format("    {{\n{}    }},\n", inside);
      }
      arrays += fmt::format("static {} {}[] = {{\n{}}};\n", record_name<Element>, name, list);
    }
  }
};

template <class Record>
std::string source_of(const Record &from) {
  writer writer;
  const std::string inside = writer.initialiser(from, "message", 1);
  return fmt::format("#include <pavo_zorv.h>\n\n{}{}static {} message = {{\n{}}};\n", writer.arrays,
                     writer.arrays.empty() ? "" : "\n", record_name<Record>, inside.empty() ? "    0\n" : inside);
}

}  // namespace

std::string c_source(const message_type &type, const record &content) {
#define INSPECT_SOURCE(message) \
  if (type.name == std::string_view(#message)) return source_of(*static_cast<const message *>(content.content()));
  PAVO_ZORV_MESSAGES(INSPECT_SOURCE)
#undef INSPECT_SOURCE
  return {};
}

}  // namespace inspect
