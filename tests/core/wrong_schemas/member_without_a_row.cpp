// error: .*every member of the record but the presence flags has a row
// No member is left out.
#include "core/operations.hpp"

struct parcel {
  std::uint32_t first;
  std::uint32_t second;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    integer(1, "first", &parcel::first));

PAVO_ZORV_OPERATIONS(parcel)
