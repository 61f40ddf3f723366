// Policy registration.
#include "api_msg_policy_reg.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS(api_msg_policy_reg)
