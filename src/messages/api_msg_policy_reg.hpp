// Policy registration.
#pragma once

#include "core/kinds.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<api_msg_policy_reg> = message(
    flag(1, "field1", &api_msg_policy_reg::field1),
    integer_list(2, "octets", &api_msg_policy_reg::octets, &api_msg_policy_reg::octets_count),
    integer(3, "field3", &api_msg_policy_reg::field3),
    string(4, "field4", &api_msg_policy_reg::field4));

}  // namespace pavo_zorv
