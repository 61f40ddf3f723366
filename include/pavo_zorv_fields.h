/** @file
 *  The fields of every message: their numbers, the longest encoding of each message that has one, and a list of the
 *  fields as a macro. For programs that read keys themselves, that have buffers of a constant size, or that treat all
 *  members alike.
 *
 *  Optional: C11 and C++. This header includes nothing; its macros name the records and members of pavo_zorv.h, which a
 *  program that uses them includes as well. For a message `m` with a field `f` there is:
 *
 *  | name | what it is |
 *  |---|---|
 *  | `M_F_FIELD_NUMBER` | the number of the field on the wire, a constant of `enum m_field_number` |
 *  | `M_MAX_ENCODED_SIZE` | the bytes of the longest encoding |
 *  | `PAVO_ZORV_FIELDS_OF_m` | calls one of seven macros with each field, see below |
 *
 *  A message with a string, bytes or a list in it has no longest encoding, and no such constant. A field's key on the
 *  wire is its number times 8, plus the wire type: 0 for flags and integers, single or in a list, 2 for the others.
 *
 *  @code{.c}
 *  unsigned char buffer[API_ADDR_MAX_ENCODED_SIZE]; // any api_addr fits
 *  size_t length = pavo_zorv_api_addr_encode_ext(&address, buffer, sizeof buffer, NULL, NULL);
 *  @endcode
 *
 *  @section lists Lists of fields
 *
 *  `PAVO_ZORV_FIELDS_OF_m(flag, integer, string, bytes, integer_list, message_list, nested)` calls with each field the
 *  macro of its kind, in ascending order of numbers:
 *
 *  | kind | called with |
 *  |---|---|
 *  | flag, integer, string | record, number, member |
 *  | bytes | record, number, member, member with the length |
 *  | integer_list | record, number, member, member with the count |
 *  | message_list | record, number, member, member with the count, record of an element |
 *  | nested | record, number, member, record of the nested message |
 *
 *  @code{.c}
 *  #define SIMPLE(record, number, member) printf("%d %s\n", number, #member);
 *  #define LIST(record, number, member, count) printf("%d %s\n", number, #member);
 *  #define MESSAGES(record, number, member, count, element) printf("%d %s of %s\n", number, #member, #element);
 *  #define NESTED(record, number, member, nested) printf("%d %s, %s\n", number, #member, #nested);
 *  PAVO_ZORV_FIELDS_OF_api_to_igp(SIMPLE, SIMPLE, SIMPLE, LIST, LIST, MESSAGES, NESTED)
 *  @endcode
 *
 *  Written by `tests/library/fields_header.cpp` from the schemas, again with
 *  `cmake --build --preset release --target update-fields`.
 */
#ifndef PAVO_ZORV_FIELDS_H
#define PAVO_ZORV_FIELDS_H

/* clang-format off */

/** @name `api_addr`
 *  @{ */

/** Field numbers of `api_addr`. */
enum api_addr_field_number {
  API_ADDR_ADDRESS_FIELD_NUMBER = 1
};

/** Bytes of the longest encoding of `api_addr`. */
#define API_ADDR_MAX_ENCODED_SIZE 6

/** Calls a macro with each field of `api_addr`. */
#define PAVO_ZORV_FIELDS_OF_api_addr(flag, integer, string, bytes, integer_list, message_list, nested) \
  integer(api_addr, 1, address)

/** @} */

/** @name `api_lbl_stack`
 *  @{ */

/** Field numbers of `api_lbl_stack`. */
enum api_lbl_stack_field_number {
  API_LBL_STACK_LABELS_FIELD_NUMBER = 1
};

/** Calls a macro with each field of `api_lbl_stack`. */
#define PAVO_ZORV_FIELDS_OF_api_lbl_stack(flag, integer, string, bytes, integer_list, message_list, nested) \
  integer_list(api_lbl_stack, 1, labels, label_count)

/** @} */

/** @name `prefix_sid_type`
 *  @{ */

/** Field numbers of `prefix_sid_type`. */
enum prefix_sid_type_field_number {
  PREFIX_SID_TYPE_FIELD1_FIELD_NUMBER = 1,
  PREFIX_SID_TYPE_FIELD2_FIELD_NUMBER = 2
};

/** Calls a macro with each field of `prefix_sid_type`. */
#define PAVO_ZORV_FIELDS_OF_prefix_sid_type(flag, integer, string, bytes, integer_list, message_list, nested) \
  integer(prefix_sid_type, 1, field1) \
  integer_list(prefix_sid_type, 2, field2, field2_count)

/** @} */

/** @name `policy_binding_sid_t`
 *  @{ */

/** Field numbers of `policy_binding_sid_t`. */
enum policy_binding_sid_t_field_number {
  POLICY_BINDING_SID_T_SID_FIELD_NUMBER = 1,
  POLICY_BINDING_SID_T_FIELD2_FIELD_NUMBER = 2
};

