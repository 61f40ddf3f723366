// error: .*presence flags take the fewest of 8, 16 or 32 bits
// Nine fields have presence flags of 16 bits.
#include "core/operations.hpp"

struct parcel {
  std::uint8_t a, b, c, d, e, f, g, h, i;
  std::uint8_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    flag(1, "a", &parcel::a), flag(2, "b", &parcel::b), flag(3, "c", &parcel::c), flag(4, "d", &parcel::d),
    flag(5, "e", &parcel::e), flag(6, "f", &parcel::f), flag(7, "g", &parcel::g), flag(8, "h", &parcel::h),
    flag(9, "i", &parcel::i));

PAVO_ZORV_OPERATIONS(parcel)
