/** @file
 *  The fields of records for C++17: members read as values, views and references, presence by member, and every field
 *  of a record visited in turn.
 *
 *  Optional and header-only; pavo_zorv.hpp includes it. Nothing here takes memory, throws, or changes more of a record
 *  than presence bits. What is returned for a string, bytes, a list or a nested message is a view of the record's own
 *  memory: it is valid as long as that, and does not own it. As with the functions of pavo_zorv.h, a record may be read
 *  by any number of threads as long as none changes it.
 *
 *  @code{.cpp}
 *  void print(const api_policy &policy) {
 *    if (zorv::has<&api_policy::field1>(policy)) std::cout << zorv::get<&api_policy::field1>(policy); // string_view
 *    for (const api_prefix &prefix : zorv::get<&api_policy::prefixes>(policy)) print(prefix); // zorv::span
 *  }
 *
 *  zorv::for_each_field<api_policy>([&](auto field) {
 *    std::cout << field.number << ' ' << field.name << (field.is_in(policy) ? " is present\n" : " is absent\n");
 *  });
 *  @endcode
 */
#ifndef PAVO_ZORV_FIELDS_HPP
#define PAVO_ZORV_FIELDS_HPP

#if (defined(_MSVC_LANG) ? _MSVC_LANG : __cplusplus) < 201703L
#error "pavo_zorv_fields.hpp needs C++17 or later: compile with -std=c++17"
#else

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>
#if __has_include(<version>)
#include <version>
#endif
#if defined(__cpp_lib_ranges)
#include <ranges>
#endif

#include "pavo_zorv.h"
#include "pavo_zorv_fields.h"
#include "pavo_zorv_messages.h"

/** The C++ layer. */
namespace zorv {

// --- The messages ---

/** The five functions of a message, and its name. */
template <class Record>
struct functions;

/** @cond */
#define PAVO_ZORV_FUNCTIONS(message)                                      \
  template <>                                                             \
  struct functions<::message> {                                           \
    static constexpr const char *name = #message;                         \
    static constexpr auto decode = &::pavo_zorv_##message##_decode_ext;   \
    static constexpr auto encode = &::pavo_zorv_##message##_encode_ext;   \
    static constexpr auto duplicate = &::pavo_zorv_##message##_duplicate; \
    static constexpr auto free = &::pavo_zorv_##message##_free_ext;       \
    static constexpr auto compare = &::pavo_zorv_##message##_compare;     \
  };
PAVO_ZORV_MESSAGES(PAVO_ZORV_FUNCTIONS)
#undef PAVO_ZORV_FUNCTIONS
/** @endcond */

/** Whether a message's functions take the options word. If they do not, options passed to this header have no effect.
 */
template <class Record>
inline constexpr bool takes_options =
    std::is_invocable_v<decltype(functions<Record>::free), Record *, pavo_zorv_release, void *, std::uint32_t>;

/** @cond */
namespace detail {

template <class Element>
inline constexpr bool is_byte = std::is_same_v<Element, unsigned char> || std::is_same_v<Element, signed char> ||
                                std::is_same_v<Element, char> || std::is_same_v<Element, std::byte>;

template <class Container>
using element_of = std::remove_pointer_t<decltype(std::data(std::declval<Container &>()))>;

// Any contiguous sequence of bytes; but no array of characters, which is usually a literal with a NUL at its end.
template <class Container, class = void>
inline constexpr bool holds_bytes = false;
template <class Container>
inline constexpr bool holds_bytes<Container, std::void_t<element_of<Container>>> =
    is_byte<std::remove_cv_t<element_of<Container>>> &&
    !(std::is_array_v<Container> && std::is_same_v<std::remove_cv_t<element_of<Container>>, char>);

}  // namespace detail
/** @endcond */

// --- Views ---

/** Bytes to read: from any contiguous container or view of `unsigned char`, `std::byte` or `char`. Does not own them.
 */
class bytes {
 public:
  /** No bytes. */
  constexpr bytes() noexcept = default;
  /** The @p size bytes at @p data. */
  constexpr bytes(const unsigned char *data, std::size_t size) noexcept : data_(data), size_(size) {}
  /** The bytes of a container, for as long as it lives and keeps its size. */
  template <class Container, std::enable_if_t<detail::holds_bytes<const Container>, int> = 0>
  bytes(const Container &container) noexcept
      : data_(reinterpret_cast<const unsigned char *>(std::data(container))), size_(std::size(container)) {}