/** Calls a macro with each field of `policy_binding_sid_t`. */
#define PAVO_ZORV_FIELDS_OF_policy_binding_sid_t(flag, integer, string, bytes, integer_list, message_list, nested) \
  nested(policy_binding_sid_t, 1, sid, prefix_sid_type) \
  integer(policy_binding_sid_t, 2, field2)

/** @} */

/** @name `api_exp_hop`
 *  @{ */

/** Field numbers of `api_exp_hop`. */
enum api_exp_hop_field_number {
  API_EXP_HOP_FIELD1_FIELD_NUMBER = 1,
  API_EXP_HOP_FIELD2_FIELD_NUMBER = 2,
  API_EXP_HOP_FIELD3_FIELD_NUMBER = 3,
  API_EXP_HOP_FIELD4_FIELD_NUMBER = 4,
  API_EXP_HOP_FIELD5_FIELD_NUMBER = 5,
  API_EXP_HOP_FIELD6_FIELD_NUMBER = 6
};

/** Calls a macro with each field of `api_exp_hop`. */
#define PAVO_ZORV_FIELDS_OF_api_exp_hop(flag, integer, string, bytes, integer_list, message_list, nested) \
  integer(api_exp_hop, 1, field1) \
  integer(api_exp_hop, 2, field2) \
  integer(api_exp_hop, 3, field3) \
  integer(api_exp_hop, 4, field4) \
  integer_list(api_exp_hop, 5, field5, field5_count) \
  integer_list(api_exp_hop, 6, field6, field6_count)

/** @} */

/** @name `api_exp_path`
 *  @{ */

/** Field numbers of `api_exp_path`. */
enum api_exp_path_field_number {
  API_EXP_PATH_HOPS_FIELD_NUMBER = 1,
  API_EXP_PATH_FIELD2_FIELD_NUMBER = 2
};

/** Calls a macro with each field of `api_exp_path`. */
#define PAVO_ZORV_FIELDS_OF_api_exp_path(flag, integer, string, bytes, integer_list, message_list, nested) \
  message_list(api_exp_path, 1, hops, hop_count, api_exp_hop) \
  integer(api_exp_path, 2, field2)

/** @} */

/** @name `api_msg_service`
 *  @{ */

/** Field numbers of `api_msg_service`. */
enum api_msg_service_field_number {
  API_MSG_SERVICE_FIELD1_FIELD_NUMBER = 1,
  API_MSG_SERVICE_FIELD2_FIELD_NUMBER = 2,
  API_MSG_SERVICE_FIELD3_FIELD_NUMBER = 3
};

/** Bytes of the longest encoding of `api_msg_service`. */
#define API_MSG_SERVICE_MAX_ENCODED_SIZE 6

/** Calls a macro with each field of `api_msg_service`. */
#define PAVO_ZORV_FIELDS_OF_api_msg_service(flag, integer, string, bytes, integer_list, message_list, nested) \
  flag(api_msg_service, 1, field1) \
  flag(api_msg_service, 2, field2) \
  flag(api_msg_service, 3, field3)

/** @} */

/** @name `api_msg_internal`
 *  @{ */

/** Field numbers of `api_msg_internal`. */
enum api_msg_internal_field_number {
  API_MSG_INTERNAL_FIELD1_FIELD_NUMBER = 1,
  API_MSG_INTERNAL_FIELD2_FIELD_NUMBER = 2,
  API_MSG_INTERNAL_FIELD3_FIELD_NUMBER = 3,
  API_MSG_INTERNAL_FIELD4_FIELD_NUMBER = 4,
  API_MSG_INTERNAL_SERVICE_FIELD_NUMBER = 5,
  API_MSG_INTERNAL_FIELD6_FIELD_NUMBER = 6,
  API_MSG_INTERNAL_FIELD7_FIELD_NUMBER = 7
};

/** Calls a macro with each field of `api_msg_internal`. */
#define PAVO_ZORV_FIELDS_OF_api_msg_internal(flag, integer, string, bytes, integer_list, message_list, nested) \
  flag(api_msg_internal, 1, field1) \
  string(api_msg_internal, 2, field2) \
  integer(api_msg_internal, 3, field3) \
  integer(api_msg_internal, 4, field4) \
  nested(api_msg_internal, 5, service, api_msg_service) \
  integer(api_msg_internal, 6, field6) \
  flag(api_msg_internal, 7, field7)

/** @} */

/** @name `api_msg_on_demand_color_notif`
 *  @{ */

/** Field numbers of `api_msg_on_demand_color_notif`. */
enum api_msg_on_demand_color_notif_field_number {
  API_MSG_ON_DEMAND_COLOR_NOTIF_COLOR_FIELD_NUMBER = 1
};

/** Bytes of the longest encoding of `api_msg_on_demand_color_notif`. */
#define API_MSG_ON_DEMAND_COLOR_NOTIF_MAX_ENCODED_SIZE 6

