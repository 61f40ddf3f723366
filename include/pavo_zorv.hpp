/** @file
 *  pavo_zorv for C++17: records that release themselves, containers instead of pointers and lengths, presence by
 *  member.
 *
 *  Optional and header-only: every function here makes one or two calls of pavo_zorv.h, and costs what they cost. Only
 *  a container or a memory resource can throw.
 *
 *  @code{.cpp}
 *  zorv::owned<api_msg> message;
 *  message.set<&api_msg::p2p_auto_policy_sweep, &api_msg_p2p_auto_policy_sweep::field1>(7u);
 *  const std::vector<unsigned char> bytes = zorv::encode(*message);
 *
 *  const auto received = zorv::decode<api_msg>(bytes);
 *  if (!received.ok()) std::fputs(pavo_zorv_result_text(received.result()), stderr);
 *  if (received.has<&api_msg::p2p_auto_policy_sweep>()) use(received->p2p_auto_policy_sweep.field1);
 *  assert(received == message);
 *  @endcode
 */
#ifndef PAVO_ZORV_HPP
#define PAVO_ZORV_HPP

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <memory_resource>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "pavo_zorv.h"
#include "pavo_zorv_memory.h"
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

// Passes the options word to functions that take one.
template <class Record, class Function, class... Arguments>
auto call(Function function, std::uint32_t options, Arguments... arguments) noexcept {
  if constexpr (takes_options<Record>) {
    return function(arguments..., options);
  } else {
    static_cast<void>(options);
    return function(arguments...);
  }
}

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

// --- Bytes and memory ---

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

 private:
  const unsigned char *data_ = nullptr;
  std::size_t size_ = 0;
};

/** Where a record's memory comes from and goes to: the callbacks and their context. The context (a pool, a budget, a
 *  memory resource) must outlive the records. */
struct memory {
  pavo_zorv_allocate allocate; /**< Returns blocks. */
  pavo_zorv_release release; /**< Releases them. */
  void *context; /**< The context of both. */

  /** The heap. */
  constexpr memory() noexcept : allocate(pavo_zorv_heap_allocate), release(pavo_zorv_heap_release), context(nullptr) {}
  /** Any callbacks. */
  constexpr memory(pavo_zorv_allocate give, pavo_zorv_release take_back, void *with) noexcept
      : allocate(give), release(take_back), context(with) {}
  /** A pool: releasing does nothing. */
  memory(pavo_zorv_pool &pool) noexcept : memory(pavo_zorv_pool_allocate, pavo_zorv_pool_release, &pool) {}
  /** A budget over other memory. */
  memory(pavo_zorv_budget &budget) noexcept : memory(pavo_zorv_budget_allocate, pavo_zorv_budget_release, &budget) {}
  /** A counter over other memory. */
  memory(pavo_zorv_counter &counter) noexcept
      : memory(pavo_zorv_counter_allocate, pavo_zorv_counter_release, &counter) {}
  /** A memory resource. It must be told the size of what it takes back, so each block has 8 more bytes, which hold that
   *  size. Any exception from it becomes `CODEC_ERR_NO_MEMORY`. */
  memory(std::pmr::memory_resource &resource) noexcept : memory(take, give_back, &resource) {}
  /** The same by pointer, as memory resources are usually passed. Not null. */
  memory(std::pmr::memory_resource *resource) noexcept : memory(*resource) {}

 private:
  static void *take(std::size_t size, void *context) noexcept {
    if (size > SIZE_MAX - sizeof(pavo_zorv_alignment)) return nullptr;
    const std::size_t whole = size + sizeof(pavo_zorv_alignment);
#if defined(__cpp_exceptions)
    try {
#endif
      void *const block = static_cast<std::pmr::memory_resource *>(context)->allocate(whole, PAVO_ZORV_ALIGNMENT);
      auto *const head = static_cast<pavo_zorv_alignment *>(block);
      head->number = whole;
      return head + 1;
#if defined(__cpp_exceptions)
    } catch (...) {
      return nullptr;
    }
#endif
  }
  static void give_back(void *block, void *context) noexcept {
    auto *const head = static_cast<pavo_zorv_alignment *>(block) - 1;
    static_cast<std::pmr::memory_resource *>(context)->deallocate(
        head, static_cast<std::size_t>(head->number), PAVO_ZORV_ALIGNMENT);
  }
};

