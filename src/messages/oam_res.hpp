// OAM results.
#pragma once

#include "core/kinds.hpp"
#include "out_sid_list_info.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<oam_res> = message(
    integer(1, "field1", &oam_res::field1),
    integer(2, "field2", &oam_res::field2),
    integer(3, "field3", &oam_res::field3),
    flag(4, "field4", &oam_res::field4),
    message_list(5, "sid_lists", &oam_res::sid_lists, &oam_res::sid_lists_count),
    bytes(6, "field6", &oam_res::field6, &oam_res::field6_length),
    message_list(7, "usid_lists", &oam_res::usid_lists, &oam_res::usid_lists_count));

}  // namespace pavo_zorv