/** Calls a macro with each field of `api_msg_on_demand_color_notif`. */
#define PAVO_ZORV_FIELDS_OF_api_msg_on_demand_color_notif(flag, integer, string, bytes, integer_list, message_list, nested) \
  integer(api_msg_on_demand_color_notif, 1, color)

/** @} */

/** @name `api_msg_p2p_auto_policy`
 *  @{ */

/** Field numbers of `api_msg_p2p_auto_policy`. */
enum api_msg_p2p_auto_policy_field_number {
  API_MSG_P2P_AUTO_POLICY_FIELD1_FIELD_NUMBER = 1,
  API_MSG_P2P_AUTO_POLICY_FIELD2_FIELD_NUMBER = 2,
  API_MSG_P2P_AUTO_POLICY_FIELD3_FIELD_NUMBER = 3,
  API_MSG_P2P_AUTO_POLICY_FIELD4_FIELD_NUMBER = 4,
  API_MSG_P2P_AUTO_POLICY_FIELD5_FIELD_NUMBER = 5,
  API_MSG_P2P_AUTO_POLICY_FIELD6_FIELD_NUMBER = 6,
  API_MSG_P2P_AUTO_POLICY_LABEL_STACK_FIELD_NUMBER = 7,
  API_MSG_P2P_AUTO_POLICY_FIELD8_FIELD_NUMBER = 8,
  API_MSG_P2P_AUTO_POLICY_FIELD9_FIELD_NUMBER = 9,
  API_MSG_P2P_AUTO_POLICY_FIELD10_FIELD_NUMBER = 10,
  API_MSG_P2P_AUTO_POLICY_FIELD11_FIELD_NUMBER = 11,
  API_MSG_P2P_AUTO_POLICY_FIELD12_FIELD_NUMBER = 12,
  API_MSG_P2P_AUTO_POLICY_FIELD13_FIELD_NUMBER = 13,
  API_MSG_P2P_AUTO_POLICY_EXP_PATHS_FIELD_NUMBER = 14,
  API_MSG_P2P_AUTO_POLICY_FIELD15_FIELD_NUMBER = 15,
  API_MSG_P2P_AUTO_POLICY_FIELD16_FIELD_NUMBER = 16,
  API_MSG_P2P_AUTO_POLICY_FIELD17_FIELD_NUMBER = 17,
  API_MSG_P2P_AUTO_POLICY_FIELD18_FIELD_NUMBER = 18,
  API_MSG_P2P_AUTO_POLICY_FIELD19_FIELD_NUMBER = 19,
  API_MSG_P2P_AUTO_POLICY_FIELD20_FIELD_NUMBER = 20,
  API_MSG_P2P_AUTO_POLICY_PREFIX_SID_FIELD_NUMBER = 21,
  API_MSG_P2P_AUTO_POLICY_FIELD22_FIELD_NUMBER = 22
};

/** Calls a macro with each field of `api_msg_p2p_auto_policy`. */
#define PAVO_ZORV_FIELDS_OF_api_msg_p2p_auto_policy(flag, integer, string, bytes, integer_list, message_list, nested) \
  string(api_msg_p2p_auto_policy, 1, field1) \
  string(api_msg_p2p_auto_policy, 2, field2) \
  integer(api_msg_p2p_auto_policy, 3, field3) \
  integer(api_msg_p2p_auto_policy, 4, field4) \
  flag(api_msg_p2p_auto_policy, 5, field5) \
  flag(api_msg_p2p_auto_policy, 6, field6) \
  nested(api_msg_p2p_auto_policy, 7, label_stack, api_lbl_stack) \
  integer(api_msg_p2p_auto_policy, 8, field8) \
  integer(api_msg_p2p_auto_policy, 9, field9) \
  flag(api_msg_p2p_auto_policy, 10, field10) \
  integer_list(api_msg_p2p_auto_policy, 11, field11, field11_count) \
  integer(api_msg_p2p_auto_policy, 12, field12) \
  integer(api_msg_p2p_auto_policy, 13, field13) \
  message_list(api_msg_p2p_auto_policy, 14, exp_paths, exp_paths_count, api_exp_path) \
  integer(api_msg_p2p_auto_policy, 15, field15) \
  integer(api_msg_p2p_auto_policy, 16, field16) \
  integer(api_msg_p2p_auto_policy, 17, field17) \
  integer(api_msg_p2p_auto_policy, 18, field18) \
  flag(api_msg_p2p_auto_policy, 19, field19) \
  string(api_msg_p2p_auto_policy, 20, field20) \
  nested(api_msg_p2p_auto_policy, 21, prefix_sid, prefix_sid_type) \
  integer(api_msg_p2p_auto_policy, 22, field22)

/** @} */

/** @name `api_msg_p2p_auto_policy_notif`
 *  @{ */

