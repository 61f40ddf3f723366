// Lists of policies.
#include "api_aa_list.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS(api_aa_list)
