// error: .*members are in row order, the presence flags last
// An array comes before its count.
#include "core/operations.hpp"

struct parcel {
  std::uint32_t words_count;
  std::uint32_t *words;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    integer_list(1, "words", &parcel::words, &parcel::words_count));

PAVO_ZORV_OPERATIONS(parcel)
