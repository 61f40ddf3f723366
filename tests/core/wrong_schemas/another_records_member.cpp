// error: .*(incompatible with object type|must be a class compatible)
// Every row of a message names a member of its record.
#include "core/operations.hpp"

struct other {
  std::uint32_t word;
  std::uint8_t presence;
};

struct parcel {
  std::uint32_t word;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    integer(1, "word", &other::word));

PAVO_ZORV_OPERATIONS(parcel)
