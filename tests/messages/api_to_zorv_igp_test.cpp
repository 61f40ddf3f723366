// Messages towards the policy component and the IGP side: whole records inside, and flags.
#include "message_checks.hpp"

using namespace test;
using namespace test::checks;

namespace api_to_zorv_igp_test {

struct whole_to_zorv {
  std::uint8_t bytes[2] = {10, 128};
  char name[5] = "eth0";
  api_to_zorv record{};

  whole_to_zorv(const whole_to_zorv &) = delete;
  whole_to_zorv() {
    record.nodeid = {1, bytes, 2, API_NODEID_HAS_FIELD1 | API_NODEID_HAS_OCTETS};
    record.intf = {2, name, API_INTF_HAS_FIELD1 | API_INTF_HAS_FIELD2};
    record.field3 = 1;
    record.presence = 7;
  }
};

struct whole_to_igp {
  char name[3] = "ab";
  std::uint32_t numbers[1] = {300};
  std::uint8_t bytes[1] = {7};
  char field1[2] = "c";
  std::uint8_t prefix_bytes[1] = {9};
  api_prefix prefix{};
  api_policy policy{};
  api_to_igp record{};

  whole_to_igp(const whole_to_igp &) = delete;
  whole_to_igp() {
    prefix.octets = prefix_bytes;
    prefix.octets_count = 1;
    prefix.presence = API_PREFIX_HAS_OCTETS;
    policy.field1 = field1;
    policy.prefixes = &prefix;
    policy.prefixes_count = 1;
    policy.presence = API_POLICY_HAS_FIELD1 | API_POLICY_HAS_PREFIXES;
    record.link_update = {1,
                          name,
                          0,
                          0,
                          numbers,
                          1,
                          API_LINK_UPDATE_HAS_FIELD1 | API_LINK_UPDATE_HAS_FIELD2 | API_LINK_UPDATE_HAS_FIELD5};
    record.aa_list = {bytes, 1, 5, &policy, 1, 7};
    record.field3 = 1;
    record.field4 = 0;
    record.presence = 15;
  }
};

const fields<api_to_zorv> to_zorv_fields = {
    {take(&api_to_zorv::nodeid), hex("0a 07 08 01 10 0a 10 80 01")},
    {take(&api_to_zorv::intf), hex("12 08 08 02 12 04 65 74 68 30")},
    {take(&api_to_zorv::field3), hex("18 01")},
};

const fields<api_to_igp> to_igp_fields = {
    {take(&api_to_igp::link_update), hex("0a 09 08 01 12 02 61 62 28 ac 02")},
    {take(&api_to_igp::aa_list), hex("12 0d 08 07 10 05 1a 07 0a 01 63 2a 02 08 09")},
    {take(&api_to_igp::field3), hex("18 01")},
    {take(&api_to_igp::field4), hex("20 00")},
};

// --- Towards the policy component ---

TEST(api_to_zorv, its_fields_are_of_their_kinds) { fields_are_of_kinds<api_to_zorv>(); }

TEST(api_to_zorv, every_field_goes_to_the_wire_and_back) {
  goes_to_the_wire_and_back(whole_to_zorv().record, to_zorv_fields);
}

TEST(api_to_zorv, a_node_identifier_with_content_is_written_without_its_outer_bit) {
  api_to_zorv record{};
  record.nodeid.field1 = 1;
  record.nodeid.presence = API_NODEID_HAS_FIELD1;
  EXPECT_EQ(show(encoded(record)), "0a 02 08 01");
  decoded<api_to_zorv> read(hex("0a 02 08 01"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(bits(read.record), std::uint32_t{API_TO_ZORV_HAS_NODEID});
  EXPECT_EQ(read->nodeid.field1, 1u);
}

TEST(api_to_zorv, an_empty_interface_with_its_outer_bit_is_a_key_and_a_zero_length) {
  api_to_zorv record{};
  record.presence = API_TO_ZORV_HAS_INTF;
  EXPECT_EQ(show(encoded(record)), "12 00");
  takes_entries(record, {{"api_to_zorv", 0, 2}});
  record.presence = API_TO_ZORV_HAS_NODEID;
  EXPECT_EQ(show(encoded(record)), "0a 00");
}

TEST(api_to_zorv, a_copy_without_memory_for_the_bytes_has_the_rest_and_all_outer_bits) {
  const whole_to_zorv whole;
  copied<api_to_zorv> copy(whole.record, {.fail_at = 0});
  EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(bits(copy.record), 7u);
  EXPECT_EQ(copy->nodeid.field1, 1u);
  EXPECT_EQ(copy->nodeid.octets, nullptr);
  EXPECT_EQ(copy->nodeid.octets_count, 0u);
  EXPECT_EQ(bits(copy->nodeid), std::uint32_t{API_NODEID_HAS_FIELD1});
  EXPECT_EQ(copy->intf.field1, 2u);
  EXPECT_STREQ(copy->intf.field2, "eth0");
  EXPECT_EQ(bits(copy->intf), 3u);
  EXPECT_EQ(copy->field3, 1);
}

TEST(api_to_zorv, a_copy_without_memory_for_the_string_keeps_all_outer_bits) {
  const whole_to_zorv whole;
  copied<api_to_zorv> copy(whole.record, {.fail_at = 1});
  EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(bits(copy.record), 7u);
  EXPECT_EQ(copy->nodeid.octets[1], 128);
  EXPECT_EQ(copy->intf.field2, nullptr);
  EXPECT_EQ(bits(copy->intf), std::uint32_t{API_INTF_HAS_FIELD1});
  EXPECT_EQ(copy->field3, 1);
}

TEST(api_to_zorv, the_flag_is_written_as_the_stored_byte) {
  api_to_zorv record{};
  record.field3 = 0xfe;
  record.presence = API_TO_ZORV_HAS_FIELD3;
  EXPECT_EQ(show(encoded(record)), "18 fe");
}

TEST(api_to_zorv, a_nested_message_that_runs_past_the_end_is_refused) {
  for (const char *bytes : {"0a 03 08 01", "12 03 08 01", "0a ff ff ff ff 0f", "12 80"}) {
    SCOPED_TRACE(bytes);
    decoded<api_to_zorv> read(hex("18 01") + hex(bytes));
    EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
    EXPECT_EQ(bits(read.record), std::uint32_t{API_TO_ZORV_HAS_FIELD3});
    EXPECT_EQ(bits(read->nodeid), 0u);
    EXPECT_EQ(bits(read->intf), 0u);
  }
}

TEST(api_to_zorv, what_a_nested_message_fails_with_is_handed_on_and_its_content_stays) {
  const std::vector<std::pair<const char *, int>> inputs = {
      {"0a 05 10 05 08 07 10", CODEC_ERR_TRUNCATED},
      {"0a 05 10 05 08 07 1f", CODEC_ERR_BAD_WIRE_TYPE},
      {"0a 05 10 05 08 07 0a", CODEC_ERR_WRONG_WIRE_TYPE},
  };
  for (const auto &[bytes, result] : inputs) {
    SCOPED_TRACE(bytes);
    decoded<api_to_zorv> read(hex("18 01") + hex(bytes) + hex("12 00"));
    EXPECT_EQ(read.result, result);
    ASSERT_EQ(read->nodeid.octets_count, 1u);
    EXPECT_EQ(read->nodeid.octets[0], 5);
    EXPECT_EQ(read->nodeid.field1, 7u);
    EXPECT_EQ(bits(read->nodeid), 3u);
    EXPECT_EQ(bits(read.record), std::uint32_t{API_TO_ZORV_HAS_FIELD3});
  }
  EXPECT_EQ(decode_without_memory<api_to_zorv>(hex("0a 02 10 05")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<api_to_zorv>(hex("12 02 12 00")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<api_to_zorv>(hex("0a 02 08 05 12 02 08 05")), CODEC_OK);
}

TEST(api_to_zorv, repeated_nested_messages_replace_the_first_and_drop_its_memory) {
  decoded<api_to_zorv> read(hex("0a 04 08 01 10 05 12 03 12 01 61 0a 02 08 02 12 03 12 01 62"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->nodeid.field1, 2u);
  EXPECT_EQ(read->nodeid.octets, nullptr);
  EXPECT_EQ(read->nodeid.octets_count, 0u);
  EXPECT_EQ(bits(read->nodeid), std::uint32_t{API_NODEID_HAS_FIELD1});
  EXPECT_STREQ(read->intf.field2, "b");
  EXPECT_EQ(read.memory.sizes, (std::vector<std::size_t>{1, 2, 2}));
  EXPECT_EQ(read.memory.live(), 3u);
  EXPECT_TRUE(read.memory.released.empty());
  read.dropped = 2;
}

TEST(api_to_zorv, a_second_nested_message_that_fails_leaves_the_bit_of_the_first) {
  decoded<api_to_zorv> read(hex("0a 02 08 01 0a 03 08 02 0d"));
  EXPECT_EQ(read.result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(bits(read.record), std::uint32_t{API_TO_ZORV_HAS_NODEID});
  EXPECT_EQ(read->nodeid.field1, 2u);
}

TEST(api_to_zorv, short_buffers_take_what_fits) {
  fills_short_buffers(whole_to_zorv().record, together(to_zorv_fields), {{"intf.field2", 15, 4}});
}

TEST(api_to_zorv, its_own_entry_comes_after_those_of_its_nested_messages) {
  takes_entries(whole_to_zorv().record, {{"nodeid", 2, 7}, {"intf", 11, 8}, {"api_to_zorv", 0, 21}});
  takes_entries(api_to_zorv{}, {});
}

TEST(api_to_zorv, memory_is_asked_for_in_field_order) {
  asks_for_memory(whole_to_zorv().record, to_zorv_fields,
                  {
                      {2, 1, hex("0a 02 08 01"), hex("0a 02 08 01")},
                      {5, 2, hex("12 02 08 02"), hex("12 02 08 02")},
                  },
                  hex("0a 02 08 01 12 02 08 02 18 01"));
}

TEST(api_to_zorv, blocks_are_released_in_their_order) {
  decoded<api_to_zorv> read(together(to_zorv_fields));
  ASSERT_EQ(read.result, CODEC_OK);
  const std::vector<void *> blocks = {read->nodeid.octets, read->intf.field2};
  operations<api_to_zorv>::free(&read.record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->nodeid.octets, nullptr);
  EXPECT_EQ(read->nodeid.octets_count, 2u);
  EXPECT_EQ(read->intf.field2, nullptr);
  EXPECT_EQ(bits(read.record), 7u);
  EXPECT_EQ(bits(read->nodeid), 3u);
  EXPECT_EQ(bits(read->intf), 3u);
}

TEST(api_to_zorv, fields_are_compared_in_order) {
  const whole_to_zorv higher;
  whole_to_zorv lower;
  lower.bytes[1] = 127;
  lower.name[3] = '/';
  lower.record.field3 = 0;
  api_to_zorv high = higher.record;
  high.field3 = 0x80;
  orders_field_by_field(lower.record, high, to_zorv_fields);
}

TEST(api_to_zorv, nested_content_without_the_outer_bit_is_not_compared) {
  const whole_to_zorv a;
  api_to_zorv b{};
  api_to_zorv without = a.record;
  without.presence = 0;
  EXPECT_EQ(operations<api_to_zorv>::compare(&without, &b), 0);
  EXPECT_EQ(operations<api_to_zorv>::compare(&a.record, &without), 1);
}

TEST(api_to_zorv, the_order_of_interface_names_is_handed_on_as_it_is) {
  whole_to_zorv low, high;
  high.name[0] = 'z';
  EXPECT_EQ(operations<api_to_zorv>::compare(&low.record, &high.record), string_order(low.name, high.name));
  EXPECT_EQ(operations<api_to_zorv>::compare(&high.record, &low.record), string_order(high.name, low.name));
  high.name[0] = 'e';
  high.record.intf.presence = API_INTF_HAS_FIELD2;
  EXPECT_EQ(operations<api_to_zorv>::compare(&low.record, &high.record), 1);
  high.record.intf.presence = 3;
  high.record.field3 = 2;
  EXPECT_EQ(operations<api_to_zorv>::compare(&low.record, &high.record), -1);
}

TEST(api_to_zorv, presence_bits_of_no_field_are_left_alone_at_every_depth) {
  const api_to_zorv ones = cleared_from<api_to_zorv>(0xff);
  EXPECT_EQ(ones.presence, 0xf8);
  EXPECT_EQ(ones.nodeid.presence, 0xfc);
  EXPECT_EQ(ones.intf.presence, 0xfc);
  decoded<api_to_zorv> read(together(to_zorv_fields));
  EXPECT_EQ(read->presence, 0x5f);  // 5a before
  EXPECT_EQ(read->nodeid.presence, 0x5b);
  EXPECT_EQ(read->intf.presence, 0x5b);
  decoded<api_to_zorv> again(hex("0a 02 08 01 0a 00"));
  EXPECT_EQ(again->nodeid.presence, 0x58);
  decoded<api_to_zorv> failed(hex("0a 03 08 01 0d"));
  EXPECT_EQ(failed->presence, 0x58);
  EXPECT_EQ(failed->nodeid.presence, 0x59);

  api_to_zorv source{};
  source.presence = 0xfc;
  source.nodeid.presence = 0xfd;
  source.intf.presence = 0xfe;
  const api_to_zorv zeros = overwritten(0, source);
  EXPECT_EQ(zeros.presence, 0x04);
  EXPECT_EQ(zeros.nodeid.presence, 0x01);
  EXPECT_EQ(zeros.intf.presence, 0x02);
  const api_to_zorv copy = overwritten(0xff, api_to_zorv{});
  EXPECT_EQ(copy.presence, 0xf8);
  EXPECT_EQ(copy.nodeid.presence, 0xfc);
  EXPECT_EQ(copy.intf.presence, 0xfc);
}

// --- Towards the IGP side ---

TEST(api_to_igp, its_fields_are_of_their_kinds) { fields_are_of_kinds<api_to_igp>(); }

TEST(api_to_igp, every_field_goes_to_the_wire_and_back) {
  goes_to_the_wire_and_back(whole_to_igp().record, to_igp_fields);
}

TEST(api_to_igp, a_second_link_update_replaces_the_first_and_drops_its_memory) {
  decoded<api_to_igp> read(hex("0a 09 08 01 12 01 61 28 05 28 06 0a 02 18 03"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->link_update.field1, 0u);
  EXPECT_EQ(read->link_update.field2, nullptr);
  EXPECT_EQ(read->link_update.field3, 3u);
  EXPECT_EQ(read->link_update.field5, nullptr);
  EXPECT_EQ(read->link_update.field5_count, 0u);
  EXPECT_EQ(bits(read->link_update), std::uint32_t{API_LINK_UPDATE_HAS_FIELD3});
  EXPECT_EQ(bits(read.record), std::uint32_t{API_TO_IGP_HAS_LINK_UPDATE});
  EXPECT_EQ(show(encoded(read.record)), "0a 02 18 03");
  EXPECT_EQ(read.memory.sizes, (std::vector<std::size_t>{2, 8}));
  EXPECT_TRUE(read.memory.released.empty());
  read.dropped = 2;
}

TEST(api_to_igp, a_flag_of_5_is_read_as_1) {
  decoded<api_to_igp> read(hex("18 05 20 80 80 80 80 10"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->field3, 1);
  EXPECT_EQ(read->field4, 0);  // 2^32, of which the low 32 bits are looked at
  EXPECT_EQ(bits(read.record), std::uint32_t{API_TO_IGP_HAS_FIELD3 | API_TO_IGP_HAS_FIELD4});
  EXPECT_EQ(show(encoded(read.record)), "18 01 20 00");
}

TEST(api_to_igp, flags_are_written_as_the_stored_bytes) {
  api_to_igp record{};
  record.field3 = 0x80;
  record.field4 = 2;
  record.presence = API_TO_IGP_HAS_FIELD3 | API_TO_IGP_HAS_FIELD4;
  EXPECT_EQ(show(encoded(record)), "18 80 20 02");
}

TEST(api_to_igp, empty_nested_messages_with_their_bits_are_keys_and_zero_lengths) {
  api_to_igp record{};
  record.presence = API_TO_IGP_HAS_LINK_UPDATE | API_TO_IGP_HAS_AA_LIST;
  EXPECT_EQ(show(encoded(record)), "0a 00 12 00");
  takes_entries(record, {{"api_to_igp", 0, 4}});
}

TEST(api_to_igp, a_second_list_replaces_the_first_and_drops_all_its_memory) {
  decoded<api_to_igp> read(hex("12 0d 08 07 10 05 1a 07 0a 01 63 2a 02 08 09 12 02 10 06"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->aa_list.octets, nullptr);
  EXPECT_EQ(read->aa_list.octets_count, 0u);
  EXPECT_EQ(read->aa_list.policies, nullptr);
  EXPECT_EQ(read->aa_list.policies_count, 0u);
  EXPECT_EQ(read->aa_list.field2, 6u);
  EXPECT_EQ(bits(read->aa_list), std::uint32_t{API_AA_LIST_HAS_FIELD2});
  EXPECT_EQ(read.memory.live(), 5u);
  read.dropped = 5;
}

TEST(api_to_igp, what_a_nested_message_fails_with_is_handed_on_and_its_content_stays) {
  const std::vector<std::pair<const char *, int>> inputs = {
      {"12 08 08 07 1a 04 0a 01 63 2a", CODEC_ERR_TRUNCATED},
      {"12 08 08 07 1a 04 0a 01 63 5f", CODEC_ERR_BAD_WIRE_TYPE},
      {"12 08 08 07 1a 04 0a 01 63 4a", CODEC_ERR_WRONG_WIRE_TYPE},
  };
  for (const auto &[bytes, result] : inputs) {
    SCOPED_TRACE(bytes);
    decoded<api_to_igp> read(hex("0a 02 08 01") + hex(bytes));
    EXPECT_EQ(read.result, result);
    EXPECT_EQ(bits(read.record), std::uint32_t{API_TO_IGP_HAS_LINK_UPDATE});
    EXPECT_EQ(read->aa_list.octets[0], 7);
    ASSERT_EQ(read->aa_list.policies_count, 1u);
    EXPECT_STREQ(read->aa_list.policies[0].field1, "c");
    EXPECT_EQ(bits(read->aa_list), std::uint32_t{API_AA_LIST_HAS_OCTETS});
    EXPECT_EQ(read.memory.live(), 3u);
  }
}

TEST(api_to_igp, short_buffers_take_what_fits) {
  fills_short_buffers(whole_to_igp().record, together(to_igp_fields),
                      {{"link_update.field2", 6, 2}, {"aa_list.policies[0].field1", 21, 1}});
}

TEST(api_to_igp, its_own_entry_comes_after_those_of_its_nested_messages) {
  takes_entries(whole_to_igp().record, {
                                           {"link_update", 2, 9},
                                           {"aa_list.policies[0].prefixes[0]", 24, 2},
                                           {"aa_list.policies[0]", 19, 7},
                                           {"aa_list", 13, 13},
                                           {"api_to_igp", 0, 30},
                                       });
  takes_entries(api_to_igp{}, {});
}

TEST(api_to_igp, memory_is_asked_for_in_field_order_and_its_lack_costs_one_member) {
  const byte_string list_so_far = hex("12 04 08 07 10 05");
  asks_for_memory(whole_to_igp().record, to_igp_fields,
                  {
                      {3, 1, hex("0a 05 08 01 28 ac 02"), hex("0a 02 08 01")},
                      {4, 1, hex("0a 06 08 01 12 02 61 62"), hex("0a 06 08 01 12 02 61 62")},
                      {1, 2, hex("12 0b 10 05 1a 07 0a 01 63 2a 02 08 09"), hex("")},
                      {sizeof(api_policy), 2, list_so_far, list_so_far, 3},
                      {2, 2, hex("12 0a 08 07 10 05 1a 04 2a 02 08 09"), list_so_far},
                      {sizeof(api_prefix), 2, hex("12 09 08 07 10 05 1a 03 0a 01 63"), list_so_far, 1},
                      {1, 2, hex("12 0b 08 07 10 05 1a 05 0a 01 63 2a 00"), list_so_far},
                  },
                  hex("0a 02 08 01 12 02 10 05 18 01 20 00"));
}

TEST(api_to_igp, a_copy_keeps_all_outer_bits_whatever_fails) {
  const whole_to_igp whole;
  for (std::size_t failing = 0; failing < 7; ++failing) {
    copied<api_to_igp> copy(whole.record, {.fail_at = failing});
    EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY);
    EXPECT_EQ(bits(copy.record), 15u);
    EXPECT_EQ(copy->field3, 1);
  }
}

TEST(api_to_igp, blocks_are_released_in_their_order) {
  decoded<api_to_igp> read(together(to_igp_fields));
  ASSERT_EQ(read.result, CODEC_OK);
  api_policy *const policies = read->aa_list.policies;
  const std::vector<void *> blocks = {read->link_update.field2,
                                      read->link_update.field5,
                                      read->aa_list.octets,
                                      policies[0].field1,
                                      policies[0].prefixes[0].octets,
                                      policies[0].prefixes,
                                      policies};
  operations<api_to_igp>::free(&read.record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->link_update.field2, nullptr);
  EXPECT_EQ(read->link_update.field5, nullptr);
  EXPECT_EQ(read->link_update.field5_count, 1u);
  EXPECT_EQ(read->aa_list.octets, nullptr);
  EXPECT_EQ(read->aa_list.octets_count, 1u);
  EXPECT_EQ(read->aa_list.policies, nullptr);
  EXPECT_EQ(read->aa_list.policies_count, 0u);
  EXPECT_EQ(bits(read.record), 15u);
}

TEST(api_to_igp, fields_are_compared_in_order) {
  const whole_to_igp higher;
  whole_to_igp lower;
  lower.numbers[0] = 299;
  lower.prefix_bytes[0] = 8;
  lower.record.field3 = 0;
  api_to_igp high = higher.record;
  high.field4 = 0x80;
  orders_field_by_field(lower.record, high, to_igp_fields);
}

TEST(api_to_igp, the_order_of_strings_is_handed_on_as_it_is) {
  whole_to_igp low, high;
  high.name[0] = 'z';
  EXPECT_EQ(operations<api_to_igp>::compare(&low.record, &high.record), string_order(low.name, high.name));
  EXPECT_EQ(operations<api_to_igp>::compare(&high.record, &low.record), string_order(high.name, low.name));
  high.name[0] = 'a';
  high.field1[0] = 'z';
  EXPECT_EQ(operations<api_to_igp>::compare(&low.record, &high.record), string_order(low.field1, high.field1));
  EXPECT_EQ(operations<api_to_igp>::compare(&high.record, &low.record), string_order(high.field1, low.field1));
}

TEST(api_to_igp, presence_bits_of_no_field_are_left_alone_at_every_depth) {
  const api_to_igp ones = cleared_from<api_to_igp>(0xff);
  EXPECT_EQ(ones.presence, 0xf0);
  EXPECT_EQ(ones.link_update.presence, 0xe0);
  EXPECT_EQ(ones.aa_list.presence, 0xf8);
  decoded<api_to_igp> read(together(to_igp_fields));
  EXPECT_EQ(read->presence, 0x5f);  // 5a before
  EXPECT_EQ(read->link_update.presence, 0x53);
  EXPECT_EQ(read->aa_list.presence, 0x5f);
  EXPECT_EQ(read->aa_list.policies[0].presence, 0x11);

  api_to_igp source{};
  source.presence = 0xf4;
  source.link_update.presence = 0xe4;
  source.aa_list.presence = 0xfa;
  const api_to_igp zeros = overwritten(0, source);
  EXPECT_EQ(zeros.presence, 0x04);
  EXPECT_EQ(zeros.link_update.presence, 0x04);
  EXPECT_EQ(zeros.aa_list.presence, 0x02);
  const api_to_igp copy = overwritten(0xff, api_to_igp{});
  EXPECT_EQ(copy.presence, 0xf0);
  EXPECT_EQ(copy.link_update.presence, 0xe0);
  EXPECT_EQ(copy.aa_list.presence, 0xf8);
}

}  // namespace api_to_zorv_igp_test
