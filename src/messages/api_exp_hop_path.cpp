// Explicit-path hops and paths.
#include "api_exp_hop_path.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS(api_exp_hop)
PAVO_ZORV_OPERATIONS(api_exp_path)
