// The schemas of every message, and walking them all.
#pragma once

#include <tuple>
#include <type_traits>

#include "api_aa_list.hpp"
#include "api_addr_lbl_stack.hpp"
#include "api_exp_hop_path.hpp"
#include "api_intf_link_update.hpp"
#include "api_msg.hpp"
#include "api_msg_p2p_auto_policy.hpp"
#include "api_msg_p2p_auto_policy_exchange.hpp"
#include "api_msg_p2p_auto_policy_notif.hpp"
#include "api_msg_policy_reg.hpp"
#include "api_msg_service_internal.hpp"
#include "api_nodeid_prefix.hpp"
#include "api_policy.hpp"
#include "api_to_zorv_igp.hpp"
#include "oam_req.hpp"
#include "oam_res.hpp"
#include "out_sid_list_info.hpp"
#include "prefix_sid_type_binding_sid.hpp"
#include "srv6_prefix_sid_struct_usid.hpp"
#include "pavo_zorv_messages.h"

namespace pavo_zorv {

#define PAVO_ZORV_HAS_ROWS(message) \
  static_assert(!std::is_null_pointer_v<decltype(schema<message>)>, "src/messages/all.hpp includes no rows of " #message);
PAVO_ZORV_MESSAGES(PAVO_ZORV_HAS_ROWS)
#undef PAVO_ZORV_HAS_ROWS

// What a message is called.
template <class Record>
inline constexpr const char *message_name = nullptr;

#define PAVO_ZORV_NAMED(message) \
  template <>                    \
  inline constexpr const char *message_name<message> = #message;
PAVO_ZORV_MESSAGES(PAVO_ZORV_NAMED)
#undef PAVO_ZORV_NAMED

// The records of all messages, as std::type_identity<Record>.
template <class Nothing, class... Records>
using records_after = std::tuple<std::type_identity<Records>...>;

#define PAVO_ZORV_LISTED(message) , message
using all_messages = records_after<void PAVO_ZORV_MESSAGES(PAVO_ZORV_LISTED)>;
#undef PAVO_ZORV_LISTED

// Calls `visit` with std::type_identity<Record> for every message.
template <class Visit>
constexpr void for_each_message(Visit &&visit) {
  std::apply([&](auto... message) { (visit(message), ...); }, all_messages{});
}

}  // namespace pavo_zorv
