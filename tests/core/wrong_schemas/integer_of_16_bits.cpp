// error: no (matching function for call to|viable constructor).*integer
// There are integers of 8, 32 and 64 bits.
#include "core/operations.hpp"

struct parcel {
  std::uint16_t word;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    integer(1, "word", &parcel::word));

PAVO_ZORV_OPERATIONS(parcel)
