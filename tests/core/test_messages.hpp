// Messages of the tests: every kind of member in one message, on both sides of a bytes member and of field 16, where
// keys become two bytes long, and presence flags of every width. The five operations are the library's templates.
#pragma once

#include "core/operations.hpp"
#include "support.hpp"

namespace test {

// Three fields: of eight presence bits, five belong to no field.
struct leaf {
  std::uint32_t number;
  char *text;
  std::uint8_t *list;
  std::uint32_t list_count;
  std::uint8_t presence;
};

// Nine fields: sixteen presence bits. A nested message and a list of messages at the second level.
struct branch {
  std::uint8_t flag;
  leaf first;
  leaf *leaves;
  std::uint32_t leaves_count;
  std::uint8_t byte;
  std::int32_t signed_word;
  std::uint64_t long_word;
  std::int64_t signed_long_word;
  leaf second;
  char *text;
  std::uint16_t presence;
};

// Bytes and nothing else.
struct parcel {
  unsigned char *content;
  std::uint64_t content_length;
  std::uint8_t presence;
};

// Bytes between other members, a message with bytes of its own before it.
struct crate {
  parcel inner;
  unsigned char *content;
  std::uint64_t content_length;
  leaf label;
  std::uint8_t presence;
};

// Every kind, twice: 29 fields, 32 presence bits. The bytes come between nested messages and lists.
struct everything {
  std::uint8_t flag;
  std::uint8_t byte;
  std::uint32_t word;
  std::int32_t signed_word;
  std::uint64_t long_word;
  std::int64_t signed_long_word;
  char *text;
  std::uint8_t *octets;
  std::uint32_t octets_count;
  std::uint32_t *words;
  std::uint32_t words_count;
  leaf nested;
  leaf *list;
  std::uint32_t list_count;
  unsigned char *content;
  std::uint64_t content_length;
  branch nested_13;
  branch *list_14;
  std::uint32_t list_14_count;
  std::uint32_t word_15;
  std::uint32_t word_16;
  std::uint8_t flag_17;
  std::uint8_t byte_18;
  std::int32_t signed_word_19;
  std::uint64_t long_word_20;
  std::int64_t signed_long_word_21;
  char *text_22;
  std::uint8_t *octets_23;
  std::uint32_t octets_23_count;
  std::uint32_t *words_24;
  std::uint32_t words_24_count;
  leaf nested_25;
  leaf *list_26;
  std::uint32_t list_26_count;
  crate nested_27;
  crate *list_28;
  std::uint32_t list_28_count;
  std::uint32_t word_29;
  std::uint32_t presence;
};

// 32 fields, as many as a message can have: no presence bit is left.
struct widest {
  std::uint32_t word_1, word_2, word_3, word_4, word_5, word_6, word_7, word_8, word_9, word_10, word_11, word_12,
      word_13, word_14, word_15, word_16;
  std::uint8_t flag_17, flag_18, flag_19, flag_20, flag_21, flag_22, flag_23, flag_24, flag_25, flag_26, flag_27,
      flag_28, flag_29, flag_30;
  char *text_31;
  unsigned char *content_32;
  std::uint64_t content_32_length;
  std::uint32_t presence;
};

}  // namespace test