// --- Members and their presence bits, derived from how a record can be initialised ---

/** @cond */
namespace detail {

struct anything {
  template <class Member>
  constexpr operator Member() const;
};

// An array or a block: a member followed by a count or a length.
struct array_pointer {
  template <class Member, std::enable_if_t<std::is_pointer_v<Member> && !std::is_same_v<Member, char *>, int> = 0>
  constexpr operator Member() const;
};

// A nested message.
struct any_record {
  template <class Member, std::enable_if_t<std::is_class_v<Member>, int> = 0>
  constexpr operator Member() const;
};

// The length of bytes. A list's count has 32 bits.
struct wide_number {
  template <class Member, std::enable_if_t<std::is_same_v<Member, std::uint64_t>, int> = 0>
  constexpr operator Member() const;
};

template <std::size_t>
using anything_at = anything;

template <class Record, class Last, class Before, class = void>
inline constexpr bool takes_after = false;
template <class Record, class Last, std::size_t... Before>
inline constexpr bool takes_after<
    Record, Last, std::index_sequence<Before...>, std::void_t<decltype(Record{anything_at<Before>{}..., Last{}})>> =
    true;

// Whether the member at a position can be initialised with a value that converts only to some types.
template <class Record, std::size_t Position, class Value>
inline constexpr bool takes = takes_after<Record, Value, std::make_index_sequence<Position>>;

// A nested message can be initialised by its own first member, without braces: that must not count.
template <class Record, std::size_t Position>
inline constexpr bool is_array_at = takes<Record, Position, array_pointer> && !takes<Record, Position, any_record>;

template <class Record, std::size_t Count = 0>
constexpr std::size_t member_count() {
  if constexpr (takes<Record, Count, anything>) {
    return member_count<Record, Count + 1>();
  } else {
    return Count;
  }
}

// Initialises any member: to something other than zero if `Marked`, else to zero.
template <bool Marked>
struct initialiser {
  template <class Member>
  constexpr operator Member() const {
    if constexpr (!Marked) {
      return Member{};
    } else if constexpr (std::is_class_v<Member>) {
      Member member{};
      member.presence = 1;
      return member;
    } else if constexpr (std::is_pointer_v<Member>) {
      return const_cast<Member>(&somewhere<std::remove_pointer_t<Member>>);
    } else {
      return Member{1};
    }
  }

