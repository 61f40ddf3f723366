// Outgoing segment lists.
#pragma once

#include "core/kinds.hpp"
#include "prefix_sid_type_binding_sid.hpp"
#include "srv6_prefix_sid_struct_usid.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<out_sid_list_info> = message(
    nested(1, "prefix_sid", &out_sid_list_info::prefix_sid),
    integer(2, "field2", &out_sid_list_info::field2),
    integer(3, "field3", &out_sid_list_info::field3),
    bytes(4, "field4", &out_sid_list_info::field4, &out_sid_list_info::field4_length));

template <>
inline constexpr auto schema<out_srv6_usid_list_info> = message(
    message_list(1, "usids", &out_srv6_usid_list_info::usids, &out_srv6_usid_list_info::usids_count));

}  // namespace pavo_zorv
