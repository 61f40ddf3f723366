// OAM requests.
#include "oam_req.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS_WITH_OPTIONS(oam_req)
