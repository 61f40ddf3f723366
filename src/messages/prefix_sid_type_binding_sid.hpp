// Segment-identifier descriptions.
#pragma once

#include "core/kinds.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<prefix_sid_type> = message(
    integer(1, "field1", &prefix_sid_type::field1),
    integer_list(2, "field2", &prefix_sid_type::field2, &prefix_sid_type::field2_count));

template <>
inline constexpr auto schema<policy_binding_sid_t> = message(
    nested(1, "sid", &policy_binding_sid_t::sid),
    integer(2, "field2", &policy_binding_sid_t::field2));

}  // namespace pavo_zorv
