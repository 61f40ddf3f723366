// The message envelope.
#pragma once

#include "core/kinds.hpp"
#include "api_msg_p2p_auto_policy.hpp"
#include "api_msg_p2p_auto_policy_exchange.hpp"
#include "api_msg_p2p_auto_policy_notif.hpp"
#include "api_msg_policy_reg.hpp"
#include "api_msg_service_internal.hpp"
#include "api_to_zorv_igp.hpp"
#include "oam_req.hpp"
#include "oam_res.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<api_msg> = message(
    integer(1, "field1", &api_msg::field1),
    nested(2, "internal", &api_msg::internal),
    nested(3, "field3", &api_msg::field3),
    nested(4, "field4", &api_msg::field4),
    nested(5, "p2p_auto_policy_notif", &api_msg::p2p_auto_policy_notif),
    nested(6, "field6", &api_msg::field6),
    nested(7, "field7", &api_msg::field7),
    nested(8, "p2p_auto_policy_request", &api_msg::p2p_auto_policy_request),
    nested(9, "p2p_auto_policy_response", &api_msg::p2p_auto_policy_response),
    nested(10, "p2p_auto_policy_sweep", &api_msg::p2p_auto_policy_sweep),
    nested(11, "to_igp", &api_msg::to_igp),
    nested(12, "to_zorv", &api_msg::to_zorv),
    nested(13, "oam_req", &api_msg::oam_req),
    nested(14, "oam_res", &api_msg::oam_res),
    flag(15, "field15", &api_msg::field15),
    nested(16, "policy_reg", &api_msg::policy_reg));

}  // namespace pavo_zorv
