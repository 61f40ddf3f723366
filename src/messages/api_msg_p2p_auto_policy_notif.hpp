// The notification about an automatically created point-to-point policy.
#pragma once

#include "core/kinds.hpp"
#include "api_addr_lbl_stack.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<api_msg_p2p_auto_policy_notif> = message(
    string(1, "field1", &api_msg_p2p_auto_policy_notif::field1),
    string(2, "field2", &api_msg_p2p_auto_policy_notif::field2),
    integer(3, "field3", &api_msg_p2p_auto_policy_notif::field3),
    flag(4, "field4", &api_msg_p2p_auto_policy_notif::field4),
    flag(5, "field5", &api_msg_p2p_auto_policy_notif::field5),
    flag(6, "field6", &api_msg_p2p_auto_policy_notif::field6),
    integer(7, "field7", &api_msg_p2p_auto_policy_notif::field7),
    integer(8, "field8", &api_msg_p2p_auto_policy_notif::field8),
    flag(9, "field9", &api_msg_p2p_auto_policy_notif::field9),
    nested(10, "label_stack", &api_msg_p2p_auto_policy_notif::label_stack),
    integer(11, "field11", &api_msg_p2p_auto_policy_notif::field11),
    integer(12, "field12", &api_msg_p2p_auto_policy_notif::field12),
    flag(13, "field13", &api_msg_p2p_auto_policy_notif::field13),
    integer(14, "field14", &api_msg_p2p_auto_policy_notif::field14),
    integer_list(15, "field15", &api_msg_p2p_auto_policy_notif::field15, &api_msg_p2p_auto_policy_notif::field15_count),
    integer(16, "field16", &api_msg_p2p_auto_policy_notif::field16),
    integer(17, "field17", &api_msg_p2p_auto_policy_notif::field17),
    integer(18, "field18", &api_msg_p2p_auto_policy_notif::field18),
    integer(19, "field19", &api_msg_p2p_auto_policy_notif::field19),
    flag(20, "field20", &api_msg_p2p_auto_policy_notif::field20),
    string(21, "field21", &api_msg_p2p_auto_policy_notif::field21),
    integer_list(22, "field22", &api_msg_p2p_auto_policy_notif::field22, &api_msg_p2p_auto_policy_notif::field22_count),
    integer(23, "field23", &api_msg_p2p_auto_policy_notif::field23),
    integer(24, "field24", &api_msg_p2p_auto_policy_notif::field24),
    integer(25, "field25", &api_msg_p2p_auto_policy_notif::field25),
    flag(26, "field26", &api_msg_p2p_auto_policy_notif::field26),
    integer(27, "field27", &api_msg_p2p_auto_policy_notif::field27));

}  // namespace pavo_zorv
