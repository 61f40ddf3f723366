// error: .*a message that holds bytes takes options
// Reference mode is for every message that holds bytes.
#include "core/operations.hpp"

struct parcel {
  unsigned char *content;
  std::uint64_t content_length;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    bytes(1, "content", &parcel::content, &parcel::content_length));

PAVO_ZORV_OPERATIONS(parcel)
