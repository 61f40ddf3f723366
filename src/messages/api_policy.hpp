// Policies.
#pragma once

#include "core/kinds.hpp"
#include "api_nodeid_prefix.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<api_policy> = message(
    string(1, "field1", &api_policy::field1),
    integer(2, "field2", &api_policy::field2),
    integer(3, "field3", &api_policy::field3),
    flag(4, "field4", &api_policy::field4),
    message_list(5, "prefixes", &api_policy::prefixes, &api_policy::prefixes_count),
    string(6, "field6", &api_policy::field6),
    string(7, "field7", &api_policy::field7),
    integer(8, "field8", &api_policy::field8),
    integer(9, "field9", &api_policy::field9),
    flag(10, "field10", &api_policy::field10));

}  // namespace pavo_zorv
