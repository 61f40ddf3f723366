// SRv6 prefixes, SID structures and micro-SIDs.
#pragma once

#include "core/kinds.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<srv6_prefix> = message(
    bytes(1, "field1", &srv6_prefix::field1, &srv6_prefix::field1_length),
    integer(2, "field2", &srv6_prefix::field2));

template <>
inline constexpr auto schema<srv6_sid_struct> = message(
    flag(1, "field1", &srv6_sid_struct::field1),
    flag(2, "field2", &srv6_sid_struct::field2),
    integer(3, "field3", &srv6_sid_struct::field3),
    integer(4, "field4", &srv6_sid_struct::field4),
    integer(5, "field5", &srv6_sid_struct::field5),
    integer(6, "field6", &srv6_sid_struct::field6),
    integer(7, "field7", &srv6_sid_struct::field7),
    integer(8, "field8", &srv6_sid_struct::field8));

template <>
inline constexpr auto schema<srv6_usid> = message(
    integer(1, "field1", &srv6_usid::field1),
    integer(2, "field2", &srv6_usid::field2),
    nested(3, "prefix", &srv6_usid::prefix),
    nested(4, "sid_struct", &srv6_usid::sid_struct));

}  // namespace pavo_zorv
