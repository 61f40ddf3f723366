// Outgoing segment lists.
#include "out_sid_list_info.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS_WITH_OPTIONS(out_sid_list_info)
PAVO_ZORV_OPERATIONS_WITH_OPTIONS(out_srv6_usid_list_info)
