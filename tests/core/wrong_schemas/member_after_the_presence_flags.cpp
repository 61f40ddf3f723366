// error: .*every member of the record but the presence flags has a row
// Nothing comes after the presence flags.
#include "core/operations.hpp"

struct parcel {
  std::uint32_t word;
  std::uint8_t presence;
  std::uint8_t overlooked;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    integer(1, "word", &parcel::word));

PAVO_ZORV_OPERATIONS(parcel)