  constexpr const unsigned char *data() const noexcept { return data_; } /**< The first byte. */
  constexpr std::size_t size() const noexcept { return size_; } /**< How many there are. */
  constexpr bool empty() const noexcept { return size_ == 0; } /**< Whether there are none. */
  constexpr const unsigned char *begin() const noexcept { return data_; } /**< The first byte. */
  constexpr const unsigned char *end() const noexcept { return data_ + size_; } /**< The end of them. */
  /** One of them; the index is not checked. */
  constexpr unsigned char operator[](std::size_t index) const noexcept { return data_[index]; }

 private:
  const unsigned char *data_ = nullptr;
  std::size_t size_ = 0;
};

/** The elements of a list, one after the other in memory, as with `std::span`, to which it converts in C++20. Does not
 *  own them. */
template <class Element>
class span {
 public:
  using element_type = Element; /**< As stored. */
  using value_type = std::remove_cv_t<Element>; /**< Without `const`. */
  using size_type = std::size_t; /**< Of counts. */
  using iterator = Element *; /**< A pointer. */

  /** No elements. */
  constexpr span() noexcept = default;
  /** The @p size elements at @p data. */
  constexpr span(Element *data, std::size_t size) noexcept : data_(data), size_(size) {}
  /** The elements of a contiguous container or array, for as long as it lives and keeps its size. */
  template <
      class Container,
      std::enable_if_t<std::is_convertible_v<detail::element_of<Container> (*)[], Element (*)[]>, int> = 0>
  constexpr span(Container &&container) noexcept : data_(std::data(container)), size_(std::size(container)) {}

  constexpr Element *data() const noexcept { return data_; } /**< The first element. */
  constexpr std::size_t size() const noexcept { return size_; } /**< How many there are. */
  constexpr bool empty() const noexcept { return size_ == 0; } /**< Whether there are none. */
  constexpr Element *begin() const noexcept { return data_; } /**< The first element. */
  constexpr Element *end() const noexcept { return data_ + size_; } /**< The end of them. */
  /** One of them; the index is not checked. */
  constexpr Element &operator[](std::size_t index) const noexcept { return data_[index]; }
  constexpr Element &front() const noexcept { return data_[0]; } /**< The first; there must be one. */
  constexpr Element &back() const noexcept { return data_[size_ - 1]; } /**< The last; there must be one. */

