// error: no (matching function for call to|viable constructor).*bytes
// The length of bytes has 64 bits.
#include "core/operations.hpp"

struct parcel {
  unsigned char *content;
  std::uint32_t content_length;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    bytes(1, "content", &parcel::content, &parcel::content_length));

PAVO_ZORV_OPERATIONS_WITH_OPTIONS(parcel)
