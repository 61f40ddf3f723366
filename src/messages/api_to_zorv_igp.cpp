// Messages towards the policy component and the IGP side.
#include "api_to_zorv_igp.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS(api_to_zorv)
PAVO_ZORV_OPERATIONS(api_to_igp)
