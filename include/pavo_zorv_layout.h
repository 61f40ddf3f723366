/** @file
 *  The binary interface in numbers: the size of every record and the place of each member, for 64-bit pointers (LP64)
 *  and for 32-bit pointers where 64-bit numbers are aligned to 4 bytes (ILP32, as on i386). `pavo_zorv.h` includes
 *  this file, so that no program compiles with a compiler or an option that lays out records differently: it would not
 *  run with the library. On other machines nothing is checked.
 *
 *  Written by `tests/library/layout_header.cpp` from the schemas, by
 *  `cmake --build --preset release --target update-layout`.
 */
#ifndef PAVO_ZORV_LAYOUT_H
#define PAVO_ZORV_LAYOUT_H

#ifndef PAVO_ZORV_H
#error "include pavo_zorv.h, which includes this file"
#endif

/** @cond */
#ifdef __cplusplus
#define PAVO_ZORV_ASSERT_(condition, text) static_assert(condition, text)
#elif defined(__GNUC__)
#define PAVO_ZORV_ASSERT_(condition, text) __extension__ _Static_assert(condition, text) /* before C11 as well */
#else
#define PAVO_ZORV_ASSERT_(condition, text) _Static_assert(condition, text)
#endif

/* The number that holds here, or what is seen where no number holds. */
#define PAVO_ZORV_HERE_(lp64, ilp32, seen) \
  (sizeof(void *) == 8 ? (lp64) : sizeof(void *) == 4 && offsetof(pavo_zorv_segment, length) == 4 ? (ilp32) : (seen))

