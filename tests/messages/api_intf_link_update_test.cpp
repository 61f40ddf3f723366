// Interfaces and link updates: numbers, a string, and a list of numbers.
#include "message_checks.hpp"

using namespace test;
using namespace test::checks;

namespace api_intf_link_update_test {

struct whole_intf {
  char field2[5] = "eth0";
  api_intf record{};

  whole_intf(const whole_intf &) = delete;
  whole_intf() {
    record.field1 = 300;
    record.field2 = field2;
    record.presence = API_INTF_HAS_FIELD1 | API_INTF_HAS_FIELD2;
  }
};

struct whole_link_update {
  char field2[3] = "ab";
  std::uint32_t field5[3] = {0, 300, 0xffffffff};
  api_link_update record{};

  whole_link_update(const whole_link_update &) = delete;
  whole_link_update() {
    record.field1 = 1;
    record.field2 = field2;
    record.field3 = 0;
    record.field4 = 0xffffffff;
    record.field5 = field5;
    record.field5_count = 3;
    record.presence = 0x1f;
  }
};

const fields<api_intf> intf_fields = {
    {take(&api_intf::field1), hex("08 ac 02")},
    {take(&api_intf::field2), hex("12 04 65 74 68 30")},
};

const fields<api_link_update> link_update_fields = {
    {take(&api_link_update::field1), hex("08 01")},
    {take(&api_link_update::field2), hex("12 02 61 62")},
    {take(&api_link_update::field3), hex("18 00")},
    {take(&api_link_update::field4), hex("20 ff ff ff ff 0f")},
    {take(&api_link_update::field5, &api_link_update::field5_count), hex("28 00 28 ac 02 28 ff ff ff ff 0f")},
};

// --- Interfaces ---

TEST(api_intf, its_fields_are_of_their_kinds) { fields_are_of_kinds<api_intf>(); }

TEST(api_intf, every_field_goes_to_the_wire_and_back) { goes_to_the_wire_and_back(whole_intf().record, intf_fields); }

TEST(api_intf, the_name_eth0_alone_takes_six_bytes) {
  whole_intf whole;
  whole.record.presence = API_INTF_HAS_FIELD2;
  EXPECT_EQ(show(encoded(whole.record)), "12 04 65 74 68 30");
  whole.record.field2 = nullptr;
  EXPECT_EQ(show(encoded(whole.record)), "");
}

TEST(api_intf, the_order_of_strings_is_handed_on_as_it_is) {
  char a[] = "\x61", c[] = "\x63";
  const api_intf low = {0, a, API_INTF_HAS_FIELD2}, high = {0, c, API_INTF_HAS_FIELD2};
  EXPECT_LT(operations<api_intf>::compare(&low, &high), 0);
  EXPECT_EQ(operations<api_intf>::compare(&low, &high), string_order(a, c));
  EXPECT_EQ(operations<api_intf>::compare(&high, &low), string_order(c, a));
}

TEST(api_intf, strings_are_compared_as_unsigned_bytes) {
  char low_text[] = "a\x7f", high_text[] = "a\x80", longer_text[] = "a\x7f\x01";
  const api_intf low = {0, low_text, 2}, high = {0, high_text, 2}, longer = {0, longer_text, 2};
  EXPECT_LT(operations<api_intf>::compare(&low, &high), 0);
  EXPECT_LT(operations<api_intf>::compare(&low, &longer), 0);
  EXPECT_LT(operations<api_intf>::compare(&longer, &high), 0);
}

TEST(api_intf, a_nul_inside_a_string_is_kept_but_shortens_it) {
  decoded<api_intf> read(hex("12 03 61 00 62"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read.memory.sizes, std::vector<std::size_t>{4});
  EXPECT_EQ(std::memcmp(read->field2, "a\0b\0", 4), 0);
  EXPECT_EQ(show(encoded(read.record)), "12 01 61");
  copied<api_intf> copy(read.record);
  EXPECT_EQ(copy.memory.sizes, std::vector<std::size_t>{2});
}

TEST(api_intf, a_second_string_is_refused_and_the_first_kept) {
  decoded<api_intf> read(hex("12 01 61 08 05 12 01 62"));
  EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
  EXPECT_STREQ(read->field2, "a");
  EXPECT_EQ(read->field1, 5u);
  EXPECT_EQ(bits(read.record), 3u);
}

TEST(api_intf, it_takes_one_entry) {
  takes_entries(whole_intf().record, {{"api_intf", 0, 9}});
  takes_entries(api_intf{}, {});
}

TEST(api_intf, short_buffers_take_what_fits) {
  fills_short_buffers(whole_intf().record, together(intf_fields), {{"field2", 5, 4}});
}

TEST(api_intf, the_lack_of_memory_costs_the_string) {
  asks_for_memory(whole_intf().record, intf_fields, {{5, 2, hex(""), hex("")}}, hex("08 ac 02"));
  copied<api_intf> copy(whole_intf().record, {.fail_at = 0});
  EXPECT_EQ(copy->field2, nullptr);
  EXPECT_EQ(bits(copy.record), std::uint32_t{API_INTF_HAS_FIELD1});
}

TEST(api_intf, a_null_string_is_copied_as_null_with_its_bit) {
  const api_intf source = {0, nullptr, API_INTF_HAS_FIELD2};
  copied<api_intf> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy.memory.requests(), 0u);
  EXPECT_EQ(copy->field2, nullptr);
  EXPECT_EQ(bits(copy.record), std::uint32_t{API_INTF_HAS_FIELD2});
}

TEST(api_intf, free_releases_the_string) {
  decoded<api_intf> read(together(intf_fields));
  const std::vector<void *> blocks = {read->field2};
  operations<api_intf>::free(&read.record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->field2, nullptr);
  EXPECT_EQ(read->field1, 300u);
  EXPECT_EQ(bits(read.record), 3u);
}

TEST(api_intf, fields_are_compared_in_order) {
  const whole_intf higher;
  whole_intf lower;
  lower.record.field1 = 299;
  lower.field2[3] = '/';
  orders_field_by_field(lower.record, higher.record, intf_fields);
}

TEST(api_intf, presence_bits_of_no_field_are_left_alone) {
  EXPECT_EQ(cleared_from<api_intf>(0xff).presence, 0xfc);
  EXPECT_EQ(overwritten(0, api_intf{1, nullptr, 0xfd}).presence, 0x01);
  EXPECT_EQ(overwritten(0xff, api_intf{1, nullptr, 0x02}).presence, 0xfe);
}

// --- Link updates ---

TEST(api_link_update, its_fields_are_of_their_kinds) { fields_are_of_kinds<api_link_update>(); }

TEST(api_link_update, every_field_goes_to_the_wire_and_back) {
  goes_to_the_wire_and_back(whole_link_update().record, link_update_fields);
}

TEST(api_link_update, a_second_string_is_refused_and_what_came_before_kept) {
  decoded<api_link_update> read(hex("08 01 12 01 61 18 03 20 04 28 05 12 01 62"));
  EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(read->field1, 1u);
  EXPECT_STREQ(read->field2, "a");
  EXPECT_EQ(read->field3, 3u);
  EXPECT_EQ(read->field4, 4u);
  ASSERT_EQ(read->field5_count, 1u);
  EXPECT_EQ(read->field5[0], 5u);
  EXPECT_EQ(bits(read.record), 0x1fu);
  EXPECT_EQ(read.memory.requests(), 2u);
}

TEST(api_link_update, a_present_but_empty_list_is_not_written_and_stays_present_in_a_copy) {
  std::uint32_t numbers[] = {1};
  api_link_update source{};
  source.field5 = numbers;
  source.presence = API_LINK_UPDATE_HAS_FIELD5;
  EXPECT_EQ(show(encoded(source)), "");
  copied<api_link_update> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy.memory.requests(), 0u);
  EXPECT_EQ(copy->field5, nullptr);
  EXPECT_EQ(copy->field5_count, 0u);
  EXPECT_EQ(bits(copy.record), std::uint32_t{API_LINK_UPDATE_HAS_FIELD5});
}

