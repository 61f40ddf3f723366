// An automatically created point-to-point policy.
#pragma once

#include "core/kinds.hpp"
#include "api_addr_lbl_stack.hpp"
#include "api_exp_hop_path.hpp"
#include "prefix_sid_type_binding_sid.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<api_msg_p2p_auto_policy> = message(
    string(1, "field1", &api_msg_p2p_auto_policy::field1),
    string(2, "field2", &api_msg_p2p_auto_policy::field2),
    integer(3, "field3", &api_msg_p2p_auto_policy::field3),
    integer(4, "field4", &api_msg_p2p_auto_policy::field4),
    flag(5, "field5", &api_msg_p2p_auto_policy::field5),
    flag(6, "field6", &api_msg_p2p_auto_policy::field6),
    nested(7, "label_stack", &api_msg_p2p_auto_policy::label_stack),
    integer(8, "field8", &api_msg_p2p_auto_policy::field8),
    integer(9, "field9", &api_msg_p2p_auto_policy::field9),
    flag(10, "field10", &api_msg_p2p_auto_policy::field10),
    integer_list(11, "field11", &api_msg_p2p_auto_policy::field11, &api_msg_p2p_auto_policy::field11_count),
    integer(12, "field12", &api_msg_p2p_auto_policy::field12),
    integer(13, "field13", &api_msg_p2p_auto_policy::field13),
    message_list(14, "exp_paths", &api_msg_p2p_auto_policy::exp_paths, &api_msg_p2p_auto_policy::exp_paths_count),
    integer(15, "field15", &api_msg_p2p_auto_policy::field15),
    integer(16, "field16", &api_msg_p2p_auto_policy::field16),
    integer(17, "field17", &api_msg_p2p_auto_policy::field17),
    integer(18, "field18", &api_msg_p2p_auto_policy::field18),
    flag(19, "field19", &api_msg_p2p_auto_policy::field19),
    string(20, "field20", &api_msg_p2p_auto_policy::field20),
    nested(21, "prefix_sid", &api_msg_p2p_auto_policy::prefix_sid),
    integer(22, "field22", &api_msg_p2p_auto_policy::field22));

}  // namespace pavo_zorv