  template <class Object>
  static constexpr Object somewhere{};
};

template <class Member>
constexpr bool is_marked(const Member &member) {
  if constexpr (std::is_class_v<Member>) {
    return member.presence != 0;
  } else if constexpr (std::is_pointer_v<Member>) {
    return member != nullptr;
  } else {
    return member != 0;
  }
}

// A record in which only the member at a position is not zero.
template <class Record, std::size_t Position, std::size_t... Other>
constexpr Record with_mark(std::index_sequence<Other...>) {
  return Record{initialiser<Other == Position>{}...};
}

template <class Record, std::size_t Position, class Member>
constexpr bool is_at(Member Record::*member) {
  constexpr Record record = with_mark<Record, Position>(std::make_index_sequence<member_count<Record>()>{});
  return is_marked(record.*member);
}

template <class Record, class Member, std::size_t... Position>
constexpr std::size_t position_among(Member Record::*member, std::index_sequence<Position...>) {
  return ((is_at<Record, Position>(member) ? Position : 0) + ...);
}

template <class Record, std::size_t... Position>
constexpr std::size_t arrays_among(std::index_sequence<Position...>) {
  return (std::size_t{0} + ... + (is_array_at<Record, Position> ? 1 : 0));
}

template <class Member>
struct member_types;
template <class Record, class Member>
struct member_types<Member Record::*> {
  using record = Record;
  using member = Member;
};

template <auto Member, class Record>
inline constexpr bool belongs = std::is_same_v<typename member_types<decltype(Member)>::record, Record>;

// A member of one byte is a flag, except for these.
template <auto Member>
inline constexpr bool is_number_of_8_bits = false;
template <>
inline constexpr bool is_number_of_8_bits<&api_prefix::field2> = true;
template <>
inline constexpr bool is_number_of_8_bits<&srv6_sid_struct::field3> = true;
template <>
inline constexpr bool is_number_of_8_bits<&srv6_sid_struct::field4> = true;
template <>
inline constexpr bool is_number_of_8_bits<&srv6_sid_struct::field5> = true;
template <>
inline constexpr bool is_number_of_8_bits<&srv6_sid_struct::field6> = true;
template <>
inline constexpr bool is_number_of_8_bits<&srv6_sid_struct::field7> = true;
template <>
inline constexpr bool is_number_of_8_bits<&srv6_sid_struct::field8> = true;

// What this header knows about the member that a pointer leads to.
template <auto Member>
struct member_traits {
  using record = typename member_types<decltype(Member)>::record;
  using type = typename member_types<decltype(Member)>::member;
  static constexpr std::size_t members = member_count<record>();
  static constexpr std::size_t position = position_among<record>(Member, std::make_index_sequence<members>{});
  static constexpr bool is_presence = position + 1 == members;
  static constexpr bool is_array = is_array_at<record, position>;
  static constexpr bool is_bytes = is_array && takes<record, position + 1, wide_number>;
  static constexpr bool is_count = !is_array && position != 0 && is_array_at<record, position - (position != 0)>;
  static_assert(!is_presence && !is_count, "a count, a length or the presence flags: they have no presence bit");
  static constexpr bool is_flag = std::is_same_v<type, std::uint8_t> && !is_number_of_8_bits<Member>;
  static constexpr bool is_number = std::is_arithmetic_v<type>;
  // The C++ type of a flag or a number.
  using value_type = std::conditional_t<is_flag, bool, type>;
  using presence_type = decltype(record::presence);
  // The field's number follows from the member's position, not counting counts and lengths.
  static constexpr std::size_t field = position - arrays_among<record>(std::make_index_sequence<position>{});
  static constexpr auto bit = static_cast<presence_type>(presence_type{1} << field);
  using count_type = std::conditional_t<is_bytes, std::uint64_t, std::uint32_t>;

  // The count follows the pointer directly, at its own alignment.
  static count_type *count(record &of) {
    auto *const base = reinterpret_cast<unsigned char *>(&of);
    const auto end = static_cast<std::size_t>(reinterpret_cast<unsigned char *>(&(of.*Member)) - base) + sizeof(type);
    const std::size_t offset = (end + alignof(count_type) - 1) / alignof(count_type) * alignof(count_type);
    return reinterpret_cast<count_type *>(base + offset);
  }
};

}  // namespace detail
/** @endcond */

// --- Numbers that fit ---

/** @cond */
namespace detail {

template <class Number>
constexpr bool is_negative(Number number) noexcept {
  if constexpr (std::is_signed_v<Number>) {
    return number < 0;
  } else {
    return false;
  }
}

template <class Number, class Value>
constexpr bool fits(Value value) noexcept {
  const auto number = static_cast<Number>(value);
  return static_cast<Value>(number) == value && is_negative(number) == is_negative(value);
}

// Whether all values of a type fit. A flag takes only `bool`.
template <class Number, class Value>
constexpr bool always_fits() noexcept {
  if constexpr (std::is_same_v<Number, bool> || !std::is_integral_v<Value>) {
    return std::is_same_v<Number, Value>;
  } else {
    return fits<Number>(std::numeric_limits<Value>::min()) && fits<Number>(std::numeric_limits<Value>::max());
  }
}

// Called if a constant does not fit: the expression is then not a constant, and does not compile.
inline void the_value_does_not_fit() noexcept {}

}  // namespace detail
/** @endcond */

/** A constant as a value: `zorv::constant<7>` is accepted wherever a number is expected that can hold 7. */
template <auto Value>
inline constexpr std::integral_constant<decltype(Value), Value> constant{};

