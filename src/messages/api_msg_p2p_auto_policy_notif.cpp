// The notification about an automatically created point-to-point policy.
#include "api_msg_p2p_auto_policy_notif.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS(api_msg_p2p_auto_policy_notif)
