// Policy registration: a flag, bytes, a number and a string.
#include "message_checks.hpp"

using namespace test;
using namespace test::checks;

namespace api_msg_policy_reg_test {

struct whole_registration {
  std::uint8_t bytes[2] = {1, 2};
  char field4[3] = "ab";
  api_msg_policy_reg record{};

  whole_registration(const whole_registration &) = delete;
  whole_registration() {
    record.field1 = 1;
    record.octets = bytes;
    record.octets_count = 2;
    record.field3 = 300;
    record.field4 = field4;
    record.presence = 15;
  }
};

const fields<api_msg_policy_reg> all_fields = {
    {take(&api_msg_policy_reg::field1), hex("08 01")},
    {take(&api_msg_policy_reg::octets, &api_msg_policy_reg::octets_count), hex("10 01 10 02")},
    {take(&api_msg_policy_reg::field3), hex("18 ac 02")},
    {take(&api_msg_policy_reg::field4), hex("22 02 61 62")},
};

TEST(api_msg_policy_reg, its_fields_are_of_their_kinds) { fields_are_of_kinds<api_msg_policy_reg>(); }

TEST(api_msg_policy_reg, every_field_goes_to_the_wire_and_back) {
  goes_to_the_wire_and_back(whole_registration().record, all_fields);
}

TEST(api_msg_policy_reg, a_flag_two_bytes_and_300_take_nine_bytes) {
  whole_registration whole;
  whole.record.field4 = nullptr;
  EXPECT_EQ(show(encoded(whole.record)), "08 01 10 01 10 02 18 ac 02");
  takes_entries(whole.record, {{"api_msg_policy_reg", 0, 9}});
  whole.record.presence = 7;
  EXPECT_EQ(show(encoded(whole.record)), "08 01 10 01 10 02 18 ac 02");
}

TEST(api_msg_policy_reg, the_flag_is_the_low_32_bits_as_yes_or_no) {
  decoded<api_msg_policy_reg> two(hex("08 02"));
  EXPECT_EQ(two.result, CODEC_OK);
  EXPECT_EQ(two->field1, 1);
  decoded<api_msg_policy_reg> wide(hex("08 80 80 80 80 10"));
  EXPECT_EQ(wide.result, CODEC_OK);
  EXPECT_EQ(wide->field1, 0);
  EXPECT_EQ(bits(wide.record), std::uint32_t{API_MSG_POLICY_REG_HAS_FIELD1});
}

TEST(api_msg_policy_reg, the_order_of_strings_is_handed_on_as_it_is) {
  whole_registration low, high;
  low.field4[0] = 'a';
  high.field4[0] = 'z';
  EXPECT_LT(operations<api_msg_policy_reg>::compare(&low.record, &high.record), 0);
  EXPECT_EQ(operations<api_msg_policy_reg>::compare(&low.record, &high.record), string_order(low.field4, high.field4));
  EXPECT_EQ(operations<api_msg_policy_reg>::compare(&high.record, &low.record), string_order(high.field4, low.field4));
}

TEST(api_msg_policy_reg, a_copy_without_memory_has_the_flag_and_the_number) {
  const whole_registration whole;
  copied<api_msg_policy_reg> copy(whole.record, {.fail_from = 0});
  EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(copy->field1, 1);
  EXPECT_EQ(copy->octets, nullptr);
  EXPECT_EQ(copy->octets_count, 0u);
  EXPECT_EQ(copy->field3, 300u);
  EXPECT_EQ(copy->field4, nullptr);
  EXPECT_EQ(bits(copy.record), std::uint32_t{API_MSG_POLICY_REG_HAS_FIELD1 | API_MSG_POLICY_REG_HAS_FIELD3});
  EXPECT_EQ(copy.memory.sizes, (std::vector<std::size_t>{2, 3}));
}

TEST(api_msg_policy_reg, the_flag_is_written_as_the_stored_byte) {
  api_msg_policy_reg record{};
  record.field1 = 0xff;
  record.presence = API_MSG_POLICY_REG_HAS_FIELD1;
  EXPECT_EQ(show(encoded(record)), "08 ff");
}

TEST(api_msg_policy_reg, bytes_are_read_as_one_run_cut_to_eight_bits) {
  decoded<api_msg_policy_reg> read(hex("10 ac 02 12 05 17 80 02"));
  EXPECT_EQ(read.result, CODEC_OK);
  ASSERT_EQ(read->octets_count, 3u);
  EXPECT_EQ(read->octets[0], 44);
  EXPECT_EQ(read->octets[1], 5);
  EXPECT_EQ(read->octets[2], 0);
}

TEST(api_msg_policy_reg, a_failure_keeps_what_came_before) {
  const std::vector<std::pair<const char *, int>> inputs = {
      {"18 05 22 01 61 10 07 22 01 62", CODEC_ERR_TRUNCATED},     // a second string
      {"18 05 22 01 61 10 07 18 05 10 08", CODEC_ERR_TRUNCATED},  // a second run
      {"18 05 22 01 61 10 07 18", CODEC_ERR_TRUNCATED},          {"18 05 22 01 61 10 07 2b", CODEC_ERR_BAD_WIRE_TYPE},
      {"18 05 22 01 61 10 07 20", CODEC_ERR_WRONG_WIRE_TYPE},    {"18 05 22 01 61 10 07 0a", CODEC_ERR_WRONG_WIRE_TYPE},
  };
  for (const auto &[bytes, result] : inputs) {
    SCOPED_TRACE(bytes);
    decoded<api_msg_policy_reg> read(hex(bytes));
    EXPECT_EQ(read.result, result);
    EXPECT_EQ(read->field3, 5u);
    EXPECT_STREQ(read->field4, "a");
    ASSERT_EQ(read->octets_count, 1u);
    EXPECT_EQ(read->octets[0], 7);
    EXPECT_EQ(bits(read.record), 14u);
    EXPECT_EQ(read.memory.requests(), 2u);
  }
  decoded<api_msg_policy_reg> beyond(hex("18 05 22 03 61 62"));
  EXPECT_EQ(beyond.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(beyond->field4, nullptr);
  EXPECT_EQ(bits(beyond.record), 4u);
}

TEST(api_msg_policy_reg, short_buffers_take_what_fits) {
  fills_short_buffers(whole_registration().record, together(all_fields), {{"field4", 11, 2}});
}

TEST(api_msg_policy_reg, it_takes_one_entry) {
  takes_entries(whole_registration().record, {{"api_msg_policy_reg", 0, 13}});
  takes_entries(api_msg_policy_reg{}, {});
}

TEST(api_msg_policy_reg, memory_is_asked_for_in_field_order_and_its_lack_costs_one_member) {
  asks_for_memory(whole_registration().record, all_fields,
                  {
                      {2, 2, hex(""), hex("")},
                      {3, 4, hex(""), hex("")},
                  },
                  hex("08 01 18 ac 02"));
}

TEST(api_msg_policy_reg, empty_members_are_copied_as_empty_with_their_bits) {
  std::uint8_t bytes[] = {1};
  api_msg_policy_reg source{};
  source.octets = bytes;
  source.presence = 15;
  EXPECT_EQ(show(encoded(source)), "08 00 18 00");
  copied<api_msg_policy_reg> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy.memory.requests(), 0u);
  EXPECT_EQ(copy->octets, nullptr);
  EXPECT_EQ(copy->field4, nullptr);
  EXPECT_EQ(bits(copy.record), 15u);
}

TEST(api_msg_policy_reg, blocks_are_released_in_their_order) {
  decoded<api_msg_policy_reg> read(together(all_fields));
  const std::vector<void *> blocks = {read->octets, read->field4};
  operations<api_msg_policy_reg>::free(&read.record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->octets, nullptr);
  EXPECT_EQ(read->octets_count, 2u);
  EXPECT_EQ(read->field4, nullptr);
  EXPECT_EQ(read->field3, 300u);
  EXPECT_EQ(bits(read.record), 15u);
}

TEST(api_msg_policy_reg, fields_are_compared_in_order_and_unsigned) {
  const whole_registration higher;
  whole_registration lower;
  lower.bytes[1] = 1;
  lower.record.field3 = 299;
  lower.field4[1] = 'a';
  api_msg_policy_reg high = higher.record;
  high.field1 = 0x80;
  high.field3 = 0x80000000;
  orders_field_by_field(lower.record, high, all_fields);
  api_msg_policy_reg shorter = higher.record;
  shorter.octets_count = 1;
  shorter.field3 = 0xffffffff;
  EXPECT_EQ(operations<api_msg_policy_reg>::compare(&shorter, &higher.record), -1);
  EXPECT_EQ(operations<api_msg_policy_reg>::compare(&higher.record, &shorter), 1);
}

TEST(api_msg_policy_reg, presence_bits_of_no_field_are_left_alone) {
  EXPECT_EQ(cleared_from<api_msg_policy_reg>(0xff).presence, 0xf0);
  EXPECT_EQ(overwritten(0, api_msg_policy_reg{1, nullptr, 0, 3, nullptr, 0xf5}).presence, 0x05);
  EXPECT_EQ(overwritten(0xff, api_msg_policy_reg{1, nullptr, 0, 3, nullptr, 0x05}).presence, 0xf5);
}

}  // namespace api_msg_policy_reg_test
