// error: .*the rows' field numbers are 1, 2, 3
// Field numbers start with 1.
#include "core/operations.hpp"

struct parcel {
  std::uint32_t word;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    integer(2, "word", &parcel::word));

PAVO_ZORV_OPERATIONS(parcel)
