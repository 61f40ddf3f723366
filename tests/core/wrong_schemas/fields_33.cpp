// error: .*a message has at most 32 fields
// There are 32 presence bits.
#include "core/operations.hpp"

struct parcel {
  std::uint8_t flag_1;
  std::uint8_t flag_2;
  std::uint8_t flag_3;
  std::uint8_t flag_4;
  std::uint8_t flag_5;
  std::uint8_t flag_6;
  std::uint8_t flag_7;
  std::uint8_t flag_8;
  std::uint8_t flag_9;
  std::uint8_t flag_10;
  std::uint8_t flag_11;
  std::uint8_t flag_12;
  std::uint8_t flag_13;
  std::uint8_t flag_14;
  std::uint8_t flag_15;
  std::uint8_t flag_16;
  std::uint8_t flag_17;
  std::uint8_t flag_18;
  std::uint8_t flag_19;
  std::uint8_t flag_20;
  std::uint8_t flag_21;
  std::uint8_t flag_22;
  std::uint8_t flag_23;
  std::uint8_t flag_24;
  std::uint8_t flag_25;
  std::uint8_t flag_26;
  std::uint8_t flag_27;
  std::uint8_t flag_28;
  std::uint8_t flag_29;
  std::uint8_t flag_30;
  std::uint8_t flag_31;
  std::uint8_t flag_32;
  std::uint8_t flag_33;
  std::uint32_t presence;
};

template <>
inline constexpr auto pavo_zorv::schema<parcel> = message(
    flag(1, "flag_1", &parcel::flag_1),
    flag(2, "flag_2", &parcel::flag_2),
    flag(3, "flag_3", &parcel::flag_3),
    flag(4, "flag_4", &parcel::flag_4),
    flag(5, "flag_5", &parcel::flag_5),
    flag(6, "flag_6", &parcel::flag_6),
    flag(7, "flag_7", &parcel::flag_7),
    flag(8, "flag_8", &parcel::flag_8),
    flag(9, "flag_9", &parcel::flag_9),
    flag(10, "flag_10", &parcel::flag_10),
    flag(11, "flag_11", &parcel::flag_11),
    flag(12, "flag_12", &parcel::flag_12),
    flag(13, "flag_13", &parcel::flag_13),
    flag(14, "flag_14", &parcel::flag_14),
    flag(15, "flag_15", &parcel::flag_15),
    flag(16, "flag_16", &parcel::flag_16),
    flag(17, "flag_17", &parcel::flag_17),
    flag(18, "flag_18", &parcel::flag_18),
    flag(19, "flag_19", &parcel::flag_19),
    flag(20, "flag_20", &parcel::flag_20),
    flag(21, "flag_21", &parcel::flag_21),
    flag(22, "flag_22", &parcel::flag_22),
    flag(23, "flag_23", &parcel::flag_23),
    flag(24, "flag_24", &parcel::flag_24),
    flag(25, "flag_25", &parcel::flag_25),
    flag(26, "flag_26", &parcel::flag_26),
    flag(27, "flag_27", &parcel::flag_27),
    flag(28, "flag_28", &parcel::flag_28),
    flag(29, "flag_29", &parcel::flag_29),
    flag(30, "flag_30", &parcel::flag_30),
    flag(31, "flag_31", &parcel::flag_31),
    flag(32, "flag_32", &parcel::flag_32),
    flag(33, "flag_33", &parcel::flag_33));

PAVO_ZORV_OPERATIONS(parcel)