TEST(api_link_update, a_string_of_length_0_is_an_allocated_empty_string) {
  decoded<api_link_update> read(hex("12 00"));
  EXPECT_EQ(read.result, CODEC_OK);
  ASSERT_NE(read->field2, nullptr);
  EXPECT_STREQ(read->field2, "");
  EXPECT_EQ(read.memory.sizes, std::vector<std::size_t>{1});
  EXPECT_EQ(bits(read.record), std::uint32_t{API_LINK_UPDATE_HAS_FIELD2});
  EXPECT_EQ(show(encoded(read.record)), "12 00");
}

TEST(api_link_update, a_string_that_runs_past_the_end_is_refused) {
  for (const char *bytes : {"12 01", "12 03 61 62", "12 ff ff ff ff 0f 61"}) {
    SCOPED_TRACE(bytes);
    decoded<api_link_update> read(hex("20 04") + hex(bytes));
    EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
    EXPECT_EQ(read->field2, nullptr);
    EXPECT_EQ(bits(read.record), std::uint32_t{API_LINK_UPDATE_HAS_FIELD4});
    EXPECT_EQ(read.memory.requests(), 0u);
  }
}

TEST(api_link_update, a_second_run_is_refused_and_the_first_kept) {
  decoded<api_link_update> read(hex("28 01 2a 02 20 03 28 04"));
  EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
  ASSERT_EQ(read->field5_count, 2u);
  EXPECT_EQ(read->field5[0], 1u);
  EXPECT_EQ(read->field5[1], 2u);
  EXPECT_EQ(bits(read.record), 0x18u);
}

