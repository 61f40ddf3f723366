// error: no matching function for call to .*repeated
// The elements of a list are unsigned.
#include "core/operations.hpp"

struct parcel {
  std::int32_t *words;
  std::uint32_t words_count;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    repeated(1, "words", &parcel::words, &parcel::words_count));

PAVO_ZORV_OPERATIONS(parcel)
