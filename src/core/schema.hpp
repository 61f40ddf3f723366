// What a message is made of: one row per field, stated once. Everything else about a message is derived from its rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>

#include "bits.hpp"

namespace pavo_zorv {

// The rows of a message, in field order. Each message specialises this for its record.
template <class Record>
inline constexpr auto schema = nullptr;

enum class kind { flag, integer, string, bytes, integer_list, message_list, nested };

// What the rows of every kind begin with.
struct row {
  unsigned number;
  const char *name;

  consteval row(unsigned field_number, const char *field_name) : number(field_number), name(field_name) {}

  // Whether a field is a number of at least one byte, which is measured with the other scalars of its message.
  static constexpr bool is_scalar() { return false; }

  // Whether the member is a list or a message.
  static constexpr bool repeats_or_nests() { return false; }
};

template <class... Rows>
struct message_rows {
  static constexpr std::size_t size = sizeof...(Rows);
  std::tuple<Rows...> rows;
};

template <class... Rows>
consteval auto message(Rows... rows) {
  return message_rows<Rows...>{{rows...}};
}

template <class Record>
inline constexpr std::size_t field_count = std::remove_cvref_t<decltype(schema<Record>)>::size;

template <class Record, std::size_t Index>
inline constexpr auto row_at = std::get<Index>(schema<Record>.rows);

template <class Record>
using presence_of = decltype(Record::presence);

// The presence bit of the row at an index: bits are in field order.
template <class Record, std::size_t Index>
inline constexpr auto presence_bit = static_cast<presence_of<Record>>(presence_of<Record>{1} << Index);

// The presence bits that belong to fields; the others are the caller's.
template <class Record>
inline constexpr auto presence_mask = static_cast<presence_of<Record>>((std::uint64_t{1} << field_count<Record>)-1);

// Calls `visit` with the index of each row of a message, in field order: a std::integral_constant, so that everything
// in it folds away.
template <class Record, class Visit>
PAVO_ZORV_INLINE constexpr void for_each_row(Visit &&visit) {
  [&]<std::size_t... Index>(std::index_sequence<Index...>) PAVO_ZORV_INLINE_LAMBDA {
    (visit(std::integral_constant<std::size_t, Index>{}), ...);
  }
  (std::make_index_sequence<field_count<Record>>{});
}

// The same from the last row to the first.
template <class Record, class Visit>
PAVO_ZORV_INLINE constexpr void for_each_row_backwards(Visit &&visit) {
  [&]<std::size_t... Index>(std::index_sequence<Index...>) PAVO_ZORV_INLINE_LAMBDA {
    (visit(std::integral_constant<std::size_t, sizeof...(Index) - 1 - Index>{}), ...);
  }
  (std::make_index_sequence<field_count<Record>>{});
}

// Properties of a message that follow from those of its rows.
template <class Record, class Property>
consteval bool any_row(Property property) {
  return [&]<std::size_t... Index>(std::index_sequence<Index...>) { return (property(row_at<Record, Index>) || ...); }
  (std::make_index_sequence<field_count<Record>>{});
}

template <class Record>
inline constexpr bool owns_memory = any_row<Record>([](const auto &row) { return row.owns(); });

template <class Record>
inline constexpr bool holds_bytes = any_row<Record>([](const auto &row) { return row.holds_bytes(); });

// A message without lists and messages in it: those have few fields, and are worth copying into the code of what
// contains them.
template <class Record>
inline constexpr bool is_small = !any_row<Record>([](const auto &row) { return row.repeats_or_nests(); });

// The members that the rows name, in row order. The presence flags, which no row names, come after them.
template <class Record, std::size_t... Index>
consteval auto members_of(std::index_sequence<Index...>) {
  return std::tuple_cat(row_at<Record, Index>.members()...);
}

template <class Record>
inline constexpr auto row_members = members_of<Record>(std::make_index_sequence<field_count<Record>>{});

template <class Record>
inline constexpr std::size_t row_member_count = std::tuple_size_v<std::remove_cvref_t<decltype(row_members<Record>)>>;

}  // namespace pavo_zorv
