// Segment-identifier descriptions.
#include "prefix_sid_type_binding_sid.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS(prefix_sid_type)
PAVO_ZORV_OPERATIONS(policy_binding_sid_t)
