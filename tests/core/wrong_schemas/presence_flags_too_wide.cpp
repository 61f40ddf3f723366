// error: .*presence flags take the fewest of 8, 16 or 32 bits
// Eight fields or fewer have presence flags of 8 bits.
#include "core/operations.hpp"

struct parcel {
  std::uint32_t word;
  std::uint16_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    integer(1, "word", &parcel::word));

PAVO_ZORV_OPERATIONS(parcel)
