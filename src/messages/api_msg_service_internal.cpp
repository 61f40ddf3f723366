// Messages about the service itself, and the on-demand colour.
#include "api_msg_service_internal.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS(api_msg_service)
PAVO_ZORV_OPERATIONS(api_msg_internal)
PAVO_ZORV_OPERATIONS(api_msg_on_demand_color_notif)
