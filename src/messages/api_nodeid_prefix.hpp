// Node identifiers and prefixes.
#pragma once

#include "core/kinds.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<api_nodeid> = message(
    integer(1, "field1", &api_nodeid::field1),
    integer_list(2, "octets", &api_nodeid::octets, &api_nodeid::octets_count));

template <>
inline constexpr auto schema<api_prefix> = message(
    integer_list(1, "octets", &api_prefix::octets, &api_prefix::octets_count),
    integer(2, "field2", &api_prefix::field2));

}  // namespace pavo_zorv
