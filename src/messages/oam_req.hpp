// OAM requests.
#pragma once

#include "core/kinds.hpp"
#include "prefix_sid_type_binding_sid.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<oam_req> = message(
    integer(1, "field1", &oam_req::field1),
    integer(2, "field2", &oam_req::field2),
    string(3, "field3", &oam_req::field3),
    nested(4, "prefix_sid", &oam_req::prefix_sid),
    integer(5, "field5", &oam_req::field5),
    bytes(6, "field6", &oam_req::field6, &oam_req::field6_length),
    integer(7, "field7", &oam_req::field7),
    integer(8, "field8", &oam_req::field8));

}  // namespace pavo_zorv
