/** @file
 *  pavo_zorv for C++17: records that release themselves, containers instead of pointers and lengths, presence by
 *  member, results with and without exceptions.
 *
 *  Optional and header-only: every function here makes one or two calls of pavo_zorv.h, and costs what they cost. Only
 *  a container, a memory resource, zorv::expected::value and zorv::check can throw; what is `noexcept` does not, unless
 *  a container that it is given does, which ends the program. Members are read with the functions of
 *  pavo_zorv_fields.hpp, which this header includes.
 *
 *  @code{.cpp}
 *  const auto message = zorv::try_make<api_msg>(
 *      zorv::field<&api_msg::field1> = 1u,
 *      zorv::field<&api_msg::to_zorv, &api_to_zorv::intf> =
 *          zorv::fields(zorv::field<&api_intf::field1> = 7u, zorv::field<&api_intf::field2> = "eth0"));
 *  if (!message) return message.error();
 *  const std::vector<unsigned char> bytes = zorv::encode(**message);
 *
 *  const auto received = zorv::decode<api_msg>(bytes);
 *  if (!received.ok()) std::fputs(pavo_zorv_result_text(received.result()), stderr);
 *  if (const api_intf *intf = zorv::find<&api_msg::to_zorv, &api_to_zorv::intf>(*received)) {
 *    std::cout << zorv::get<&api_intf::field2>(*intf);
 *  }
 *  assert(received == *message);
 *  @endcode
 */
#ifndef PAVO_ZORV_HPP
#define PAVO_ZORV_HPP

#if (defined(_MSVC_LANG) ? _MSVC_LANG : __cplusplus) < 201703L
#error "pavo_zorv.hpp needs C++17 or later: compile with -std=c++17"
#else

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <memory_resource>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "pavo_zorv.h"
#include "pavo_zorv_fields.hpp"
#include "pavo_zorv_memory.h"

namespace zorv {

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

}  // namespace detail
/** @endcond */

// --- Memory ---

/** Where a record's memory comes from and goes to: the callbacks and their context. The context (a pool, a budget, a
 *  memory resource) must outlive the records. */
struct memory {
  pavo_zorv_allocate allocate; /**< Returns blocks; null if there is no memory. */
  pavo_zorv_release release; /**< Releases them; null if nothing needs to be released. */
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
  memory(std::pmr::memory_resource &resource) noexcept
      : memory(allocate_from_resource, release_to_resource, &resource) {}
  /** The same by pointer, as memory resources are usually passed. Not null. */
  memory(std::pmr::memory_resource *resource) noexcept : memory(*resource) {}

 private:
  static void *allocate_from_resource(std::size_t size, void *context) noexcept {
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
  static void release_to_resource(void *block, void *context) noexcept {
    auto *const head = static_cast<pavo_zorv_alignment *>(block) - 1;
    static_cast<std::pmr::memory_resource *>(context)->deallocate(
        head, static_cast<std::size_t>(head->number), PAVO_ZORV_ALIGNMENT);
  }
};

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

/** @cond */
namespace detail {

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

// --- Results ---

#if defined(__cpp_exceptions)
/** What zorv::expected::value and zorv::check throw. Only declared if exceptions are enabled. */
class error : public std::exception {
 public:
  /** For a result that is not `CODEC_OK`. */
  explicit error(int result) noexcept : result_(result) {}
  /** The result. */
  [[nodiscard]] int result() const noexcept { return result_; }
  /** It in words: see zorv::result_text. */
  [[nodiscard]] const char *what() const noexcept override { return result_text(result_); }

 private:
  int result_;
};

/** Throws a zorv::error unless a result is `CODEC_OK`. Only declared if exceptions are enabled. */
inline void check(int result) {
  if (result != CODEC_OK) throw error(result);
}
#endif

/** A value, or the result that says why there is none: as `std::expected` of C++23. */
template <class Value>
class expected {
 public:
  /** A value. */
  expected(Value &&value) noexcept : value_(std::move(value)), error_(CODEC_OK) {}
  /** No value, but a result other than `CODEC_OK`. */
  static expected failed(int result) noexcept { return expected(result); }

  [[nodiscard]] bool has_value() const noexcept { return value_.has_value(); } /**< Whether there is one. */
  explicit operator bool() const noexcept { return value_.has_value(); } /**< Whether there is one. */
  /** Why there is none: a `pavo_zorv_result`, or zorv::does_not_fit; `CODEC_OK` if there is one. */
  [[nodiscard]] int error() const noexcept { return error_; }

