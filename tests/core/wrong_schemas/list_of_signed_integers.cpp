// error: no (matching function for call to|viable constructor).*integer_list
// The elements of a list are unsigned.
#include "core/operations.hpp"

struct parcel {
  std::int32_t *words;
  std::uint32_t words_count;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    integer_list(1, "words", &parcel::words, &parcel::words_count));

PAVO_ZORV_OPERATIONS(parcel)
