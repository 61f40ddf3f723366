/** @file
 *  Every message, listed once: for whatever treats all of them alike, as the library itself, its tests and tools do.
 *
 *  Optional beside pavo_zorv.h, which declares what is named here; this header includes nothing and declares nothing.
 *
 *  @code{.c}
 *  #define COUNTED(message) +1
 *  enum { messages = 0 PAVO_ZORV_MESSAGES(COUNTED) };
 *  @endcode
 */
#ifndef PAVO_ZORV_MESSAGES_H
#define PAVO_ZORV_MESSAGES_H

/* clang-format off */
/** Calls a macro with the name of each message, a message after those that it contains: @p plain where its five
 *  functions take no options word, @p with_options where `decode_ext`, `encode_ext` and `free_ext` take one. */
#define PAVO_ZORV_EVERY_MESSAGE(plain, with_options) \
  plain(api_addr)                                    \
  plain(api_lbl_stack)                               \
  plain(prefix_sid_type)                             \
  plain(policy_binding_sid_t)                        \
  plain(api_exp_hop)                                 \
  plain(api_exp_path)                                \
  plain(api_msg_service)                             \
  plain(api_msg_internal)                            \
  plain(api_msg_on_demand_color_notif)               \
  with_options(api_msg_p2p_auto_policy)              \
  plain(api_msg_p2p_auto_policy_notif)               \
  with_options(api_msg_p2p_auto_policy_request)      \
  plain(api_msg_p2p_auto_policy_response)            \
  plain(api_msg_p2p_auto_policy_sweep)               \
  plain(api_nodeid)                                  \
  plain(api_prefix)                                  \
  plain(api_intf)                                    \
  plain(api_link_update)                             \
  plain(api_policy)                                  \
  plain(api_aa_list)                                 \
  plain(api_to_zorv)                                 \
  plain(api_to_igp)                                  \
  plain(api_msg_policy_reg)                          \
  with_options(srv6_prefix)                          \
  plain(srv6_sid_struct)                             \
  with_options(srv6_usid)                            \
  with_options(out_sid_list_info)                    \
  with_options(out_srv6_usid_list_info)              \
  with_options(oam_req)                              \
  with_options(oam_res)                              \
  with_options(api_msg)
/* clang-format on */

/** The same with one macro for all. */
#define PAVO_ZORV_MESSAGES(apply) PAVO_ZORV_EVERY_MESSAGE(apply, apply)

#endif /* PAVO_ZORV_MESSAGES_H */
