// Writes include/pavo_zorv_fields.h, from the schemas: numbers, longest encodings and a list of the fields of every
// message.
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "member_name.hpp"
#include "messages/all.hpp"

namespace {

using pavo_zorv::kind;

constexpr const char *introduction = R"(/** @file
 *  The fields of every message: their numbers, the longest encoding of each message that has one, and a list of the
 *  fields as a macro. For programs that read keys themselves, that have buffers of a constant size, or that treat all
 *  members alike.
 *
 *  Optional: C11 and C++. This header includes nothing; its macros name the records and members of pavo_zorv.h, which a
 *  program that uses them includes as well. For a message `m` with a field `f` there is:
 *
 *  | name | what it is |
 *  |---|---|
 *  | `M_F_FIELD_NUMBER` | the number of the field on the wire, a constant of `enum m_field_number` |
 *  | `M_MAX_ENCODED_SIZE` | the bytes of the longest encoding |
 *  | `PAVO_ZORV_FIELDS_OF_m` | calls one of seven macros with each field, see below |
 *
 *  A message with a string, bytes or a list in it has no longest encoding, and no such constant. A field's key on the
 *  wire is its number times 8, plus the wire type: 0 for flags and integers, single or in a list, 2 for the others.
 *
 *  @code{.c}
 *  unsigned char buffer[API_ADDR_MAX_ENCODED_SIZE]; // any api_addr fits
 *  size_t length = pavo_zorv_api_addr_encode_ext(&address, buffer, sizeof buffer, NULL, NULL);
 *  @endcode
 *
 *  @section lists Lists of fields
 *
 *  `PAVO_ZORV_FIELDS_OF_m(flag, integer, string, bytes, integer_list, message_list, nested)` calls with each field the
 *  macro of its kind, in ascending order of numbers:
 *
 *  | kind | called with |
 *  |---|---|
 *  | flag, integer, string | record, number, member |
 *  | bytes | record, number, member, member with the length |
 *  | integer_list | record, number, member, member with the count |
 *  | message_list | record, number, member, member with the count, record of an element |
 *  | nested | record, number, member, record of the nested message |
 *
 *  @code{.c}
 *  #define SIMPLE(record, number, member) printf("%d %s\n", number, #member);
 *  #define LIST(record, number, member, count) printf("%d %s\n", number, #member);
 *  #define MESSAGES(record, number, member, count, element) printf("%d %s of %s\n", number, #member, #element);
 *  #define NESTED(record, number, member, nested) printf("%d %s, %s\n", number, #member, #nested);
 *  PAVO_ZORV_FIELDS_OF_api_to_igp(SIMPLE, SIMPLE, SIMPLE, LIST, LIST, MESSAGES, NESTED)
 *  @endcode
 *
 *  Written by `tests/library/fields_header.cpp` from the schemas, again with
 *  `cmake --build --preset release --target update-fields`.
 */
#ifndef PAVO_ZORV_FIELDS_H
#define PAVO_ZORV_FIELDS_H

/* clang-format off */
)";

constexpr const char *end = R"(
/* clang-format on */

#endif /* PAVO_ZORV_FIELDS_H */
)";

// The parameters of every list: a macro for each kind.
constexpr const char *macros = "flag, integer, string, bytes, integer_list, message_list, nested";

constexpr const char *macro_of(kind type) {
  switch (type) {
    case kind::flag:
      return "flag";
    case kind::integer:
      return "integer";
    case kind::string:
      return "string";
    case kind::bytes:
      return "bytes";
    case kind::integer_list:
      return "integer_list";
    case kind::message_list:
      return "message_list";
    case kind::nested:
      return "nested";
  }
  return nullptr;
}

std::string upper(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](unsigned char each) { return static_cast<char>(std::toupper(each)); });
  return result;
}

std::uint64_t varint_size(std::uint64_t value) {
  std::uint64_t size = 1;
  for (; value >= 0x80; value >>= 7) ++size;
  return size;
}

// The longest encoding of a message; nothing if there is none.
template <class Record>
std::optional<std::uint64_t> longest() {
  std::optional<std::uint64_t> total = 0;
  pavo_zorv::for_each_row<Record>([&](auto index) {
    constexpr auto &row = pavo_zorv::row_at<Record, index>;
    using row_type = std::remove_cvref_t<decltype(row)>;
    std::optional<std::uint64_t> value;
    if constexpr (row_type::type == kind::flag) {
      value = 1;
    } else if constexpr (row_type::type == kind::integer) {
      value = varint_size(static_cast<std::make_unsigned_t<typename row_type::element>>(-1));
    } else if constexpr (row_type::type == kind::nested) {
      value = longest<typename row_type::message>();
      if (value) *value += varint_size(*value);
    } else {
      static_assert(row_type::type == kind::string || row_type::type == kind::bytes ||
                        row_type::type == kind::integer_list || row_type::type == kind::message_list,
                    "the longest value of this kind");
    }
    if (total && value) {
      *total += varint_size(row.number * 8) + *value;
    } else {
      total.reset();
    }
  });
  return total;
}

template <class Record, std::size_t Index>
void write_field() {
  constexpr auto &row = pavo_zorv::row_at<Record, Index>;
  using row_type = std::remove_cvref_t<decltype(row)>;
  std::printf(" \\\n  %s(%s, %u, %s", macro_of(row_type::type), pavo_zorv::message_name<Record>, row.number, row.name);
  constexpr auto members = row.members();
  if constexpr (std::tuple_size_v<decltype(members)> == 2) {
    constexpr std::string_view count = pavo_zorv::member_name<std::get<1>(members)>();
    std::printf(", %.*s", static_cast<int>(count.size()), count.data());
  }
  if constexpr (row_type::type == kind::message_list || row_type::type == kind::nested) {
    std::printf(", %s", pavo_zorv::message_name<typename row_type::message>);
  }
  std::printf(")");
}

template <class Record>
void write_message(const char *name) {
  const std::string prefix = upper(name);
  std::printf("\n/** @name `%s`\n *  @{ */\n\n/** Field numbers of `%s`. */\nenum %s_field_number {", name, name, name);
  pavo_zorv::for_each_row<Record>([&](auto index) {
    constexpr auto &row = pavo_zorv::row_at<Record, index>;
    std::printf("%s\n  %s_%s_FIELD_NUMBER = %u", index == 0 ? "" : ",", prefix.c_str(), upper(row.name).c_str(),
                row.number);
  });
  std::printf("\n};\n");
  if (const auto size = longest<Record>()) {
    std::printf("\n/** Bytes of the longest encoding of `%s`. */\n#define %s_MAX_ENCODED_SIZE %ju\n", name,
                prefix.c_str(), static_cast<std::uintmax_t>(*size));
  }
  std::printf("\n/** Calls a macro with each field of `%s`. */\n#define PAVO_ZORV_FIELDS_OF_%s(%s)", name, name,
              macros);
  pavo_zorv::for_each_row<Record>([](auto index) { write_field<Record, index>(); });
  std::printf("\n\n/** @} */\n");
}

}  // namespace

int main() {
  std::fputs(introduction, stdout);
#define WRITTEN(message) write_message<message>(#message);
  PAVO_ZORV_MESSAGES(WRITTEN)
#undef WRITTEN
  std::fputs(end, stdout);
  return 0;
}