 private:
  Element *data_ = nullptr;
  std::size_t size_ = 0;
};

// --- Fields ---

/** What a field is: see "Records" in pavo_zorv.h. */
enum class kind {
  flag, /**< A byte, 0 or 1: read and set as `bool`. */
  integer, /**< A number of 8, 32 or 64 bits. */
  string, /**< NUL-terminated characters: read as `std::string_view`. */
  bytes, /**< A block and its length: read as zorv::bytes. */
  integer_list, /**< An array of integers and its count: read as a zorv::span. */
  message_list, /**< An array of records and its count: read as a zorv::span. */
  nested /**< A record in the record: read by reference. */
};

/** @cond */
namespace detail {

// What the list of fields says about a member.
template <auto Member>
struct field_at {
  static constexpr bool exists = false;
};

template <class Member>
struct member_types;
template <class Record, class Member>
struct member_types<Member Record::*> {
  using record = Record;
  using member = Member;
};

template <auto... Members>
struct member_list {
  static constexpr std::size_t size = sizeof...(Members);
};

// The fields of a record, after a null pointer.
template <class Record>
struct fields_of;

template <auto Nothing, auto... Members>
using members_after = member_list<Members...>;

}  // namespace detail

#define PAVO_ZORV_FIELD_(record, number_, member, kind_, count_) \
  template <>                                                    \
  struct detail::field_at<&::record::member> {                   \
    static constexpr bool exists = true;                         \
    static constexpr unsigned number = number_;                  \
    static constexpr const char *name = #member;                 \
    static constexpr zorv::kind kind = zorv::kind::kind_;        \
    static constexpr auto count = count_;                        \
  };
#define PAVO_ZORV_FLAG_(record, number, member) PAVO_ZORV_FIELD_(record, number, member, flag, nullptr)
#define PAVO_ZORV_INTEGER_(record, number, member) PAVO_ZORV_FIELD_(record, number, member, integer, nullptr)
#define PAVO_ZORV_STRING_(record, number, member) PAVO_ZORV_FIELD_(record, number, member, string, nullptr)
#define PAVO_ZORV_BYTES_(record, number, member, length) \
  PAVO_ZORV_FIELD_(record, number, member, bytes, &::record::length)
#define PAVO_ZORV_INTEGERS_(record, number, member, count) \
  PAVO_ZORV_FIELD_(record, number, member, integer_list, &::record::count)
#define PAVO_ZORV_MESSAGE_LIST_(record, number, member, count, element) \
  PAVO_ZORV_FIELD_(record, number, member, message_list, &::record::count)
#define PAVO_ZORV_NESTED_(record, number, member, inner) PAVO_ZORV_FIELD_(record, number, member, nested, nullptr)
#define PAVO_ZORV_SIMPLE_LISTED_(record, number, member) , &::record::member
#define PAVO_ZORV_COUNTED_LISTED_(record, number, member, count) , &::record::member
#define PAVO_ZORV_MESSAGES_LISTED_(record, number, member, count, element) , &::record::member
#define PAVO_ZORV_NESTED_LISTED_(record, number, member, inner) , &::record::member
#define PAVO_ZORV_RECORD_(message)                                                                               \
  PAVO_ZORV_FIELDS_OF_##message(                                                                                 \
      PAVO_ZORV_FLAG_, PAVO_ZORV_INTEGER_, PAVO_ZORV_STRING_, PAVO_ZORV_BYTES_, PAVO_ZORV_INTEGERS_,             \
      PAVO_ZORV_MESSAGE_LIST_, PAVO_ZORV_NESTED_) template <>                                                    \
  struct detail::fields_of<::message> {                                                                          \
    using type = members_after<nullptr PAVO_ZORV_FIELDS_OF_##message(                                            \
        PAVO_ZORV_SIMPLE_LISTED_, PAVO_ZORV_SIMPLE_LISTED_, PAVO_ZORV_SIMPLE_LISTED_, PAVO_ZORV_COUNTED_LISTED_, \
        PAVO_ZORV_COUNTED_LISTED_, PAVO_ZORV_MESSAGES_LISTED_, PAVO_ZORV_NESTED_LISTED_)>;                       \
  };
PAVO_ZORV_MESSAGES(PAVO_ZORV_RECORD_)
#undef PAVO_ZORV_RECORD_
#undef PAVO_ZORV_NESTED_LISTED_
#undef PAVO_ZORV_MESSAGES_LISTED_
#undef PAVO_ZORV_COUNTED_LISTED_
#undef PAVO_ZORV_SIMPLE_LISTED_
#undef PAVO_ZORV_NESTED_
#undef PAVO_ZORV_MESSAGE_LIST_
#undef PAVO_ZORV_INTEGERS_
#undef PAVO_ZORV_BYTES_
#undef PAVO_ZORV_STRING_
#undef PAVO_ZORV_INTEGER_
#undef PAVO_ZORV_FLAG_
#undef PAVO_ZORV_FIELD_