/** The value that a number or a flag is set to. The following convert to it:
 *  - a value of a type all of whose values fit: `7u` for an unsigned member of 32 or 64 bits; for a flag, `bool` alone;
 *  - a `zorv::constant` that fits;
 *  - in C++20, if the compiler has `consteval`, any other constant that fits, such as 7.
 *
 *  Nothing else compiles: `try_set` is for values that may not fit. */
template <class Number>
class fitting {
 public:
  /** A value of a type that always fits. */
  template <class Value, std::enable_if_t<detail::always_fits<Number, Value>(), int> = 0>
  constexpr fitting(Value value) noexcept : number_(static_cast<Number>(value)) {}

  /** A constant. */
  template <class Value, Value Constant>
  constexpr fitting(std::integral_constant<Value, Constant>) noexcept : number_(static_cast<Number>(Constant)) {
    if constexpr (std::is_same_v<Number, bool>) {
      static_assert(std::is_same_v<Value, bool>, "a flag takes bool");
    } else {
      static_assert(detail::fits<Number>(Constant), "the constant does not fit into the member");
    }
  }

  /** Another value: refused, or in C++20 a constant. */
  template <class Value, std::enable_if_t<!detail::always_fits<Number, Value>() && !std::is_class_v<Value>, int> = 0>
#if defined(__cpp_consteval)
  consteval fitting(Value value) noexcept : number_(static_cast<Number>(value)) {
    check<Value>();
    if (!detail::fits<Number>(value)) detail::the_value_does_not_fit();
  }
#else
  constexpr fitting(Value value) noexcept : number_(static_cast<Number>(value)) {
    check<Value>();
    static_assert(
        detail::always_fits<Number, Value>(),
        "the type has values that do not fit into the member: see zorv::constant, and try_set");
  }
#endif

  /** The number. */
  [[nodiscard]] constexpr Number get() const noexcept { return number_; }

 private:
  template <class Value>
  static constexpr void check() noexcept {
    static_assert(!std::is_same_v<Number, bool>, "a flag takes bool");
    static_assert(std::is_integral_v<Value>, "a whole number");
  }

  Number number_;
};

/** A result of `set` and `try_set`, in addition to those of the library, which never returns it: the member cannot hold
 *  the value, and is unchanged. */
inline constexpr int does_not_fit = 1;

/** The same as `pavo_zorv_result_text`, which does not know `zorv::does_not_fit`. */
[[nodiscard]] inline const char *result_text(int result) noexcept {
  return result == does_not_fit ? "the member cannot hold the value" : pavo_zorv_result_text(result);
}

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

/** @cond */
namespace detail {

template <auto Member, auto... Inside>
struct end_of_path : end_of_path<Inside...> {};
template <auto Member>
struct end_of_path<Member> : member_traits<Member> {};

// Whether a path leads to a number or a flag. An empty path does not.
template <auto... Path>
inline constexpr bool leads_to_number = false;
template <auto Member, auto... Inside>
inline constexpr bool leads_to_number<Member, Inside...> = end_of_path<Member, Inside...>::is_number;

template <auto... Path>
using value_at = typename end_of_path<Path...>::value_type;

template <auto Member, auto... Inside, class Record, class Number>
constexpr void store_number(Record &record, Number number) noexcept {
  if constexpr (sizeof...(Inside) != 0) {
    store_number<Inside...>(record.*Member, number);
  } else {
    record.*Member = number;
  }
  set<Member>(record);
}

}  // namespace detail
/** @endcond */

/** Returns a number, or a flag as `bool`. A path of members leads into nested messages. A member that is not present is
 *  usually 0 or false, but use zorv::has to find out. */
template <auto Member, auto... Inside, class Record>
[[nodiscard]] constexpr auto get(const Record &record) noexcept {
  static_assert(detail::belongs<Member, Record>, "a member of this record, or a path that begins with one");
  if constexpr (sizeof...(Inside) != 0) {
    return get<Inside...>(record.*Member);
  } else {
    using traits = detail::member_traits<Member>;
    static_assert(traits::is_number, "a number or a flag");
    return static_cast<typename traits::value_type>(record.*Member);
  }
}

