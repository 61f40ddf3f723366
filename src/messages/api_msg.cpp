// The message envelope.
#include "api_msg.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS_WITH_OPTIONS(api_msg)
