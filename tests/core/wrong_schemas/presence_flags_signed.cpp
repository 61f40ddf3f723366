// error: .*presence flags are unsigned
// Presence flags are unsigned.
#include "core/operations.hpp"

struct parcel {
  std::uint32_t word;
  std::int8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    integer(1, "word", &parcel::word));

PAVO_ZORV_OPERATIONS(parcel)
