// Every message, listed once: for whatever treats all of them alike. The library itself does not need it.
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

// A macro, because the names of a message's functions can only be pasted together. Contained messages come first.
#define PAVO_ZORV_ALL_MESSAGES(apply)      \
  apply(api_addr)                          \
  apply(api_lbl_stack)                     \
  apply(prefix_sid_type)                   \
  apply(policy_binding_sid_t)              \
  apply(api_exp_hop)                       \
  apply(api_exp_path)                      \
  apply(api_msg_service)                   \
  apply(api_msg_internal)                  \
  apply(api_msg_on_demand_color_notif)     \
  apply(api_msg_p2p_auto_policy)           \
  apply(api_msg_p2p_auto_policy_notif)     \
  apply(api_msg_p2p_auto_policy_request)   \
  apply(api_msg_p2p_auto_policy_response)  \
  apply(api_msg_p2p_auto_policy_sweep)     \
  apply(api_nodeid)                        \
  apply(api_prefix)                        \
  apply(api_intf)                          \
  apply(api_link_update)                   \
  apply(api_policy)                        \
  apply(api_aa_list)                       \
  apply(api_to_zorv)                       \
  apply(api_to_igp)                        \
  apply(api_msg_policy_reg)                \
  apply(srv6_prefix)                       \
  apply(srv6_sid_struct)                   \
  apply(srv6_usid)                         \
  apply(out_sid_list_info)                 \
  apply(out_srv6_usid_list_info)           \
  apply(oam_req)                           \
  apply(oam_res)                           \
  apply(api_msg)

namespace pavo_zorv {

// What a message is called.
template <class Record>
inline constexpr const char *message_name = nullptr;

#define PAVO_ZORV_NAMED(message) \
  template <>                    \
  inline constexpr const char *message_name<message> = #message;
PAVO_ZORV_ALL_MESSAGES(PAVO_ZORV_NAMED)
#undef PAVO_ZORV_NAMED

// The records of all messages, as std::type_identity<Record>.
template <class Nothing, class... Records>
using records_after = std::tuple<std::type_identity<Records>...>;

#define PAVO_ZORV_LISTED(message) , message
using all_messages = records_after<void PAVO_ZORV_ALL_MESSAGES(PAVO_ZORV_LISTED)>;
#undef PAVO_ZORV_LISTED

// Calls `visit` with std::type_identity<Record> for every message.
template <class Visit>
constexpr void for_each_message(Visit &&visit) {
  std::apply([&](auto... message) { (visit(message), ...); }, all_messages{});
}

}  // namespace pavo_zorv
