// The five functions of each message under one name, with or without the options word.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "pavo_zorv.h"
#include "pavo_zorv_messages.h"

namespace test {

// Calls a function with the options word, or without it where the function takes none.
template <class Function, class... Arguments>
auto call(Function *function, [[maybe_unused]] std::uint32_t options, Arguments... arguments) {
  if constexpr (std::is_invocable_v<Function *, Arguments..., std::uint32_t>) {
    return function(arguments..., options);
  } else {
    return function(arguments...);
  }
}

template <class Record, auto Decode, auto Encode, auto Duplicate, auto Free, auto Compare>
struct exported_operations {
  static constexpr bool takes_options =
      std::is_invocable_v<decltype(Free), Record *, pavo_zorv_release, void *, std::uint32_t>;

  static int decode(Record *out, const unsigned char *buffer, std::size_t length, pavo_zorv_allocate allocate,
                    void *context, std::uint32_t options = 0) {
    return call(Decode, options, out, buffer, length, allocate, context);
  }
  static std::size_t encode(const Record *in, unsigned char *buffer, std::size_t length, pavo_zorv_segment *segments,
                            std::uint32_t *count, std::uint32_t options = 0) {
    return call(Encode, options, in, buffer, length, segments, count);
  }
  static int duplicate(Record *to, const Record *from, pavo_zorv_allocate allocate, void *context) {
    return Duplicate(to, from, allocate, context);
  }
  static void free(Record *record, pavo_zorv_release release, void *context, std::uint32_t options = 0) {
    call(Free, options, record, release, context);
  }
  static int compare(const Record *a, const Record *b) { return Compare(a, b); }
};

template <class Record>
struct operations;

#define PAVO_ZORV_TEST_OPERATIONS(message)                                                                            \
  template <>                                                                                                         \
  struct operations<message> : exported_operations<message, pavo_zorv_##message##_decode_ext,                         \
                                                   pavo_zorv_##message##_encode_ext, pavo_zorv_##message##_duplicate, \
                                                   pavo_zorv_##message##_free_ext, pavo_zorv_##message##_compare> {   \
    static constexpr const char *name = #message;                                                                     \
  };
PAVO_ZORV_MESSAGES(PAVO_ZORV_TEST_OPERATIONS)
#undef PAVO_ZORV_TEST_OPERATIONS

// The same for tests that treat all messages alike and know records as memory.
struct calls {
  const char *name;
  std::size_t record_size;
  bool takes_options;
  int (*decode)(void *, const unsigned char *, std::size_t, pavo_zorv_allocate, void *, std::uint32_t);
  std::size_t (*encode)(const void *, unsigned char *, std::size_t, pavo_zorv_segment *, std::uint32_t *,
                        std::uint32_t);
  int (*duplicate)(void *, const void *, pavo_zorv_allocate, void *);
  void (*free)(void *, pavo_zorv_release, void *, std::uint32_t);
  int (*compare)(const void *, const void *);
};

template <class Record>
inline constexpr calls calls_of = {
    operations<Record>::name,
    sizeof(Record),
    operations<Record>::takes_options,
    [](void *out, const unsigned char *buffer, std::size_t length, pavo_zorv_allocate allocate, void *context,
       std::uint32_t options) {
      return operations<Record>::decode(static_cast<Record *>(out), buffer, length, allocate, context, options);
    },
    [](const void *in, unsigned char *buffer, std::size_t length, pavo_zorv_segment *segments, std::uint32_t *count,
       std::uint32_t options) {
      return operations<Record>::encode(static_cast<const Record *>(in), buffer, length, segments, count, options);
    },
    [](void *to, const void *from, pavo_zorv_allocate allocate, void *context) {
      return operations<Record>::duplicate(static_cast<Record *>(to), static_cast<const Record *>(from), allocate,
                                           context);
    },
    [](void *record, pavo_zorv_release release, void *context, std::uint32_t options) {
      operations<Record>::free(static_cast<Record *>(record), release, context, options);
    },
    [](const void *a, const void *b) {
      return operations<Record>::compare(static_cast<const Record *>(a), static_cast<const Record *>(b));
    },
};

#define PAVO_ZORV_TEST_OPERATIONS(message) calls_of<message>,
inline constexpr calls all_calls[] = {PAVO_ZORV_MESSAGES(PAVO_ZORV_TEST_OPERATIONS)};
#undef PAVO_ZORV_TEST_OPERATIONS

}  // namespace test