namespace pavo_zorv {

// clang-format off
template <>
inline constexpr auto schema<test::leaf> = message(
    integer(1, "number", &test::leaf::number),
    string(2, "text", &test::leaf::text),
    integer_list(3, "list", &test::leaf::list, &test::leaf::list_count));

template <>
inline constexpr auto schema<test::branch> = message(
    flag(1, "flag", &test::branch::flag),
    nested(2, "first", &test::branch::first),
    message_list(3, "leaves", &test::branch::leaves, &test::branch::leaves_count),
    integer(4, "byte", &test::branch::byte),
    integer(5, "signed_word", &test::branch::signed_word),
    integer(6, "long_word", &test::branch::long_word),
    integer(7, "signed_long_word", &test::branch::signed_long_word),
    nested(8, "second", &test::branch::second),
    string(9, "text", &test::branch::text));

template <>
inline constexpr auto schema<test::parcel> = message(
    bytes(1, "content", &test::parcel::content, &test::parcel::content_length));

template <>
inline constexpr auto schema<test::crate> = message(
    nested(1, "inner", &test::crate::inner),
    bytes(2, "content", &test::crate::content, &test::crate::content_length),
    nested(3, "label", &test::crate::label));

template <>
inline constexpr auto schema<test::everything> = message(
    flag(1, "flag", &test::everything::flag),
    integer(2, "byte", &test::everything::byte),
    integer(3, "word", &test::everything::word),
    integer(4, "signed_word", &test::everything::signed_word),
    integer(5, "long_word", &test::everything::long_word),
    integer(6, "signed_long_word", &test::everything::signed_long_word),
    string(7, "text", &test::everything::text),
    integer_list(8, "octets", &test::everything::octets, &test::everything::octets_count),
    integer_list(9, "words", &test::everything::words, &test::everything::words_count),
    nested(10, "nested", &test::everything::nested),
    message_list(11, "list", &test::everything::list, &test::everything::list_count),
    bytes(12, "content", &test::everything::content, &test::everything::content_length),
    nested(13, "nested_13", &test::everything::nested_13),
    message_list(14, "list_14", &test::everything::list_14, &test::everything::list_14_count),
    integer(15, "word_15", &test::everything::word_15),
    integer(16, "word_16", &test::everything::word_16),
    flag(17, "flag_17", &test::everything::flag_17),
    integer(18, "byte_18", &test::everything::byte_18),
    integer(19, "signed_word_19", &test::everything::signed_word_19),
    integer(20, "long_word_20", &test::everything::long_word_20),
    integer(21, "signed_long_word_21", &test::everything::signed_long_word_21),
    string(22, "text_22", &test::everything::text_22),
    integer_list(23, "octets_23", &test::everything::octets_23, &test::everything::octets_23_count),
    integer_list(24, "words_24", &test::everything::words_24, &test::everything::words_24_count),
    nested(25, "nested_25", &test::everything::nested_25),
    message_list(26, "list_26", &test::everything::list_26, &test::everything::list_26_count),
    nested(27, "nested_27", &test::everything::nested_27),
    message_list(28, "list_28", &test::everything::list_28, &test::everything::list_28_count),
    integer(29, "word_29", &test::everything::word_29));

template <>
inline constexpr auto schema<test::widest> = message(
    integer(1, "word_1", &test::widest::word_1),
    integer(2, "word_2", &test::widest::word_2),
    integer(3, "word_3", &test::widest::word_3),
    integer(4, "word_4", &test::widest::word_4),
    integer(5, "word_5", &test::widest::word_5),
    integer(6, "word_6", &test::widest::word_6),
    integer(7, "word_7", &test::widest::word_7),
    integer(8, "word_8", &test::widest::word_8),
    integer(9, "word_9", &test::widest::word_9),
    integer(10, "word_10", &test::widest::word_10),
    integer(11, "word_11", &test::widest::word_11),
    integer(12, "word_12", &test::widest::word_12),
    integer(13, "word_13", &test::widest::word_13),
    integer(14, "word_14", &test::widest::word_14),
    integer(15, "word_15", &test::widest::word_15),
    integer(16, "word_16", &test::widest::word_16),
    flag(17, "flag_17", &test::widest::flag_17),
    flag(18, "flag_18", &test::widest::flag_18),
    flag(19, "flag_19", &test::widest::flag_19),
    flag(20, "flag_20", &test::widest::flag_20),
    flag(21, "flag_21", &test::widest::flag_21),
    flag(22, "flag_22", &test::widest::flag_22),
    flag(23, "flag_23", &test::widest::flag_23),
    flag(24, "flag_24", &test::widest::flag_24),
    flag(25, "flag_25", &test::widest::flag_25),
    flag(26, "flag_26", &test::widest::flag_26),
    flag(27, "flag_27", &test::widest::flag_27),
    flag(28, "flag_28", &test::widest::flag_28),
    flag(29, "flag_29", &test::widest::flag_29),
    flag(30, "flag_30", &test::widest::flag_30),
    string(31, "text_31", &test::widest::text_31),
    bytes(32, "content_32", &test::widest::content_32, &test::widest::content_32_length));
// clang-format on

static_assert(checked<test::leaf>::value);
static_assert(checked<test::branch>::value);
static_assert(checked<test::parcel>::value);
static_assert(checked<test::crate>::value);
static_assert(checked<test::everything>::value);
static_assert(checked<test::widest>::value);

}  // namespace pavo_zorv

namespace test {

// The library's templates under the names that the laws use.
template <class Record>
struct template_operations {
  static constexpr bool takes_options = true;

  static int decode(Record *out, const unsigned char *buffer, std::size_t length, pavo_zorv_allocate allocate,
                    void *context, std::uint32_t options = 0) {
    return pavo_zorv::decode(*out, buffer, length, allocate, context, options);
  }
  static std::size_t encode(const Record *in, unsigned char *buffer, std::size_t length, pavo_zorv_segment *segments,
                            std::uint32_t *count, std::uint32_t options = 0) {
    return pavo_zorv::encode(*in, buffer, length, segments, count, options);
  }
  static int duplicate(Record *to, const Record *from, pavo_zorv_allocate allocate, void *context) {
    return pavo_zorv::duplicate(*to, *from, allocate, context);
  }
  static void free(Record *record, pavo_zorv_release release, void *context, std::uint32_t options = 0) {
    pavo_zorv::release(*record, release, context, options);
  }
  static int compare(const Record *a, const Record *b) { return pavo_zorv::compare_messages(*a, *b); }
};

#define PAVO_ZORV_TEST_MESSAGE(message)                       \
  template <>                                                 \
  struct operations<message> : template_operations<message> { \
    static constexpr const char *name = #message;             \
  };
PAVO_ZORV_TEST_MESSAGE(leaf)
PAVO_ZORV_TEST_MESSAGE(branch)
PAVO_ZORV_TEST_MESSAGE(parcel)
PAVO_ZORV_TEST_MESSAGE(crate)
PAVO_ZORV_TEST_MESSAGE(everything)
PAVO_ZORV_TEST_MESSAGE(widest)
#undef PAVO_ZORV_TEST_MESSAGE

}  // namespace test