// --- Encoding and comparing plain records ---

/** Returns the length of a record's encoding. */
template <class Record>
[[nodiscard]] std::size_t encoded_size(const Record &record, std::uint32_t options = 0) noexcept {
  return detail::call<Record>(
      functions<Record>::encode, options, &record, static_cast<unsigned char *>(nullptr), std::size_t{0},
      static_cast<pavo_zorv_segment *>(nullptr), static_cast<std::uint32_t *>(nullptr));
}

/** Writes as much of the encoding as fits into a buffer, and returns the length of the whole encoding. */
template <class Record>
std::size_t encode(const Record &record, unsigned char *buffer, std::size_t size, std::uint32_t options = 0) noexcept {
  return detail::call<Record>(
      functions<Record>::encode, options, &record, buffer, size, static_cast<pavo_zorv_segment *>(nullptr),
      static_cast<std::uint32_t *>(nullptr));
}

/** Replaces the contents of a container of bytes (a `std::string`, or a vector with any allocator) by the encoding. */
template <class Record, class Container, class = decltype(std::declval<Container &>().resize(std::size_t{}))>
void encode_into(Container &container, const Record &record, std::uint32_t options = 0) {
  static_assert(detail::holds_bytes<Container>);
  container.resize(encoded_size(record, options));
  encode(record, reinterpret_cast<unsigned char *>(std::data(container)), std::size(container), options);
}

/** Returns the encoding. */
template <class Record>
[[nodiscard]] std::vector<unsigned char> encode(const Record &record, std::uint32_t options = 0) {
  std::vector<unsigned char> result;
  encode_into(result, record, options);
  return result;
}

/** An encoding with its segment table. The entries point into `bytes`, which may be moved but not copied or changed.
 */
struct segmented {
  std::vector<unsigned char> bytes; /**< The encoding, in reference mode without the referenced bytes. */
  std::vector<pavo_zorv_segment> segments; /**< One entry for each message in it, and the pieces of reference mode. */
};

/** Returns the encoding with its segment table. */
template <class Record>
[[nodiscard]] segmented encode_segmented(const Record &record, std::uint32_t options = 0) {
  const auto run = [&](unsigned char *buffer, std::size_t size, pavo_zorv_segment *segments, std::uint32_t *count) {
    return detail::call<Record>(functions<Record>::encode, options, &record, buffer, size, segments, count);
  };
  segmented result;
  std::uint32_t count = 0;
  result.bytes.resize(run(nullptr, 0, nullptr, &count));
  result.segments.resize(count);
  run(result.bytes.data(), result.bytes.size(), result.segments.data(), &count);
  return result;
}

/** Orders two records as the library's `compare` does: negative, 0 or positive. */
template <class Record>
[[nodiscard]] int compare(const Record &a, const Record &b) noexcept {
  return functions<Record>::compare(&a, &b);
}

// --- Records that own their memory ---

template <class Record>
class owned;

/** Returns a record decoded from bytes; `result()` is the result of the decoding. With `PAVO_ZORV_REFERENCE` its bytes
 *  members point into @p input, which must outlive it. */
template <class Record>
[[nodiscard]] owned<Record> decode(bytes input, memory from = {}, std::uint32_t options = 0) noexcept;

/** Returns a copy that owns all its memory; `result()` says whether there was enough memory. */
template <class Record>
[[nodiscard]] owned<Record> duplicate(const Record &record, memory from = {}) noexcept;

/** A record that releases what it owns when it is destroyed. It can be moved but not copied: see `duplicate`. */
template <class Record>
class owned {
 public:
  /** An empty record. The options are those with which bytes members are set and released. */
  explicit owned(memory from = {}, std::uint32_t options = 0) noexcept
      : record_{}, memory_(from), options_(options), result_(CODEC_OK) {}
  /** Takes over what @p other holds, and leaves it empty. */
  owned(owned &&other) noexcept
      : record_(other.record_), memory_(other.memory_), options_(other.options_), result_(other.result_) {
    other.record_ = Record{};
  }
  /** Releases what this record holds, then takes over what @p other holds, and leaves it empty. */
  owned &operator=(owned &&other) noexcept {
    if (this == &other) return *this;
    free();
    record_ = other.record_;
    memory_ = other.memory_;
    options_ = other.options_;
    result_ = other.result_;
    other.record_ = Record{};
    return *this;
  }
  ~owned() { free(); }

