// OAM results.
#include "oam_res.hpp"

#include "core/operations.hpp"

PAVO_ZORV_OPERATIONS_WITH_OPTIONS(oam_res)