/** Field numbers of `api_msg_p2p_auto_policy_notif`. */
enum api_msg_p2p_auto_policy_notif_field_number {
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD1_FIELD_NUMBER = 1,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD2_FIELD_NUMBER = 2,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD3_FIELD_NUMBER = 3,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD4_FIELD_NUMBER = 4,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD5_FIELD_NUMBER = 5,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD6_FIELD_NUMBER = 6,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD7_FIELD_NUMBER = 7,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD8_FIELD_NUMBER = 8,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD9_FIELD_NUMBER = 9,
  API_MSG_P2P_AUTO_POLICY_NOTIF_LABEL_STACK_FIELD_NUMBER = 10,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD11_FIELD_NUMBER = 11,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD12_FIELD_NUMBER = 12,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD13_FIELD_NUMBER = 13,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD14_FIELD_NUMBER = 14,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD15_FIELD_NUMBER = 15,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD16_FIELD_NUMBER = 16,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD17_FIELD_NUMBER = 17,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD18_FIELD_NUMBER = 18,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD19_FIELD_NUMBER = 19,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD20_FIELD_NUMBER = 20,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD21_FIELD_NUMBER = 21,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD22_FIELD_NUMBER = 22,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD23_FIELD_NUMBER = 23,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD24_FIELD_NUMBER = 24,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD25_FIELD_NUMBER = 25,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD26_FIELD_NUMBER = 26,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD27_FIELD_NUMBER = 27
};

/** Calls a macro with each field of `api_msg_p2p_auto_policy_notif`. */
#define PAVO_ZORV_FIELDS_OF_api_msg_p2p_auto_policy_notif(flag, integer, string, bytes, integer_list, message_list, nested) \
  string(api_msg_p2p_auto_policy_notif, 1, field1) \
  string(api_msg_p2p_auto_policy_notif, 2, field2) \
  integer(api_msg_p2p_auto_policy_notif, 3, field3) \
  flag(api_msg_p2p_auto_policy_notif, 4, field4) \
  flag(api_msg_p2p_auto_policy_notif, 5, field5) \
  flag(api_msg_p2p_auto_policy_notif, 6, field6) \
  integer(api_msg_p2p_auto_policy_notif, 7, field7) \
  integer(api_msg_p2p_auto_policy_notif, 8, field8) \
  flag(api_msg_p2p_auto_policy_notif, 9, field9) \
  nested(api_msg_p2p_auto_policy_notif, 10, label_stack, api_lbl_stack) \
  integer(api_msg_p2p_auto_policy_notif, 11, field11) \
  integer(api_msg_p2p_auto_policy_notif, 12, field12) \
  flag(api_msg_p2p_auto_policy_notif, 13, field13) \
  integer(api_msg_p2p_auto_policy_notif, 14, field14) \
  integer_list(api_msg_p2p_auto_policy_notif, 15, field15, field15_count) \
  integer(api_msg_p2p_auto_policy_notif, 16, field16) \
  integer(api_msg_p2p_auto_policy_notif, 17, field17) \
  integer(api_msg_p2p_auto_policy_notif, 18, field18) \
  integer(api_msg_p2p_auto_policy_notif, 19, field19) \
  flag(api_msg_p2p_auto_policy_notif, 20, field20) \
  string(api_msg_p2p_auto_policy_notif, 21, field21) \
  integer_list(api_msg_p2p_auto_policy_notif, 22, field22, field22_count) \
  integer(api_msg_p2p_auto_policy_notif, 23, field23) \
  integer(api_msg_p2p_auto_policy_notif, 24, field24) \
  integer(api_msg_p2p_auto_policy_notif, 25, field25) \
  flag(api_msg_p2p_auto_policy_notif, 26, field26) \
  integer(api_msg_p2p_auto_policy_notif, 27, field27)

/** @} */

/** @name `api_msg_p2p_auto_policy_request`
 *  @{ */

/** Field numbers of `api_msg_p2p_auto_policy_request`. */
enum api_msg_p2p_auto_policy_request_field_number {
  API_MSG_P2P_AUTO_POLICY_REQUEST_POLICY_FIELD_NUMBER = 1,
  API_MSG_P2P_AUTO_POLICY_REQUEST_FIELD2_FIELD_NUMBER = 2,
  API_MSG_P2P_AUTO_POLICY_REQUEST_FIELD3_FIELD_NUMBER = 3
};

/** Calls a macro with each field of `api_msg_p2p_auto_policy_request`. */
#define PAVO_ZORV_FIELDS_OF_api_msg_p2p_auto_policy_request(flag, integer, string, bytes, integer_list, message_list, nested) \
  nested(api_msg_p2p_auto_policy_request, 1, policy, api_msg_p2p_auto_policy) \
  integer(api_msg_p2p_auto_policy_request, 2, field2) \
  integer(api_msg_p2p_auto_policy_request, 3, field3)

/** @} */

/** @name `api_msg_p2p_auto_policy_response`
 *  @{ */

/** Field numbers of `api_msg_p2p_auto_policy_response`. */
enum api_msg_p2p_auto_policy_response_field_number {
  API_MSG_P2P_AUTO_POLICY_RESPONSE_NOTIFICATION_FIELD_NUMBER = 1,
  API_MSG_P2P_AUTO_POLICY_RESPONSE_FIELD2_FIELD_NUMBER = 2,
  API_MSG_P2P_AUTO_POLICY_RESPONSE_FIELD3_FIELD_NUMBER = 3
};