  Record *operator->() noexcept { return &record_; } /**< The record. */
  const Record *operator->() const noexcept { return &record_; } /**< The record. */
  Record &operator*() noexcept { return record_; } /**< The record. */
  const Record &operator*() const noexcept { return record_; } /**< The record. */

  [[nodiscard]] int result() const noexcept { return result_; } /**< Of decoding or copying; otherwise `CODEC_OK`. */
  [[nodiscard]] bool ok() const noexcept { return result_ == CODEC_OK; } /**< Whether it is `CODEC_OK`. */
  /** The options that the record was made with. */
  [[nodiscard]] std::uint32_t options() const noexcept { return options_; }
  [[nodiscard]] const zorv::memory &source() const noexcept { return memory_; } /**< Where its memory comes from. */

  /** Releases what the record holds and decodes another into it; returns the result. */
  [[nodiscard]] int decode(bytes input, std::uint32_t options = 0) noexcept {
    free();
    return read(input, options);
  }

  /** Makes the record empty. */
  void reset() noexcept {
    free();
    record_ = Record{};
    result_ = CODEC_OK;
  }

  /** Hands over the record with all that it owns. The caller releases it by `free_ext` with this object's callbacks and
   *  options. */
  [[nodiscard]] Record release() noexcept { return std::exchange(record_, Record{}); }

  /** Whether a member is present: see zorv::has. */
  template <auto... Path>
  [[nodiscard]] bool has() const noexcept {
    return zorv::has<Path...>(record_);
  }
  /** Returns a number or a flag: see zorv::get. */
  template <auto... Path>
  [[nodiscard]] auto get() const noexcept {
    return zorv::get<Path...>(record_);
  }
  /** Marks a member as present: see zorv::set. */
  template <auto... Path>
  void set() noexcept {
    zorv::set<Path...>(record_);
  }
  /** Marks a member as absent: see zorv::clear. */
  template <auto... Path>
  void clear() noexcept {
    zorv::clear<Path...>(record_);
  }

  /** Sets a number or a flag, and marks it and the path to it as present. A value that does not fit does not compile:
   *  see zorv::fitting. */
  template <auto... Path, std::enable_if_t<detail::leads_to_number<Path...>, int> = 0>
  void set(fitting<detail::value_at<Path...>> value) noexcept {
    detail::store_number<Path...>(record_, value.get());
  }

  /** The same with a value of any integer type. Returns `CODEC_OK`, or zorv::does_not_fit. */
  template <auto... Path, class Value>
  [[nodiscard]] int try_set(Value value) noexcept {
    return try_set_in<Path...>(record_, value);
  }

  /** Sets any other member, and marks it and the path to it as present. A string takes a `std::string_view` without a
   *  NUL; a list of numbers or bytes takes any contiguous container of elements. They are copied into memory from the
   *  record's source, and what was there before is released. Returns `CODEC_OK`, `CODEC_ERR_NO_MEMORY` or
   *  zorv::does_not_fit; after a failure the member is unchanged. In reference mode bytes are not copied, and must
   *  outlive the record. */
  template <auto... Path, class Value, std::enable_if_t<!detail::leads_to_number<Path...>, int> = 0>
  [[nodiscard]] int set(const Value &value) noexcept {
    return set_in<Path...>(record_, value);
  }

