// error: .*the rows' field numbers are 1, 2, 3
// Field numbers have no gaps.
#include "core/operations.hpp"

struct parcel {
  std::uint32_t first;
  std::uint32_t second;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    integer(1, "first", &parcel::first),
    integer(3, "second", &parcel::second));

PAVO_ZORV_OPERATIONS(parcel)
