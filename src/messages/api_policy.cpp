// Policies.
#include "api_policy.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS(api_policy)