#define PAVO_ZORV_SIZE_(record, lp64, ilp32) \
  PAVO_ZORV_ASSERT_(sizeof(record) == PAVO_ZORV_HERE_(lp64, ilp32, sizeof(record)), "size of " #record)
#define PAVO_ZORV_AT_(record, member, lp64, ilp32)                                        \
  PAVO_ZORV_ASSERT_(                                                                      \
      offsetof(record, member) == PAVO_ZORV_HERE_(lp64, ilp32, offsetof(record, member)), \
      "place of " #member " in " #record)

#ifdef __i386__
PAVO_ZORV_ASSERT_(offsetof(pavo_zorv_segment, length) == 4, "64-bit numbers are aligned to 4 bytes on i386");
#endif

PAVO_ZORV_SIZE_(pavo_zorv_segment, 16, 12);
PAVO_ZORV_AT_(pavo_zorv_segment, start, 0, 0);
PAVO_ZORV_AT_(pavo_zorv_segment, length, 8, 4);

PAVO_ZORV_SIZE_(api_addr, 8, 8);
PAVO_ZORV_AT_(api_addr, address, 0, 0);
PAVO_ZORV_AT_(api_addr, presence, 4, 4);

PAVO_ZORV_SIZE_(api_lbl_stack, 16, 12);
PAVO_ZORV_AT_(api_lbl_stack, labels, 0, 0);
PAVO_ZORV_AT_(api_lbl_stack, label_count, 8, 4);
PAVO_ZORV_AT_(api_lbl_stack, presence, 12, 8);

PAVO_ZORV_SIZE_(prefix_sid_type, 24, 16);
PAVO_ZORV_AT_(prefix_sid_type, field1, 0, 0);
PAVO_ZORV_AT_(prefix_sid_type, field2, 8, 4);
PAVO_ZORV_AT_(prefix_sid_type, field2_count, 16, 8);
PAVO_ZORV_AT_(prefix_sid_type, presence, 20, 12);

PAVO_ZORV_SIZE_(policy_binding_sid_t, 32, 24);
PAVO_ZORV_AT_(policy_binding_sid_t, sid, 0, 0);
PAVO_ZORV_AT_(policy_binding_sid_t, field2, 24, 16);
PAVO_ZORV_AT_(policy_binding_sid_t, presence, 28, 20);

PAVO_ZORV_SIZE_(api_exp_hop, 48, 36);
PAVO_ZORV_AT_(api_exp_hop, field1, 0, 0);
PAVO_ZORV_AT_(api_exp_hop, field2, 4, 4);
PAVO_ZORV_AT_(api_exp_hop, field3, 8, 8);
PAVO_ZORV_AT_(api_exp_hop, field4, 12, 12);
PAVO_ZORV_AT_(api_exp_hop, field5, 16, 16);
PAVO_ZORV_AT_(api_exp_hop, field5_count, 24, 20);
PAVO_ZORV_AT_(api_exp_hop, field6, 32, 24);
PAVO_ZORV_AT_(api_exp_hop, field6_count, 40, 28);
PAVO_ZORV_AT_(api_exp_hop, presence, 44, 32);

PAVO_ZORV_SIZE_(api_exp_path, 24, 16);
PAVO_ZORV_AT_(api_exp_path, hops, 0, 0);
PAVO_ZORV_AT_(api_exp_path, hop_count, 8, 4);
PAVO_ZORV_AT_(api_exp_path, field2, 12, 8);
PAVO_ZORV_AT_(api_exp_path, presence, 16, 12);

PAVO_ZORV_SIZE_(api_msg_service, 4, 4);
PAVO_ZORV_AT_(api_msg_service, field1, 0, 0);
PAVO_ZORV_AT_(api_msg_service, field2, 1, 1);
PAVO_ZORV_AT_(api_msg_service, field3, 2, 2);
PAVO_ZORV_AT_(api_msg_service, presence, 3, 3);

PAVO_ZORV_SIZE_(api_msg_internal, 40, 32);
PAVO_ZORV_AT_(api_msg_internal, field1, 0, 0);
PAVO_ZORV_AT_(api_msg_internal, field2, 8, 4);
PAVO_ZORV_AT_(api_msg_internal, field3, 16, 8);
PAVO_ZORV_AT_(api_msg_internal, field4, 24, 16);
PAVO_ZORV_AT_(api_msg_internal, service, 28, 20);
PAVO_ZORV_AT_(api_msg_internal, field6, 32, 24);
PAVO_ZORV_AT_(api_msg_internal, field7, 36, 28);
PAVO_ZORV_AT_(api_msg_internal, presence, 37, 29);

PAVO_ZORV_SIZE_(api_msg_on_demand_color_notif, 8, 8);
PAVO_ZORV_AT_(api_msg_on_demand_color_notif, color, 0, 0);
PAVO_ZORV_AT_(api_msg_on_demand_color_notif, presence, 4, 4);

PAVO_ZORV_SIZE_(api_msg_p2p_auto_policy, 160, 116);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field1, 0, 0);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field2, 8, 4);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field3, 16, 8);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field4, 20, 12);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field5, 24, 16);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field6, 25, 17);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, label_stack, 32, 20);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field8, 48, 32);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field9, 52, 36);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field10, 56, 40);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field11, 64, 44);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field11_count, 72, 48);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field12, 76, 52);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field13, 80, 56);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, exp_paths, 88, 60);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, exp_paths_count, 96, 64);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field15, 100, 68);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field16, 104, 72);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field17, 108, 76);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field18, 112, 80);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field19, 116, 84);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field20, 120, 88);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, prefix_sid, 128, 92);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, field22, 152, 108);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy, presence, 156, 112);

PAVO_ZORV_SIZE_(api_msg_p2p_auto_policy_notif, 160, 124);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field1, 0, 0);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field2, 8, 4);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field3, 16, 8);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field4, 20, 12);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field5, 21, 13);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field6, 22, 14);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field7, 24, 16);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field8, 28, 20);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field9, 32, 24);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, label_stack, 40, 28);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field11, 56, 40);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field12, 60, 44);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field13, 64, 48);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field14, 68, 52);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field15, 72, 56);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field15_count, 80, 60);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field16, 84, 64);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field17, 88, 68);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field18, 92, 72);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field19, 96, 76);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field20, 100, 80);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field21, 104, 84);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field22, 112, 88);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field22_count, 120, 92);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field23, 124, 96);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field24, 128, 100);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field25, 132, 104);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field26, 136, 108);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, field27, 144, 112);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_notif, presence, 152, 120);

