// The five functions of each message under one type, for tests that treat all messages alike and know only the public
// header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "pavo_zorv.h"

namespace naive {

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

// Whether the second argument of a line of messages.inc is there.
constexpr bool is_there() { return false; }
constexpr bool is_there(std::uint32_t) { return true; }

// clang-format off
inline constexpr calls all_calls[] = {
#define PAVO_ZORV_TEST_OPTIONS , options
#define PAVO_ZORV_TEST_SECOND(nothing, ...) __VA_ARGS__
#define PAVO_ZORV_TEST_OPERATIONS(message, comma_options)                                                              \
  {#message, sizeof(message),                                                                                          \
   []([[maybe_unused]] std::uint32_t options) { return is_there(PAVO_ZORV_TEST_SECOND(0 comma_options)); }(0),         \
   [](void *out, const unsigned char *buffer, std::size_t length, pavo_zorv_allocate allocate, void *context,          \
      [[maybe_unused]] std::uint32_t options) {                                                                        \
     return pavo_zorv_##message##_decode_ext(static_cast<message *>(out), buffer, length, allocate,                    \
                                             context comma_options);                                                   \
   },                                                                                                                  \
   [](const void *in, unsigned char *buffer, std::size_t length, pavo_zorv_segment *segments, std::uint32_t *count,    \
      [[maybe_unused]] std::uint32_t options) {                                                                        \
     return pavo_zorv_##message##_encode_ext(static_cast<const message *>(in), buffer, length, segments,               \
                                             count comma_options);                                                     \
   },                                                                                                                  \
   [](void *to, const void *from, pavo_zorv_allocate allocate, void *context) {                                        \
     return pavo_zorv_##message##_duplicate(static_cast<message *>(to), static_cast<const message *>(from), allocate,  \
                                            context);                                                                  \
   },                                                                                                                  \
   [](void *record, pavo_zorv_release release, void *context, [[maybe_unused]] std::uint32_t options) {                \
     pavo_zorv_##message##_free_ext(static_cast<message *>(record), release, context comma_options);                   \
   },                                                                                                                  \
   [](const void *a, const void *b) {                                                                                  \
     return pavo_zorv_##message##_compare(static_cast<const message *>(a), static_cast<const message *>(b));           \
   }},
#include "messages.inc"
#undef PAVO_ZORV_TEST_OPERATIONS
#undef PAVO_ZORV_TEST_SECOND
#undef PAVO_ZORV_TEST_OPTIONS
};
// clang-format on

inline const calls *calls_of(const char *message) {
  for (const calls &one : all_calls) {
    if (std::strcmp(one.name, message) == 0) return &one;
  }
  return nullptr;
}

}  // namespace naive
