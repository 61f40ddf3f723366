// error: .*members stand in row order, the presence flags last
// Members stand in the order of their fields, also those that are pointers of one type.
#include "core/operations.hpp"

struct parcel {
  char *second;
  char *first;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    string(1, "first", &parcel::first),
    string(2, "second", &parcel::second));

PAVO_ZORV_OPERATIONS(parcel)
