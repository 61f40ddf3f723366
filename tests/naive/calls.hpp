// The five functions of each message under one type, for tests that treat all messages alike and know only the public
// header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "pavo_zorv.h"
#include "pavo_zorv_messages.h"

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

// clang-format off
inline constexpr calls all_calls[] = {
#define PAVO_ZORV_TEST_CALLS(message, ...)                                                                             \
  {#message, sizeof(message), false __VA_OPT__(|| true),                                                               \
   [](void *out, const unsigned char *buffer, std::size_t length, pavo_zorv_allocate allocate, void *context,          \
      [[maybe_unused]] std::uint32_t options) {                                                                        \
     return pavo_zorv_##message##_decode_ext(static_cast<message *>(out), buffer, length, allocate,                    \
                                             context __VA_OPT__(,) __VA_ARGS__);                                       \
   },                                                                                                                  \
   [](const void *in, unsigned char *buffer, std::size_t length, pavo_zorv_segment *segments, std::uint32_t *count,    \
      [[maybe_unused]] std::uint32_t options) {                                                                        \
     return pavo_zorv_##message##_encode_ext(static_cast<const message *>(in), buffer, length, segments,               \
                                             count __VA_OPT__(,) __VA_ARGS__);                                         \
   },                                                                                                                  \
   [](void *to, const void *from, pavo_zorv_allocate allocate, void *context) {                                        \
     return pavo_zorv_##message##_duplicate(static_cast<message *>(to), static_cast<const message *>(from), allocate,  \
                                            context);                                                                  \
   },                                                                                                                  \
   [](void *record, pavo_zorv_release release, void *context, [[maybe_unused]] std::uint32_t options) {                \
     pavo_zorv_##message##_free_ext(static_cast<message *>(record), release, context __VA_OPT__(,) __VA_ARGS__);       \
   },                                                                                                                  \
   [](const void *a, const void *b) {                                                                                  \
     return pavo_zorv_##message##_compare(static_cast<const message *>(a), static_cast<const message *>(b));           \
   }},
#define PAVO_ZORV_TEST_CALLS_WITH_OPTIONS(message) PAVO_ZORV_TEST_CALLS(message, options)
PAVO_ZORV_EVERY_MESSAGE(PAVO_ZORV_TEST_CALLS, PAVO_ZORV_TEST_CALLS_WITH_OPTIONS)
#undef PAVO_ZORV_TEST_CALLS_WITH_OPTIONS
#undef PAVO_ZORV_TEST_CALLS
};
// clang-format on

inline const calls *calls_of(const char *message) {
  for (const calls &one : all_calls) {
    if (std::strcmp(one.name, message) == 0) return &one;
  }
  return nullptr;
}

}  // namespace naive
