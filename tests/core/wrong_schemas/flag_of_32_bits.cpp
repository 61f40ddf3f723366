// error: no (matching function for call to|viable constructor).*flag
// A flag is one byte.
#include "core/operations.hpp"

struct parcel {
  std::uint32_t word;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    flag(1, "word", &parcel::word));

PAVO_ZORV_OPERATIONS(parcel)
