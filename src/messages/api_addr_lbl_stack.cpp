// Addresses and label stacks.
#include "api_addr_lbl_stack.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS(api_addr)
PAVO_ZORV_OPERATIONS(api_lbl_stack)
