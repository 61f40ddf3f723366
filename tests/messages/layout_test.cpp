// The type of each member of every record, and the values of the presence constants. Where the members stand says
// pavo_zorv_layout.h, which the compiler checks wherever the header is used.
#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>

#include "pavo_zorv.h"

namespace {

#define RECORD(record) static_assert(std::is_standard_layout_v<record> && std::is_trivial_v<record>)

#define MEMBER(record, member, type) static_assert(std::is_same_v<decltype(record::member), type>)

#define FIELD(record, member, type, constant, bit) \
  MEMBER(record, member, type);                    \
  EXPECT_EQ(static_cast<std::uint32_t>(constant), std::uint32_t{bit}) << #constant

TEST(layout, of_segments_and_values_of_results_and_options) {
  RECORD(pavo_zorv_segment);
  MEMBER(pavo_zorv_segment, start, const unsigned char *);
  MEMBER(pavo_zorv_segment, length, std::uint64_t);
  EXPECT_EQ(int{CODEC_OK}, 0);
  EXPECT_EQ(int{CODEC_ERR_TRUNCATED}, -1);
  EXPECT_EQ(int{CODEC_ERR_BAD_WIRE_TYPE}, -2);
  EXPECT_EQ(int{CODEC_ERR_WRONG_WIRE_TYPE}, -3);
  EXPECT_EQ(int{CODEC_ERR_NO_MEMORY}, -4);
  EXPECT_EQ(int{PAVO_ZORV_REFERENCE}, 1);
}

TEST(layout, of_api_addr) {
  RECORD(api_addr);
  FIELD(api_addr, address, std::uint32_t, API_ADDR_HAS_ADDRESS, 0x1);
  MEMBER(api_addr, presence, std::uint8_t);
}

TEST(layout, of_api_lbl_stack) {
  RECORD(api_lbl_stack);
  FIELD(api_lbl_stack, labels, std::uint32_t *, API_LBL_STACK_HAS_LABELS, 0x1);
  MEMBER(api_lbl_stack, label_count, std::uint32_t);
  MEMBER(api_lbl_stack, presence, std::uint8_t);
}

TEST(layout, of_prefix_sid_type) {
  RECORD(prefix_sid_type);
  FIELD(prefix_sid_type, field1, std::uint32_t, PREFIX_SID_TYPE_HAS_FIELD1, 0x1);
  FIELD(prefix_sid_type, field2, std::uint8_t *, PREFIX_SID_TYPE_HAS_FIELD2, 0x2);
  MEMBER(prefix_sid_type, field2_count, std::uint32_t);
  MEMBER(prefix_sid_type, presence, std::uint8_t);
}

TEST(layout, of_policy_binding_sid_t) {
  RECORD(policy_binding_sid_t);
  FIELD(policy_binding_sid_t, sid, prefix_sid_type, POLICY_BINDING_SID_T_HAS_SID, 0x1);
  FIELD(policy_binding_sid_t, field2, std::uint32_t, POLICY_BINDING_SID_T_HAS_FIELD2, 0x2);
  MEMBER(policy_binding_sid_t, presence, std::uint8_t);
}

TEST(layout, of_api_exp_hop) {
  RECORD(api_exp_hop);
  FIELD(api_exp_hop, field1, std::uint32_t, API_EXP_HOP_HAS_FIELD1, 0x1);
  FIELD(api_exp_hop, field2, std::uint32_t, API_EXP_HOP_HAS_FIELD2, 0x2);
  FIELD(api_exp_hop, field3, std::uint32_t, API_EXP_HOP_HAS_FIELD3, 0x4);
  FIELD(api_exp_hop, field4, std::uint32_t, API_EXP_HOP_HAS_FIELD4, 0x8);
  FIELD(api_exp_hop, field5, std::uint8_t *, API_EXP_HOP_HAS_FIELD5, 0x10);
  MEMBER(api_exp_hop, field5_count, std::uint32_t);
  FIELD(api_exp_hop, field6, std::uint8_t *, API_EXP_HOP_HAS_FIELD6, 0x20);
  MEMBER(api_exp_hop, field6_count, std::uint32_t);
  MEMBER(api_exp_hop, presence, std::uint8_t);
}

TEST(layout, of_api_exp_path) {
  RECORD(api_exp_path);
  FIELD(api_exp_path, hops, api_exp_hop *, API_EXP_PATH_HAS_HOPS, 0x1);
  MEMBER(api_exp_path, hop_count, std::uint32_t);
  FIELD(api_exp_path, field2, std::uint32_t, API_EXP_PATH_HAS_FIELD2, 0x2);
  MEMBER(api_exp_path, presence, std::uint8_t);
}

TEST(layout, of_api_msg_service) {
  RECORD(api_msg_service);
  FIELD(api_msg_service, field1, std::uint8_t, API_MSG_SERVICE_HAS_FIELD1, 0x1);
  FIELD(api_msg_service, field2, std::uint8_t, API_MSG_SERVICE_HAS_FIELD2, 0x2);
  FIELD(api_msg_service, field3, std::uint8_t, API_MSG_SERVICE_HAS_FIELD3, 0x4);
  MEMBER(api_msg_service, presence, std::uint8_t);
}

TEST(layout, of_api_msg_internal) {
  RECORD(api_msg_internal);
  FIELD(api_msg_internal, field1, std::uint8_t, API_MSG_INTERNAL_HAS_FIELD1, 0x1);
  FIELD(api_msg_internal, field2, char *, API_MSG_INTERNAL_HAS_FIELD2, 0x2);
  FIELD(api_msg_internal, field3, std::uint64_t, API_MSG_INTERNAL_HAS_FIELD3, 0x4);
  FIELD(api_msg_internal, field4, std::uint32_t, API_MSG_INTERNAL_HAS_FIELD4, 0x8);
  FIELD(api_msg_internal, service, api_msg_service, API_MSG_INTERNAL_HAS_SERVICE, 0x10);
  FIELD(api_msg_internal, field6, std::uint32_t, API_MSG_INTERNAL_HAS_FIELD6, 0x20);
  FIELD(api_msg_internal, field7, std::uint8_t, API_MSG_INTERNAL_HAS_FIELD7, 0x40);
  MEMBER(api_msg_internal, presence, std::uint8_t);
}

TEST(layout, of_api_msg_on_demand_color_notif) {
  RECORD(api_msg_on_demand_color_notif);
  FIELD(api_msg_on_demand_color_notif, color, std::uint32_t, API_MSG_ON_DEMAND_COLOR_NOTIF_HAS_COLOR, 0x1);
  MEMBER(api_msg_on_demand_color_notif, presence, std::uint8_t);
}

TEST(layout, of_api_msg_p2p_auto_policy) {
  RECORD(api_msg_p2p_auto_policy);
  FIELD(api_msg_p2p_auto_policy, field1, char *, API_MSG_P2P_AUTO_POLICY_HAS_FIELD1, 0x1);
  FIELD(api_msg_p2p_auto_policy, field2, char *, API_MSG_P2P_AUTO_POLICY_HAS_FIELD2, 0x2);
  FIELD(api_msg_p2p_auto_policy, field3, std::uint32_t, API_MSG_P2P_AUTO_POLICY_HAS_FIELD3, 0x4);
  FIELD(api_msg_p2p_auto_policy, field4, std::uint32_t, API_MSG_P2P_AUTO_POLICY_HAS_FIELD4, 0x8);
  FIELD(api_msg_p2p_auto_policy, field5, std::uint8_t, API_MSG_P2P_AUTO_POLICY_HAS_FIELD5, 0x10);
  FIELD(api_msg_p2p_auto_policy, field6, std::uint8_t, API_MSG_P2P_AUTO_POLICY_HAS_FIELD6, 0x20);
  FIELD(api_msg_p2p_auto_policy, label_stack, api_lbl_stack, API_MSG_P2P_AUTO_POLICY_HAS_LABEL_STACK, 0x40);
  FIELD(api_msg_p2p_auto_policy, field8, std::uint32_t, API_MSG_P2P_AUTO_POLICY_HAS_FIELD8, 0x80);
  FIELD(api_msg_p2p_auto_policy, field9, std::uint32_t, API_MSG_P2P_AUTO_POLICY_HAS_FIELD9, 0x100);
  FIELD(api_msg_p2p_auto_policy, field10, std::uint8_t, API_MSG_P2P_AUTO_POLICY_HAS_FIELD10, 0x200);
  FIELD(api_msg_p2p_auto_policy, field11, std::uint8_t *, API_MSG_P2P_AUTO_POLICY_HAS_FIELD11, 0x400);
  MEMBER(api_msg_p2p_auto_policy, field11_count, std::uint32_t);
  FIELD(api_msg_p2p_auto_policy, field12, std::uint32_t, API_MSG_P2P_AUTO_POLICY_HAS_FIELD12, 0x800);
  FIELD(api_msg_p2p_auto_policy, field13, std::uint32_t, API_MSG_P2P_AUTO_POLICY_HAS_FIELD13, 0x1000);
  FIELD(api_msg_p2p_auto_policy, exp_paths, api_exp_path *, API_MSG_P2P_AUTO_POLICY_HAS_EXP_PATHS, 0x2000);
  MEMBER(api_msg_p2p_auto_policy, exp_paths_count, std::uint32_t);
  FIELD(api_msg_p2p_auto_policy, field15, std::uint32_t, API_MSG_P2P_AUTO_POLICY_HAS_FIELD15, 0x4000);
  FIELD(api_msg_p2p_auto_policy, field16, std::uint32_t, API_MSG_P2P_AUTO_POLICY_HAS_FIELD16, 0x8000);
  FIELD(api_msg_p2p_auto_policy, field17, std::uint32_t, API_MSG_P2P_AUTO_POLICY_HAS_FIELD17, 0x10000);
  FIELD(api_msg_p2p_auto_policy, field18, std::uint32_t, API_MSG_P2P_AUTO_POLICY_HAS_FIELD18, 0x20000);
  FIELD(api_msg_p2p_auto_policy, field19, std::uint8_t, API_MSG_P2P_AUTO_POLICY_HAS_FIELD19, 0x40000);
  FIELD(api_msg_p2p_auto_policy, field20, char *, API_MSG_P2P_AUTO_POLICY_HAS_FIELD20, 0x80000);
  FIELD(api_msg_p2p_auto_policy, prefix_sid, prefix_sid_type, API_MSG_P2P_AUTO_POLICY_HAS_PREFIX_SID, 0x100000);
  FIELD(api_msg_p2p_auto_policy, field22, std::uint32_t, API_MSG_P2P_AUTO_POLICY_HAS_FIELD22, 0x200000);
  MEMBER(api_msg_p2p_auto_policy, presence, std::uint32_t);
}

TEST(layout, of_api_msg_p2p_auto_policy_notif) {
  RECORD(api_msg_p2p_auto_policy_notif);
  FIELD(api_msg_p2p_auto_policy_notif, field1, char *, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD1, 0x1);
  FIELD(api_msg_p2p_auto_policy_notif, field2, char *, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD2, 0x2);
  FIELD(api_msg_p2p_auto_policy_notif, field3, std::uint32_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD3, 0x4);
  FIELD(api_msg_p2p_auto_policy_notif, field4, std::uint8_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD4, 0x8);
  FIELD(api_msg_p2p_auto_policy_notif, field5, std::uint8_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD5, 0x10);
  FIELD(api_msg_p2p_auto_policy_notif, field6, std::uint8_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD6, 0x20);
  FIELD(api_msg_p2p_auto_policy_notif, field7, std::uint32_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD7, 0x40);
  FIELD(api_msg_p2p_auto_policy_notif, field8, std::uint32_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD8, 0x80);
  FIELD(api_msg_p2p_auto_policy_notif, field9, std::uint8_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD9, 0x100);
  FIELD(api_msg_p2p_auto_policy_notif, label_stack, api_lbl_stack, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_LABEL_STACK,
        0x200);
  FIELD(api_msg_p2p_auto_policy_notif, field11, std::uint32_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD11, 0x400);
  FIELD(api_msg_p2p_auto_policy_notif, field12, std::uint32_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD12, 0x800);
  FIELD(api_msg_p2p_auto_policy_notif, field13, std::uint8_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD13, 0x1000);
  FIELD(api_msg_p2p_auto_policy_notif, field14, std::uint32_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD14, 0x2000);
  FIELD(api_msg_p2p_auto_policy_notif, field15, std::uint8_t *, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD15, 0x4000);
  MEMBER(api_msg_p2p_auto_policy_notif, field15_count, std::uint32_t);
  FIELD(api_msg_p2p_auto_policy_notif, field16, std::uint32_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD16, 0x8000);
  FIELD(api_msg_p2p_auto_policy_notif, field17, std::uint32_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD17, 0x10000);
  FIELD(api_msg_p2p_auto_policy_notif, field18, std::uint32_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD18, 0x20000);
  FIELD(api_msg_p2p_auto_policy_notif, field19, std::uint32_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD19, 0x40000);
  FIELD(api_msg_p2p_auto_policy_notif, field20, std::uint8_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD20, 0x80000);
  FIELD(api_msg_p2p_auto_policy_notif, field21, char *, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD21, 0x100000);
  FIELD(api_msg_p2p_auto_policy_notif, field22, std::uint8_t *, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD22, 0x200000);
  MEMBER(api_msg_p2p_auto_policy_notif, field22_count, std::uint32_t);
  FIELD(api_msg_p2p_auto_policy_notif, field23, std::uint32_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD23, 0x400000);
  FIELD(api_msg_p2p_auto_policy_notif, field24, std::uint32_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD24, 0x800000);
  FIELD(api_msg_p2p_auto_policy_notif, field25, std::uint32_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD25, 0x1000000);
  FIELD(api_msg_p2p_auto_policy_notif, field26, std::uint8_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD26, 0x2000000);
  FIELD(api_msg_p2p_auto_policy_notif, field27, std::int64_t, API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD27, 0x4000000);
  MEMBER(api_msg_p2p_auto_policy_notif, presence, std::uint32_t);
}

TEST(layout, of_api_msg_p2p_auto_policy_request) {
  RECORD(api_msg_p2p_auto_policy_request);
  FIELD(api_msg_p2p_auto_policy_request, policy, api_msg_p2p_auto_policy, API_MSG_P2P_AUTO_POLICY_REQUEST_HAS_POLICY,
        0x1);
  FIELD(api_msg_p2p_auto_policy_request, field2, std::uint32_t, API_MSG_P2P_AUTO_POLICY_REQUEST_HAS_FIELD2, 0x2);
  FIELD(api_msg_p2p_auto_policy_request, field3, std::uint32_t, API_MSG_P2P_AUTO_POLICY_REQUEST_HAS_FIELD3, 0x4);
  MEMBER(api_msg_p2p_auto_policy_request, presence, std::uint8_t);
}

TEST(layout, of_api_msg_p2p_auto_policy_response) {
  RECORD(api_msg_p2p_auto_policy_response);
  FIELD(api_msg_p2p_auto_policy_response, notification, api_msg_p2p_auto_policy_notif,
        API_MSG_P2P_AUTO_POLICY_RESPONSE_HAS_NOTIFICATION, 0x1);
  FIELD(api_msg_p2p_auto_policy_response, field2, std::uint32_t, API_MSG_P2P_AUTO_POLICY_RESPONSE_HAS_FIELD2, 0x2);
  FIELD(api_msg_p2p_auto_policy_response, field3, std::uint32_t, API_MSG_P2P_AUTO_POLICY_RESPONSE_HAS_FIELD3, 0x4);
  MEMBER(api_msg_p2p_auto_policy_response, presence, std::uint8_t);
}

TEST(layout, of_api_msg_p2p_auto_policy_sweep) {
  RECORD(api_msg_p2p_auto_policy_sweep);
  FIELD(api_msg_p2p_auto_policy_sweep, field1, std::uint32_t, API_MSG_P2P_AUTO_POLICY_SWEEP_HAS_FIELD1, 0x1);
  FIELD(api_msg_p2p_auto_policy_sweep, field2, std::uint32_t, API_MSG_P2P_AUTO_POLICY_SWEEP_HAS_FIELD2, 0x2);
  MEMBER(api_msg_p2p_auto_policy_sweep, presence, std::uint8_t);
}

TEST(layout, of_api_nodeid) {
  RECORD(api_nodeid);
  FIELD(api_nodeid, field1, std::uint32_t, API_NODEID_HAS_FIELD1, 0x1);
  FIELD(api_nodeid, octets, std::uint8_t *, API_NODEID_HAS_OCTETS, 0x2);
  MEMBER(api_nodeid, octets_count, std::uint32_t);
  MEMBER(api_nodeid, presence, std::uint8_t);
}

TEST(layout, of_api_prefix) {
  RECORD(api_prefix);
  FIELD(api_prefix, octets, std::uint8_t *, API_PREFIX_HAS_OCTETS, 0x1);
  MEMBER(api_prefix, octets_count, std::uint32_t);
  FIELD(api_prefix, field2, std::uint8_t, API_PREFIX_HAS_FIELD2, 0x2);
  MEMBER(api_prefix, presence, std::uint8_t);
}

TEST(layout, of_api_intf) {
  RECORD(api_intf);
  FIELD(api_intf, field1, std::uint32_t, API_INTF_HAS_FIELD1, 0x1);
  FIELD(api_intf, field2, char *, API_INTF_HAS_FIELD2, 0x2);
  MEMBER(api_intf, presence, std::uint8_t);
}

TEST(layout, of_api_link_update) {
  RECORD(api_link_update);
  FIELD(api_link_update, field1, std::uint32_t, API_LINK_UPDATE_HAS_FIELD1, 0x1);
  FIELD(api_link_update, field2, char *, API_LINK_UPDATE_HAS_FIELD2, 0x2);
  FIELD(api_link_update, field3, std::uint32_t, API_LINK_UPDATE_HAS_FIELD3, 0x4);
  FIELD(api_link_update, field4, std::uint32_t, API_LINK_UPDATE_HAS_FIELD4, 0x8);
  FIELD(api_link_update, field5, std::uint32_t *, API_LINK_UPDATE_HAS_FIELD5, 0x10);
  MEMBER(api_link_update, field5_count, std::uint32_t);
  MEMBER(api_link_update, presence, std::uint8_t);
}

TEST(layout, of_api_policy) {
  RECORD(api_policy);
  FIELD(api_policy, field1, char *, API_POLICY_HAS_FIELD1, 0x1);
  FIELD(api_policy, field2, std::uint32_t, API_POLICY_HAS_FIELD2, 0x2);
  FIELD(api_policy, field3, std::uint32_t, API_POLICY_HAS_FIELD3, 0x4);
  FIELD(api_policy, field4, std::uint8_t, API_POLICY_HAS_FIELD4, 0x8);
  FIELD(api_policy, prefixes, api_prefix *, API_POLICY_HAS_PREFIXES, 0x10);
  MEMBER(api_policy, prefixes_count, std::uint32_t);
  FIELD(api_policy, field6, char *, API_POLICY_HAS_FIELD6, 0x20);
  FIELD(api_policy, field7, char *, API_POLICY_HAS_FIELD7, 0x40);
  FIELD(api_policy, field8, std::uint32_t, API_POLICY_HAS_FIELD8, 0x80);
  FIELD(api_policy, field9, std::int32_t, API_POLICY_HAS_FIELD9, 0x100);
  FIELD(api_policy, field10, std::uint8_t, API_POLICY_HAS_FIELD10, 0x200);
  MEMBER(api_policy, presence, std::uint16_t);
}

TEST(layout, of_api_aa_list) {
  RECORD(api_aa_list);
  FIELD(api_aa_list, octets, std::uint8_t *, API_AA_LIST_HAS_OCTETS, 0x1);
  MEMBER(api_aa_list, octets_count, std::uint32_t);
  FIELD(api_aa_list, field2, std::uint32_t, API_AA_LIST_HAS_FIELD2, 0x2);
  FIELD(api_aa_list, policies, api_policy *, API_AA_LIST_HAS_POLICIES, 0x4);
  MEMBER(api_aa_list, policies_count, std::uint32_t);
  MEMBER(api_aa_list, presence, std::uint8_t);
}

TEST(layout, of_api_to_zorv) {
  RECORD(api_to_zorv);
  FIELD(api_to_zorv, nodeid, api_nodeid, API_TO_ZORV_HAS_NODEID, 0x1);
  FIELD(api_to_zorv, intf, api_intf, API_TO_ZORV_HAS_INTF, 0x2);
  FIELD(api_to_zorv, field3, std::uint8_t, API_TO_ZORV_HAS_FIELD3, 0x4);
  MEMBER(api_to_zorv, presence, std::uint8_t);
}

TEST(layout, of_api_to_igp) {
  RECORD(api_to_igp);
  FIELD(api_to_igp, link_update, api_link_update, API_TO_IGP_HAS_LINK_UPDATE, 0x1);
  FIELD(api_to_igp, aa_list, api_aa_list, API_TO_IGP_HAS_AA_LIST, 0x2);
  FIELD(api_to_igp, field3, std::uint8_t, API_TO_IGP_HAS_FIELD3, 0x4);
  FIELD(api_to_igp, field4, std::uint8_t, API_TO_IGP_HAS_FIELD4, 0x8);
  MEMBER(api_to_igp, presence, std::uint8_t);
}

TEST(layout, of_api_msg_policy_reg) {
  RECORD(api_msg_policy_reg);
  FIELD(api_msg_policy_reg, field1, std::uint8_t, API_MSG_POLICY_REG_HAS_FIELD1, 0x1);
  FIELD(api_msg_policy_reg, octets, std::uint8_t *, API_MSG_POLICY_REG_HAS_OCTETS, 0x2);
  MEMBER(api_msg_policy_reg, octets_count, std::uint32_t);
  FIELD(api_msg_policy_reg, field3, std::uint32_t, API_MSG_POLICY_REG_HAS_FIELD3, 0x4);
  FIELD(api_msg_policy_reg, field4, char *, API_MSG_POLICY_REG_HAS_FIELD4, 0x8);
  MEMBER(api_msg_policy_reg, presence, std::uint8_t);
}

TEST(layout, of_srv6_prefix) {
  RECORD(srv6_prefix);
  FIELD(srv6_prefix, field1, unsigned char *, SRV6_PREFIX_HAS_FIELD1, 0x1);
  MEMBER(srv6_prefix, field1_length, std::uint64_t);
  FIELD(srv6_prefix, field2, std::uint32_t, SRV6_PREFIX_HAS_FIELD2, 0x2);
  MEMBER(srv6_prefix, presence, std::uint8_t);
}

TEST(layout, of_srv6_sid_struct) {
  RECORD(srv6_sid_struct);
  FIELD(srv6_sid_struct, field1, std::uint8_t, SRV6_SID_STRUCT_HAS_FIELD1, 0x1);
  FIELD(srv6_sid_struct, field2, std::uint8_t, SRV6_SID_STRUCT_HAS_FIELD2, 0x2);
  FIELD(srv6_sid_struct, field3, std::uint8_t, SRV6_SID_STRUCT_HAS_FIELD3, 0x4);
  FIELD(srv6_sid_struct, field4, std::uint8_t, SRV6_SID_STRUCT_HAS_FIELD4, 0x8);
  FIELD(srv6_sid_struct, field5, std::uint8_t, SRV6_SID_STRUCT_HAS_FIELD5, 0x10);
  FIELD(srv6_sid_struct, field6, std::uint8_t, SRV6_SID_STRUCT_HAS_FIELD6, 0x20);
  FIELD(srv6_sid_struct, field7, std::uint8_t, SRV6_SID_STRUCT_HAS_FIELD7, 0x40);
  FIELD(srv6_sid_struct, field8, std::uint8_t, SRV6_SID_STRUCT_HAS_FIELD8, 0x80);
  MEMBER(srv6_sid_struct, presence, std::uint8_t);
}

TEST(layout, of_srv6_usid) {
  RECORD(srv6_usid);
  FIELD(srv6_usid, field1, std::uint32_t, SRV6_USID_HAS_FIELD1, 0x1);
  FIELD(srv6_usid, field2, std::uint32_t, SRV6_USID_HAS_FIELD2, 0x2);
  FIELD(srv6_usid, prefix, srv6_prefix, SRV6_USID_HAS_PREFIX, 0x4);
  FIELD(srv6_usid, sid_struct, srv6_sid_struct, SRV6_USID_HAS_SID_STRUCT, 0x8);
  MEMBER(srv6_usid, presence, std::uint8_t);
}

TEST(layout, of_out_sid_list_info) {
  RECORD(out_sid_list_info);
  FIELD(out_sid_list_info, prefix_sid, prefix_sid_type, OUT_SID_LIST_INFO_HAS_PREFIX_SID, 0x1);
  FIELD(out_sid_list_info, field2, std::uint32_t, OUT_SID_LIST_INFO_HAS_FIELD2, 0x2);
  FIELD(out_sid_list_info, field3, std::uint32_t, OUT_SID_LIST_INFO_HAS_FIELD3, 0x4);
  FIELD(out_sid_list_info, field4, unsigned char *, OUT_SID_LIST_INFO_HAS_FIELD4, 0x8);
  MEMBER(out_sid_list_info, field4_length, std::uint64_t);
  MEMBER(out_sid_list_info, presence, std::uint8_t);
}

TEST(layout, of_out_srv6_usid_list_info) {
  RECORD(out_srv6_usid_list_info);
  FIELD(out_srv6_usid_list_info, usids, srv6_usid *, OUT_SRV6_USID_LIST_INFO_HAS_USIDS, 0x1);
  MEMBER(out_srv6_usid_list_info, usids_count, std::uint32_t);
  MEMBER(out_srv6_usid_list_info, presence, std::uint8_t);
}

TEST(layout, of_oam_req) {
  RECORD(oam_req);
  FIELD(oam_req, field1, std::uint32_t, OAM_REQ_HAS_FIELD1, 0x1);
  FIELD(oam_req, field2, std::uint32_t, OAM_REQ_HAS_FIELD2, 0x2);
  FIELD(oam_req, field3, char *, OAM_REQ_HAS_FIELD3, 0x4);
  FIELD(oam_req, prefix_sid, prefix_sid_type, OAM_REQ_HAS_PREFIX_SID, 0x8);
  FIELD(oam_req, field5, std::uint32_t, OAM_REQ_HAS_FIELD5, 0x10);
  FIELD(oam_req, field6, unsigned char *, OAM_REQ_HAS_FIELD6, 0x20);
  MEMBER(oam_req, field6_length, std::uint64_t);
  FIELD(oam_req, field7, std::uint32_t, OAM_REQ_HAS_FIELD7, 0x40);
  FIELD(oam_req, field8, std::uint32_t, OAM_REQ_HAS_FIELD8, 0x80);
  MEMBER(oam_req, presence, std::uint8_t);
}

TEST(layout, of_oam_res) {
  RECORD(oam_res);
  FIELD(oam_res, field1, std::uint32_t, OAM_RES_HAS_FIELD1, 0x1);
  FIELD(oam_res, field2, std::uint32_t, OAM_RES_HAS_FIELD2, 0x2);
  FIELD(oam_res, field3, std::int32_t, OAM_RES_HAS_FIELD3, 0x4);
  FIELD(oam_res, field4, std::uint8_t, OAM_RES_HAS_FIELD4, 0x8);
  FIELD(oam_res, sid_lists, out_sid_list_info *, OAM_RES_HAS_SID_LISTS, 0x10);
  MEMBER(oam_res, sid_lists_count, std::uint32_t);
  FIELD(oam_res, field6, unsigned char *, OAM_RES_HAS_FIELD6, 0x20);
  MEMBER(oam_res, field6_length, std::uint64_t);
  FIELD(oam_res, usid_lists, out_srv6_usid_list_info *, OAM_RES_HAS_USID_LISTS, 0x40);
  MEMBER(oam_res, usid_lists_count, std::uint32_t);
  MEMBER(oam_res, presence, std::uint8_t);
}

TEST(layout, of_api_msg) {
  RECORD(api_msg);
  FIELD(api_msg, field1, std::uint64_t, API_MSG_HAS_FIELD1, 0x1);
  FIELD(api_msg, internal, api_msg_internal, API_MSG_HAS_INTERNAL, 0x2);
  FIELD(api_msg, field3, api_msg_p2p_auto_policy, API_MSG_HAS_FIELD3, 0x4);
  FIELD(api_msg, field4, api_msg_p2p_auto_policy, API_MSG_HAS_FIELD4, 0x8);
  FIELD(api_msg, p2p_auto_policy_notif, api_msg_p2p_auto_policy_notif, API_MSG_HAS_P2P_AUTO_POLICY_NOTIF, 0x10);
  FIELD(api_msg, field6, api_msg_on_demand_color_notif, API_MSG_HAS_FIELD6, 0x20);
  FIELD(api_msg, field7, api_msg_on_demand_color_notif, API_MSG_HAS_FIELD7, 0x40);
  FIELD(api_msg, p2p_auto_policy_request, api_msg_p2p_auto_policy_request, API_MSG_HAS_P2P_AUTO_POLICY_REQUEST, 0x80);
  FIELD(api_msg, p2p_auto_policy_response, api_msg_p2p_auto_policy_response, API_MSG_HAS_P2P_AUTO_POLICY_RESPONSE,
        0x100);
  FIELD(api_msg, p2p_auto_policy_sweep, api_msg_p2p_auto_policy_sweep, API_MSG_HAS_P2P_AUTO_POLICY_SWEEP, 0x200);
  FIELD(api_msg, to_igp, api_to_igp, API_MSG_HAS_TO_IGP, 0x400);
  FIELD(api_msg, to_zorv, api_to_zorv, API_MSG_HAS_TO_ZORV, 0x800);
  FIELD(api_msg, oam_req, oam_req, API_MSG_HAS_OAM_REQ, 0x1000);
  FIELD(api_msg, oam_res, oam_res, API_MSG_HAS_OAM_RES, 0x2000);
  FIELD(api_msg, field15, std::uint8_t, API_MSG_HAS_FIELD15, 0x4000);
  FIELD(api_msg, policy_reg, api_msg_policy_reg, API_MSG_HAS_POLICY_REG, 0x8000);
  MEMBER(api_msg, presence, std::uint16_t);
}

}  // namespace
