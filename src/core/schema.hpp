// What a message is made of: one row per field, stated once. Everything else about a message is derived from its rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>

#include "wire.hpp"

namespace pavo_zorv {

// The rows of a message, in field order. Each message specialises this for its record.
template <class Record>
inline constexpr auto schema = nullptr;

enum class kind { flag, integer, string, bytes, integer_list, message_list, nested };

// What the rows of every kind begin with.
struct row {
  unsigned number;
  const char *name;

  // Whether the value is an integer of eight bits, which takes one byte or two.
  static constexpr bool in_eight_bits() { return false; }
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

// The presence bit of the row at an index: bits stand in field order.
template <class Record, std::size_t Index>
inline constexpr auto presence_bit = static_cast<presence_of<Record>>(presence_of<Record>{1} << Index);

// The presence bits that belong to fields; the others are the caller's.
template <class Record>
inline constexpr auto presence_mask = static_cast<presence_of<Record>>((std::uint64_t{1} << field_count<Record>)-1);

// Calls `visit` with each row of a message, in field order: a constant, so that everything in it folds away.
template <class Record, class Visit>
PAVO_ZORV_INLINE constexpr void for_each_row(Visit &&visit) {
  [&]<std::size_t... Index>(std::index_sequence<Index...>) __attribute__((always_inline)) {
    (visit(std::integral_constant<std::size_t, Index>{}), ...);
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

// A message of few fields, none of which is a list or a message: worth taking inline where it is nested.
template <class Record>
inline constexpr bool is_small =
    field_count<Record> <= 8 && !any_row<Record>([](const auto &row) {
      return row.type == kind::integer_list || row.type == kind::message_list || row.type == kind::nested;
    });

// --- The checks: a schema that does not fit its record does not compile. ---

namespace checks {

// Initialises any member: to zero, or to something else where `Marked`.
template <bool Marked>
struct initialiser {
  template <class Member>
  constexpr operator Member() const {
    Member member{};
    if constexpr (Marked && std::is_class_v<Member>) {
      member.presence = 1;
    } else if constexpr (Marked && std::is_pointer_v<Member>) {
      member = const_cast<Member>(&somewhere<std::remove_pointer_t<Member>>);
    } else if constexpr (Marked) {
      member = 1;
    }
    return member;
  }

  template <class Object>
  static constexpr Object somewhere{};
};

template <class Member>
consteval bool is_marked(const Member &member) {
  if constexpr (std::is_class_v<Member>) {
    return member.presence != 0;
  } else if constexpr (std::is_pointer_v<Member>) {
    return member == &initialiser<true>::somewhere<std::remove_pointer_t<Member>>;
  } else {
    return member != 0;
  }
}

// The number of members that a record can be initialised with.
template <class Record, class... Members>
consteval std::size_t member_count() {
  if constexpr (requires { Record{Members{}..., initialiser<false>{}}; }) {
    return member_count<Record, Members..., initialiser<false>>();
  } else {
    return sizeof...(Members);
  }
}

// A record in which only the member at a position is not zero.
template <class Record, std::size_t Position, std::size_t... Other>
consteval Record marked(std::index_sequence<Other...>) {
  return Record{initialiser<Other == Position>{}...};
}

template <class Record, std::size_t Position>
inline constexpr Record with_mark = marked<Record, Position>(std::make_index_sequence<member_count<Record>()>{});

// The members that the rows name, in row order.
template <class Record, std::size_t... Index>
consteval auto members_of(std::index_sequence<Index...>) {
  return std::tuple_cat(row_at<Record, Index>.members()...);
}

template <class Record>
inline constexpr auto members_with_rows = members_of<Record>(std::make_index_sequence<field_count<Record>>{});

template <class Record>
inline constexpr std::size_t members_with_rows_count =
    std::tuple_size_v<std::remove_cvref_t<decltype(members_with_rows<Record>)>>;

template <class Record>
consteval bool every_member_has_a_row() {
  return member_count<Record>() == members_with_rows_count<Record> + 1;
}

template <class Record>
consteval bool members_stand_in_order() {
  if constexpr (!every_member_has_a_row<Record>()) {
    return false;
  } else {
    return []<std::size_t... Position>(std::index_sequence<Position...>) {
      return (is_marked(with_mark<Record, Position>.*std::get<Position>(members_with_rows<Record>)) && ...) &&
             is_marked(with_mark<Record, sizeof...(Position)>.presence);
    }
    (std::make_index_sequence<members_with_rows_count<Record>>{});
  }
}

template <class Record>
consteval bool numbers_run_from_one() {
  return [&]<std::size_t... Index>(std::index_sequence<Index...>) {
    return ((row_at<Record, Index>.number == Index + 1) && ...);
  }
  (std::make_index_sequence<field_count<Record>>{});
}

consteval std::size_t presence_size(std::size_t fields) { return fields <= 8 ? 1 : fields <= 16 ? 2 : 4; }

template <class Record>
consteval std::size_t bytes_rows() {
  return [&]<std::size_t... Index>(std::index_sequence<Index...>) {
    return (std::size_t{row_at<Record, Index>.type == kind::bytes} + ...);
  }
  (std::make_index_sequence<field_count<Record>>{});
}

}  // namespace checks

template <class Record>
struct checked {
  static_assert(field_count<Record> <= 32, "a message has at most 32 fields");
  static_assert(checks::numbers_run_from_one<Record>(), "the rows' field numbers are 1, 2, 3 ...");
  static_assert(checks::every_member_has_a_row<Record>(),
                "every member of the record but the presence flags has a row");
  static_assert(checks::members_stand_in_order<Record>(), "members stand in row order, the presence flags last");
  static_assert(std::is_unsigned_v<presence_of<Record>>, "presence flags are unsigned");
  static_assert(sizeof(presence_of<Record>) == checks::presence_size(field_count<Record>),
                "presence flags take the fewest of 8, 16 or 32 bits");
  static_assert(checks::bytes_rows<Record>() <= 1,
                "a message has at most one bytes member: the table's pieces around a second one are not defined");
  static constexpr bool value = true;
};

}  // namespace pavo_zorv