  /** @name The same for a member of a record inside this one, such as an element of a list
   *  @{ */
  /** A number or a flag. */
  template <auto... Path, class Inner, std::enable_if_t<detail::leads_to_number<Path...>, int> = 0>
  void set_in(Inner &inner, fitting<detail::value_at<Path...>> value) noexcept {
    detail::store_number<Path...>(inner, value.get());
  }
  /** A number that may not fit. */
  template <auto... Path, class Inner, class Value>
  [[nodiscard]] int try_set_in(Inner &inner, Value value) noexcept {
    static_assert(detail::leads_to_number<Path...>, "a number");
    using number = detail::value_at<Path...>;
    static_assert(!std::is_same_v<number, bool>, "a flag takes bool, which always fits: see set");
    static_assert(std::is_integral_v<Value>, "a whole number");
    if (!detail::fits<number>(value)) return does_not_fit;
    detail::store_number<Path...>(inner, static_cast<number>(value));
    return CODEC_OK;
  }
  /** Any other member. */
  template <
      auto Member, auto... Inside, class Inner, class Value,
      std::enable_if_t<!detail::leads_to_number<Member, Inside...>, int> = 0>
  [[nodiscard]] int set_in(Inner &inner, const Value &value) noexcept {
    if constexpr (sizeof...(Inside) != 0) {
      const int result = set_in<Inside...>(inner.*Member, value);
      if (result == CODEC_OK) zorv::set<Member>(inner);
      return result;
    } else {
      return store<Member>(inner, value);
    }
  }
  /** @} */

  /** Gives a list of messages @p count empty elements, and marks it and the path to it as present. Returns the first
   *  element. If there is no memory for them, or a list cannot have so many, returns null and leaves the list
   *  unchanged. */
  template <auto... Path>
  [[nodiscard]] auto *resize(std::size_t count) noexcept {
    return resize_in<Path...>(record_, count);
  }

  /** The same for a member of a record inside this one. */
  template <auto Member, auto... Inside, class Inner>
  [[nodiscard]] auto *resize_in(Inner &inner, std::size_t count) noexcept {
    if constexpr (sizeof...(Inside) != 0) {
      auto *const first = resize_in<Inside...>(inner.*Member, count);
      if (first != nullptr) zorv::set<Member>(inner);
      return first;
    } else {
      using traits = detail::member_traits<Member>;
      using element = std::remove_pointer_t<typename traits::type>;
      static_assert(std::is_class_v<element>, "a list of messages");
      const bool countable = detail::fits<typename traits::count_type>(count);
      auto *const block = static_cast<element *>(countable ? array(count, sizeof(element)) : nullptr);
      if (block == nullptr) return block;
      std::memset(static_cast<void *>(block), 0, count * sizeof(element));
      if (inner.*Member != nullptr) {
        for (std::uint32_t i = 0; i < *traits::count(inner); ++i) {
          detail::call<element>(
              functions<element>::free, options_, inner.*Member + i, memory_.release, memory_.context);
        }
      }
      replace<Member>(inner, block, count);
      return block;
    }
  }

 private:
  friend owned zorv::decode<Record>(bytes, memory, std::uint32_t) noexcept;
  friend owned zorv::duplicate<Record>(const Record &, memory) noexcept;

  // Leaves the record uninitialised: the operation that fills it clears it first.
  struct unfilled {};
  owned(unfilled, memory from, std::uint32_t options) noexcept : memory_(from), options_(options) {}

  int read(bytes input, std::uint32_t options) noexcept {
    options_ = options;
    result_ = detail::call<Record>(
        functions<Record>::decode, options, &record_, input.data(), input.size(), memory_.allocate, memory_.context);
    return result_;
  }

  void free() noexcept {
    detail::call<Record>(functions<Record>::free, options_, &record_, memory_.release, memory_.context);
  }

  bool references() const noexcept { return takes_options<Record> && (options_ & PAVO_ZORV_REFERENCE) != 0; }

  void *array(std::size_t count, std::size_t size) noexcept {
    if (count > SIZE_MAX / size) return nullptr;
    return memory_.allocate(count * size, memory_.context);
  }

