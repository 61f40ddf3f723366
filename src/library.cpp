// The library: the functions of every message. All of it is one unit, in which each message is instantiated once.
#include "core/operations.hpp"
#include "messages/all.hpp"
#include "pavo_zorv_messages.h"

PAVO_ZORV_EVERY_MESSAGE(PAVO_ZORV_OPERATIONS, PAVO_ZORV_OPERATIONS_WITH_OPTIONS)
