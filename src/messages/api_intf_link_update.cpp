// Interfaces and link updates.
#include "api_intf_link_update.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS(api_intf)
PAVO_ZORV_OPERATIONS(api_link_update)