/** Calls a macro with each field of `api_msg_p2p_auto_policy_response`. */
#define PAVO_ZORV_FIELDS_OF_api_msg_p2p_auto_policy_response(flag, integer, string, bytes, integer_list, message_list, nested) \
  nested(api_msg_p2p_auto_policy_response, 1, notification, api_msg_p2p_auto_policy_notif) \
  integer(api_msg_p2p_auto_policy_response, 2, field2) \
  integer(api_msg_p2p_auto_policy_response, 3, field3)

/** @} */

/** @name `api_msg_p2p_auto_policy_sweep`
 *  @{ */

/** Field numbers of `api_msg_p2p_auto_policy_sweep`. */
enum api_msg_p2p_auto_policy_sweep_field_number {
  API_MSG_P2P_AUTO_POLICY_SWEEP_FIELD1_FIELD_NUMBER = 1,
  API_MSG_P2P_AUTO_POLICY_SWEEP_FIELD2_FIELD_NUMBER = 2
};

/** Bytes of the longest encoding of `api_msg_p2p_auto_policy_sweep`. */
#define API_MSG_P2P_AUTO_POLICY_SWEEP_MAX_ENCODED_SIZE 12

/** Calls a macro with each field of `api_msg_p2p_auto_policy_sweep`. */
#define PAVO_ZORV_FIELDS_OF_api_msg_p2p_auto_policy_sweep(flag, integer, string, bytes, integer_list, message_list, nested) \
  integer(api_msg_p2p_auto_policy_sweep, 1, field1) \
  integer(api_msg_p2p_auto_policy_sweep, 2, field2)

/** @} */

/** @name `api_nodeid`
 *  @{ */

/** Field numbers of `api_nodeid`. */
enum api_nodeid_field_number {
  API_NODEID_FIELD1_FIELD_NUMBER = 1,
  API_NODEID_OCTETS_FIELD_NUMBER = 2
};

/** Calls a macro with each field of `api_nodeid`. */
#define PAVO_ZORV_FIELDS_OF_api_nodeid(flag, integer, string, bytes, integer_list, message_list, nested) \
  integer(api_nodeid, 1, field1) \
  integer_list(api_nodeid, 2, octets, octets_count)

/** @} */

/** @name `api_prefix`
 *  @{ */

/** Field numbers of `api_prefix`. */
enum api_prefix_field_number {
  API_PREFIX_OCTETS_FIELD_NUMBER = 1,
  API_PREFIX_FIELD2_FIELD_NUMBER = 2
};

/** Calls a macro with each field of `api_prefix`. */
#define PAVO_ZORV_FIELDS_OF_api_prefix(flag, integer, string, bytes, integer_list, message_list, nested) \
  integer_list(api_prefix, 1, octets, octets_count) \
  integer(api_prefix, 2, field2)

/** @} */

/** @name `api_intf`
 *  @{ */

/** Field numbers of `api_intf`. */
enum api_intf_field_number {
  API_INTF_FIELD1_FIELD_NUMBER = 1,
  API_INTF_FIELD2_FIELD_NUMBER = 2
};

/** Calls a macro with each field of `api_intf`. */
#define PAVO_ZORV_FIELDS_OF_api_intf(flag, integer, string, bytes, integer_list, message_list, nested) \
  integer(api_intf, 1, field1) \
  string(api_intf, 2, field2)

/** @} */

/** @name `api_link_update`
 *  @{ */

/** Field numbers of `api_link_update`. */
enum api_link_update_field_number {
  API_LINK_UPDATE_FIELD1_FIELD_NUMBER = 1,
  API_LINK_UPDATE_FIELD2_FIELD_NUMBER = 2,
  API_LINK_UPDATE_FIELD3_FIELD_NUMBER = 3,
  API_LINK_UPDATE_FIELD4_FIELD_NUMBER = 4,
  API_LINK_UPDATE_FIELD5_FIELD_NUMBER = 5
};

/** Calls a macro with each field of `api_link_update`. */
#define PAVO_ZORV_FIELDS_OF_api_link_update(flag, integer, string, bytes, integer_list, message_list, nested) \
  integer(api_link_update, 1, field1) \
  string(api_link_update, 2, field2) \
  integer(api_link_update, 3, field3) \
  integer(api_link_update, 4, field4) \
  integer_list(api_link_update, 5, field5, field5_count)

/** @} */

/** @name `api_policy`
 *  @{ */

