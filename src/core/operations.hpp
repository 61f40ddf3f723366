// The exported functions of a message, made from its schema.
#pragma once

#include "compare.hpp"
#include "decode.hpp"
#include "duplicate.hpp"
#include "encode.hpp"
#include "kinds.hpp"
#include "measure.hpp"
#include "release.hpp"
#include "schema_checks.hpp"

// Measuring or copying a short message takes a tenth longer where the function begins inside a cache line.
#define PAVO_ZORV_ALIGNED [[gnu::aligned(64)]]

// The five operations of a message. `OPTIONS` hands on what concerns the options word, where there is one.
#define PAVO_ZORV_FIVE_OPERATIONS(message, OPTIONS)                                                            \
  static_assert(pavo_zorv::checked<message>::value);                                                           \
                                                                                                               \
  int pavo_zorv_##message##_decode_ext(message *out, const unsigned char *buffer, size_t length,               \
                                       pavo_zorv_allocate allocate,                                            \
                                       void *context OPTIONS(, uint32_t options)) noexcept {                   \
    return pavo_zorv::decode(*out, buffer, length, allocate, context OPTIONS(, options));                      \
  }                                                                                                            \
  PAVO_ZORV_ALIGNED size_t pavo_zorv_##message##_encode_ext(                                                   \
      const message *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,                    \
      uint32_t *segment_count OPTIONS(, uint32_t options)) noexcept {                                          \
    return pavo_zorv::encode(*in, buffer, length, segments, segment_count OPTIONS(, options));                 \
  }                                                                                                            \
  PAVO_ZORV_ALIGNED int pavo_zorv_##message##_duplicate(message *destination, const message *source,           \
                                                        pavo_zorv_allocate allocate, void *context) noexcept { \
    return pavo_zorv::duplicate(*destination, *source, allocate, context);                                     \
  }                                                                                                            \
  void pavo_zorv_##message##_free_ext(message *record, pavo_zorv_release release,                              \
                                      void *context OPTIONS(, uint32_t options)) noexcept {                    \
    pavo_zorv::release(*record, release, context OPTIONS(, options));                                          \
  }                                                                                                            \
  int pavo_zorv_##message##_compare(const message *a, const message *b) noexcept {                             \
    return pavo_zorv::compare_messages(*a, *b);                                                                \
  }

#define PAVO_ZORV_WITH(...) __VA_ARGS__
#define PAVO_ZORV_WITHOUT(...)

// For messages whose functions take no options word: they hold no bytes member at any depth.
#define PAVO_ZORV_OPERATIONS(message)                                                          \
  static_assert(!pavo_zorv::holds_bytes<message>, "a message that holds bytes takes options"); \
  PAVO_ZORV_FIVE_OPERATIONS(message, PAVO_ZORV_WITHOUT)

// For messages whose functions take the options word.
#define PAVO_ZORV_OPERATIONS_WITH_OPTIONS(message) PAVO_ZORV_FIVE_OPERATIONS(message, PAVO_ZORV_WITH)
