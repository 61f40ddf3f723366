// Requests, responses and sweeps of automatically created policies.
#include "api_msg_p2p_auto_policy_exchange.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS_WITH_OPTIONS(api_msg_p2p_auto_policy_request)
PAVO_ZORV_OPERATIONS(api_msg_p2p_auto_policy_response)
PAVO_ZORV_OPERATIONS(api_msg_p2p_auto_policy_sweep)
