// compiles
// What the others are changed from: every kind of member, in order, with a row for each.
#include "core/operations.hpp"

struct parcel {
  std::uint8_t flag;
  std::uint32_t word;
  std::uint8_t byte;
  std::int32_t signed_word;
  std::uint64_t long_word;
  std::int64_t signed_long_word;
  char *text;
  unsigned char *content;
  std::uint64_t content_length;
  std::uint32_t *words;
  std::uint32_t words_count;
  std::uint16_t presence;
};

struct crate {
  parcel inner;
  parcel *parcels;
  std::uint32_t parcels_count;
  std::uint8_t *octets;
  std::uint32_t octets_count;
  std::uint8_t presence;
};

namespace pavo_zorv {

template <>
inline constexpr auto schema<parcel> = message(
    flag(1, "flag", &parcel::flag),
    integer(2, "word", &parcel::word),
    integer(3, "byte", &parcel::byte),
    integer(4, "signed_word", &parcel::signed_word),
    integer(5, "long_word", &parcel::long_word),
    integer(6, "signed_long_word", &parcel::signed_long_word),
    string(7, "text", &parcel::text),
    bytes(8, "content", &parcel::content, &parcel::content_length),
    integer_list(9, "words", &parcel::words, &parcel::words_count));

template <>
inline constexpr auto schema<crate> = message(
    nested(1, "inner", &crate::inner),
    message_list(2, "parcels", &crate::parcels, &crate::parcels_count),
    integer_list(3, "octets", &crate::octets, &crate::octets_count));

}  // namespace pavo_zorv

PAVO_ZORV_OPERATIONS_WITH_OPTIONS(parcel)
PAVO_ZORV_OPERATIONS_WITH_OPTIONS(crate)