TEST(api_link_update, it_takes_one_entry) {
  takes_entries(whole_link_update().record, {{"api_link_update", 0, 25}});
  takes_entries(api_link_update{}, {});
}

TEST(api_link_update, short_buffers_take_what_fits) {
  fills_short_buffers(whole_link_update().record, together(link_update_fields), {{"field2", 4, 2}});
}

TEST(api_link_update, the_lack_of_memory_costs_one_member_and_the_copy_goes_on) {
  asks_for_memory(whole_link_update().record, link_update_fields,
                  {
                      {3, 2, hex(""), hex("")},
                      {12, 5, hex(""), hex("")},
                  },
                  hex("08 01 18 00 20 ff ff ff ff 0f"));
  copied<api_link_update> copy(whole_link_update().record, {.fail_from = 0});
  EXPECT_EQ(copy->field2, nullptr);
  EXPECT_EQ(copy->field5, nullptr);
  EXPECT_EQ(copy->field5_count, 0u);
  EXPECT_EQ(bits(copy.record), 0x0du);
}

TEST(api_link_update, blocks_are_released_in_their_order) {
  decoded<api_link_update> read(together(link_update_fields));
  const std::vector<void *> blocks = {read->field2, read->field5};
  operations<api_link_update>::free(&read.record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->field2, nullptr);
  EXPECT_EQ(read->field5, nullptr);
  EXPECT_EQ(read->field5_count, 3u);
  EXPECT_EQ(bits(read.record), 0x1fu);
}

TEST(api_link_update, fields_are_compared_in_order_and_unsigned) {
  const whole_link_update higher;
  whole_link_update lower;
  lower.record.field1 = 0;
  lower.field2[1] = 'a';
  lower.record.field3 = 0;
  lower.record.field4 = 1;
  lower.field5[2] = 1;
  api_link_update high = higher.record;
  high.field3 = 0x80000000;
  orders_field_by_field(lower.record, high, link_update_fields);
}

TEST(api_link_update, the_order_of_strings_is_handed_on_as_it_is_and_equal_ones_go_on) {
  whole_link_update low, high;
  high.field2[0] = 'z';
  low.record.field3 = 9;
  EXPECT_EQ(operations<api_link_update>::compare(&low.record, &high.record), string_order(low.field2, high.field2));
  EXPECT_EQ(operations<api_link_update>::compare(&high.record, &low.record), string_order(high.field2, low.field2));
  high.field2[0] = 'a';
  EXPECT_EQ(operations<api_link_update>::compare(&low.record, &high.record), 1);
}

TEST(api_link_update, a_longer_list_is_greater_where_the_rest_is_equal) {
  const whole_link_update longer;
  whole_link_update shorter;
  shorter.record.field5_count = 2;
  EXPECT_EQ(operations<api_link_update>::compare(&shorter.record, &longer.record), -1);
  EXPECT_EQ(operations<api_link_update>::compare(&longer.record, &shorter.record), 1);
  shorter.field5[1] = 301;
  EXPECT_EQ(operations<api_link_update>::compare(&shorter.record, &longer.record), 1);
}

TEST(api_link_update, presence_bits_of_no_field_are_left_alone) {
  EXPECT_EQ(cleared_from<api_link_update>(0xff).presence, 0xe0);
  EXPECT_EQ(cleared_from<api_link_update>(0).presence, 0);
  EXPECT_EQ(overwritten(0, api_link_update{1, nullptr, 3, 4, nullptr, 0, 0xed}).presence, 0x0d);
  EXPECT_EQ(overwritten(0xff, api_link_update{1, nullptr, 3, 4, nullptr, 0, 0x0d}).presence, 0xed);
}

}  // namespace api_intf_link_update_test
