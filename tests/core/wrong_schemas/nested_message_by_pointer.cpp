// error: no (matching function for call to|viable constructor).*nested
// A nested message is held inline.
#include "core/operations.hpp"

struct inner {
  std::uint32_t word;
  std::uint8_t presence;
};

struct parcel {
  inner *content;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<inner> = message(
    integer(1, "word", &inner::word));

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    nested(1, "content", &parcel::content));

PAVO_ZORV_OPERATIONS(parcel)
