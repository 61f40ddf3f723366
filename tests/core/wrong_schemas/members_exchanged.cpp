// error: .*members are in row order, the presence flags last
// Members are in the order of their fields.
#include "core/operations.hpp"

struct parcel {
  std::uint32_t second;
  std::uint32_t first;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    integer(1, "first", &parcel::first),
    integer(2, "second", &parcel::second));

PAVO_ZORV_OPERATIONS(parcel)
