// An automatically created point-to-point policy.
#include "api_msg_p2p_auto_policy.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS_WITH_OPTIONS(api_msg_p2p_auto_policy)
