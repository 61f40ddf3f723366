// The exported functions of a message, made from its schema.
#pragma once

#include "compare.hpp"
#include "decode.hpp"
#include "duplicate.hpp"
#include "encode.hpp"
#include "kinds.hpp"
#include "measure.hpp"
#include "release.hpp"

// The five operations of a message. `parameter` and `argument` hand on the options word, where there is one.
#define PAVO_ZORV_FIVE_OPERATIONS(message, parameter, argument)                                                 \
  static_assert(pavo_zorv::checked<message>::value);                                                            \
                                                                                                                \
  int pavo_zorv_##message##_decode_ext(message *out, const unsigned char *buffer, size_t length,                \
                                       pavo_zorv_allocate allocate, void *context parameter) {                  \
    return pavo_zorv::decode(*out, buffer, length, allocate, context argument);                                 \
  }                                                                                                             \
  size_t pavo_zorv_##message##_encode_ext(const message *in, unsigned char *buffer, size_t length,              \
                                          pavo_zorv_segment *segments, uint32_t *segment_count parameter) {     \
    return pavo_zorv::encode(*in, buffer, length, segments, segment_count argument);                            \
  }                                                                                                             \
  int pavo_zorv_##message##_duplicate(message *destination, const message *source, pavo_zorv_allocate allocate, \
                                      void *context) {                                                          \
    return pavo_zorv::duplicate(*destination, *source, allocate, context);                                      \
  }                                                                                                             \
  void pavo_zorv_##message##_free_ext(message *record, pavo_zorv_release release, void *context parameter) {    \
    pavo_zorv::release(*record, release, context argument);                                                     \
  }                                                                                                             \
  int pavo_zorv_##message##_compare(const message *a, const message *b) { return pavo_zorv::compare_messages(*a, *b); }

#define PAVO_ZORV_NOTHING
#define PAVO_ZORV_COMMA_OPTIONS_PARAMETER , uint32_t options
#define PAVO_ZORV_COMMA_OPTIONS , options

// For messages whose functions take no options word: they hold no bytes member at any depth.
#define PAVO_ZORV_OPERATIONS(message)                                                          \
  static_assert(!pavo_zorv::holds_bytes<message>, "a message that holds bytes takes options"); \
  PAVO_ZORV_FIVE_OPERATIONS(message, PAVO_ZORV_NOTHING, PAVO_ZORV_NOTHING)

// For messages whose functions take the options word.
#define PAVO_ZORV_OPERATIONS_WITH_OPTIONS(message) \
  PAVO_ZORV_FIVE_OPERATIONS(message, PAVO_ZORV_COMMA_OPTIONS_PARAMETER, PAVO_ZORV_COMMA_OPTIONS)