namespace detail {

template <auto Member, class Record>
inline constexpr bool belongs = std::is_same_v<typename member_types<decltype(Member)>::record, Record>;

// What is known about the member that a pointer leads to.
template <auto Member>
struct member_traits : field_at<Member> {
  using base = field_at<Member>;
  static_assert(base::exists, "a count, a length or the presence flags: they have no presence bit");
  using record = typename member_types<decltype(Member)>::record;
  using type = typename member_types<decltype(Member)>::member;
  static constexpr bool is_flag = base::kind == zorv::kind::flag;
  static constexpr bool is_number = is_flag || base::kind == zorv::kind::integer;
  static constexpr bool is_bytes = base::kind == zorv::kind::bytes;
  static constexpr bool is_list = base::kind == zorv::kind::integer_list || base::kind == zorv::kind::message_list;
  static constexpr bool is_array = is_bytes || is_list;
  // The C++ type of a flag or a number.
  using value_type = std::conditional_t<is_flag, bool, type>;
  using presence_type = decltype(record::presence);
  static constexpr auto bit = static_cast<presence_type>(presence_type{1} << (base::number - 1));
  using count_type = std::conditional_t<is_bytes, std::uint64_t, std::uint32_t>;
};

template <auto Member, auto... Inside>
struct end_of_path : end_of_path<Inside...> {};
template <auto Member>
struct end_of_path<Member> : member_traits<Member> {};

}  // namespace detail
/** @endcond */

// --- Presence and values ---

/** The presence bit of a member, for example of `&api_msg::oam_req`. */
template <auto Member>
inline constexpr auto presence_bit = detail::member_traits<Member>::bit;

/** Whether a member is present. A path of members leads into nested messages: every member on it must be present. */
template <auto Member, auto... Inside, class Record>
[[nodiscard]] constexpr bool has(const Record &record) noexcept {
  static_assert(detail::belongs<Member, Record>, "a member of this record, or a path that begins with one");
  if ((record.presence & presence_bit<Member>) == 0) return false;
  if constexpr (sizeof...(Inside) != 0) {
    return has<Inside...>(record.*Member);
  } else {
    return true;
  }
}

/** Marks a member as present, and every member on the path that leads to it. */
template <auto Member, auto... Inside, class Record>
constexpr void set(Record &record) noexcept {
  static_assert(detail::belongs<Member, Record>, "a member of this record, or a path that begins with one");
  record.presence = static_cast<decltype(record.presence)>(record.presence | presence_bit<Member>);
  if constexpr (sizeof...(Inside) != 0) set<Inside...>(record.*Member);
}

/** Marks the member at the end of a path as absent. Its value stays, and what it owns is still released with the
 *  record. */
template <auto Member, auto... Inside, class Record>
constexpr void clear(Record &record) noexcept {
  static_assert(detail::belongs<Member, Record>, "a member of this record, or a path that begins with one");
  if constexpr (sizeof...(Inside) != 0) {
    clear<Inside...>(record.*Member);
  } else {
    record.presence = static_cast<decltype(record.presence)>(record.presence & ~presence_bit<Member>);
  }
}

/** Returns the value of a member; a path of members leads into nested messages.
 *
 *  - flag: `bool`
 *  - integer: the integer
 *  - string: `std::string_view`, empty if the pointer is null
 *  - bytes: zorv::bytes
 *  - integer_list, message_list: zorv::span of the constant elements
 *  - nested: a reference to the record inside
 *
 *  Presence bits are not looked at. After decoding, a member that is not present is usually 0, false or empty, but use
 *  zorv::has or zorv::find to find out. */
template <auto Member, auto... Inside, class Record>
[[nodiscard]] constexpr decltype(auto) get(const Record &record) noexcept {
  static_assert(detail::belongs<Member, Record>, "a member of this record, or a path that begins with one");
  using traits = detail::member_traits<Member>;
  if constexpr (sizeof...(Inside) != 0) {
    static_assert(traits::kind == kind::nested, "a path leads through nested messages");
    return get<Inside...>(record.*Member);
  } else if constexpr (traits::is_number) {
    return static_cast<typename traits::value_type>(record.*Member);
  } else if constexpr (traits::kind == kind::string) {
    return record.*Member != nullptr ? std::string_view(record.*Member) : std::string_view();
  } else if constexpr (traits::is_bytes) {
    return bytes(record.*Member, record.*Member != nullptr ? static_cast<std::size_t>(record.*traits::count) : 0);
  } else if constexpr (traits::is_list) {
    using element = const std::remove_pointer_t<typename traits::type>;
    return span<element>(record.*Member, record.*Member != nullptr ? record.*traits::count : 0);
  } else {
    return (record.*Member);
  }
}

