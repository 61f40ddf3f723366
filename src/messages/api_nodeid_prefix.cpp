// Node identifiers and prefixes.
#include "api_nodeid_prefix.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS(api_nodeid)
PAVO_ZORV_OPERATIONS(api_prefix)