PAVO_ZORV_SIZE_(api_msg_p2p_auto_policy_request, 176, 128);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_request, policy, 0, 0);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_request, field2, 160, 116);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_request, field3, 164, 120);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_request, presence, 168, 124);

PAVO_ZORV_SIZE_(api_msg_p2p_auto_policy_response, 176, 136);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_response, notification, 0, 0);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_response, field2, 160, 124);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_response, field3, 164, 128);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_response, presence, 168, 132);

PAVO_ZORV_SIZE_(api_msg_p2p_auto_policy_sweep, 12, 12);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_sweep, field1, 0, 0);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_sweep, field2, 4, 4);
PAVO_ZORV_AT_(api_msg_p2p_auto_policy_sweep, presence, 8, 8);

PAVO_ZORV_SIZE_(api_nodeid, 24, 16);
PAVO_ZORV_AT_(api_nodeid, field1, 0, 0);
PAVO_ZORV_AT_(api_nodeid, octets, 8, 4);
PAVO_ZORV_AT_(api_nodeid, octets_count, 16, 8);
PAVO_ZORV_AT_(api_nodeid, presence, 20, 12);

PAVO_ZORV_SIZE_(api_prefix, 16, 12);
PAVO_ZORV_AT_(api_prefix, octets, 0, 0);
PAVO_ZORV_AT_(api_prefix, octets_count, 8, 4);
PAVO_ZORV_AT_(api_prefix, field2, 12, 8);
PAVO_ZORV_AT_(api_prefix, presence, 13, 9);

PAVO_ZORV_SIZE_(api_intf, 24, 12);
PAVO_ZORV_AT_(api_intf, field1, 0, 0);
PAVO_ZORV_AT_(api_intf, field2, 8, 4);
PAVO_ZORV_AT_(api_intf, presence, 16, 8);

PAVO_ZORV_SIZE_(api_link_update, 40, 28);
PAVO_ZORV_AT_(api_link_update, field1, 0, 0);
PAVO_ZORV_AT_(api_link_update, field2, 8, 4);
PAVO_ZORV_AT_(api_link_update, field3, 16, 8);
PAVO_ZORV_AT_(api_link_update, field4, 20, 12);
PAVO_ZORV_AT_(api_link_update, field5, 24, 16);
PAVO_ZORV_AT_(api_link_update, field5_count, 32, 20);
PAVO_ZORV_AT_(api_link_update, presence, 36, 24);

PAVO_ZORV_SIZE_(api_policy, 72, 44);
PAVO_ZORV_AT_(api_policy, field1, 0, 0);
PAVO_ZORV_AT_(api_policy, field2, 8, 4);
PAVO_ZORV_AT_(api_policy, field3, 12, 8);
PAVO_ZORV_AT_(api_policy, field4, 16, 12);
PAVO_ZORV_AT_(api_policy, prefixes, 24, 16);
PAVO_ZORV_AT_(api_policy, prefixes_count, 32, 20);
PAVO_ZORV_AT_(api_policy, field6, 40, 24);
PAVO_ZORV_AT_(api_policy, field7, 48, 28);
PAVO_ZORV_AT_(api_policy, field8, 56, 32);
PAVO_ZORV_AT_(api_policy, field9, 60, 36);
PAVO_ZORV_AT_(api_policy, field10, 64, 40);
PAVO_ZORV_AT_(api_policy, presence, 66, 42);

PAVO_ZORV_SIZE_(api_aa_list, 32, 24);
PAVO_ZORV_AT_(api_aa_list, octets, 0, 0);
PAVO_ZORV_AT_(api_aa_list, octets_count, 8, 4);
PAVO_ZORV_AT_(api_aa_list, field2, 12, 8);
PAVO_ZORV_AT_(api_aa_list, policies, 16, 12);
PAVO_ZORV_AT_(api_aa_list, policies_count, 24, 16);
PAVO_ZORV_AT_(api_aa_list, presence, 28, 20);

