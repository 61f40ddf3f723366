// Lists of policies.
#pragma once

#include "core/kinds.hpp"
#include "api_policy.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<api_aa_list> = message(
    integer_list(1, "octets", &api_aa_list::octets, &api_aa_list::octets_count),
    integer(2, "field2", &api_aa_list::field2),
    message_list(3, "policies", &api_aa_list::policies, &api_aa_list::policies_count));

}  // namespace pavo_zorv