  Value &operator*() &noexcept { return *value_; } /**< The value, which must be there. */
  const Value &operator*() const &noexcept { return *value_; } /**< The value, which must be there. */
  Value &&operator*() &&noexcept { return std::move(*value_); } /**< The value, which must be there. */
  Value *operator->() noexcept { return &*value_; } /**< The value, which must be there. */
  const Value *operator->() const noexcept { return &*value_; } /**< The value, which must be there. */

#if defined(__cpp_exceptions)
  /** The value; throws a zorv::error if there is none. Only declared if exceptions are enabled. */
  Value &value() & { return checked(), *value_; }
  /** The same. */
  const Value &value() const & { return checked(), *value_; }
  /** The same. */
  Value &&value() && { return checked(), std::move(*value_); }
#endif

 private:
  explicit expected(int result) noexcept : error_(result) {}
#if defined(__cpp_exceptions)
  void checked() const { check(error_); }
#endif

  std::optional<Value> value_;
  int error_;
};

// --- Records by their fields ---

/** @cond */
namespace detail {

// A path and what the member at its end is set to.
template <class Value, auto... Path>
struct designated {
  Value value;
};

template <class... Designated>
struct group {
  std::tuple<Designated...> designated;
};

template <class... Groups>
struct sequence {
  std::tuple<Groups...> groups;
};

// What may be assigned to a field of a kind.
template <kind Kind, auto... Path>
struct designator {
  constexpr auto operator=(fitting<typename end_of_path<Path...>::value_type> value) const noexcept {
    return designated<decltype(value), Path...>{value};
  }
};
template <auto... Path>
struct designator<kind::string, Path...> {
  constexpr auto operator=(std::string_view value) const noexcept {
    return designated<std::string_view, Path...>{value};
  }
};
template <auto... Path>
struct designator<kind::bytes, Path...> {
  constexpr auto operator=(bytes value) const noexcept { return designated<bytes, Path...>{value}; }
};
template <auto... Path>
struct designator<kind::integer_list, Path...> {
  using element = const std::remove_pointer_t<typename end_of_path<Path...>::type>;
  constexpr auto operator=(span<element> value) const noexcept { return designated<span<element>, Path...>{value}; }
  constexpr auto operator=(std::initializer_list<std::remove_const_t<element> > value) const noexcept {
    return designated<span<element>, Path...>{{value.begin(), value.size()}};
  }
};
template <auto... Path>
struct designator<kind::message_list, Path...> {
  template <class... Groups>
  constexpr auto operator=(sequence<Groups...> value) const noexcept {
    return designated<sequence<Groups...>, Path...>{value};
  }
};
template <auto... Path>
struct designator<kind::nested, Path...> {
  template <class... Designated>
  constexpr auto operator=(group<Designated...> value) const noexcept {
    return designated<group<Designated...>, Path...>{value};
  }
};

}  // namespace detail
/** @endcond */

/** The type of zorv::field. */
template <auto... Path>
struct field_designator : detail::designator<detail::end_of_path<Path...>::kind, Path...> {
  using detail::designator<detail::end_of_path<Path...>::kind, Path...>::operator=;
};

/** Names a field of a record that is made or changed, to be assigned a value in the arguments of zorv::try_make,
 *  `owned::assign` or zorv::fields. A path of members leads into nested messages.
 *
 *  - flag, integer: what `owned::set` accepts: a value that is certain to fit, see zorv::fitting
 *  - string: whatever converts to `std::string_view`, without a NUL
 *  - bytes: whatever converts to zorv::bytes
 *  - integer_list: a contiguous container of elements, or elements in braces
 *  - message_list: zorv::elements
 *  - nested: zorv::fields
 *
 *  Values are referred to, not copied: use the assignment only as an argument, and do not keep it. */
template <auto... Path>
inline constexpr field_designator<Path...> field{};

/** The fields of a nested message, or of an element of a list. */
template <class... Designated>
[[nodiscard]] constexpr detail::group<Designated...> fields(Designated... designated) noexcept {
  return {{designated...}};
}

/** The elements of a list of messages, each by its zorv::fields. */
template <class... Groups>
[[nodiscard]] constexpr detail::sequence<Groups...> elements(Groups... groups) noexcept {
  return {{groups...}};
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
  void set(fitting<detail::value_at<Path...> > value) noexcept {
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
  void set_in(Inner &inner, fitting<detail::value_at<Path...> > value) noexcept {
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

  /** Sets the fields that are named, in the order of the arguments: see zorv::field. Returns `CODEC_OK`, or the first
   *  failure: the fields before it are then set, those after it are not. */
  template <class... Designated>
  [[nodiscard]] int assign(const Designated &...designated) noexcept {
    return assign_in(record_, designated...);
  }

  /** The same for a record inside this one, such as an element of a list. */
  template <class Inner, class... Designated>
  [[nodiscard]] int assign_in(Inner &inner, const Designated &...designated) noexcept {
    int result = CODEC_OK;
    static_cast<void>((((result = put(inner, designated)) == CODEC_OK) && ...));
    return result;
  }

  /** Returns a nested message or the elements of a list, to be changed: see zorv::edit. */
  template <auto... Path>
  [[nodiscard]] decltype(auto) edit() noexcept {
    return zorv::edit<Path...>(record_);
  }

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
        for (std::uint32_t i = 0; i < inner.*traits::count; ++i) {
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

  void *request(std::size_t size) noexcept {
    return memory_.allocate != nullptr ? memory_.allocate(size, memory_.context) : nullptr;
  }

  void *array(std::size_t count, std::size_t size) noexcept {
    return count <= SIZE_MAX / size ? request(count * size) : nullptr;
  }

  template <class Inner, class Value, auto Member, auto... Inside>
  int put(Inner &inner, const detail::designated<Value, Member, Inside...> &given) noexcept {
    static_assert(detail::belongs<Member, Inner>, "a field of this record, or a path that begins with one");
    if constexpr (detail::leads_to_number<Member, Inside...>) {
      detail::store_number<Member, Inside...>(inner, given.value.get());
      return CODEC_OK;
    } else {
      return put_value<Member, Inside...>(inner, given.value);
    }
  }

  template <auto... Path, class Inner, class Value>
  int put_value(Inner &inner, const Value &value) noexcept {
    return set_in<Path...>(inner, value);
  }

  template <auto Member, auto... Inside, class Inner, class... Designated>
  int put_value(Inner &inner, const detail::group<Designated...> &group) noexcept {
    int result = CODEC_OK;
    if constexpr (sizeof...(Inside) != 0) {
      result = put_value<Inside...>(inner.*Member, group);
    } else {
      result = put_group(inner.*Member, group);
    }
    if (result == CODEC_OK) zorv::set<Member>(inner);
    return result;
  }

  template <auto... Path, class Inner, class... Groups>
  int put_value(Inner &inner, const detail::sequence<Groups...> &sequence) noexcept {
    auto *element = resize_in<Path...>(inner, sizeof...(Groups));
    if (element == nullptr) return CODEC_ERR_NO_MEMORY;
    int result = CODEC_OK;
    std::apply(
        [&](const auto &...group) {
          static_cast<void>((((result = put_group(*element++, group)) == CODEC_OK) && ...));
        },
        sequence.groups);
    return result;
  }

  template <class Inner, class... Designated>
  int put_group(Inner &inner, const detail::group<Designated...> &group) noexcept {
    return std::apply([&](const auto &...designated) { return assign_in(inner, designated...); }, group.designated);
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
    if constexpr (traits::is_array) inner.*traits::count = static_cast<typename traits::count_type>(count);
    zorv::set<Member>(inner);
  }

  template <auto Member, class Inner, class Value>
  int store(Inner &inner, const Value &value) noexcept {
    using traits = detail::member_traits<Member>;
    if constexpr (std::is_same_v<typename traits::type, char *>) {
      const std::string_view text(value);
      if (text.find('\0') != text.npos) return does_not_fit;
      auto *const copy = static_cast<char *>(request(text.size() + 1));
      if (copy == nullptr) return CODEC_ERR_NO_MEMORY;
      if (!text.empty()) std::memcpy(copy, text.data(), text.size());
      copy[text.size()] = '\0';
      replace<Member>(inner, copy, 0);
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
    using given = std::remove_cv_t<detail::element_of<const Value> >;
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

/** @name Results as zorv::expected
 *  For programs that do not look at what was read before a failure: a record, or the result that says why there is
 *  none. With exceptions: `auto message = zorv::try_decode<api_msg>(bytes).value();`.
 *  @{ */

/** Decodes a record: see zorv::decode. After a failure nothing is kept. */
template <class Record>
[[nodiscard]] expected<owned<Record> > try_decode(bytes input, memory from = {}, std::uint32_t options = 0) noexcept {
  auto result = decode<Record>(input, from, options);
  if (!result.ok()) return expected<owned<Record> >::failed(result.result());
  return result;
}

/** Copies a record: see zorv::duplicate. After a failure nothing is kept. */
template <class Record>
[[nodiscard]] expected<owned<Record> > try_duplicate(const Record &record, memory from = {}) noexcept {
  auto result = duplicate(record, from);
  if (!result.ok()) return expected<owned<Record> >::failed(result.result());
  return result;
}

/** Makes a record with the fields that are named, in memory of any source: see zorv::field. */
template <class Record, class... Designated>
[[nodiscard]] expected<owned<Record> > try_make_in(memory from, const Designated &...designated) noexcept {
  owned<Record> result(from);
  const int failure = result.assign(designated...);
  if (failure != CODEC_OK) return expected<owned<Record> >::failed(failure);
  return result;
}

/** The same in memory of the heap. */
template <class Record, class... Designated>
[[nodiscard]] expected<owned<Record> > try_make(const Designated &...designated) noexcept {
  return try_make_in<Record>(memory(), designated...);
}

/** @} */

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

#endif  // C++17

#endif  // PAVO_ZORV_HPP
