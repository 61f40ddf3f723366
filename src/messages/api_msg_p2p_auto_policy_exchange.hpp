// Requests, responses and sweeps of automatically created policies.
#pragma once

#include "core/kinds.hpp"
#include "api_msg_p2p_auto_policy.hpp"
#include "api_msg_p2p_auto_policy_notif.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<api_msg_p2p_auto_policy_request> = message(
    nested(1, "policy", &api_msg_p2p_auto_policy_request::policy),
    integer(2, "field2", &api_msg_p2p_auto_policy_request::field2),
    integer(3, "field3", &api_msg_p2p_auto_policy_request::field3));

template <>
inline constexpr auto schema<api_msg_p2p_auto_policy_response> = message(
    nested(1, "notification", &api_msg_p2p_auto_policy_response::notification),
    integer(2, "field2", &api_msg_p2p_auto_policy_response::field2),
    integer(3, "field3", &api_msg_p2p_auto_policy_response::field3));

template <>
inline constexpr auto schema<api_msg_p2p_auto_policy_sweep> = message(
    integer(1, "field1", &api_msg_p2p_auto_policy_sweep::field1),
    integer(2, "field2", &api_msg_p2p_auto_policy_sweep::field2));

}  // namespace pavo_zorv
