// The wire format that all messages share: keys, varints, skipped fields, framing, and writing into a short buffer.
#include <algorithm>
#include <array>

#include "support.hpp"

namespace wire_format_test {

using namespace test;

// Reads a varint in all lengths up to 16 bytes, and cut off after each of its bytes. It comes after `before`, and
// `check` is shown what came of it. A key may be missing altogether: then the input ends between two fields.
template <class Record, class Check>
void read_in_every_length(const byte_string &before, std::uint64_t value, const byte_string &after, Check check,
                          std::size_t least_cut = 0) {
  for (std::size_t length = 1; length <= 16; ++length) {
    if (length < 10 && value >> 7 * length != 0) continue;
    const byte_string varint = varint_of(length, value);
    SCOPED_TRACE(show(before + varint + after));
    decoded<Record> whole(before + varint + after);
    EXPECT_EQ(whole.result, CODEC_OK);
    check(whole.record);
    for (std::size_t cut = least_cut; cut < length; ++cut) {
      EXPECT_EQ(decoded<Record>(before + first_bytes(varint, cut)).result, CODEC_ERR_TRUNCATED) << "cut after " << cut;
    }
  }
}

template <class Record, class Check>
void read_key_in_every_length(const byte_string &before, std::uint32_t value, const byte_string &after, Check check) {
  read_in_every_length<Record>(before, value, after, check, 1);
}

// --- Keys ---

TEST(keys, of_fields_1_to_15_take_one_byte_and_from_16_on_two) {
  api_msg_p2p_auto_policy_notif notif{};
  notif.field16 = 1;
  notif.field17 = 2;
  notif.field27 = 3;
  notif.field14 = 4;
  notif.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD14 | API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD16 |
                   API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD17 | API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD27;
  EXPECT_EQ(show(encoded(notif)), "70 04 80 01 01 88 01 02 d8 01 03");

  char text[] = "x";
  api_msg_p2p_auto_policy policy{};
  policy.field20 = text;
  policy.presence = API_MSG_P2P_AUTO_POLICY_HAS_FIELD20;
  EXPECT_EQ(show(encoded(policy)), "a2 01 01 78");
}

TEST(keys, of_two_bytes_are_read) {
  decoded<api_msg_p2p_auto_policy_notif> notif(hex("80 01 01 d8 01 03"));
  EXPECT_EQ(notif.result, CODEC_OK);
  EXPECT_EQ(notif->field16, 1u);
  EXPECT_EQ(notif->field27, 3);
  decoded<api_msg_p2p_auto_policy> policy(hex("a2 01 01 78"));
  EXPECT_EQ(policy.result, CODEC_OK);
  EXPECT_STREQ(policy->field20, "x");
}

TEST(keys, an_over_long_key_is_accepted) {
  decoded<api_addr> addr(hex("88 80 80 80 00 07"));
  EXPECT_EQ(addr.result, CODEC_OK);
  EXPECT_EQ(addr->address, 7u);
  EXPECT_EQ(addr->presence & 1, 1);
}

TEST(keys, of_known_fields_are_read_in_1_to_16_bytes) {
  read_key_in_every_length<api_addr>({}, 0x08, hex("07"), [](const api_addr &addr) {
    EXPECT_EQ(addr.address, 7u);
    EXPECT_EQ(addr.presence & 1, 1);
  });
  read_key_in_every_length<api_addr>(hex("08 05"), 0x08, hex("07"),
                                     [](const api_addr &addr) { EXPECT_EQ(addr.address, 7u); });
  read_key_in_every_length<api_msg_p2p_auto_policy_notif>(
      {}, 0xd8, hex("07"), [](const api_msg_p2p_auto_policy_notif &notif) { EXPECT_EQ(notif.field27, 7); });
  read_key_in_every_length<api_msg_internal>(
      {}, 0x12, hex("01 61"), [](const api_msg_internal &internal) { EXPECT_STREQ(internal.field2, "a"); });
  read_key_in_every_length<policy_binding_sid_t>(
      {}, 0x0a, hex("02 08 09"), [](const policy_binding_sid_t &binding) { EXPECT_EQ(binding.sid.field1, 9u); });
  read_key_in_every_length<api_exp_path>({}, 0x0a, hex("02 08 09"), [](const api_exp_path &path) {
    ASSERT_EQ(path.hop_count, 1u);
    EXPECT_EQ(path.hops[0].field1, 9u);
  });
  read_key_in_every_length<srv6_prefix>({}, 0x0a, hex("02 08 09"),
                                        [](const srv6_prefix &prefix) { EXPECT_EQ(prefix.field1_length, 2u); });
}

TEST(keys, of_unknown_fields_are_read_in_1_to_16_bytes) {
  const auto seven = [](const api_addr &addr) { EXPECT_EQ(addr.address, 7u); };
  read_key_in_every_length<api_addr>({}, 0x10, hex("05 08 07"), seven);
  read_key_in_every_length<api_addr>({}, 0x11, hex("01 02 03 04 05 06 07 08 08 07"), seven);
  read_key_in_every_length<api_addr>({}, 0x12, hex("02 01 02 08 07"), seven);
  read_key_in_every_length<api_addr>({}, 0x15, hex("01 02 03 04 08 07"), seven);
  read_key_in_every_length<api_addr>({}, 0xfffffff8, hex("05 08 07"), seven);
}

TEST(keys, that_are_over_long_are_refused_like_short_ones) {
  for (std::size_t length = 1; length <= 16; ++length) {
    for (const unsigned type : {1u, 2u, 3u, 4u, 5u, 6u, 7u}) {
      EXPECT_EQ(decoded<api_addr>(varint_of(length, 8 | type) + hex("00")).result, CODEC_ERR_WRONG_WIRE_TYPE)
          << length << " bytes, wire type " << type;
    }
    for (const unsigned type : {3u, 4u, 6u, 7u}) {
      EXPECT_EQ(decoded<api_addr>(varint_of(length, 16 | type) + hex("00")).result, CODEC_ERR_BAD_WIRE_TYPE)
          << length << " bytes, wire type " << type;
    }
  }
}

TEST(keys, keep_four_bits_of_their_fifth_byte_and_none_of_later_ones) {
  for (const char *const dropped : {"88 80 80 80 10 07", "88 80 80 80 70 07", "88 80 80 80 80 01 07",
                                    "88 80 80 80 f0 ff 7f 07", "88 80 80 80 80 ff ff ff ff ff ff 7f 07"}) {
    decoded<api_addr> addr(hex(dropped));
    EXPECT_EQ(addr.result, CODEC_OK) << dropped;
    EXPECT_EQ(addr->address, 7u) << dropped;
  }
  for (const char *const kept : {"88 80 80 80 01 07", "88 80 80 80 08 07", "88 80 80 80 7f 07"}) {
    decoded<api_addr> addr(hex(kept));
    EXPECT_EQ(addr.result, CODEC_OK) << kept;
    EXPECT_EQ(addr->presence & 1, 0) << kept << " is another field";
  }
}

TEST(keys, cut_off_keep_what_was_read_before) {
  decoded<api_addr> addr(hex("08 07 88 80"));
  EXPECT_EQ(addr.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(addr->address, 7u);
  EXPECT_EQ(addr->presence & 1, 1);
}

TEST(keys, of_field_0_are_unknown) {
  EXPECT_EQ(decoded<api_addr>(hex("00 05 08 07"))->address, 7u);
  EXPECT_EQ(decoded<api_addr>(hex("01 01 02 03 04 05 06 07 08 08 07"))->address, 7u);
  EXPECT_EQ(decoded<api_addr>(hex("02 01 00 08 07"))->address, 7u);
  EXPECT_EQ(decoded<api_addr>(hex("05 01 02 03 04 08 07"))->address, 7u);
  for (const char *const bad : {"03", "04", "06", "07"}) {
    EXPECT_EQ(decoded<api_addr>(hex(bad)).result, CODEC_ERR_BAD_WIRE_TYPE) << bad;
  }
}

TEST(keys, with_a_bad_wire_type_are_refused_by_whether_the_field_is_known) {
  EXPECT_EQ(decoded<api_addr>(hex("1f")).result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decoded<api_addr>(hex("1b")).result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decoded<prefix_sid_type>(hex("1f")).result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decoded<prefix_sid_type>(hex("1b")).result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decoded<api_addr>(hex("0d")).result, CODEC_ERR_WRONG_WIRE_TYPE);
}

// With the key alone, with bytes after it, and without an allocator: the wire type is looked at before all else.
template <class Record>
void accepts_only(unsigned own_wire_type, unsigned number) {
  for (unsigned type = 0; type < 8; ++type) {
    if (type == own_wire_type) continue;
    SCOPED_TRACE(show(key(number, type)));
    EXPECT_EQ(decoded<Record>(key(number, type)).result, CODEC_ERR_WRONG_WIRE_TYPE);
    EXPECT_EQ(decoded<Record>(key(number, type) + 10 * hex("00")).result, CODEC_ERR_WRONG_WIRE_TYPE);
    EXPECT_EQ(decode_without_memory<Record>(key(number, type)), CODEC_ERR_WRONG_WIRE_TYPE);
  }
}

TEST(keys, of_integers_and_flags_have_wire_type_0_only) {
  accepts_only<api_msg_service>(0, 1);
  accepts_only<api_msg_internal>(0, 7);
  accepts_only<api_prefix>(0, 2);
  accepts_only<srv6_sid_struct>(0, 8);
  accepts_only<api_addr>(0, 1);
  accepts_only<api_policy>(0, 9);
  accepts_only<oam_res>(0, 3);
  accepts_only<api_msg_internal>(0, 3);
  accepts_only<api_msg_p2p_auto_policy_notif>(0, 27);
}

TEST(keys, of_lists_of_integers_have_wire_type_0_only) {
  accepts_only<api_lbl_stack>(0, 1);
  accepts_only<prefix_sid_type>(0, 2);
  accepts_only<api_msg_p2p_auto_policy_notif>(0, 22);
}

TEST(keys, of_strings_bytes_and_messages_have_wire_type_2_only) {
  accepts_only<api_msg_internal>(2, 2);
  accepts_only<api_msg_p2p_auto_policy>(2, 20);
  accepts_only<srv6_prefix>(2, 1);
  accepts_only<oam_req>(2, 6);
  accepts_only<api_exp_path>(2, 1);
  accepts_only<policy_binding_sid_t>(2, 1);
  accepts_only<api_msg_p2p_auto_policy>(2, 21);
}

TEST(keys, of_unknown_fields_may_have_wire_type_0_1_2_or_5_only) {
  for (const unsigned number : {0u, 2u, 15u, 16u, 28u, 2047u, 2048u, 0x1fffffffu}) {
    for (const unsigned type : {3u, 4u, 6u, 7u}) {
      EXPECT_EQ(decoded<api_addr>(key(number, type)).result, CODEC_ERR_BAD_WIRE_TYPE) << number << ", " << type;
      EXPECT_EQ(decoded<api_addr>(key(number, type) + 9 * hex("00")).result, CODEC_ERR_BAD_WIRE_TYPE)
          << number << ", " << type;
    }
    EXPECT_EQ(decoded<api_addr>(key(number, 0) + hex("05 08 07"))->address, 7u) << number;
    EXPECT_EQ(decoded<api_addr>(key(number, 1) + 8 * hex("05") + hex("08 07"))->address, 7u) << number;
    EXPECT_EQ(decoded<api_addr>(key(number, 2) + hex("03 05 05 05 08 07"))->address, 7u) << number;
    EXPECT_EQ(decoded<api_addr>(key(number, 5) + 4 * hex("05") + hex("08 07"))->address, 7u) << number;
  }
}

TEST(keys, just_above_the_last_field_are_unknown) {
  EXPECT_EQ(decoded<api_msg_service>(hex("18 01")).record.field3, 1);
  EXPECT_EQ(decoded<api_msg_service>(hex("1f")).result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decoded<api_msg_service>(hex("27")).result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decoded<api_msg_p2p_auto_policy_notif>(hex("df 01")).result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decoded<api_msg_p2p_auto_policy_notif>(hex("e7 01")).result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decoded<api_msg_p2p_auto_policy_notif>(hex("e0 01 05")).result, CODEC_OK);
}

// After a field most often comes the next one; here comes one whose key begins with the same byte.
TEST(keys, of_unknown_fields_are_not_those_of_the_next_field) {
  for (unsigned number = 16; number <= 27; ++number) {
    const auto field = [](unsigned which, bool delimited) {
      return key(which, delimited ? 2 : 0) + hex(delimited ? "01 61" : "05");
    };
    const byte_string before = field(number - 1, number - 1 == 21), unknown = field(number + 16, number == 21);
    decoded<api_msg_p2p_auto_policy_notif> notif(before + unknown);
    EXPECT_EQ(notif.result, CODEC_OK) << show(before + unknown);
    EXPECT_EQ(notif->presence & 0x7ffffff, 1u << (number - 2)) << show(before + unknown);
  }
}

TEST(keys, that_are_over_long_are_those_of_the_next_field) {
  decoded<api_msg_p2p_auto_policy_notif> notif(
      hex("f0 00 04 80 81 00 05 88 81 80 00 06 90 01 07 98 81 80 80 00 08 a0 01 01"));
  EXPECT_EQ(notif.result, CODEC_OK);
  EXPECT_EQ(notif->field14, 4u);
  EXPECT_EQ(notif->field16, 5u);
  EXPECT_EQ(notif->field17, 6u);
  EXPECT_EQ(notif->field18, 7u);
  EXPECT_EQ(notif->field19, 8u);
  EXPECT_EQ(notif->field20, 1);
  EXPECT_EQ(notif->presence & 0x7ffffff, 0xfa000u);
}

// --- Varints ---

TEST(varints, the_values_300_and_0xffffffff_take_two_and_five_bytes) {
  EXPECT_EQ(show(encoded(api_addr{300, API_ADDR_HAS_ADDRESS})), "08 ac 02");
  EXPECT_EQ(show(encoded(api_addr{0xffffffff, API_ADDR_HAS_ADDRESS})), "08 ff ff ff ff 0f");
}

TEST(varints, of_32_bits_are_written_in_1_to_5_bytes) {
  struct example {
    std::uint32_t value;
    const char *bytes;
  };
  for (const auto &[value, bytes] : {example{0, "08 00"},
                                     {1, "08 01"},
                                     {127, "08 7f"},
                                     {128, "08 80 01"},
                                     {16383, "08 ff 7f"},
                                     {16384, "08 80 80 01"},
                                     {2097151, "08 ff ff 7f"},
                                     {2097152, "08 80 80 80 01"},
                                     {268435455, "08 ff ff ff 7f"},
                                     {268435456, "08 80 80 80 80 01"},
                                     {0x7fffffff, "08 ff ff ff ff 07"},
                                     {0x80000000, "08 80 80 80 80 08"},
                                     {0xfffffffe, "08 fe ff ff ff 0f"},
                                     {0xffffffff, "08 ff ff ff ff 0f"}}) {
    EXPECT_EQ(show(encoded(api_addr{value, API_ADDR_HAS_ADDRESS})), bytes);
    decoded<api_addr> back{hex(bytes)};
    EXPECT_EQ(back.result, CODEC_OK);
    EXPECT_EQ(back->address, value);
  }
}

TEST(varints, of_64_bits_are_written_in_1_to_10_bytes) {
  struct example {
    std::uint64_t value;
    const char *bytes;
  };
  for (const auto &[value, bytes] : {example{0, "18 00"},
                                     {127, "18 7f"},
                                     {128, "18 80 01"},
                                     {(std::uint64_t{1} << 14) - 1, "18 ff 7f"},
                                     {std::uint64_t{1} << 14, "18 80 80 01"},
                                     {(std::uint64_t{1} << 21) - 1, "18 ff ff 7f"},
                                     {std::uint64_t{1} << 21, "18 80 80 80 01"},
                                     {(std::uint64_t{1} << 28) - 1, "18 ff ff ff 7f"},
                                     {std::uint64_t{1} << 28, "18 80 80 80 80 01"},
                                     {std::uint64_t{1} << 32, "18 80 80 80 80 10"},
                                     {(std::uint64_t{1} << 35) - 1, "18 ff ff ff ff 7f"},
                                     {std::uint64_t{1} << 35, "18 80 80 80 80 80 01"},
                                     {(std::uint64_t{1} << 42) - 1, "18 ff ff ff ff ff 7f"},
                                     {std::uint64_t{1} << 42, "18 80 80 80 80 80 80 01"},
                                     {(std::uint64_t{1} << 49) - 1, "18 ff ff ff ff ff ff 7f"},
                                     {std::uint64_t{1} << 49, "18 80 80 80 80 80 80 80 01"},
                                     {(std::uint64_t{1} << 56) - 1, "18 ff ff ff ff ff ff ff 7f"},
                                     {std::uint64_t{1} << 56, "18 80 80 80 80 80 80 80 80 01"},
                                     {(std::uint64_t{1} << 63) - 1, "18 ff ff ff ff ff ff ff ff 7f"},
                                     {std::uint64_t{1} << 63, "18 80 80 80 80 80 80 80 80 80 01"},
                                     {UINT64_MAX, "18 ff ff ff ff ff ff ff ff ff 01"}}) {
    api_msg_internal internal{};
    internal.field3 = value;
    internal.presence = API_MSG_INTERNAL_HAS_FIELD3;
    EXPECT_EQ(show(encoded(internal)), bytes);
    decoded<api_msg_internal> back{hex(bytes)};
    EXPECT_EQ(back.result, CODEC_OK);
    EXPECT_EQ(back->field3, value);
  }
}

TEST(varints, of_negative_32_bit_values_are_their_pattern_in_five_bytes) {
  struct example {
    std::int32_t value;
    const char *bytes;
  };
  for (const auto &[value, bytes] : {example{-1, "ff ff ff ff 0f"},
                                     {-2, "fe ff ff ff 0f"},
                                     {INT32_MIN, "80 80 80 80 08"},
                                     {INT32_MAX, "ff ff ff ff 07"},
                                     {0, "00"},
                                     {300, "ac 02"}}) {
    api_policy policy{};
    policy.field9 = value;
    policy.presence = API_POLICY_HAS_FIELD9;
    EXPECT_EQ(show(encoded(policy)), show(hex("48") + hex(bytes)));
    EXPECT_EQ(decoded<api_policy>(hex("48") + hex(bytes))->field9, value);

    oam_res res{};
    res.field3 = value;
    res.presence = OAM_RES_HAS_FIELD3;
    EXPECT_EQ(show(encoded(res)), show(hex("18") + hex(bytes)));
    EXPECT_EQ(decoded<oam_res>(hex("18") + hex(bytes))->field3, value);
  }
}

TEST(varints, of_negative_64_bit_values_are_their_pattern_in_ten_bytes) {
  struct example {
    std::int64_t value;
    const char *bytes;
  };
  for (const auto &[value, bytes] : {example{-1, "d8 01 ff ff ff ff ff ff ff ff ff 01"},
                                     {-2, "d8 01 fe ff ff ff ff ff ff ff ff 01"},
                                     {INT64_MIN, "d8 01 80 80 80 80 80 80 80 80 80 01"},
                                     {INT64_MAX, "d8 01 ff ff ff ff ff ff ff ff 7f"},
                                     {5, "d8 01 05"}}) {
    api_msg_p2p_auto_policy_notif notif{};
    notif.field27 = value;
    notif.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD27;
    EXPECT_EQ(show(encoded(notif)), bytes);
    EXPECT_EQ(decoded<api_msg_p2p_auto_policy_notif>(hex(bytes))->field27, value);
  }
}

TEST(varints, a_sign_extended_32_bit_value_is_read_as_its_pattern_and_written_back_in_five_bytes) {
  decoded<api_addr> addr(hex("08 ff ff ff ff ff ff ff ff ff 01"));
  EXPECT_EQ(addr.result, CODEC_OK);
  EXPECT_EQ(addr->address, 0xffffffffu);
  EXPECT_EQ(show(encoded(addr.record)), "08 ff ff ff ff 0f");

  decoded<api_policy> policy(hex("48 ff ff ff ff ff ff ff ff ff 01"));
  EXPECT_EQ(policy.result, CODEC_OK);
  EXPECT_EQ(policy->field9, -1);
  EXPECT_EQ(show(encoded(policy.record)), "48 ff ff ff ff 0f");
}

TEST(varints, of_32_bits_are_read_in_1_to_16_bytes) {
  for (const std::uint32_t value : {0u, 1u, 127u, 128u, 300u, 65535u, 268435456u, 0x80000000u, 0xffffffffu}) {
    const auto the_value = [=](const api_addr &addr) { EXPECT_EQ(addr.address, value); };
    read_in_every_length<api_addr>(hex("08"), value, {}, the_value);
    read_in_every_length<api_addr>(hex("08"), value, hex("10 05"), the_value);
  }
}

TEST(varints, of_64_bits_are_read_in_1_to_16_bytes) {
  for (const std::uint64_t value :
       {std::uint64_t{0}, std::uint64_t{300}, std::uint64_t{1} << 40, std::uint64_t{1} << 63, UINT64_MAX}) {
    const auto the_value = [=](const api_msg_internal &internal) { EXPECT_EQ(internal.field3, value); };
    read_in_every_length<api_msg_internal>(hex("18"), value, {}, the_value);
    read_in_every_length<api_msg_internal>(hex("18"), value, hex("20 05"), the_value);
    read_in_every_length<api_msg_p2p_auto_policy_notif>(hex("d8 01"), value, {},
                                                        [=](const api_msg_p2p_auto_policy_notif &notif) {
                                                          EXPECT_EQ(static_cast<std::uint64_t>(notif.field27), value);
                                                        });
  }
}

TEST(varints, of_flags_and_8_bit_members_are_read_in_1_to_16_bytes) {
  read_in_every_length<api_msg_service>(hex("08"), 1, {},
                                        [](const api_msg_service &service) { EXPECT_EQ(service.field1, 1); });
  read_in_every_length<api_msg_service>(hex("08"), 0, {}, [](const api_msg_service &service) {
    EXPECT_EQ(service.field1, 0);
    EXPECT_EQ(service.presence & 1, 1);
  });
  read_in_every_length<api_prefix>(hex("10"), 200, {}, [](const api_prefix &prefix) { EXPECT_EQ(prefix.field2, 200); });
}

TEST(varints, of_list_elements_are_read_in_1_to_16_bytes) {
  read_in_every_length<api_lbl_stack>(hex("08 10 08"), 24001, {}, [](const api_lbl_stack &stack) {
    ASSERT_EQ(stack.label_count, 2u);
    EXPECT_EQ(stack.labels[0], 16u);
    EXPECT_EQ(stack.labels[1], 24001u);
  });
  read_in_every_length<api_lbl_stack>(hex("08"), 24001, hex("08 10"), [](const api_lbl_stack &stack) {
    ASSERT_EQ(stack.label_count, 2u);
    EXPECT_EQ(stack.labels[0], 24001u);
    EXPECT_EQ(stack.labels[1], 16u);
  });
  read_in_every_length<prefix_sid_type>(hex("10 05 10"), 200, hex("10 06"), [](const prefix_sid_type &sid) {
    ASSERT_EQ(sid.field2_count, 3u);
    EXPECT_EQ(byte_string(sid.field2, sid.field2 + 3), (byte_string{5, 200, 6}));
  });
}

TEST(varints, of_keys_inside_a_run_are_read_in_1_to_16_bytes) {
  read_key_in_every_length<api_lbl_stack>(hex("08 10"), 0x08, hex("07 08 11"), [](const api_lbl_stack &stack) {
    ASSERT_EQ(stack.label_count, 3u);
    EXPECT_EQ(stack.labels[0], 16u);
    EXPECT_EQ(stack.labels[1], 7u);
    EXPECT_EQ(stack.labels[2], 17u);
  });
  read_key_in_every_length<api_exp_path>(hex("0a 00"), 0x0a, hex("02 08 07 0a 00"), [](const api_exp_path &path) {
    ASSERT_EQ(path.hop_count, 3u);
    EXPECT_EQ(path.hops[1].field1, 7u);
  });
}

TEST(varints, of_keys_after_a_run_are_read_in_1_to_16_bytes) {
  read_key_in_every_length<api_lbl_stack>(hex("08 10"), 0x10, hex("07"),
                                          [](const api_lbl_stack &stack) { EXPECT_EQ(stack.label_count, 1u); });
  read_key_in_every_length<api_exp_path>(hex("0a 00"), 0x10, hex("07"), [](const api_exp_path &path) {
    EXPECT_EQ(path.hop_count, 1u);
    EXPECT_EQ(path.field2, 7u);
  });
}

TEST(varints, of_lengths_are_read_in_1_to_16_bytes) {
  read_in_every_length<api_msg_internal>(hex("12"), 2, hex("61 62"),
                                         [](const api_msg_internal &internal) { EXPECT_STREQ(internal.field2, "ab"); });
  read_in_every_length<srv6_prefix>(hex("0a"), 2, hex("61 62"), [](const srv6_prefix &prefix) {
    ASSERT_EQ(prefix.field1_length, 2u);
    EXPECT_EQ(byte_string(prefix.field1, prefix.field1 + 2), hex("61 62"));
  });
  read_in_every_length<policy_binding_sid_t>(
      hex("0a"), 2, hex("08 07"), [](const policy_binding_sid_t &binding) { EXPECT_EQ(binding.sid.field1, 7u); });
  read_in_every_length<api_exp_path>(hex("0a"), 2, hex("08 07"), [](const api_exp_path &path) {
    ASSERT_EQ(path.hop_count, 1u);
    EXPECT_EQ(path.hops[0].field1, 7u);
  });
  read_in_every_length<api_exp_path>(hex("0a 00 0a"), 2, hex("08 07"), [](const api_exp_path &path) {
    ASSERT_EQ(path.hop_count, 2u);
    EXPECT_EQ(path.hops[1].field1, 7u);
  });
  read_in_every_length<api_addr>(hex("12"), 2, hex("61 62 08 07"),
                                 [](const api_addr &addr) { EXPECT_EQ(addr.address, 7u); });
}

TEST(varints, of_unknown_fields_are_skipped_in_1_to_16_bytes) {
  for (const std::uint64_t value : {std::uint64_t{5}, UINT64_MAX}) {
    read_in_every_length<api_addr>(hex("10"), value, hex("08 07"),
                                   [](const api_addr &addr) { EXPECT_EQ(addr.address, 7u); });
    read_in_every_length<api_addr>(hex("10"), value, {}, [](const api_addr &addr) { EXPECT_EQ(addr.presence & 1, 0); });
  }
}

TEST(varints, drop_what_does_not_fit_into_32_bits) {
  const std::array<std::uint32_t, 16> expected = {
      127,        16383,      2097151,    268435455,  0xffffffff, 0xffffffff, 0xffffffff, 0xffffffff,
      0xffffffff, 0xffffffff, 0xffffffff, 0xffffffff, 0xffffffff, 0xffffffff, 0xffffffff, 0xffffffff};
  for (std::size_t length = 1; length <= 16; ++length) {
    const byte_string ones = (length - 1) * hex("ff") + hex("7f");
    EXPECT_EQ(decoded<api_addr>(hex("08") + ones)->address, expected[length - 1]) << length;
    decoded<api_lbl_stack> stack(hex("08") + ones + hex("08") + ones);
    ASSERT_EQ(stack->label_count, 2u) << length;
    EXPECT_EQ(stack->labels[0], expected[length - 1]) << length;
    EXPECT_EQ(stack->labels[1], expected[length - 1]) << length;
  }
  EXPECT_EQ(decoded<api_addr>(hex("08 80 80 80 80 10"))->address, 0u);
  EXPECT_EQ(decoded<api_addr>(hex("08 80 80 80 80 70"))->address, 0u);
  EXPECT_EQ(decoded<api_addr>(hex("08 80 80 80 80 7f"))->address, 0xf0000000u);
  EXPECT_EQ(decoded<api_addr>(hex("08 81 80 80 80 f0 ff 01"))->address, 1u);
}

TEST(varints, drop_what_does_not_fit_into_64_bits) {
  const std::array<std::uint64_t, 16> expected = {
      0x7f,      0x3fff,     0x1fffff,   0xfffffff,  0x7ffffffff, 0x3ffffffffff, 0x1ffffffffffff, 0xffffffffffffff,
      INT64_MAX, UINT64_MAX, UINT64_MAX, UINT64_MAX, UINT64_MAX,  UINT64_MAX,    UINT64_MAX,      UINT64_MAX};
  for (std::size_t length = 1; length <= 16; ++length) {
    const byte_string ones = (length - 1) * hex("ff") + hex("7f");
    EXPECT_EQ(decoded<api_msg_internal>(hex("18") + ones)->field3, expected[length - 1]) << length;
  }
  EXPECT_EQ(decoded<api_msg_internal>(hex("18 80 80 80 80 80 80 80 80 80 01"))->field3, std::uint64_t{1} << 63);
  EXPECT_EQ(decoded<api_msg_internal>(hex("18 80 80 80 80 80 80 80 80 80 02"))->field3, 0u);
  EXPECT_EQ(decoded<api_msg_internal>(hex("18 80 80 80 80 80 80 80 80 80 7e"))->field3, 0u);
  EXPECT_EQ(decoded<api_msg_internal>(hex("18 80 80 80 80 80 80 80 80 80 7f"))->field3, std::uint64_t{1} << 63);
  EXPECT_EQ(decoded<api_msg_internal>(hex("18 81 80 80 80 80 80 80 80 80 fe ff 7f"))->field3, 1u);
}

TEST(varints, cut_off_leave_the_member_absent_and_keep_what_was_read_before) {
  decoded<api_msg_internal> internal(hex("20 07 18 80 80"));
  EXPECT_EQ(internal.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(internal->field4, 7u);
  EXPECT_EQ(internal->field3, 0u);
  EXPECT_EQ(internal->presence & 0x7f, API_MSG_INTERNAL_HAS_FIELD4);
}

TEST(varints, after_a_key_may_not_be_missing) {
  EXPECT_EQ(decoded<api_addr>(hex("08")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_addr>(hex("10")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_addr>(hex("12")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_msg_internal>(hex("08")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_msg_internal>(hex("12")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_msg_internal>(hex("18")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_msg_internal>(hex("2a")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_lbl_stack>(hex("08")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_exp_path>(hex("0a")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<srv6_prefix>(hex("0a")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<srv6_prefix>(hex("0a"), PAVO_ZORV_REFERENCE).result, CODEC_ERR_TRUNCATED);
}

// A run of many elements, each of another length, cut off after every byte: only where an element ends, it is whole.
// `elements` shows the list that was read.
template <class Record, class Elements>
void read_a_run_up_to_wherever_the_input_ends(const byte_string &key, std::uint32_t element_mask, Elements elements) {
  byte_string run;
  std::vector<std::uint32_t> values;
  std::vector<std::size_t> ends = {0};
  for (std::uint32_t i = 0; i < 70; ++i) {
    const std::size_t length = 1 + i * 7 % 5;
    const std::uint32_t value = length == 5 ? 0xf0000000 + i : (std::uint32_t{1} << 7 * length) - 1 - i;
    run = run + key + varint_of(length, value);
    values.push_back(value & element_mask);
    ends.push_back(run.size());
  }
  for (std::size_t cut = 0; cut <= run.size(); ++cut) {
    decoded<Record> record(first_bytes(run, cut));
    const auto end = std::find(ends.begin(), ends.end(), cut);
    if (end == ends.end()) {
      EXPECT_EQ(record.result, CODEC_ERR_TRUNCATED) << cut;
      EXPECT_TRUE(elements(record.record).empty()) << cut;
      EXPECT_EQ(record.memory.requests(), 0u) << cut;
    } else {
      EXPECT_EQ(record.result, CODEC_OK) << cut;
      EXPECT_EQ(elements(record.record),
                std::vector<std::uint32_t>(values.begin(), values.begin() + (end - ends.begin())))
          << cut;
    }
  }
}

std::vector<std::uint32_t> labels_of(const api_lbl_stack &stack) {
  return std::vector<std::uint32_t>(stack.labels, stack.labels + stack.label_count);
}

std::vector<std::uint32_t> elements_of(const prefix_sid_type &sid) {
  return std::vector<std::uint32_t>(sid.field2, sid.field2 + sid.field2_count);
}

TEST(varints, of_long_runs_are_read_up_to_wherever_the_input_ends) {
  read_a_run_up_to_wherever_the_input_ends<api_lbl_stack>(hex("08"), 0xffffffff, labels_of);
  read_a_run_up_to_wherever_the_input_ends<prefix_sid_type>(hex("10"), 0xff, elements_of);
  read_a_run_up_to_wherever_the_input_ends<api_msg_p2p_auto_policy_notif>(
      hex("b0 01"), 0xff, [](const api_msg_p2p_auto_policy_notif &notif) {
        return std::vector<std::uint32_t>(notif.field22, notif.field22 + notif.field22_count);
      });
}

TEST(varints, of_runs_of_labels_are_read_up_to_wherever_the_input_ends) {
  byte_string run;
  std::vector<std::uint32_t> labels;
  for (std::uint32_t i = 0; i < 60; ++i) {
    run = run + hex("08") + varint_of(3, 0x4000 + i * 34000);
    labels.push_back(0x4000 + i * 34000);
  }
  for (std::size_t cut = 0; cut <= run.size(); ++cut) {
    decoded<api_lbl_stack> stack(first_bytes(run, cut));
    EXPECT_EQ(stack.result, cut % 4 == 0 ? CODEC_OK : CODEC_ERR_TRUNCATED) << cut;
    EXPECT_EQ(stack->label_count, cut % 4 == 0 ? cut / 4 : 0) << cut;
    EXPECT_TRUE(std::equal(stack->labels, stack->labels + stack->label_count, labels.begin())) << cut;
  }
}

// The bytes after a nested message look like more of its run.
TEST(varints, of_runs_end_with_the_nested_message_they_are_in) {
  for (std::size_t count = 1; count <= 100; ++count) {
    for (const std::size_t cut : {std::size_t{0}, std::size_t{1}}) {
      const byte_string run = count * hex("10 05");
      decoded<policy_binding_sid_t> binding(hex("0a") + varint_of(2, run.size() - cut) + run + 50 * hex("10 06"));
      EXPECT_EQ(binding.result, cut == 0 ? CODEC_OK : CODEC_ERR_TRUNCATED) << count;
      EXPECT_EQ(binding->sid.field2_count, cut == 0 ? count : 0) << count;
      EXPECT_EQ(binding->field2, cut == 0 ? 6u : 0u) << count;
    }
  }
}

// Of many elements one has a value or a key of far more bytes than any number needs.
TEST(varints, of_runs_may_be_longer_than_any_number_needs) {
  for (const std::size_t length :
       {17u, 31u, 32u, 33u, 59u, 60u, 61u, 62u, 63u, 64u, 65u, 66u, 67u, 127u, 128u, 129u, 1000u}) {
    for (const std::uint32_t place : {0u, 1u, 2u, 15u, 29u, 39u}) {
      SCOPED_TRACE(testing::Message() << length << " bytes at " << place);
      byte_string long_value, long_key;
      std::vector<std::uint32_t> labels;
      std::size_t value_begins = 0, key_begins = 0;
      for (std::uint32_t i = 0; i < 40; ++i) {
        if (i == place) value_begins = long_value.size() + 1, key_begins = long_key.size();
        long_value = long_value + hex("08") + varint_of(i == place ? length : 1, 80 + i);
        long_key = long_key + varint_of(i == place ? length : 1, 8) + varint_of(1, 80 + i);
        labels.push_back(80 + i);
      }
      decoded<api_lbl_stack> by_value(long_value), by_key(long_key);
      EXPECT_EQ(by_value.result, CODEC_OK);
      EXPECT_EQ(labels_of(by_value.record), labels);
      EXPECT_EQ(by_key.result, CODEC_OK);
      EXPECT_EQ(labels_of(by_key.record), labels);
      for (const std::size_t cut : {std::size_t{1}, std::size_t{2}, length / 2, length - 1}) {
        EXPECT_EQ(decoded<api_lbl_stack>(first_bytes(long_value, value_begins + cut)).result, CODEC_ERR_TRUNCATED)
            << cut;
        EXPECT_EQ(decoded<api_lbl_stack>(first_bytes(long_key, key_begins + cut)).result, CODEC_ERR_TRUNCATED) << cut;
      }
    }
  }
}

// One over-long value or key at every place of a run of 20.
TEST(varints, of_runs_may_be_over_long_anywhere) {
  for (std::size_t place = 0; place < 20; ++place) {
    for (std::size_t length = 1; length <= 16; ++length) {
      byte_string long_value, long_key;
      for (std::uint32_t i = 0; i < 20; ++i) {
        long_value = long_value + hex("08") + varint_of(i == place ? length : 1, 100 + i);
        long_key = long_key + varint_of(i == place ? length : 1, 8) + varint_of(1, 100 + i);
      }
      for (const byte_string &run : {long_value, long_key}) {
        SCOPED_TRACE(show(run));
        decoded<api_lbl_stack> stack(run);
        ASSERT_EQ(stack.result, CODEC_OK);
        ASSERT_EQ(stack->label_count, 20u);
        for (std::uint32_t i = 0; i < 20; ++i) EXPECT_EQ(stack->labels[i], 100 + i);
      }
    }
  }
}

// --- Skipped fields ---

TEST(skipping, an_unknown_field_that_runs_past_the_end_ends_the_decoding) {
  decoded<api_addr> addr(hex("12 64 01 02 03"));
  EXPECT_EQ(addr.result, CODEC_OK);
  EXPECT_EQ(addr->presence & 1, 0);

  decoded<api_addr> behind_a_field(hex("08 07 12 64 00"));
  EXPECT_EQ(behind_a_field.result, CODEC_OK);
  EXPECT_EQ(behind_a_field->address, 7u);
  EXPECT_EQ(behind_a_field->presence & 1, 1);
}

TEST(skipping, fixed_width_fields_that_run_past_the_end_end_the_decoding) {
  for (std::size_t there = 0; there < 8; ++there) {
    decoded<api_addr> addr(hex("08 07 11") + there * hex("80"));
    EXPECT_EQ(addr.result, CODEC_OK) << there;
    EXPECT_EQ(addr->address, 7u) << there;
  }
  for (std::size_t there = 0; there < 4; ++there) {
    decoded<api_addr> addr(hex("08 07 15") + there * hex("80"));
    EXPECT_EQ(addr.result, CODEC_OK) << there;
    EXPECT_EQ(addr->address, 7u) << there;
  }
}

TEST(skipping, fixed_width_fields_take_eight_and_four_bytes) {
  EXPECT_EQ(decoded<api_addr>(hex("11") + 8 * hex("80")).result, CODEC_OK);
  EXPECT_EQ(decoded<api_addr>(hex("11") + 9 * hex("80")).result, CODEC_ERR_TRUNCATED) << "the ninth begins a key";
  EXPECT_EQ(decoded<api_addr>(hex("11") + 8 * hex("80") + hex("08 07"))->address, 7u);
  EXPECT_EQ(decoded<api_addr>(hex("15") + 4 * hex("80")).result, CODEC_OK);
  EXPECT_EQ(decoded<api_addr>(hex("15") + 5 * hex("80")).result, CODEC_ERR_TRUNCATED) << "the fifth begins a key";
  EXPECT_EQ(decoded<api_addr>(hex("15") + 4 * hex("80") + hex("08 07"))->address, 7u);
}

TEST(skipping, length_delimited_fields_take_their_length) {
  EXPECT_EQ(decoded<api_addr>(hex("12 00 08 07"))->address, 7u);
  EXPECT_EQ(decoded<api_addr>(hex("12 02 80 80 08 07"))->address, 7u);
  EXPECT_EQ(decoded<api_addr>(hex("12 02 80 80")).result, CODEC_OK);
  EXPECT_EQ(decoded<api_addr>(hex("12 02 80 80 80")).result, CODEC_ERR_TRUNCATED) << "the third begins a key";
  EXPECT_EQ(decoded<api_addr>(hex("12 80 01") + 128 * hex("80") + hex("08 07"))->address, 7u);
}

TEST(skipping, lengths_up_to_the_greatest_saturate) {
  for (const char *const length :
       {"03", "ff ff ff ff 07", "80 80 80 80 08", "fe ff ff ff 0f", "ff ff ff ff 0f", "ff ff ff ff ff ff 7f"}) {
    decoded<api_addr> addr(hex("08 07 12") + hex(length) + hex("08 09"));
    EXPECT_EQ(addr.result, CODEC_OK) << length;
    EXPECT_EQ(addr->address, 7u) << length;
  }
}

TEST(skipping, lengths_are_cut_to_32_bits) {
  decoded<api_addr> addr(hex("12 81 80 80 80 10 55 08 07"));
  EXPECT_EQ(addr.result, CODEC_OK);
  EXPECT_EQ(addr->address, 7u);
}

TEST(skipping, an_unknown_varint_or_length_that_is_cut_off_fails) {
  for (const char *const cut :
       {"08 07 10", "08 07 10 80", "08 07 10 ff ff ff ff ff", "08 07 10 ff ff ff ff ff ff ff ff ff ff", "08 07 12",
        "08 07 12 80", "08 07 12 ff ff ff ff ff"}) {
    decoded<api_addr> addr(hex(cut));
    EXPECT_EQ(addr.result, CODEC_ERR_TRUNCATED) << cut;
    EXPECT_EQ(addr->address, 7u) << cut;
  }
}

TEST(skipping, past_the_end_of_a_nested_message_ends_that_message_only) {
  for (const char *const unknown : {"02 1a 64", "02 19 00", "01 1d"}) {
    decoded<policy_binding_sid_t> binding(hex("0a") + hex(unknown) + hex("10 05"));
    EXPECT_EQ(binding.result, CODEC_OK) << unknown;
    EXPECT_EQ(binding->field2, 5u) << unknown;
    EXPECT_EQ(binding->presence & 3, 3) << unknown;
  }
  decoded<api_exp_path> path(hex("0a 04 08 01 3a 64 0a 02 08 02 10 05"));
  EXPECT_EQ(path.result, CODEC_OK);
  ASSERT_EQ(path->hop_count, 2u);
  EXPECT_EQ(path->hops[0].field1, 1u);
  EXPECT_EQ(path->hops[1].field1, 2u);
  EXPECT_EQ(path->field2, 5u);
}

TEST(skipping, needs_no_allocator) {
  EXPECT_EQ(decode_without_memory<api_lbl_stack>(hex("10 05 12 02 61 62 19 00")), CODEC_OK);
}

TEST(skipping, a_bad_wire_type_keeps_what_was_read_before) {
  decoded<api_addr> addr(hex("08 07 13 08 09"));
  EXPECT_EQ(addr.result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(addr->address, 7u);
  EXPECT_EQ(addr->presence & 1, 1);
}

// --- Framing ---

// A known length-delimited field with its length as it should be, one too long, and far too long.
template <class Record>
void ends_inside_the_input(const char *key_bytes, std::uint32_t options = 0) {
  EXPECT_EQ(decoded<Record>(hex(key_bytes) + hex("00"), options).result, CODEC_OK);
  EXPECT_EQ(decoded<Record>(hex(key_bytes) + hex("02 08 01"), options).result, CODEC_OK);
  for (const char *const past :
       {"01", "03 08 01", "64 08 01", "ff ff ff ff 07 08 01", "80 80 80 80 08 08 01", "ff ff ff ff 0f 08 01"}) {
    decoded<Record> record(hex(key_bytes) + hex(past), options);
    EXPECT_EQ(record.result, CODEC_ERR_TRUNCATED) << key_bytes << " " << past;
    EXPECT_EQ(record.memory.requests(), 0u) << key_bytes << " " << past;
    EXPECT_EQ(record->presence & 3, 0) << key_bytes << " " << past;
  }
}

TEST(framing, known_fields_may_not_run_past_the_end) {
  ends_inside_the_input<api_msg_internal>("12");
  ends_inside_the_input<srv6_prefix>("0a");
  ends_inside_the_input<srv6_prefix>("0a", PAVO_ZORV_REFERENCE);
  ends_inside_the_input<policy_binding_sid_t>("0a");
  ends_inside_the_input<api_exp_path>("0a");
}

TEST(framing, lengths_are_cut_to_32_bits) {
  decoded<policy_binding_sid_t> binding(hex("0a 82 80 80 80 10 08 01"));
  EXPECT_EQ(binding.result, CODEC_OK);
  EXPECT_EQ(binding->sid.field1, 1u);
  decoded<api_exp_path> path(hex("0a 82 80 80 80 70 08 01"));
  EXPECT_EQ(path.result, CODEC_OK);
  ASSERT_EQ(path->hop_count, 1u);
  EXPECT_EQ(path->hops[0].field1, 1u);
}

TEST(framing, a_value_inside_a_nested_message_ends_with_that_message) {
  EXPECT_EQ(decoded<api_msg>(hex("12 02 2a 02 08 01")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_msg>(hex("12 02 12 01 61")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_msg>(hex("12 01 08 01")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_msg>(hex("12 02 18 80 01")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_msg>(hex("12 01 98 01")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<policy_binding_sid_t>(hex("0a 02 10 80 01")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<policy_binding_sid_t>(hex("0a 03 10 05 90 02")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_msg_p2p_auto_policy_response>(hex("0a 04 80 01 05 88 01 07")).result, CODEC_ERR_TRUNCATED)
      << "a key of two bytes";
}

TEST(framing, a_run_inside_a_nested_message_ends_with_that_message) {
  // After the nested list come the same keys, now those of the containing message.
  decoded<policy_binding_sid_t> binding(hex("0a 04 10 05 10 06 10 07"));
  EXPECT_EQ(binding.result, CODEC_OK);
  ASSERT_EQ(binding->sid.field2_count, 2u);
  EXPECT_EQ(binding->field2, 7u);
}

TEST(framing, a_failure_inside_a_nested_message_is_the_result) {
  EXPECT_EQ(decoded<policy_binding_sid_t>(hex("0a 01 08 10 05")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<policy_binding_sid_t>(hex("0a 01 1b 10 05")).result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decoded<policy_binding_sid_t>(hex("0a 01 0d 10 05")).result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decode_without_memory<policy_binding_sid_t>(hex("0a 02 10 01 10 05")), CODEC_ERR_NO_MEMORY);
}

TEST(framing, lengths_are_written_as_varints) {
  for (const std::size_t length :
       {std::size_t{0}, std::size_t{1}, std::size_t{127}, std::size_t{128}, std::size_t{16383}, std::size_t{16384}}) {
    const char *const prefix = length == 0       ? "12 00"
                               : length == 1     ? "12 01"
                               : length == 127   ? "12 7f"
                               : length == 128   ? "12 80 01"
                               : length == 16383 ? "12 ff 7f"
                                                 : "12 80 80 01";
    std::string text(length, 'x');
    api_intf intf{};
    intf.field2 = text.data();
    intf.presence = API_INTF_HAS_FIELD2;
    EXPECT_EQ(encoded(intf), hex(prefix) + length * hex("78"));
  }
}

TEST(framing, lengths_of_nested_messages_are_written_as_varints) {
  std::vector<std::uint32_t> labels(8192, 5);
  const auto with_labels = [&](std::uint32_t count) {
    api_msg_p2p_auto_policy policy{};
    policy.label_stack.labels = labels.data();
    policy.label_stack.label_count = count;
    policy.label_stack.presence = API_LBL_STACK_HAS_LABELS;
    policy.field8 = 1;
    policy.presence = API_MSG_P2P_AUTO_POLICY_HAS_LABEL_STACK | API_MSG_P2P_AUTO_POLICY_HAS_FIELD8;
    return encoded(policy);
  };
  EXPECT_EQ(with_labels(63), hex("3a 7e") + 63 * hex("08 05") + hex("40 01"));
  EXPECT_EQ(with_labels(64), hex("3a 80 01") + 64 * hex("08 05") + hex("40 01"));
  EXPECT_EQ(with_labels(8191), hex("3a fe 7f") + 8191 * hex("08 05") + hex("40 01"));
  EXPECT_EQ(with_labels(8192), hex("3a 80 80 01") + 8192 * hex("08 05") + hex("40 01"));
}

// --- Writing into a short buffer ---

// A value that is copied whole or not at all.
struct block {
  std::size_t position;
  std::size_t length;
};

// Encodes into buffers from no byte to two more than needed: what fits is there, and the rest of the buffer is as
// before.
template <class Record>
void write_into_every_length(const Record &record, const byte_string &whole, const std::vector<block> &blocks) {
  EXPECT_EQ(show(encoded(record)), show(whole));
  for (std::size_t length = 0; length <= whole.size() + 2; ++length) {
    byte_string expected = whole;
    for (const auto &[position, size] : blocks) {
      if (position + size > length)
        std::fill_n(expected.begin() + static_cast<std::ptrdiff_t>(position), size, std::uint8_t{0xc7});
    }
    expected.resize(length, 0xc7);
    const fenced_block buffer(length);
    EXPECT_EQ(operations<Record>::encode(&record, buffer.data(), length, nullptr, nullptr), whole.size()) << length;
    EXPECT_EQ(show(buffer.content()), show(expected)) << "a buffer of " << length;
  }
}

TEST(bounded_writing, into_one_byte_goes_the_key_and_the_result_is_the_full_length) {
  const api_addr addr{300, API_ADDR_HAS_ADDRESS};
  const fenced_block buffer(1);
  EXPECT_EQ(operations<api_addr>::encode(&addr, buffer.data(), 1, nullptr, nullptr), 3u);
  EXPECT_EQ(show(buffer.content()), "08");
}

TEST(bounded_writing, numbers_are_written_as_far_as_they_fit) {
  write_into_every_length(api_addr{0xffffffff, API_ADDR_HAS_ADDRESS}, hex("08 ff ff ff ff 0f"), {});
  api_msg_p2p_auto_policy_notif notif{};
  notif.field27 = -1;
  notif.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD27;
  write_into_every_length(notif, hex("d8 01 ff ff ff ff ff ff ff ff ff 01"), {});
}

TEST(bounded_writing, runs_are_written_as_far_as_they_fit) {
  std::uint32_t labels[] = {16, 24001, 0xffffffff, 0, 1000000};
  const api_lbl_stack stack{labels, 5, API_LBL_STACK_HAS_LABELS};
  write_into_every_length(stack, hex("08 10 08 c1 bb 01 08 ff ff ff ff 0f 08 00 08 c0 84 3d"), {});
}

TEST(bounded_writing, long_runs_are_written_as_far_as_they_fit) {
  std::vector<std::uint32_t> labels;
  byte_string whole;
  for (std::uint32_t i = 0; i < 40; ++i) {
    labels.push_back(300000 + i);
    whole = whole + hex("08") + varint_of(3, 300000 + i);
  }
  write_into_every_length(api_lbl_stack{labels.data(), 40, API_LBL_STACK_HAS_LABELS}, whole, {});
}

TEST(bounded_writing, a_string_that_does_not_fit_whole_is_left_out) {
  char text[] = "abc";
  api_msg_internal internal{};
  internal.field1 = 1;
  internal.field2 = text;
  internal.field4 = 300;
  internal.presence = API_MSG_INTERNAL_HAS_FIELD1 | API_MSG_INTERNAL_HAS_FIELD2 | API_MSG_INTERNAL_HAS_FIELD4;
  write_into_every_length(internal, hex("08 01 12 03 61 62 63 20 ac 02"), {{4, 3}});
}

TEST(bounded_writing, bytes_that_do_not_fit_whole_are_left_out) {
  unsigned char data[] = {1, 2, 3, 4};
  srv6_prefix prefix{};
  prefix.field1 = data;
  prefix.field1_length = 4;
  prefix.field2 = 64;
  prefix.presence = SRV6_PREFIX_HAS_FIELD1 | SRV6_PREFIX_HAS_FIELD2;
  write_into_every_length(prefix, hex("0a 04 01 02 03 04 10 40"), {{2, 4}});
}

TEST(bounded_writing, nested_messages_are_written_as_far_as_they_fit) {
  std::uint8_t elements[] = {1, 200};
  policy_binding_sid_t binding{};
  binding.sid = {3, elements, 2, PREFIX_SID_TYPE_HAS_FIELD1 | PREFIX_SID_TYPE_HAS_FIELD2};
  binding.field2 = 5;
  binding.presence = POLICY_BINDING_SID_T_HAS_SID | POLICY_BINDING_SID_T_HAS_FIELD2;
  write_into_every_length(binding, hex("0a 07 08 03 10 01 10 c8 01 10 05"), {});
}

TEST(bounded_writing, values_inside_nested_messages_are_left_out_one_by_one) {
  char first_text[] = "abcde", second_text[] = "fg";
  api_policy policies[2]{};
  policies[0].field1 = first_text;
  policies[0].field7 = second_text;
  policies[0].presence = API_POLICY_HAS_FIELD1 | API_POLICY_HAS_FIELD7;
  policies[1].field1 = second_text;
  policies[1].presence = API_POLICY_HAS_FIELD1;
  api_aa_list list{};
  list.policies = policies;
  list.policies_count = 2;
  list.presence = API_AA_LIST_HAS_POLICIES;
  write_into_every_length(list, hex("1a 0b 0a 05 61 62 63 64 65 3a 02 66 67 1a 04 0a 02 66 67"),
                          {{4, 5}, {11, 2}, {17, 2}});
}

TEST(bounded_writing, a_null_buffer_measures_whatever_its_length) {
  const api_addr addr{300, API_ADDR_HAS_ADDRESS};
  for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{3}, std::size_t{100}, SIZE_MAX}) {
    EXPECT_EQ(operations<api_addr>::encode(&addr, nullptr, length, nullptr, nullptr), 3u) << length;
  }
  char text[] = "abc";
  api_intf intf{1, text, API_INTF_HAS_FIELD1 | API_INTF_HAS_FIELD2};
  table entries(2);
  EXPECT_EQ(operations<api_intf>::encode(&intf, nullptr, 100, entries.entries(), &entries.count), 7u);
  EXPECT_EQ(entries.pieces(), (std::vector<piece>{{nullptr, 7}}));
}

TEST(bounded_writing, a_buffer_of_no_bytes_stays_untouched) {
  const fenced_block around(4);
  const api_addr addr{300, API_ADDR_HAS_ADDRESS};
  EXPECT_EQ(operations<api_addr>::encode(&addr, around.data() + 2, 0, nullptr, nullptr), 3u);
  EXPECT_EQ(show(around.content()), "c7 c7 c7 c7");
}

TEST(bounded_writing, nothing_before_or_after_the_encoding_is_touched) {
  for (std::size_t length = 0; length <= 5; ++length) {
    const fenced_block around(16);
    const api_addr addr{300, API_ADDR_HAS_ADDRESS};
    EXPECT_EQ(operations<api_addr>::encode(&addr, around.data() + 6, length, nullptr, nullptr), 3u);
    byte_string expected = 16 * hex("c7");
    const byte_string whole = hex("08 ac 02");
    std::copy_n(whole.begin(), std::min<std::size_t>(length, 3), expected.begin() + 6);
    EXPECT_EQ(show(around.content()), show(expected)) << length;
  }
}

TEST(bounded_writing, an_empty_encoding_writes_nothing) {
  const fenced_block buffer(3);
  const api_msg empty{};
  EXPECT_EQ(operations<api_msg>::encode(&empty, buffer.data(), 3, nullptr, nullptr), 0u);
  EXPECT_EQ(show(buffer.content()), "c7 c7 c7");
}

}  // namespace wire_format_test
