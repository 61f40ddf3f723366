// error: .*members are in row order, the presence flags last
// Members are in the order of their fields, whatever their types.
#include "core/operations.hpp"

struct parcel {
  char *second;
  std::uint8_t first;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    flag(1, "first", &parcel::first),
    string(2, "second", &parcel::second));

PAVO_ZORV_OPERATIONS(parcel)
