// error: .*every member of the record but the presence flags has a row
// A member is not overlooked where the record has room for it anyway.
#include "core/operations.hpp"

struct parcel {
  std::uint32_t word;
  std::uint8_t overlooked;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    integer(1, "word", &parcel::word));

PAVO_ZORV_OPERATIONS(parcel)
