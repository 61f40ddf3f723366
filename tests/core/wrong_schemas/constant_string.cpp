// error: no (matching function for call to|viable constructor).*string
// A string is owned, so its characters are not constant.
#include "core/operations.hpp"

struct parcel {
  const char *text;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    string(1, "text", &parcel::text));

PAVO_ZORV_OPERATIONS(parcel)
