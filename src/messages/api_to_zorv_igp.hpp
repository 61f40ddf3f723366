// Messages towards the policy component and the IGP side.
#pragma once

#include "core/kinds.hpp"
#include "api_aa_list.hpp"
#include "api_intf_link_update.hpp"
#include "api_nodeid_prefix.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<api_to_zorv> = message(
    nested(1, "nodeid", &api_to_zorv::nodeid),
    nested(2, "intf", &api_to_zorv::intf),
    flag(3, "field3", &api_to_zorv::field3));

template <>
inline constexpr auto schema<api_to_igp> = message(
    nested(1, "link_update", &api_to_igp::link_update),
    nested(2, "aa_list", &api_to_igp::aa_list),
    flag(3, "field3", &api_to_igp::field3),
    flag(4, "field4", &api_to_igp::field4));

}  // namespace pavo_zorv