/** Field numbers of `api_policy`. */
enum api_policy_field_number {
  API_POLICY_FIELD1_FIELD_NUMBER = 1,
  API_POLICY_FIELD2_FIELD_NUMBER = 2,
  API_POLICY_FIELD3_FIELD_NUMBER = 3,
  API_POLICY_FIELD4_FIELD_NUMBER = 4,
  API_POLICY_PREFIXES_FIELD_NUMBER = 5,
  API_POLICY_FIELD6_FIELD_NUMBER = 6,
  API_POLICY_FIELD7_FIELD_NUMBER = 7,
  API_POLICY_FIELD8_FIELD_NUMBER = 8,
  API_POLICY_FIELD9_FIELD_NUMBER = 9,
  API_POLICY_FIELD10_FIELD_NUMBER = 10
};

/** Calls a macro with each field of `api_policy`. */
#define PAVO_ZORV_FIELDS_OF_api_policy(flag, integer, string, bytes, integer_list, message_list, nested) \
  string(api_policy, 1, field1) \
  integer(api_policy, 2, field2) \
  integer(api_policy, 3, field3) \
  flag(api_policy, 4, field4) \
  message_list(api_policy, 5, prefixes, prefixes_count, api_prefix) \
  string(api_policy, 6, field6) \
  string(api_policy, 7, field7) \
  integer(api_policy, 8, field8) \
  integer(api_policy, 9, field9) \
  flag(api_policy, 10, field10)

/** @} */

/** @name `api_aa_list`
 *  @{ */

/** Field numbers of `api_aa_list`. */
enum api_aa_list_field_number {
  API_AA_LIST_OCTETS_FIELD_NUMBER = 1,
  API_AA_LIST_FIELD2_FIELD_NUMBER = 2,
  API_AA_LIST_POLICIES_FIELD_NUMBER = 3
};

/** Calls a macro with each field of `api_aa_list`. */
#define PAVO_ZORV_FIELDS_OF_api_aa_list(flag, integer, string, bytes, integer_list, message_list, nested) \
  integer_list(api_aa_list, 1, octets, octets_count) \
  integer(api_aa_list, 2, field2) \
  message_list(api_aa_list, 3, policies, policies_count, api_policy)

/** @} */

/** @name `api_to_zorv`
 *  @{ */

/** Field numbers of `api_to_zorv`. */
enum api_to_zorv_field_number {
  API_TO_ZORV_NODEID_FIELD_NUMBER = 1,
  API_TO_ZORV_INTF_FIELD_NUMBER = 2,
  API_TO_ZORV_FIELD3_FIELD_NUMBER = 3
};

/** Calls a macro with each field of `api_to_zorv`. */
#define PAVO_ZORV_FIELDS_OF_api_to_zorv(flag, integer, string, bytes, integer_list, message_list, nested) \
  nested(api_to_zorv, 1, nodeid, api_nodeid) \
  nested(api_to_zorv, 2, intf, api_intf) \
  flag(api_to_zorv, 3, field3)

/** @} */

/** @name `api_to_igp`
 *  @{ */

/** Field numbers of `api_to_igp`. */
enum api_to_igp_field_number {
  API_TO_IGP_LINK_UPDATE_FIELD_NUMBER = 1,
  API_TO_IGP_AA_LIST_FIELD_NUMBER = 2,
  API_TO_IGP_FIELD3_FIELD_NUMBER = 3,
  API_TO_IGP_FIELD4_FIELD_NUMBER = 4
};

/** Calls a macro with each field of `api_to_igp`. */
#define PAVO_ZORV_FIELDS_OF_api_to_igp(flag, integer, string, bytes, integer_list, message_list, nested) \
  nested(api_to_igp, 1, link_update, api_link_update) \
  nested(api_to_igp, 2, aa_list, api_aa_list) \
  flag(api_to_igp, 3, field3) \
  flag(api_to_igp, 4, field4)

/** @} */

/** @name `api_msg_policy_reg`
 *  @{ */

/** Field numbers of `api_msg_policy_reg`. */
enum api_msg_policy_reg_field_number {
  API_MSG_POLICY_REG_FIELD1_FIELD_NUMBER = 1,
  API_MSG_POLICY_REG_OCTETS_FIELD_NUMBER = 2,
  API_MSG_POLICY_REG_FIELD3_FIELD_NUMBER = 3,
  API_MSG_POLICY_REG_FIELD4_FIELD_NUMBER = 4
};

/** Calls a macro with each field of `api_msg_policy_reg`. */
#define PAVO_ZORV_FIELDS_OF_api_msg_policy_reg(flag, integer, string, bytes, integer_list, message_list, nested) \
  flag(api_msg_policy_reg, 1, field1) \
  integer_list(api_msg_policy_reg, 2, octets, octets_count) \
  integer(api_msg_policy_reg, 3, field3) \
  string(api_msg_policy_reg, 4, field4)

/** @} */

/** @name `srv6_prefix`
 *  @{ */

/** Field numbers of `srv6_prefix`. */
enum srv6_prefix_field_number {
  SRV6_PREFIX_FIELD1_FIELD_NUMBER = 1,
  SRV6_PREFIX_FIELD2_FIELD_NUMBER = 2
};

