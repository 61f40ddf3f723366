// error: .*a message has at most one bytes member
// A message has one bytes member, or none.
#include "core/operations.hpp"

struct parcel {
  unsigned char *first;
  std::uint64_t first_length;
  unsigned char *second;
  std::uint64_t second_length;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    bytes(1, "first", &parcel::first, &parcel::first_length),
    bytes(2, "second", &parcel::second, &parcel::second_length));

PAVO_ZORV_OPERATIONS_WITH_OPTIONS(parcel)
