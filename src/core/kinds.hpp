// The kinds of member, one file each: what its row says, and how it is decoded, measured, written, copied, released
// and compared.
#pragma once

#include "kinds/bytes.hpp"
#include "kinds/flag.hpp"
#include "kinds/integer.hpp"
#include "kinds/integer_list.hpp"
#include "kinds/message_list.hpp"
#include "kinds/nested.hpp"
#include "kinds/string.hpp"