/** Calls a macro with each field of `srv6_prefix`. */
#define PAVO_ZORV_FIELDS_OF_srv6_prefix(flag, integer, string, bytes, integer_list, message_list, nested) \
  bytes(srv6_prefix, 1, field1, field1_length) \
  integer(srv6_prefix, 2, field2)

/** @} */

/** @name `srv6_sid_struct`
 *  @{ */

/** Field numbers of `srv6_sid_struct`. */
enum srv6_sid_struct_field_number {
  SRV6_SID_STRUCT_FIELD1_FIELD_NUMBER = 1,
  SRV6_SID_STRUCT_FIELD2_FIELD_NUMBER = 2,
  SRV6_SID_STRUCT_FIELD3_FIELD_NUMBER = 3,
  SRV6_SID_STRUCT_FIELD4_FIELD_NUMBER = 4,
  SRV6_SID_STRUCT_FIELD5_FIELD_NUMBER = 5,
  SRV6_SID_STRUCT_FIELD6_FIELD_NUMBER = 6,
  SRV6_SID_STRUCT_FIELD7_FIELD_NUMBER = 7,
  SRV6_SID_STRUCT_FIELD8_FIELD_NUMBER = 8
};

/** Bytes of the longest encoding of `srv6_sid_struct`. */
#define SRV6_SID_STRUCT_MAX_ENCODED_SIZE 22

/** Calls a macro with each field of `srv6_sid_struct`. */
#define PAVO_ZORV_FIELDS_OF_srv6_sid_struct(flag, integer, string, bytes, integer_list, message_list, nested) \
  flag(srv6_sid_struct, 1, field1) \
  flag(srv6_sid_struct, 2, field2) \
  integer(srv6_sid_struct, 3, field3) \
  integer(srv6_sid_struct, 4, field4) \
  integer(srv6_sid_struct, 5, field5) \
  integer(srv6_sid_struct, 6, field6) \
  integer(srv6_sid_struct, 7, field7) \
  integer(srv6_sid_struct, 8, field8)

/** @} */

/** @name `srv6_usid`
 *  @{ */

/** Field numbers of `srv6_usid`. */
enum srv6_usid_field_number {
  SRV6_USID_FIELD1_FIELD_NUMBER = 1,
  SRV6_USID_FIELD2_FIELD_NUMBER = 2,
  SRV6_USID_PREFIX_FIELD_NUMBER = 3,
  SRV6_USID_SID_STRUCT_FIELD_NUMBER = 4
};

/** Calls a macro with each field of `srv6_usid`. */
#define PAVO_ZORV_FIELDS_OF_srv6_usid(flag, integer, string, bytes, integer_list, message_list, nested) \
  integer(srv6_usid, 1, field1) \
  integer(srv6_usid, 2, field2) \
  nested(srv6_usid, 3, prefix, srv6_prefix) \
  nested(srv6_usid, 4, sid_struct, srv6_sid_struct)

/** @} */

/** @name `out_sid_list_info`
 *  @{ */

/** Field numbers of `out_sid_list_info`. */
enum out_sid_list_info_field_number {
  OUT_SID_LIST_INFO_PREFIX_SID_FIELD_NUMBER = 1,
  OUT_SID_LIST_INFO_FIELD2_FIELD_NUMBER = 2,
  OUT_SID_LIST_INFO_FIELD3_FIELD_NUMBER = 3,
  OUT_SID_LIST_INFO_FIELD4_FIELD_NUMBER = 4
};

/** Calls a macro with each field of `out_sid_list_info`. */
#define PAVO_ZORV_FIELDS_OF_out_sid_list_info(flag, integer, string, bytes, integer_list, message_list, nested) \
  nested(out_sid_list_info, 1, prefix_sid, prefix_sid_type) \
  integer(out_sid_list_info, 2, field2) \
  integer(out_sid_list_info, 3, field3) \
  bytes(out_sid_list_info, 4, field4, field4_length)

/** @} */

/** @name `out_srv6_usid_list_info`
 *  @{ */

/** Field numbers of `out_srv6_usid_list_info`. */
enum out_srv6_usid_list_info_field_number {
  OUT_SRV6_USID_LIST_INFO_USIDS_FIELD_NUMBER = 1
};

/** Calls a macro with each field of `out_srv6_usid_list_info`. */
#define PAVO_ZORV_FIELDS_OF_out_srv6_usid_list_info(flag, integer, string, bytes, integer_list, message_list, nested) \
  message_list(out_srv6_usid_list_info, 1, usids, usids_count, srv6_usid)

/** @} */

/** @name `oam_req`
 *  @{ */

/** Field numbers of `oam_req`. */
enum oam_req_field_number {
  OAM_REQ_FIELD1_FIELD_NUMBER = 1,
  OAM_REQ_FIELD2_FIELD_NUMBER = 2,
  OAM_REQ_FIELD3_FIELD_NUMBER = 3,
  OAM_REQ_PREFIX_SID_FIELD_NUMBER = 4,
  OAM_REQ_FIELD5_FIELD_NUMBER = 5,
  OAM_REQ_FIELD6_FIELD_NUMBER = 6,
  OAM_REQ_FIELD7_FIELD_NUMBER = 7,
  OAM_REQ_FIELD8_FIELD_NUMBER = 8
};

