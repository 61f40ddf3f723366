// error: no (matching function for call to|viable constructor).*flag
// A flag is an integer: any stored byte survives.
#include "core/operations.hpp"

struct parcel {
  bool flag;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    flag(1, "flag", &parcel::flag));

PAVO_ZORV_OPERATIONS(parcel)