PAVO_ZORV_SIZE_(api_to_zorv, 56, 32);
PAVO_ZORV_AT_(api_to_zorv, nodeid, 0, 0);
PAVO_ZORV_AT_(api_to_zorv, intf, 24, 16);
PAVO_ZORV_AT_(api_to_zorv, field3, 48, 28);
PAVO_ZORV_AT_(api_to_zorv, presence, 49, 29);

PAVO_ZORV_SIZE_(api_to_igp, 80, 56);
PAVO_ZORV_AT_(api_to_igp, link_update, 0, 0);
PAVO_ZORV_AT_(api_to_igp, aa_list, 40, 28);
PAVO_ZORV_AT_(api_to_igp, field3, 72, 52);
PAVO_ZORV_AT_(api_to_igp, field4, 73, 53);
PAVO_ZORV_AT_(api_to_igp, presence, 74, 54);

PAVO_ZORV_SIZE_(api_msg_policy_reg, 40, 24);
PAVO_ZORV_AT_(api_msg_policy_reg, field1, 0, 0);
PAVO_ZORV_AT_(api_msg_policy_reg, octets, 8, 4);
PAVO_ZORV_AT_(api_msg_policy_reg, octets_count, 16, 8);
PAVO_ZORV_AT_(api_msg_policy_reg, field3, 20, 12);
PAVO_ZORV_AT_(api_msg_policy_reg, field4, 24, 16);
PAVO_ZORV_AT_(api_msg_policy_reg, presence, 32, 20);

PAVO_ZORV_SIZE_(srv6_prefix, 24, 20);
PAVO_ZORV_AT_(srv6_prefix, field1, 0, 0);
PAVO_ZORV_AT_(srv6_prefix, field1_length, 8, 4);
PAVO_ZORV_AT_(srv6_prefix, field2, 16, 12);
PAVO_ZORV_AT_(srv6_prefix, presence, 20, 16);

PAVO_ZORV_SIZE_(srv6_sid_struct, 9, 9);
PAVO_ZORV_AT_(srv6_sid_struct, field1, 0, 0);
PAVO_ZORV_AT_(srv6_sid_struct, field2, 1, 1);
PAVO_ZORV_AT_(srv6_sid_struct, field3, 2, 2);
PAVO_ZORV_AT_(srv6_sid_struct, field4, 3, 3);
PAVO_ZORV_AT_(srv6_sid_struct, field5, 4, 4);
PAVO_ZORV_AT_(srv6_sid_struct, field6, 5, 5);
PAVO_ZORV_AT_(srv6_sid_struct, field7, 6, 6);
PAVO_ZORV_AT_(srv6_sid_struct, field8, 7, 7);
PAVO_ZORV_AT_(srv6_sid_struct, presence, 8, 8);

PAVO_ZORV_SIZE_(srv6_usid, 48, 40);
PAVO_ZORV_AT_(srv6_usid, field1, 0, 0);
PAVO_ZORV_AT_(srv6_usid, field2, 4, 4);
PAVO_ZORV_AT_(srv6_usid, prefix, 8, 8);
PAVO_ZORV_AT_(srv6_usid, sid_struct, 32, 28);
PAVO_ZORV_AT_(srv6_usid, presence, 41, 37);

PAVO_ZORV_SIZE_(out_sid_list_info, 56, 40);
PAVO_ZORV_AT_(out_sid_list_info, prefix_sid, 0, 0);
PAVO_ZORV_AT_(out_sid_list_info, field2, 24, 16);
PAVO_ZORV_AT_(out_sid_list_info, field3, 28, 20);
PAVO_ZORV_AT_(out_sid_list_info, field4, 32, 24);
PAVO_ZORV_AT_(out_sid_list_info, field4_length, 40, 28);
PAVO_ZORV_AT_(out_sid_list_info, presence, 48, 36);

