// Policies: strings, numbers, one of them signed, flags, and a list of prefixes.
#include "message_checks.hpp"

using namespace test;
using namespace test::checks;

namespace api_policy_test {

struct whole_policy {
  char field1[3] = "ab";
  std::uint8_t bytes1[2] = {1, 200};
  std::uint8_t bytes2[1] = {5};
  api_prefix prefixes[3]{};
  char field6[1] = "";
  char field7[4] = "xyz";
  api_policy record{};

  whole_policy(const whole_policy &) = delete;
  whole_policy() {
    prefixes[1].octets = bytes1;
    prefixes[1].octets_count = 2;
    prefixes[1].field2 = 24;
    prefixes[1].presence = API_PREFIX_HAS_OCTETS | API_PREFIX_HAS_FIELD2;
    prefixes[2].octets = bytes2;
    prefixes[2].octets_count = 1;
    prefixes[2].presence = API_PREFIX_HAS_OCTETS;
    record.field1 = field1;
    record.field2 = 300;
    record.field3 = 0;
    record.field4 = 1;
    record.prefixes = prefixes;
    record.prefixes_count = 3;
    record.field6 = field6;
    record.field7 = field7;
    record.field8 = 0xffffffff;
    record.field9 = -1;
    record.field10 = 1;
    record.presence = 0x3ff;
  }
};

const fields<api_policy> all_fields = {
    {take(&api_policy::field1), hex("0a 02 61 62")},
    {take(&api_policy::field2), hex("10 ac 02")},
    {take(&api_policy::field3), hex("18 00")},
    {take(&api_policy::field4), hex("20 01")},
    {take(&api_policy::prefixes, &api_policy::prefixes_count), hex("2a 00 2a 07 08 01 08 c8 01 10 18 2a 02 08 05")},
    {take(&api_policy::field6), hex("32 00")},
    {take(&api_policy::field7), hex("3a 03 78 79 7a")},
    {take(&api_policy::field8), hex("40 ff ff ff ff 0f")},
    {take(&api_policy::field9), hex("48 ff ff ff ff 0f")},
    {take(&api_policy::field10), hex("50 01")},
};

// --- On the wire ---

TEST(api_policy, its_fields_are_of_their_kinds) { fields_are_of_kinds<api_policy>(); }

TEST(api_policy, every_field_goes_to_the_wire_and_back) {
  goes_to_the_wire_and_back(whole_policy().record, all_fields);
}

TEST(api_policy, a_negative_field_9_takes_five_bytes_and_is_less_than_0) {
  api_policy minus_one{}, zero{};
  minus_one.field9 = -1;
  minus_one.presence = zero.presence = API_POLICY_HAS_FIELD9;
  EXPECT_EQ(show(encoded(minus_one)), "48 ff ff ff ff 0f");
  for (const char *bytes : {"48 ff ff ff ff ff ff ff ff ff 01", "48 ff ff ff ff 0f"}) {
    SCOPED_TRACE(bytes);
    decoded<api_policy> read(hex(bytes));
    EXPECT_EQ(read.result, CODEC_OK);
    EXPECT_EQ(read->field9, -1);
    EXPECT_EQ(bits(read.record), std::uint32_t{API_POLICY_HAS_FIELD9});
    EXPECT_EQ(show(encoded(read.record)), "48 ff ff ff ff 0f");
  }
  EXPECT_EQ(operations<api_policy>::compare(&minus_one, &zero), -1);
  EXPECT_EQ(operations<api_policy>::compare(&zero, &minus_one), 1);
}

TEST(api_policy, a_flag_of_2_is_read_as_1) {
  decoded<api_policy> read(hex("20 02 50 02"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->field4, 1);
  EXPECT_EQ(read->field10, 1);
  EXPECT_EQ(show(encoded(read.record)), "20 01 50 01");
  api_policy record{};
  record.field4 = 1;
  record.presence = API_POLICY_HAS_FIELD4;
  EXPECT_EQ(show(encoded(record)), "20 01");
}

TEST(api_policy, an_empty_prefix_is_written_as_a_key_and_a_zero_length) {
  whole_policy whole;
  whole.record.prefixes_count = 2;
  whole.record.presence = API_POLICY_HAS_PREFIXES;
  EXPECT_EQ(show(encoded(whole.record)), "2a 00 2a 07 08 01 08 c8 01 10 18");
  takes_entries(whole.record, {{"prefixes[1]", 4, 7}, {"api_policy", 0, 11}});
}

TEST(api_policy, a_second_run_of_prefixes_is_refused_and_the_first_kept) {
  decoded<api_policy> read(hex("2a 00 10 01 2a 00"));
  EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
  ASSERT_NE(read->prefixes, nullptr);
  EXPECT_EQ(read->prefixes_count, 1u);
  EXPECT_EQ(read->field2, 1u);
  EXPECT_EQ(bits(read.record), std::uint32_t{API_POLICY_HAS_FIELD2 | API_POLICY_HAS_PREFIXES});
}

TEST(api_policy, a_prefix_that_fails_leaves_the_array_and_its_bit_clear) {
  decoded<api_policy> read(hex("10 05 2a 04 08 07 10 08 2a 03 08 09 1f 2a 02 08 01"));
  EXPECT_EQ(read.result, CODEC_ERR_BAD_WIRE_TYPE);
  ASSERT_NE(read->prefixes, nullptr);
  ASSERT_EQ(read->prefixes_count, 3u);
  EXPECT_EQ(bits(read.record), std::uint32_t{API_POLICY_HAS_FIELD2});
  EXPECT_EQ(read->prefixes[0].octets[0], 7);
  EXPECT_EQ(read->prefixes[0].field2, 8);
  EXPECT_EQ(read->prefixes[0].presence, 3);
  EXPECT_EQ(read->prefixes[1].octets[0], 9);
  EXPECT_EQ(read->prefixes[1].presence, API_PREFIX_HAS_OCTETS);
  EXPECT_EQ(read->prefixes[2].octets, nullptr);
  EXPECT_EQ(read->prefixes[2].octets_count, 0u);
  EXPECT_EQ(read->prefixes[2].presence, 0);
  EXPECT_EQ(read.memory.sizes, (std::vector<std::size_t>{3 * sizeof(api_prefix), 1, 1}));
}

TEST(api_policy, the_order_of_strings_is_handed_on_as_it_is) {
  char a[] = "a", z[] = "z";
  for (char *api_policy::*const member : {&api_policy::field1, &api_policy::field6, &api_policy::field7}) {
    api_policy low{}, high{};
    for (char *api_policy::*const each : {&api_policy::field1, &api_policy::field6, &api_policy::field7}) {
      low.*each = high.*each = a;
    }
    high.*member = z;
    low.presence = high.presence = API_POLICY_HAS_FIELD1 | API_POLICY_HAS_FIELD6 | API_POLICY_HAS_FIELD7;
    EXPECT_LT(operations<api_policy>::compare(&low, &high), 0);
    EXPECT_EQ(operations<api_policy>::compare(&low, &high), string_order(a, z));
    EXPECT_EQ(operations<api_policy>::compare(&high, &low), string_order(z, a));
  }
}

TEST(api_policy, field_9_holds_every_signed_32_bit_number) {
  const std::vector<std::pair<std::int32_t, const char *>> numbers = {
      {0, "48 00"},
      {127, "48 7f"},
      {128, "48 80 01"},
      {INT32_MAX, "48 ff ff ff ff 07"},
      {INT32_MIN, "48 80 80 80 80 08"},
      {-300, "48 d4 fd ff ff 0f"},
  };
  for (const auto &[number, bytes] : numbers) {
    SCOPED_TRACE(bytes);
    api_policy record{};
    record.field9 = number;
    record.presence = API_POLICY_HAS_FIELD9;
    EXPECT_EQ(show(encoded(record)), bytes);
    decoded<api_policy> read(hex(bytes));
    EXPECT_EQ(read.result, CODEC_OK);
    EXPECT_EQ(read->field9, number);
  }
}

TEST(api_policy, every_flag_is_written_as_the_stored_byte) {
  api_policy record{};
  record.field4 = 0x80;
  record.field10 = 0xff;
  record.presence = API_POLICY_HAS_FIELD4 | API_POLICY_HAS_FIELD10;
  EXPECT_EQ(show(encoded(record)), "20 80 50 ff");
}

TEST(api_policy, a_string_needs_its_pointer_and_the_list_its_count) {
  api_prefix prefixes[1]{};
  api_policy record{};
  record.prefixes = prefixes;
  record.presence = API_POLICY_HAS_FIELD1 | API_POLICY_HAS_PREFIXES | API_POLICY_HAS_FIELD6 | API_POLICY_HAS_FIELD7;
  EXPECT_EQ(show(encoded(record)), "");
  takes_entries(record, {});
}

TEST(api_policy, a_second_string_is_refused_and_the_first_kept) {
  const std::vector<std::pair<const char *, char *api_policy::*>> inputs = {
      {"0a 01 61 10 05 0a 01 62", &api_policy::field1},
      {"32 01 61 10 05 32 01 62", &api_policy::field6},
      {"3a 01 61 10 05 3a 01 62", &api_policy::field7},
  };
  for (const auto &[bytes, member] : inputs) {
    SCOPED_TRACE(bytes);
    decoded<api_policy> read(hex(bytes));
    EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
    EXPECT_STREQ(read.record.*member, "a");
    EXPECT_EQ(read->field2, 5u);
  }
}

TEST(api_policy, a_run_of_prefixes_that_is_cut_off_asks_for_no_memory) {
  for (const char *bytes :
       {"2a 00 2a 01", "2a 00 2a", "2a 00 2a 80", "2a 00 aa", "2a 01", "2a 80", "2a 00 2a ff ff ff ff 0f 00"}) {
    SCOPED_TRACE(bytes);
    decoded<api_policy> read(hex("10 05") + hex(bytes));
    EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
    EXPECT_EQ(read->prefixes, nullptr);
    EXPECT_EQ(read->prefixes_count, 0u);
    EXPECT_EQ(bits(read.record), std::uint32_t{API_POLICY_HAS_FIELD2});
    EXPECT_EQ(read.memory.requests(), 0u);
  }
}

TEST(api_policy, a_run_of_prefixes_may_have_other_wire_types_after_its_first_key) {
  decoded<api_policy> read(hex("2a 02 10 05 28 02 10 06 2f 00"));
  EXPECT_EQ(read.result, CODEC_OK);
  ASSERT_EQ(read->prefixes_count, 3u);
  EXPECT_EQ(read->prefixes[0].field2, 5);
  EXPECT_EQ(read->prefixes[1].field2, 6);
  EXPECT_EQ(read->prefixes[2].presence, 0);
  EXPECT_EQ(decoded<api_policy>(hex("28 02 10 06")).result, CODEC_ERR_WRONG_WIRE_TYPE);
}

TEST(api_policy, what_a_prefix_fails_with_is_handed_on) {
  EXPECT_EQ(decoded<api_policy>(hex("2a 01 08")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_policy>(hex("2a 02 0a 00")).result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decoded<api_policy>(hex("2a 06 08 01 10 02 08 03")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decode_without_memory<api_policy>(hex("2a 00")), CODEC_ERR_NO_MEMORY);
}

// --- Buffers and tables ---

TEST(api_policy, short_buffers_take_what_fits) {
  fills_short_buffers(whole_policy().record, together(all_fields), {{"field1", 2, 2}, {"field7", 30, 3}});
}

TEST(api_policy, its_own_entry_comes_after_those_of_the_prefixes) {
  takes_entries(whole_policy().record, {{"prefixes[1]", 15, 7}, {"prefixes[2]", 24, 2}, {"api_policy", 0, 47}});
  takes_entries(api_policy{}, {});
}

// --- Memory ---

TEST(api_policy, memory_is_asked_for_in_field_order_and_its_lack_costs_one_member) {
  asks_for_memory(whole_policy().record, all_fields,
                  {
                      {3, 1, hex(""), hex("")},
                      {3 * sizeof(api_prefix), 5, hex(""), hex(""), 2},
                      {2, 5, hex("2a 00 2a 02 10 18 2a 02 08 05"), hex("")},
                      {1, 5, hex("2a 00 2a 07 08 01 08 c8 01 10 18 2a 00"), hex("")},
                      {1, 6, hex(""), hex("")},
                      {4, 7, hex(""), hex("")},
                  },
                  hex("10 ac 02 18 00 20 01 40 ff ff ff ff 0f 48 ff ff ff ff 0f 50 01"));
}

TEST(api_policy, a_copied_prefix_without_memory_for_its_bytes_has_the_rest) {
  const whole_policy whole;
  copied<api_policy> copy(whole.record, {.fail_at = 2});
  EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY);
  ASSERT_EQ(copy->prefixes_count, 3u);
  EXPECT_EQ(copy->prefixes[1].octets, nullptr);
  EXPECT_EQ(copy->prefixes[1].octets_count, 0u);
  EXPECT_EQ(copy->prefixes[1].field2, 24);
  EXPECT_EQ(bits(copy->prefixes[1]), std::uint32_t{API_PREFIX_HAS_FIELD2});
  EXPECT_EQ(copy->prefixes[2].octets[0], 5);
  EXPECT_EQ(bits(copy.record), 0x3ffu);
}

TEST(api_policy, a_copy_without_memory_has_empty_members) {
  const whole_policy whole;
  copied<api_policy> copy(whole.record, {.fail_from = 0});
  EXPECT_EQ(copy->field1, nullptr);
  EXPECT_EQ(copy->prefixes, nullptr);
  EXPECT_EQ(copy->prefixes_count, 0u);
  EXPECT_EQ(copy->field6, nullptr);
  EXPECT_EQ(copy->field7, nullptr);
  EXPECT_EQ(bits(copy.record), 0x38eu);
  EXPECT_EQ(copy.memory.sizes, (std::vector<std::size_t>{3, 3 * sizeof(api_prefix), 1, 4}));
}

TEST(api_policy, null_strings_and_an_empty_list_are_copied_as_empty_with_their_bits) {
  api_prefix prefixes[1]{};
  api_policy source{};
  source.prefixes = prefixes;
  source.presence = 0x3ff;
  copied<api_policy> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy.memory.requests(), 0u);
  EXPECT_EQ(copy->field1, nullptr);
  EXPECT_EQ(copy->prefixes, nullptr);
  EXPECT_EQ(copy->prefixes_count, 0u);
  EXPECT_EQ(bits(copy.record), 0x3ffu);
}

TEST(api_policy, blocks_are_released_in_their_order) {
  decoded<api_policy> read(together(all_fields));
  ASSERT_EQ(read.result, CODEC_OK);
  const std::vector<void *> blocks = {
      read->field1, read->prefixes[1].octets, read->prefixes[2].octets, read->prefixes, read->field6, read->field7};
  operations<api_policy>::free(&read.record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->field1, nullptr);
  EXPECT_EQ(read->prefixes, nullptr);
  EXPECT_EQ(read->prefixes_count, 0u);
  EXPECT_EQ(read->field6, nullptr);
  EXPECT_EQ(read->field7, nullptr);
  EXPECT_EQ(read->field9, -1);
  EXPECT_EQ(bits(read.record), 0x3ffu);
}

TEST(api_policy, without_a_release_callback_the_pointers_are_forgotten) {
  api_prefix prefixes[1]{};
  std::uint8_t bytes[1] = {1};
  char text[] = "a";
  prefixes[0].octets = bytes;
  prefixes[0].octets_count = 1;
  api_policy record{};
  record.field1 = record.field6 = record.field7 = text;
  record.prefixes = prefixes;
  record.prefixes_count = 1;
  operations<api_policy>::free(&record, nullptr, nullptr);
  EXPECT_EQ(record.field1, nullptr);
  EXPECT_EQ(record.field6, nullptr);
  EXPECT_EQ(record.field7, nullptr);
  EXPECT_EQ(record.prefixes, nullptr);
  EXPECT_EQ(record.prefixes_count, 0u);
  EXPECT_EQ(prefixes[0].octets, nullptr);
}

// --- Order ---

TEST(api_policy, fields_are_compared_in_order) {
  const whole_policy higher;
  whole_policy lower;
  char field6[] = "a";
  api_policy high = higher.record;
  high.field3 = 0x80000000;
  high.field6 = field6;
  high.field9 = 1;
  high.field10 = 0x80;
  lower.field1[1] = 'a';
  lower.record.field2 = 299;
  lower.record.field3 = 1;
  lower.record.field4 = 0;
  lower.bytes1[1] = 100;
  lower.field7[2] = 'y';
  lower.record.field8 = 1;
  orders_field_by_field(lower.record, high, all_fields);
}

TEST(api_policy, field_9_is_compared_signed) {
  api_policy low{}, high{};
  low.presence = high.presence = API_POLICY_HAS_FIELD9;
  for (const auto &[less, more] : std::vector<std::pair<std::int32_t, std::int32_t>>{
           {-1, 0}, {-2, -1}, {INT32_MIN, INT32_MAX}, {INT32_MIN, 0}, {0, 1}, {-1, INT32_MAX}}) {
    low.field9 = less;
    high.field9 = more;
    EXPECT_EQ(operations<api_policy>::compare(&low, &high), -1) << less << ' ' << more;
    EXPECT_EQ(operations<api_policy>::compare(&high, &low), 1) << less << ' ' << more;
  }
}

TEST(api_policy, prefixes_are_compared_one_by_one_and_then_by_their_count) {
  whole_policy a, b;
  b.record.prefixes_count = 2;
  EXPECT_EQ(operations<api_policy>::compare(&a.record, &b.record), 1);
  EXPECT_EQ(operations<api_policy>::compare(&b.record, &a.record), -1);
  b.prefixes[0].presence = API_PREFIX_HAS_FIELD2;
  EXPECT_EQ(operations<api_policy>::compare(&a.record, &b.record), -1);
  b.prefixes[0].presence = 0;
  b.record.prefixes_count = 3;
  b.record.field8 = 0;
  EXPECT_EQ(operations<api_policy>::compare(&a.record, &b.record), 1);  // equal lists go on
}

// --- Presence bits of no field ---

TEST(api_policy, decoding_leaves_presence_bits_10_to_15_alone) {
  EXPECT_EQ(cleared_from<api_policy>(0xff).presence, 0xfc00);
  EXPECT_EQ(cleared_from<api_policy>(0).presence, 0);
  decoded<api_policy> read(together(all_fields));
  EXPECT_EQ(read->presence, 0x5bff);  // 5a5a before
  EXPECT_EQ(read->prefixes[0].presence, 0);
  EXPECT_EQ(read->prefixes[1].presence, 3);
  decoded<api_policy> failed(hex("10 05 1a"));
  EXPECT_EQ(failed.result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(failed->presence, 0x5802);
}

TEST(api_policy, copying_leaves_presence_bits_10_to_15_alone) {
  api_policy source{};
  source.presence = 0xfc00 | API_POLICY_HAS_FIELD2;
  EXPECT_EQ(overwritten(0, source).presence, API_POLICY_HAS_FIELD2);
  source.presence = API_POLICY_HAS_FIELD2;
  EXPECT_EQ(overwritten(0xff, source).presence, 0xfc00 | API_POLICY_HAS_FIELD2);
}

}  // namespace api_policy_test