/** Calls a macro with each field of `oam_req`. */
#define PAVO_ZORV_FIELDS_OF_oam_req(flag, integer, string, bytes, integer_list, message_list, nested) \
  integer(oam_req, 1, field1) \
  integer(oam_req, 2, field2) \
  string(oam_req, 3, field3) \
  nested(oam_req, 4, prefix_sid, prefix_sid_type) \
  integer(oam_req, 5, field5) \
  bytes(oam_req, 6, field6, field6_length) \
  integer(oam_req, 7, field7) \
  integer(oam_req, 8, field8)

/** @} */

/** @name `oam_res`
 *  @{ */

/** Field numbers of `oam_res`. */
enum oam_res_field_number {
  OAM_RES_FIELD1_FIELD_NUMBER = 1,
  OAM_RES_FIELD2_FIELD_NUMBER = 2,
  OAM_RES_FIELD3_FIELD_NUMBER = 3,
  OAM_RES_FIELD4_FIELD_NUMBER = 4,
  OAM_RES_SID_LISTS_FIELD_NUMBER = 5,
  OAM_RES_FIELD6_FIELD_NUMBER = 6,
  OAM_RES_USID_LISTS_FIELD_NUMBER = 7
};

/** Calls a macro with each field of `oam_res`. */
#define PAVO_ZORV_FIELDS_OF_oam_res(flag, integer, string, bytes, integer_list, message_list, nested) \
  integer(oam_res, 1, field1) \
  integer(oam_res, 2, field2) \
  integer(oam_res, 3, field3) \
  flag(oam_res, 4, field4) \
  message_list(oam_res, 5, sid_lists, sid_lists_count, out_sid_list_info) \
  bytes(oam_res, 6, field6, field6_length) \
  message_list(oam_res, 7, usid_lists, usid_lists_count, out_srv6_usid_list_info)

/** @} */

/** @name `api_msg`
 *  @{ */

/** Field numbers of `api_msg`. */
enum api_msg_field_number {
  API_MSG_FIELD1_FIELD_NUMBER = 1,
  API_MSG_INTERNAL_FIELD_NUMBER = 2,
  API_MSG_FIELD3_FIELD_NUMBER = 3,
  API_MSG_FIELD4_FIELD_NUMBER = 4,
  API_MSG_P2P_AUTO_POLICY_NOTIF_FIELD_NUMBER = 5,
  API_MSG_FIELD6_FIELD_NUMBER = 6,
  API_MSG_FIELD7_FIELD_NUMBER = 7,
  API_MSG_P2P_AUTO_POLICY_REQUEST_FIELD_NUMBER = 8,
  API_MSG_P2P_AUTO_POLICY_RESPONSE_FIELD_NUMBER = 9,
  API_MSG_P2P_AUTO_POLICY_SWEEP_FIELD_NUMBER = 10,
  API_MSG_TO_IGP_FIELD_NUMBER = 11,
  API_MSG_TO_ZORV_FIELD_NUMBER = 12,
  API_MSG_OAM_REQ_FIELD_NUMBER = 13,
  API_MSG_OAM_RES_FIELD_NUMBER = 14,
  API_MSG_FIELD15_FIELD_NUMBER = 15,
  API_MSG_POLICY_REG_FIELD_NUMBER = 16
};

/** Calls a macro with each field of `api_msg`. */
#define PAVO_ZORV_FIELDS_OF_api_msg(flag, integer, string, bytes, integer_list, message_list, nested) \
  integer(api_msg, 1, field1) \
  nested(api_msg, 2, internal, api_msg_internal) \
  nested(api_msg, 3, field3, api_msg_p2p_auto_policy) \
  nested(api_msg, 4, field4, api_msg_p2p_auto_policy) \
  nested(api_msg, 5, p2p_auto_policy_notif, api_msg_p2p_auto_policy_notif) \
  nested(api_msg, 6, field6, api_msg_on_demand_color_notif) \
  nested(api_msg, 7, field7, api_msg_on_demand_color_notif) \
  nested(api_msg, 8, p2p_auto_policy_request, api_msg_p2p_auto_policy_request) \
  nested(api_msg, 9, p2p_auto_policy_response, api_msg_p2p_auto_policy_response) \
  nested(api_msg, 10, p2p_auto_policy_sweep, api_msg_p2p_auto_policy_sweep) \
  nested(api_msg, 11, to_igp, api_to_igp) \
  nested(api_msg, 12, to_zorv, api_to_zorv) \
  nested(api_msg, 13, oam_req, oam_req) \
  nested(api_msg, 14, oam_res, oam_res) \
  flag(api_msg, 15, field15) \
  nested(api_msg, 16, policy_reg, api_msg_policy_reg)

/** @} */

/* clang-format on */

#endif /* PAVO_ZORV_FIELDS_H */
