// Messages about the service itself, and the on-demand colour.
#pragma once

#include "core/kinds.hpp"
#include "pavo_zorv.h"

namespace pavo_zorv {

template <>
inline constexpr auto schema<api_msg_service> = message(
    flag(1, "field1", &api_msg_service::field1),
    flag(2, "field2", &api_msg_service::field2),
    flag(3, "field3", &api_msg_service::field3));

template <>
inline constexpr auto schema<api_msg_internal> = message(
    flag(1, "field1", &api_msg_internal::field1),
    string(2, "field2", &api_msg_internal::field2),
    integer(3, "field3", &api_msg_internal::field3),
    integer(4, "field4", &api_msg_internal::field4),
    nested(5, "service", &api_msg_internal::service),
    integer(6, "field6", &api_msg_internal::field6),
    flag(7, "field7", &api_msg_internal::field7));

template <>
inline constexpr auto schema<api_msg_on_demand_color_notif> = message(
    integer(1, "color", &api_msg_on_demand_color_notif::color));

}  // namespace pavo_zorv
