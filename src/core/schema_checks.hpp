// The checks of schemas: one that does not fit its record does not compile.
#pragma once

#include <cstddef>
#include <tuple>
#include <type_traits>
#include <utility>

#include "schema.hpp"

namespace pavo_zorv {

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

template <class Record>
consteval bool every_member_has_a_row() {
  return member_count<Record>() == row_member_count<Record> + 1;
}

template <class Record>
consteval bool members_are_in_order() {
  if constexpr (!every_member_has_a_row<Record>()) {
    return true;  // which is said already
  } else {
    return []<std::size_t... Position>(std::index_sequence<Position...>) {
      return (is_marked(with_mark<Record, Position>.*std::get<Position>(row_members<Record>)) && ...) &&
             is_marked(with_mark<Record, sizeof...(Position)>.presence);
    }
    (std::make_index_sequence<row_member_count<Record>>{});
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
  static_assert(checks::members_are_in_order<Record>(), "members are in row order, the presence flags last");
  static_assert(std::is_unsigned_v<presence_of<Record>>, "presence flags are unsigned");
  static_assert(sizeof(presence_of<Record>) == checks::presence_size(field_count<Record>),
                "presence flags take the fewest of 8, 16 or 32 bits");
  static_assert(checks::bytes_rows<Record>() <= 1,
                "a message has at most one bytes member: the table's pieces around a second one are not defined");
  static constexpr bool value = true;
};

}  // namespace pavo_zorv
