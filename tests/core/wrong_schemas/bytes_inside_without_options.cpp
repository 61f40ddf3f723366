// error: .*a message that holds bytes takes options
// Reference mode is for every message that holds bytes, at whatever depth.
#include "core/operations.hpp"

struct parcel {
  unsigned char *content;
  std::uint64_t content_length;
  std::uint8_t presence;
};

struct crate {
  parcel *parcels;
  std::uint32_t parcels_count;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    bytes(1, "content", &parcel::content, &parcel::content_length));

template <>
inline constexpr auto pavo_zorv::schema<crate> = message(
    message_list(1, "parcels", &crate::parcels, &crate::parcels_count));

PAVO_ZORV_OPERATIONS(crate)
