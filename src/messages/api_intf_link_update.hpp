// Interfaces and link updates.
#pragma once

#include "core/kinds.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<api_intf> = message(
    integer(1, "field1", &api_intf::field1),
    string(2, "field2", &api_intf::field2));

template <>
inline constexpr auto schema<api_link_update> = message(
    integer(1, "field1", &api_link_update::field1),
    string(2, "field2", &api_link_update::field2),
    integer(3, "field3", &api_link_update::field3),
    integer(4, "field4", &api_link_update::field4),
    integer_list(5, "field5", &api_link_update::field5, &api_link_update::field5_count));

}  // namespace pavo_zorv
