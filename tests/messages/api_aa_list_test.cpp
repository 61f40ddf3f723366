// Lists of policies: bytes, a number, and the policies, each with prefixes of its own.
#include "message_checks.hpp"

using namespace test;
using namespace test::checks;

namespace api_aa_list_test {

struct whole_list {
  std::uint8_t bytes[2] = {1, 200};
  char field1[3] = "ab";
  std::uint8_t prefix_bytes[1] = {5};
  api_prefix prefix{};
  char field6[2] = "x";
  char field7[2] = "y";
  char other_field1[2] = "c";
  api_policy policies[3]{};
  api_aa_list record{};

  whole_list(const whole_list &) = delete;
  whole_list() {
    prefix.octets = prefix_bytes;
    prefix.octets_count = 1;
    prefix.presence = API_PREFIX_HAS_OCTETS;
    policies[0].field1 = field1;
    policies[0].prefixes = &prefix;
    policies[0].prefixes_count = 1;
    policies[0].field6 = field6;
    policies[0].field7 = field7;
    policies[0].presence =
        API_POLICY_HAS_FIELD1 | API_POLICY_HAS_PREFIXES | API_POLICY_HAS_FIELD6 | API_POLICY_HAS_FIELD7;
    policies[2].field1 = other_field1;
    policies[2].field9 = -1;
    policies[2].presence = API_POLICY_HAS_FIELD1 | API_POLICY_HAS_FIELD9;
    record.octets = bytes;
    record.octets_count = 2;
    record.field2 = 300;
    record.policies = policies;
    record.policies_count = 3;
    record.presence = 7;
  }
};

const fields<api_aa_list> all_fields = {
    {take(&api_aa_list::octets, &api_aa_list::octets_count), hex("08 01 08 c8 01")},
    {take(&api_aa_list::field2), hex("10 ac 02")},
    {take(&api_aa_list::policies, &api_aa_list::policies_count),
     hex("1a 0e 0a 02 61 62 2a 02 08 05 32 01 78 3a 01 79 1a 00 1a 09 0a 01 63 48 ff ff ff ff 0f")},
};

// --- On the wire ---

TEST(api_aa_list, its_fields_are_of_their_kinds) { fields_are_of_kinds<api_aa_list>(); }

TEST(api_aa_list, every_field_goes_to_the_wire_and_back) { goes_to_the_wire_and_back(whole_list().record, all_fields); }

TEST(api_aa_list, an_empty_policy_is_written_as_a_key_and_a_zero_length) {
  api_policy policies[1]{};
  api_aa_list record{};
  record.policies = policies;
  record.policies_count = 1;
  record.presence = API_AA_LIST_HAS_POLICIES;
  EXPECT_EQ(show(encoded(record)), "1a 00");
  takes_entries(record, {{"api_aa_list", 0, 2}});
}

TEST(api_aa_list, a_second_run_of_policies_is_refused_and_the_first_kept) {
  decoded<api_aa_list> read(hex("1a 00 10 05 1a 00"));
  EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
  ASSERT_NE(read->policies, nullptr);
  EXPECT_EQ(read->policies_count, 1u);
  EXPECT_EQ(read->field2, 5u);
  EXPECT_EQ(bits(read.record), std::uint32_t{API_AA_LIST_HAS_FIELD2 | API_AA_LIST_HAS_POLICIES});
  EXPECT_EQ(read.memory.sizes, std::vector<std::size_t>{sizeof(api_policy)});
}

TEST(api_aa_list, a_policy_with_a_prefix_cut_off_fails_and_leaves_the_array) {
  decoded<api_aa_list> read(hex("10 05 1a 03 0a 01 61 1a 07 0a 01 62 2a 02 08 80 1a 00"));
  EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
  ASSERT_NE(read->policies, nullptr);
  ASSERT_EQ(read->policies_count, 3u);
  EXPECT_EQ(bits(read.record), std::uint32_t{API_AA_LIST_HAS_FIELD2});
  EXPECT_STREQ(read->policies[0].field1, "a");
  EXPECT_EQ(read->policies[0].presence, API_POLICY_HAS_FIELD1);
  EXPECT_STREQ(read->policies[1].field1, "b");
  EXPECT_EQ(read->policies[1].prefixes_count, 1u);
  EXPECT_EQ(read->policies[1].prefixes[0].octets, nullptr);
  EXPECT_EQ(read->policies[1].presence, API_POLICY_HAS_FIELD1);
  EXPECT_EQ(read->policies[2].field1, nullptr);
  EXPECT_EQ(read->policies[2].presence, 0);
  EXPECT_EQ(read.memory.sizes, (std::vector<std::size_t>{3 * sizeof(api_policy), 2, 2, sizeof(api_prefix)}));

  decoded<api_aa_list> beyond(hex("1a 04 2a 03 08 05"));  // the prefix is longer than the policy
  EXPECT_EQ(beyond.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(beyond->policies_count, 1u);
  EXPECT_EQ(bits(beyond.record), 0u);
}

TEST(api_aa_list, a_copy_without_memory_for_one_string_has_every_other_policy) {
  whole_list whole;
  char second_field1[] = "second", second_field7[] = "";
  std::uint8_t second_bytes[] = {6, 7};
  api_prefix second_prefix{second_bytes, 2, 8, API_PREFIX_HAS_OCTETS | API_PREFIX_HAS_FIELD2};
  whole.policies[1].field1 = second_field1;
  whole.policies[1].field2 = 22;
  whole.policies[1].prefixes = &second_prefix;
  whole.policies[1].prefixes_count = 1;
  whole.policies[1].field7 = second_field7;
  whole.policies[1].presence =
      API_POLICY_HAS_FIELD1 | API_POLICY_HAS_FIELD2 | API_POLICY_HAS_PREFIXES | API_POLICY_HAS_FIELD7;
  copied<api_aa_list> copy(whole.record, {.fail_at = 2});
  EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY);
  ASSERT_EQ(copy->policies_count, 3u);
  EXPECT_EQ(bits(copy.record), 7u);
  EXPECT_EQ(copy->policies[0].field1, nullptr);
  EXPECT_EQ(bits(copy->policies[0]),
            std::uint32_t{API_POLICY_HAS_PREFIXES | API_POLICY_HAS_FIELD6 | API_POLICY_HAS_FIELD7});
  EXPECT_EQ(copy->policies[0].prefixes[0].octets[0], 5);
  EXPECT_STREQ(copy->policies[0].field6, "x");
  EXPECT_STREQ(copy->policies[0].field7, "y");
  const api_policy &second = copy->policies[1];
  EXPECT_EQ(bits(second), std::uint32_t{API_POLICY_HAS_FIELD1 | API_POLICY_HAS_FIELD2 | API_POLICY_HAS_PREFIXES |
                                        API_POLICY_HAS_FIELD7});
  EXPECT_STREQ(second.field1, "second");
  EXPECT_EQ(second.field2, 22u);
  ASSERT_EQ(second.prefixes_count, 1u);
  ASSERT_EQ(second.prefixes[0].octets_count, 2u);
  EXPECT_EQ(second.prefixes[0].octets[0], 6);
  EXPECT_EQ(second.prefixes[0].octets[1], 7);
  EXPECT_EQ(second.prefixes[0].field2, 8);
  EXPECT_EQ(second.field6, nullptr);
  EXPECT_STREQ(second.field7, "");
  EXPECT_STREQ(copy->policies[2].field1, "c");
  EXPECT_EQ(copy->policies[2].field9, -1);
  // Blocks of their own, all of them.
  for (const void *const block :
       {static_cast<const void *>(second.field1), static_cast<const void *>(second.prefixes),
        static_cast<const void *>(second.prefixes[0].octets), static_cast<const void *>(second.field7),
        static_cast<const void *>(copy->policies[2].field1)}) {
    EXPECT_TRUE(copy.memory.owns(block));
  }
}

TEST(api_aa_list, bytes_are_read_as_one_run_cut_to_eight_bits) {
  decoded<api_aa_list> read(hex("08 ac 02 0a 05 0d 80 02"));
  EXPECT_EQ(read.result, CODEC_OK);
  ASSERT_EQ(read->octets_count, 3u);
  EXPECT_EQ(read->octets[0], 44);
  EXPECT_EQ(read->octets[1], 5);
  EXPECT_EQ(read->octets[2], 0);
  EXPECT_EQ(decoded<api_aa_list>(hex("08 01 10 05 08 02")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_aa_list>(hex("0a 05 08 02")).result, CODEC_ERR_WRONG_WIRE_TYPE);
}

TEST(api_aa_list, what_a_policy_or_its_prefix_fails_with_is_handed_on) {
  EXPECT_EQ(decoded<api_aa_list>(hex("1a 01 1f")).result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decoded<api_aa_list>(hex("1a 01 5f")).result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decoded<api_aa_list>(hex("1a 03 2a 01 1f")).result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decoded<api_aa_list>(hex("1a 03 2a 01 15")).result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decoded<api_aa_list>(hex("1a 05 2a 00 10 05 2a")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decode_without_memory<api_aa_list>(hex("1a 00")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<api_aa_list>(hex("08 01")), CODEC_ERR_NO_MEMORY);
}

TEST(api_aa_list, a_run_of_policies_that_is_cut_off_asks_for_no_memory) {
  for (const char *bytes : {"1a 00 1a 01", "1a 00 1a", "1a 00 9a", "1a 01", "1a 80"}) {
    SCOPED_TRACE(bytes);
    decoded<api_aa_list> read(hex(bytes));
    EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
    EXPECT_EQ(read->policies, nullptr);
    EXPECT_EQ(read->policies_count, 0u);
    EXPECT_EQ(read.memory.requests(), 0u);
  }
}

TEST(api_aa_list, lists_need_their_counts) {
  api_policy policies[1]{};
  std::uint8_t bytes[1] = {1};
  api_aa_list record{};
  record.octets = bytes;
  record.policies = policies;
  record.presence = 7;
  EXPECT_EQ(show(encoded(record)), "10 00");
}

// --- Buffers and tables ---

TEST(api_aa_list, short_buffers_take_what_fits) {
  fills_short_buffers(whole_list().record, together(all_fields),
                      {{"policies[0].field1", 12, 2},
                       {"policies[0].field6", 20, 1},
                       {"policies[0].field7", 23, 1},
                       {"policies[2].field1", 30, 1}});
}

TEST(api_aa_list, its_own_entry_comes_after_those_of_prefixes_and_policies) {
  takes_entries(
      whole_list().record,
      {{"policies[0].prefixes[0]", 16, 2}, {"policies[0]", 10, 14}, {"policies[2]", 28, 9}, {"api_aa_list", 0, 37}});
  takes_entries(api_aa_list{}, {});
}

// --- Memory ---

TEST(api_aa_list, memory_is_asked_for_in_field_order_and_its_lack_costs_one_member) {
  const byte_string others = hex("1a 00 1a 09 0a 01 63 48 ff ff ff ff 0f");
  asks_for_memory(
      whole_list().record, all_fields,
      {
          {2, 1, hex(""), hex("")},
          {3 * sizeof(api_policy), 3, hex(""), hex(""), 6},
          {3, 3, hex("1a 0a 2a 02 08 05 32 01 78 3a 01 79") + others, hex("")},
          {sizeof(api_prefix), 3, hex("1a 0a 0a 02 61 62 32 01 78 3a 01 79") + others, hex(""), 1},
          {1, 3, hex("1a 0c 0a 02 61 62 2a 00 32 01 78 3a 01 79") + others, hex("")},
          {2, 3, hex("1a 0b 0a 02 61 62 2a 02 08 05 3a 01 79") + others, hex("")},
          {2, 3, hex("1a 0b 0a 02 61 62 2a 02 08 05 32 01 78") + others, hex("")},
          {2, 3, hex("1a 0e 0a 02 61 62 2a 02 08 05 32 01 78 3a 01 79 1a 00 1a 06 48 ff ff ff ff 0f"), hex("")},
      },
      hex("10 ac 02"));
}

TEST(api_aa_list, a_copy_without_memory_has_empty_members) {
  const whole_list whole;
  copied<api_aa_list> copy(whole.record, {.fail_from = 0});
  EXPECT_EQ(copy->octets, nullptr);
  EXPECT_EQ(copy->octets_count, 0u);
  EXPECT_EQ(copy->field2, 300u);
  EXPECT_EQ(copy->policies, nullptr);
  EXPECT_EQ(copy->policies_count, 0u);
  EXPECT_EQ(bits(copy.record), std::uint32_t{API_AA_LIST_HAS_FIELD2});
}

TEST(api_aa_list, present_but_empty_lists_stay_present_in_a_copy) {
  api_policy policies[1]{};
  std::uint8_t bytes[1] = {1};
  api_aa_list source{};
  source.octets = bytes;
  source.policies = policies;
  source.presence = 7;
  copied<api_aa_list> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy.memory.requests(), 0u);
  EXPECT_EQ(copy->octets, nullptr);
  EXPECT_EQ(copy->policies, nullptr);
  EXPECT_EQ(bits(copy.record), 7u);
}

TEST(api_aa_list, blocks_are_released_in_their_order) {
  decoded<api_aa_list> read(together(all_fields));
  ASSERT_EQ(read.result, CODEC_OK);
  const api_policy &first = read->policies[0];
  const std::vector<void *> blocks = {read->octets, first.field1, first.prefixes[0].octets, first.prefixes,
                                      first.field6, first.field7, read->policies[2].field1, read->policies};
  operations<api_aa_list>::free(&read.record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->octets, nullptr);
  EXPECT_EQ(read->octets_count, 2u);
  EXPECT_EQ(read->policies, nullptr);
  EXPECT_EQ(read->policies_count, 0u);
  EXPECT_EQ(bits(read.record), 7u);
}

TEST(api_aa_list, releasing_empties_the_policies_themselves) {
  whole_list whole;
  operations<api_aa_list>::free(&whole.record, nullptr, nullptr);
  EXPECT_EQ(whole.policies[0].field1, nullptr);
  EXPECT_EQ(whole.policies[0].prefixes, nullptr);
  EXPECT_EQ(whole.policies[0].prefixes_count, 0u);
  EXPECT_EQ(whole.policies[0].field6, nullptr);
  EXPECT_EQ(whole.policies[0].field7, nullptr);
  EXPECT_EQ(whole.prefix.octets, nullptr);
  EXPECT_EQ(whole.prefix.octets_count, 1u);
  EXPECT_EQ(whole.policies[2].field1, nullptr);
  EXPECT_EQ(whole.policies[2].presence, API_POLICY_HAS_FIELD1 | API_POLICY_HAS_FIELD9);
}

// --- Order ---

TEST(api_aa_list, fields_are_compared_in_order) {
  const whole_list higher;
  whole_list lower;
  lower.bytes[1] = 100;
  lower.record.field2 = 299;
  lower.policies[2].field9 = -2;
  orders_field_by_field(lower.record, higher.record, all_fields);
}

TEST(api_aa_list, the_order_of_policies_is_handed_on_as_it_is) {
  whole_list low, high;
  high.field1[0] = 'z';
  EXPECT_EQ(operations<api_aa_list>::compare(&low.record, &high.record), string_order(low.field1, high.field1));
  EXPECT_EQ(operations<api_aa_list>::compare(&high.record, &low.record), string_order(high.field1, low.field1));
}

TEST(api_aa_list, longer_lists_are_greater) {
  whole_list longer, shorter;
  shorter.record.policies_count = 2;
  EXPECT_EQ(operations<api_aa_list>::compare(&shorter.record, &longer.record), -1);
  EXPECT_EQ(operations<api_aa_list>::compare(&longer.record, &shorter.record), 1);
  shorter.record.policies_count = 3;
  shorter.record.octets_count = 1;
  EXPECT_EQ(operations<api_aa_list>::compare(&shorter.record, &longer.record), -1);
  EXPECT_EQ(operations<api_aa_list>::compare(&longer.record, &shorter.record), 1);
}

// --- Presence bits of no field ---

TEST(api_aa_list, presence_bits_of_no_field_are_left_alone) {
  EXPECT_EQ(cleared_from<api_aa_list>(0xff).presence, 0xf8);
  EXPECT_EQ(overwritten(0, api_aa_list{nullptr, 0, 1, nullptr, 0, 0xfa}).presence, 0x02);
  EXPECT_EQ(overwritten(0xff, api_aa_list{nullptr, 0, 1, nullptr, 0, 0x02}).presence, 0xfa);
  decoded<api_aa_list> read(together(all_fields));
  EXPECT_EQ(read->presence, 0x5f);  // 5a before
  EXPECT_EQ(read->policies[0].presence, 0x71);
  EXPECT_EQ(read->policies[1].presence, 0);
  EXPECT_EQ(read->policies[2].presence, 0x101);
}

}  // namespace api_aa_list_test
