// error: .*members are in row order, the presence flags last
// Members are in the order of their fields, also those that are messages of one type.
#include "core/operations.hpp"

struct parcel {
  std::uint32_t word;
  std::uint8_t presence;
};

struct crate {
  parcel second;
  parcel first;
  std::uint8_t presence;
};

namespace pavo_zorv {

template <>
inline constexpr auto schema<parcel> = message(
    integer(1, "word", &parcel::word));

template <>
inline constexpr auto schema<crate> = message(
    nested(1, "first", &crate::first),
    nested(2, "second", &crate::second));

}  // namespace pavo_zorv

PAVO_ZORV_OPERATIONS(parcel)
PAVO_ZORV_OPERATIONS(crate)
