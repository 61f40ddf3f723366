// Addresses and label stacks.
#pragma once

#include "core/kinds.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<api_addr> = message(
    integer(1, "address", &api_addr::address));

template <>
inline constexpr auto schema<api_lbl_stack> = message(
    integer_list(1, "labels", &api_lbl_stack::labels, &api_lbl_stack::label_count));

}  // namespace pavo_zorv
