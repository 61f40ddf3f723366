// error: .*presence flags take the fewest of 8, 16 or 32 bits
// Seventeen fields have presence flags of 32 bits.
#include "core/operations.hpp"

struct parcel {
  std::uint8_t a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q;
  std::uint16_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    flag(1, "a", &parcel::a), flag(2, "b", &parcel::b), flag(3, "c", &parcel::c), flag(4, "d", &parcel::d),
    flag(5, "e", &parcel::e), flag(6, "f", &parcel::f), flag(7, "g", &parcel::g), flag(8, "h", &parcel::h),
    flag(9, "i", &parcel::i), flag(10, "j", &parcel::j), flag(11, "k", &parcel::k), flag(12, "l", &parcel::l),
    flag(13, "m", &parcel::m), flag(14, "n", &parcel::n), flag(15, "o", &parcel::o), flag(16, "p", &parcel::p),
    flag(17, "q", &parcel::q));

PAVO_ZORV_OPERATIONS(parcel)
