// error: .*members are in row order, the presence flags last
// The presence flags come last.
#include "core/operations.hpp"

struct parcel {
  std::uint8_t presence;
  std::uint32_t word;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    integer(1, "word", &parcel::word));

PAVO_ZORV_OPERATIONS(parcel)
