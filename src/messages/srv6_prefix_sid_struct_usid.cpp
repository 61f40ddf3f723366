// SRv6 prefixes, SID structures and micro-SIDs.
#include "srv6_prefix_sid_struct_usid.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS_WITH_OPTIONS(srv6_prefix)
PAVO_ZORV_OPERATIONS(srv6_sid_struct)
PAVO_ZORV_OPERATIONS_WITH_OPTIONS(srv6_usid)
