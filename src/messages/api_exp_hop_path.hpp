// Explicit-path hops and paths.
#pragma once

#include "core/kinds.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<api_exp_hop> = message(
    integer(1, "field1", &api_exp_hop::field1),
    integer(2, "field2", &api_exp_hop::field2),
    integer(3, "field3", &api_exp_hop::field3),
    integer(4, "field4", &api_exp_hop::field4),
    integer_list(5, "field5", &api_exp_hop::field5, &api_exp_hop::field5_count),
    integer_list(6, "field6", &api_exp_hop::field6, &api_exp_hop::field6_count));

template <>
inline constexpr auto schema<api_exp_path> = message(
    message_list(1, "hops", &api_exp_path::hops, &api_exp_path::hop_count),
    integer(2, "field2", &api_exp_path::field2));

}  // namespace pavo_zorv