/** Returns the value of a member if it is present, and every member on the path to it: a `std::optional` of what
 *  zorv::get returns, or for a nested message a pointer, null if it is absent. */
template <auto... Path, class Record>
[[nodiscard]] constexpr auto find(const Record &record) noexcept {
  using value = decltype(get<Path...>(record));
  if constexpr (std::is_reference_v<value>) {
    return has<Path...>(record) ? &get<Path...>(record) : nullptr;
  } else {
    return has<Path...>(record) ? std::optional<value>(get<Path...>(record)) : std::nullopt;
  }
}

/** Returns what is inside a record, to be changed: a nested message by reference, which it marks as present together
 *  with the path to it, or the elements of a list as a zorv::span. */
template <auto Member, auto... Inside, class Record>
[[nodiscard]] constexpr decltype(auto) edit(Record &record) noexcept {
  static_assert(detail::belongs<Member, Record>, "a member of this record, or a path that begins with one");
  using traits = detail::member_traits<Member>;
  if constexpr (sizeof...(Inside) != 0) {
    static_assert(traits::kind == kind::nested, "a path leads through nested messages");
    set<Member>(record);
    return edit<Inside...>(record.*Member);
  } else if constexpr (traits::is_list) {
    using element = std::remove_pointer_t<typename traits::type>;
    return span<element>(record.*Member, record.*Member != nullptr ? record.*traits::count : 0);
  } else {
    static_assert(traits::kind == kind::nested, "a nested message or a list");
    set<Member>(record);
    return (record.*Member);
  }
}

// --- Every field ---

/** A field, as zorv::for_each_field passes it. */
template <auto Member>
struct field_info {
  /** The record. */
  using record = typename detail::member_traits<Member>::record;
  static constexpr auto member = Member; /**< The member. */
  static constexpr unsigned number = detail::member_traits<Member>::number; /**< The number on the wire. */
  static constexpr const char *name = detail::member_traits<Member>::name; /**< The name of the member. */
  static constexpr zorv::kind kind = detail::member_traits<Member>::kind; /**< What it is. */

  /** Whether it is present: see zorv::has. */
  [[nodiscard]] static constexpr bool is_in(const record &of) noexcept { return has<Member>(of); }
  /** Returns its value: see zorv::get. */
  [[nodiscard]] static constexpr decltype(auto) get(const record &of) noexcept { return zorv::get<Member>(of); }
};

/** @cond */
namespace detail {

template <class Visit, auto... Members>
constexpr void visit_each(Visit &visit, member_list<Members...>) {
  (static_cast<void>(visit(field_info<Members>{})), ...);
}

}  // namespace detail
/** @endcond */

/** How many fields a message has. */
template <class Record>
inline constexpr std::size_t field_count = detail::fields_of<Record>::type::size;

/** Calls @p visit with the zorv::field_info of each field of a message, in the order of their numbers. */
template <class Record, class Visit>
constexpr void for_each_field(Visit &&visit) {
  detail::visit_each(visit, typename detail::fields_of<Record>::type{});
}

}  // namespace zorv

#if defined(__cpp_lib_ranges)
/** @cond */
template <class Element>
inline constexpr bool std::ranges::enable_borrowed_range<zorv::span<Element>> = true;
template <class Element>
inline constexpr bool std::ranges::enable_view<zorv::span<Element>> = true;
/** @endcond */
#endif

#endif  // C++17

#endif  // PAVO_ZORV_FIELDS_HPP
