// error: no (matching function for call to|viable constructor).*integer_list
// The count of a list has 32 bits.
#include "core/operations.hpp"

struct parcel {
  std::uint32_t *words;
  std::uint64_t words_count;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    integer_list(1, "words", &parcel::words, &parcel::words_count));

PAVO_ZORV_OPERATIONS(parcel)
