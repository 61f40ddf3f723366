// error: .*members are in row order, the presence flags last
// A list has its own count.
#include "core/operations.hpp"

struct parcel {
  std::uint32_t *words;
  std::uint32_t words_count;
  std::uint8_t *octets;
  std::uint32_t octets_count;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    integer_list(1, "words", &parcel::words, &parcel::octets_count),
    integer_list(2, "octets", &parcel::octets, &parcel::words_count));

PAVO_ZORV_OPERATIONS(parcel)