PAVO_ZORV_SIZE_(out_srv6_usid_list_info, 16, 12);
PAVO_ZORV_AT_(out_srv6_usid_list_info, usids, 0, 0);
PAVO_ZORV_AT_(out_srv6_usid_list_info, usids_count, 8, 4);
PAVO_ZORV_AT_(out_srv6_usid_list_info, presence, 12, 8);

PAVO_ZORV_SIZE_(oam_req, 80, 56);
PAVO_ZORV_AT_(oam_req, field1, 0, 0);
PAVO_ZORV_AT_(oam_req, field2, 4, 4);
PAVO_ZORV_AT_(oam_req, field3, 8, 8);
PAVO_ZORV_AT_(oam_req, prefix_sid, 16, 12);
PAVO_ZORV_AT_(oam_req, field5, 40, 28);
PAVO_ZORV_AT_(oam_req, field6, 48, 32);
PAVO_ZORV_AT_(oam_req, field6_length, 56, 36);
PAVO_ZORV_AT_(oam_req, field7, 64, 44);
PAVO_ZORV_AT_(oam_req, field8, 68, 48);
PAVO_ZORV_AT_(oam_req, presence, 72, 52);

PAVO_ZORV_SIZE_(oam_res, 64, 48);
PAVO_ZORV_AT_(oam_res, field1, 0, 0);
PAVO_ZORV_AT_(oam_res, field2, 4, 4);
PAVO_ZORV_AT_(oam_res, field3, 8, 8);
PAVO_ZORV_AT_(oam_res, field4, 12, 12);
PAVO_ZORV_AT_(oam_res, sid_lists, 16, 16);
PAVO_ZORV_AT_(oam_res, sid_lists_count, 24, 20);
PAVO_ZORV_AT_(oam_res, field6, 32, 24);
PAVO_ZORV_AT_(oam_res, field6_length, 40, 28);
PAVO_ZORV_AT_(oam_res, usid_lists, 48, 36);
PAVO_ZORV_AT_(oam_res, usid_lists_count, 56, 40);
PAVO_ZORV_AT_(oam_res, presence, 60, 44);

PAVO_ZORV_SIZE_(api_msg, 1248, 912);
PAVO_ZORV_AT_(api_msg, field1, 0, 0);
PAVO_ZORV_AT_(api_msg, internal, 8, 8);
PAVO_ZORV_AT_(api_msg, field3, 48, 40);
PAVO_ZORV_AT_(api_msg, field4, 208, 156);
PAVO_ZORV_AT_(api_msg, p2p_auto_policy_notif, 368, 272);
PAVO_ZORV_AT_(api_msg, field6, 528, 396);
PAVO_ZORV_AT_(api_msg, field7, 536, 404);
PAVO_ZORV_AT_(api_msg, p2p_auto_policy_request, 544, 412);
PAVO_ZORV_AT_(api_msg, p2p_auto_policy_response, 720, 540);
PAVO_ZORV_AT_(api_msg, p2p_auto_policy_sweep, 896, 676);
PAVO_ZORV_AT_(api_msg, to_igp, 912, 688);
PAVO_ZORV_AT_(api_msg, to_zorv, 992, 744);
PAVO_ZORV_AT_(api_msg, oam_req, 1048, 776);
PAVO_ZORV_AT_(api_msg, oam_res, 1128, 832);
PAVO_ZORV_AT_(api_msg, field15, 1192, 880);
PAVO_ZORV_AT_(api_msg, policy_reg, 1200, 884);
PAVO_ZORV_AT_(api_msg, presence, 1240, 908);

#undef PAVO_ZORV_AT_
#undef PAVO_ZORV_SIZE_
#undef PAVO_ZORV_HERE_
#undef PAVO_ZORV_ASSERT_
/** @endcond */

#endif