  // Replaces the block that a member has by another.
  template <auto Member, class Inner, class Element>
  void replace(Inner &inner, Element *block, std::size_t count) noexcept {
    using traits = detail::member_traits<Member>;
    const bool borrowed = traits::is_bytes && references();
    if (inner.*Member != nullptr && !borrowed && memory_.release != nullptr) {
      memory_.release(inner.*Member, memory_.context);
    }
    inner.*Member = block;
    if constexpr (traits::is_array) *traits::count(inner) = static_cast<typename traits::count_type>(count);
    zorv::set<Member>(inner);
  }

  template <auto Member, class Inner, class Value>
  int store(Inner &inner, const Value &value) noexcept {
    using traits = detail::member_traits<Member>;
    if constexpr (std::is_same_v<typename traits::type, char *>) {
      const std::string_view text(value);
      if (text.find('\0') != text.npos) return does_not_fit;
      auto *const block = static_cast<char *>(memory_.allocate(text.size() + 1, memory_.context));
      if (block == nullptr) return CODEC_ERR_NO_MEMORY;
      if (!text.empty()) std::memcpy(block, text.data(), text.size());
      block[text.size()] = '\0';
      replace<Member>(inner, block, 0);
      return CODEC_OK;
    } else {
      static_assert(traits::is_array, "a nested message has no value of its own: name one of its members");
      return store_elements<Member>(inner, value);
    }
  }

  template <auto Member, class Inner, class Value>
  int store_elements(Inner &inner, const Value &value) noexcept {
    using traits = detail::member_traits<Member>;
    using element = std::remove_pointer_t<typename traits::type>;
    static_assert(!std::is_class_v<element>, "a list of messages: see resize");
    using given = std::remove_cv_t<detail::element_of<const Value>>;
    static_assert(
        std::is_same_v<element, given> || (sizeof(element) == 1 && detail::holds_bytes<const Value>),
        "a contiguous container of the list's elements");
    const auto *const data = reinterpret_cast<const element *>(std::data(value));
    const std::size_t count = std::size(value);
    if (!detail::fits<typename traits::count_type>(count)) return does_not_fit;
    if (traits::is_bytes && references()) {
      replace<Member>(inner, const_cast<element *>(data), count);
      return CODEC_OK;
    }
    auto *const block = static_cast<element *>(array(count, sizeof(element)));
    if (block == nullptr) return CODEC_ERR_NO_MEMORY;
    if (count != 0) std::memcpy(block, data, count * sizeof(element));
    replace<Member>(inner, block, count);
    return CODEC_OK;
  }

  Record record_;
  zorv::memory memory_;
  std::uint32_t options_;
  int result_;
};

template <class Record>
owned<Record> decode(bytes input, memory from, std::uint32_t options) noexcept {
  owned<Record> result(typename owned<Record>::unfilled{}, from, options);
  result.read(input, options);
  return result;
}

template <class Record>
owned<Record> duplicate(const Record &record, memory from) noexcept {
  owned<Record> result(typename owned<Record>::unfilled{}, from, 0);
  result.result_ = functions<Record>::duplicate(&result.record_, &record, from.allocate, from.context);
  return result;
}

/** @name Orders records, owned or plain, as `compare` does.
 *  @{ */
/** @cond */
#define PAVO_ZORV_OPERATOR(sign)                                                \
  template <class Record>                                                       \
  bool operator sign(const owned<Record> &a, const owned<Record> &b) noexcept { \
    return compare(*a, *b) sign 0;                                              \
  }                                                                             \
  template <class Record>                                                       \
  bool operator sign(const owned<Record> &a, const Record &b) noexcept {        \
    return compare(*a, b) sign 0;                                               \
  }                                                                             \
  template <class Record>                                                       \
  bool operator sign(const Record &a, const owned<Record> &b) noexcept {        \
    return compare(a, *b) sign 0;                                               \
  }
PAVO_ZORV_OPERATOR(==)
PAVO_ZORV_OPERATOR(!=)
PAVO_ZORV_OPERATOR(<)
PAVO_ZORV_OPERATOR(<=)
PAVO_ZORV_OPERATOR(>)
PAVO_ZORV_OPERATOR(>=)
#undef PAVO_ZORV_OPERATOR
/** @endcond */
/** @} */

}  // namespace zorv

#endif  // PAVO_ZORV_HPP
