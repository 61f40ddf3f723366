// The notification about an automatically created point-to-point policy: 27 fields, the last a signed 64-bit number.
#include "message_checks.hpp"

using namespace test;
using namespace test::checks;

namespace api_msg_p2p_auto_policy_notif_test {

using notification = api_msg_p2p_auto_policy_notif;

// A notification with every field.
struct whole_notification {
  char field1[3] = "ab";
  char field2[1] = "";
  std::uint32_t labels[1] = {16};
  std::uint8_t field15[2] = {1, 200};
  char field21[4] = "xyz";
  std::uint8_t field22[1] = {255};
  notification record{};

  whole_notification(const whole_notification &) = delete;
  whole_notification() {
    record.field1 = field1;
    record.field2 = field2;
    record.field3 = 3;
    record.field4 = 1;
    record.field5 = 0;
    record.field6 = 1;
    record.field7 = 7;
    record.field8 = 300;
    record.field9 = 1;
    record.label_stack.labels = labels;
    record.label_stack.label_count = 1;
    record.label_stack.presence = API_LBL_STACK_HAS_LABELS;
    record.field11 = 11;
    record.field12 = 0;
    record.field13 = 1;
    record.field14 = 14;
    record.field15 = field15;
    record.field15_count = 2;
    record.field16 = 16;
    record.field17 = 17;
    record.field18 = 18;
    record.field19 = 0xffffffff;
    record.field20 = 1;
    record.field21 = field21;
    record.field22 = field22;
    record.field22_count = 1;
    record.field23 = 23;
    record.field24 = 24;
    record.field25 = 25;
    record.field26 = 1;
    record.field27 = -2;
    record.presence = 0x7ffffff;
  }
};

const fields<notification> all_fields = {
    {take(&notification::field1), hex("0a 02 61 62")},
    {take(&notification::field2), hex("12 00")},
    {take(&notification::field3), hex("18 03")},
    {take(&notification::field4), hex("20 01")},
    {take(&notification::field5), hex("28 00")},
    {take(&notification::field6), hex("30 01")},
    {take(&notification::field7), hex("38 07")},
    {take(&notification::field8), hex("40 ac 02")},
    {take(&notification::field9), hex("48 01")},
    {take(&notification::label_stack), hex("52 02 08 10")},
    {take(&notification::field11), hex("58 0b")},
    {take(&notification::field12), hex("60 00")},
    {take(&notification::field13), hex("68 01")},
    {take(&notification::field14), hex("70 0e")},
    {take(&notification::field15, &notification::field15_count), hex("78 01 78 c8 01")},
    {take(&notification::field16), hex("80 01 10")},
    {take(&notification::field17), hex("88 01 11")},
    {take(&notification::field18), hex("90 01 12")},
    {take(&notification::field19), hex("98 01 ff ff ff ff 0f")},
    {take(&notification::field20), hex("a0 01 01")},
    {take(&notification::field21), hex("aa 01 03 78 79 7a")},
    {take(&notification::field22, &notification::field22_count), hex("b0 01 ff 01")},
    {take(&notification::field23), hex("b8 01 17")},
    {take(&notification::field24), hex("c0 01 18")},
    {take(&notification::field25), hex("c8 01 19")},
    {take(&notification::field26), hex("d0 01 01")},
    {take(&notification::field27), hex("d8 01 fe ff ff ff ff ff ff ff ff 01")},
};

// --- On the wire ---

TEST(api_msg_p2p_auto_policy_notif, its_fields_are_of_their_kinds) { fields_are_of_kinds<notification>(); }

TEST(api_msg_p2p_auto_policy_notif, every_field_goes_to_the_wire_and_back) {
  goes_to_the_wire_and_back(whole_notification().record, all_fields);
}

TEST(api_msg_p2p_auto_policy_notif, a_negative_field_27_takes_ten_bytes_and_is_less_than_0) {
  notification minus_one{}, zero{};
  minus_one.field27 = -1;
  minus_one.presence = zero.presence = 1u << 26;
  EXPECT_EQ(show(encoded(minus_one)), "d8 01 ff ff ff ff ff ff ff ff ff 01");
  decoded<notification> read(hex("d8 01 ff ff ff ff ff ff ff ff ff 01"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->field27, -1);
  EXPECT_EQ(bits(read.record), 1u << 26);
  EXPECT_EQ(operations<notification>::compare(&minus_one, &zero), -1);
  EXPECT_EQ(operations<notification>::compare(&zero, &minus_one), 1);
}

TEST(api_msg_p2p_auto_policy_notif, an_empty_label_stack_with_its_bit_set_is_a_key_and_a_zero_length) {
  notification record{};
  record.presence = 1u << 9;
  EXPECT_EQ(show(encoded(record)), "52 00");
  takes_entries(record, {{"api_msg_p2p_auto_policy_notif", 0, 2}});
}

TEST(api_msg_p2p_auto_policy_notif, a_flag_that_holds_2_is_written_as_it_is_and_read_as_1) {
  notification record{};
  record.field4 = 2;
  record.presence = 1u << 3;
  EXPECT_EQ(show(encoded(record)), "20 02");
  decoded<notification> read(hex("20 02"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->field4, 1);
}

TEST(api_msg_p2p_auto_policy_notif, a_string_that_occurs_twice_is_refused) {
  decoded<notification> read(hex("aa 01 01 61 b8 01 05 aa 01 01 62"));
  EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
  EXPECT_STREQ(read->field21, "a");
  EXPECT_EQ(read->field23, 5u);
  EXPECT_EQ(bits(read.record), 1u << 20 | 1u << 22);
}

TEST(api_msg_p2p_auto_policy_notif, an_unknown_field_28_alone_is_skipped) {
  for (const char *bytes : {"e0 01 05", "e1 01 00 00 00 00 00 00 00 00", "e2 01 01 ff", "e5 01 00 00 00 00"}) {
    SCOPED_TRACE(bytes);
    decoded<notification> read(hex(bytes));
    EXPECT_EQ(read.result, CODEC_OK);
    EXPECT_EQ(bits(read.record), 0u);
    EXPECT_EQ(show(encoded(read.record)), "");
    EXPECT_EQ(read.memory.requests(), 0u);
  }
}

TEST(api_msg_p2p_auto_policy_notif, field_27_holds_every_64_bit_number) {
  const std::vector<std::pair<std::int64_t, const char *>> numbers = {
      {0, "d8 01 00"},
      {127, "d8 01 7f"},
      {128, "d8 01 80 01"},
      {INT64_MAX, "d8 01 ff ff ff ff ff ff ff ff 7f"},
      {INT64_MIN, "d8 01 80 80 80 80 80 80 80 80 80 01"},
      {-300, "d8 01 d4 fd ff ff ff ff ff ff ff 01"},
      {-0x80000000LL, "d8 01 80 80 80 80 f8 ff ff ff ff 01"},
      {0x80000000LL, "d8 01 80 80 80 80 08"},
  };
  for (const auto &[number, bytes] : numbers) {
    SCOPED_TRACE(bytes);
    notification record{};
    record.field27 = number;
    record.presence = 1u << 26;
    EXPECT_EQ(show(encoded(record)), bytes);
    decoded<notification> read(hex(bytes));
    EXPECT_EQ(read.result, CODEC_OK);
    EXPECT_EQ(read->field27, number);
  }
}

TEST(api_msg_p2p_auto_policy_notif, field_27_is_read_from_longer_forms_and_refused_when_cut_off) {
  decoded<notification> longer(hex("d8 01 81 80 80 80 80 80 80 80 80 80 80 00"));
  EXPECT_EQ(longer.result, CODEC_OK);
  EXPECT_EQ(longer->field27, 1);
  decoded<notification> tenth(hex("d8 01 80 80 80 80 80 80 80 80 80 7f"));  // one bit of the tenth byte counts
  EXPECT_EQ(tenth.result, CODEC_OK);
  EXPECT_EQ(tenth->field27, INT64_MIN);
  for (const char *bytes :
       {"d8 01", "d8 01 80", "d8 01 ff ff ff ff ff ff ff ff ff", "d8 01 ff ff ff ff ff ff ff ff ff ff"}) {
    SCOPED_TRACE(bytes);
    decoded<notification> read(hex("18 07") + hex(bytes));
    EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
    EXPECT_EQ(read->field27, 0);
    EXPECT_EQ(read->field3, 7u);
    EXPECT_EQ(bits(read.record), 1u << 2);
  }
}

TEST(api_msg_p2p_auto_policy_notif, every_flag_is_written_as_the_stored_byte) {
  notification record{};
  record.field4 = 0x80;
  record.field5 = 0xff;
  record.field6 = 3;
  record.field9 = 0x81;
  record.field13 = 0xfe;
  record.field20 = 0x7f;
  record.field26 = 0xc0;
  record.presence = 1u << 3 | 1u << 4 | 1u << 5 | 1u << 8 | 1u << 12 | 1u << 19 | 1u << 25;
  EXPECT_EQ(show(encoded(record)), "20 80 28 ff 30 03 48 81 68 fe a0 01 7f d0 01 c0");
}

TEST(api_msg_p2p_auto_policy_notif, a_string_needs_its_pointer_and_a_list_its_count) {
  std::uint8_t elements[] = {9};
  notification record{};
  record.field15 = elements;
  record.field22 = elements;
  record.presence = 1u << 0 | 1u << 1 | 1u << 14 | 1u << 20 | 1u << 21;
  EXPECT_EQ(show(encoded(record)), "");
  takes_entries(record, {});
}

TEST(api_msg_p2p_auto_policy_notif, elements_are_cut_to_eight_bits_and_a_second_run_is_refused) {
  decoded<notification> cut(hex("78 ac 02 b0 01 ff 03"));
  EXPECT_EQ(cut.result, CODEC_OK);
  ASSERT_EQ(cut->field15_count, 1u);
  EXPECT_EQ(cut->field15[0], 44);
  ASSERT_EQ(cut->field22_count, 1u);
  EXPECT_EQ(cut->field22[0], 255);
  decoded<notification> twice(hex("b0 01 01 b2 01 02 18 05 b0 01 03"));
  EXPECT_EQ(twice.result, CODEC_ERR_TRUNCATED);
  ASSERT_EQ(twice->field22_count, 2u);
  EXPECT_EQ(twice->field22[0], 1);
  EXPECT_EQ(twice->field22[1], 2);
  EXPECT_EQ(bits(twice.record), 1u << 2 | 1u << 21);
  EXPECT_EQ(decoded<notification>(hex("78 01 18 05 78 02")).result, CODEC_ERR_TRUNCATED);
}

TEST(api_msg_p2p_auto_policy_notif, what_the_label_stack_fails_with_is_handed_on) {
  EXPECT_EQ(decoded<notification>(hex("52 03 08 10")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<notification>(hex("52 01 08")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<notification>(hex("52 01 1f")).result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decoded<notification>(hex("52 02 0a 00")).result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decode_without_memory<notification>(hex("52 02 08 10")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<notification>(hex("52 00 d8 01 05")), CODEC_OK);
}

TEST(api_msg_p2p_auto_policy_notif, a_second_label_stack_replaces_the_first_and_drops_its_memory) {
  decoded<notification> read(hex("52 04 08 10 08 11 18 01 52 02 08 12"));
  EXPECT_EQ(read.result, CODEC_OK);
  ASSERT_EQ(read->label_stack.label_count, 1u);
  EXPECT_EQ(read->label_stack.labels[0], 18u);
  EXPECT_EQ(read.memory.sizes, (std::vector<std::size_t>{8, 4}));
  EXPECT_EQ(read.memory.live(), 2u);
  read.dropped = 1;
}

// --- Buffers and tables ---

TEST(api_msg_p2p_auto_policy_notif, short_buffers_take_what_fits) {
  fills_short_buffers(whole_notification().record, together(all_fields), {{"field1", 2, 2}, {"field21", 60, 3}});
}

TEST(api_msg_p2p_auto_policy_notif, its_own_entry_comes_after_that_of_the_labels) {
  takes_entries(whole_notification().record, {{"label_stack", 23, 2}, {"api_msg_p2p_auto_policy_notif", 0, 91}});
}

// --- Memory ---

TEST(api_msg_p2p_auto_policy_notif, memory_is_asked_for_in_field_order_and_its_lack_costs_one_member) {
  asks_for_memory(whole_notification().record, all_fields,
                  {
                      {3, 1, hex(""), hex("")},
                      {1, 2, hex(""), hex("")},
                      {4, 10, hex("52 00"), hex("")},
                      {2, 15, hex(""), hex("")},
                      {4, 21, hex(""), hex("")},
                      {1, 22, hex(""), hex("")},
                  },
                  hex("18 03 20 01 28 00 30 01 38 07 40 ac 02 48 01 52 00 58 0b 60 00 68 01 70 0e 80 01 10 88 01 11"
                      "90 01 12 98 01 ff ff ff ff 0f a0 01 01 b8 01 17 c0 01 18 c8 01 19 d0 01 01"
                      "d8 01 fe ff ff ff ff ff ff ff ff 01"));
}

TEST(api_msg_p2p_auto_policy_notif, a_copy_without_memory_has_empty_members_and_keeps_the_bit_of_the_label_stack) {
  const whole_notification whole;
  copied<notification> copy(whole.record, {.fail_from = 0});
  EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(bits(copy.record), 0x7ffffffu & ~(1u << 0 | 1u << 1 | 1u << 14 | 1u << 20 | 1u << 21));
  EXPECT_EQ(copy->field1, nullptr);
  EXPECT_EQ(copy->field2, nullptr);
  EXPECT_EQ(copy->label_stack.labels, nullptr);
  EXPECT_EQ(copy->label_stack.label_count, 0u);
  EXPECT_EQ(bits(copy->label_stack), 0u);
  EXPECT_EQ(copy->field15, nullptr);
  EXPECT_EQ(copy->field15_count, 0u);
  EXPECT_EQ(copy->field21, nullptr);
  EXPECT_EQ(copy->field22, nullptr);
  EXPECT_EQ(copy->field22_count, 0u);
}

TEST(api_msg_p2p_auto_policy_notif, null_arrays_count_as_empty_in_a_copy_whatever_their_count) {
  notification source{};
  source.label_stack.label_count = 2;
  source.label_stack.presence = API_LBL_STACK_HAS_LABELS;
  source.field15_count = 5;
  source.field22_count = 3;
  source.presence = 1u << 9 | 1u << 14 | 1u << 21;
  copied<notification> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy.memory.requests(), 0u);
  EXPECT_EQ(copy->label_stack.labels, nullptr);
  EXPECT_EQ(copy->label_stack.label_count, 0u);
  EXPECT_EQ(bits(copy->label_stack), std::uint32_t{API_LBL_STACK_HAS_LABELS});
  EXPECT_EQ(copy->field15, nullptr);
  EXPECT_EQ(copy->field15_count, 0u);
  EXPECT_EQ(copy->field22, nullptr);
  EXPECT_EQ(copy->field22_count, 0u);
  EXPECT_EQ(bits(copy.record), 1u << 9 | 1u << 14 | 1u << 21);
}

TEST(api_msg_p2p_auto_policy_notif, null_strings_and_arrays_of_count_0_are_copied_as_empty_with_their_bits) {
  std::uint8_t elements[] = {1};
  notification source{};
  source.field15 = elements;
  source.field22 = elements;
  source.presence = 0x7ffffff;
  copied<notification> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy.memory.requests(), 0u);
  EXPECT_EQ(bits(copy.record), 0x7ffffffu);
  EXPECT_EQ(copy->field1, nullptr);
  EXPECT_EQ(copy->field15, nullptr);
  EXPECT_EQ(copy->field22, nullptr);
}

TEST(api_msg_p2p_auto_policy_notif, blocks_are_released_in_their_order) {
  decoded<notification> read(together(all_fields));
  ASSERT_EQ(read.result, CODEC_OK);
  notification &record = read.record;
  const std::vector<void *> blocks = {record.field1,  record.field2,  record.label_stack.labels,
                                      record.field15, record.field21, record.field22};
  operations<notification>::free(&record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(record.field1, nullptr);
  EXPECT_EQ(record.field2, nullptr);
  EXPECT_EQ(record.label_stack.labels, nullptr);
  EXPECT_EQ(record.label_stack.label_count, 1u);
  EXPECT_EQ(record.field15, nullptr);
  EXPECT_EQ(record.field15_count, 2u);
  EXPECT_EQ(record.field21, nullptr);
  EXPECT_EQ(record.field22, nullptr);
  EXPECT_EQ(record.field22_count, 1u);
  EXPECT_EQ(bits(record), 0x7ffffffu);
  EXPECT_EQ(bits(record.label_stack), 1u);
}

// --- Order ---

TEST(api_msg_p2p_auto_policy_notif, fields_are_compared_in_order) {
  const whole_notification higher;
  whole_notification lower;
  char field2[] = "a";
  notification high = higher.record;
  high.field2 = field2;
  high.field5 = 0x80;
  high.field12 = 0x80000000;
  lower.field1[1] = 'a';
  lower.record.field3 = 2;
  lower.record.field4 = 0;
  lower.record.field5 = 1;
  lower.record.field6 = 0;
  lower.record.field7 = 6;
  lower.record.field8 = 299;
  lower.record.field9 = 0;
  lower.labels[0] = 15;
  lower.record.field11 = 10;
  lower.record.field12 = 1;
  lower.record.field13 = 0;
  lower.record.field14 = 13;
  lower.field15[1] = 100;
  lower.record.field16 = 15;
  lower.record.field17 = 16;
  lower.record.field18 = 17;
  lower.record.field19 = 1;
  lower.record.field20 = 0;
  lower.field21[0] = 'w';
  lower.field22[0] = 100;
  lower.record.field23 = 22;
  lower.record.field24 = 23;
  lower.record.field25 = 24;
  lower.record.field26 = 0;
  lower.record.field27 = INT64_MIN;
  orders_field_by_field(lower.record, high, all_fields);
}

TEST(api_msg_p2p_auto_policy_notif, field_27_alone_is_compared_signed) {
  notification low{}, high{};
  low.presence = high.presence = 1u << 26;
  for (const auto &[less, more] : std::vector<std::pair<std::int64_t, std::int64_t>>{
           {-1, 0}, {-2, -1}, {INT64_MIN, INT64_MAX}, {-1, 1}, {0, 0x100000000LL}, {-0x100000000LL, 0}}) {
    low.field27 = less;
    high.field27 = more;
    EXPECT_EQ(operations<notification>::compare(&low, &high), -1) << less << ' ' << more;
    EXPECT_EQ(operations<notification>::compare(&high, &low), 1) << less << ' ' << more;
    EXPECT_EQ(operations<notification>::compare(&low, &low), 0) << less;
  }
}

TEST(api_msg_p2p_auto_policy_notif, the_order_of_strings_is_handed_on_as_it_is) {
  char a[] = "a", z[] = "z";
  for (char *notification::*const member : {&notification::field1, &notification::field2, &notification::field21}) {
    notification low{}, high{};
    for (char *notification::*const each : {&notification::field1, &notification::field2, &notification::field21}) {
      low.*each = high.*each = a;
    }
    high.*member = z;
    low.presence = high.presence = 1u << 0 | 1u << 1 | 1u << 20;
    EXPECT_EQ(operations<notification>::compare(&low, &high), string_order(a, z));
    EXPECT_EQ(operations<notification>::compare(&high, &low), string_order(z, a));
  }
}

TEST(api_msg_p2p_auto_policy_notif, a_longer_list_is_greater) {
  const whole_notification longer;
  for (const std::uint32_t bit : {9u, 14u, 21u}) {
    SCOPED_TRACE(bit);
    notification shorter = longer.record;
    if (bit == 9) shorter.label_stack.label_count = 0;
    if (bit == 14) shorter.field15_count = 1;
    if (bit == 21) shorter.field22_count = 0;
    EXPECT_EQ(operations<notification>::compare(&shorter, &longer.record), -1);
    EXPECT_EQ(operations<notification>::compare(&longer.record, &shorter), 1);
  }
}

// --- Presence bits of no field ---

TEST(api_msg_p2p_auto_policy_notif, decoding_leaves_presence_bits_of_no_field_alone) {
  const notification ones = cleared_from<notification>(0xff);
  EXPECT_EQ(ones.presence, 0xf8000000u);
  EXPECT_EQ(ones.label_stack.presence, 0xfe);
  const notification zeros = cleared_from<notification>(0);
  EXPECT_EQ(zeros.presence, 0u);
  EXPECT_EQ(zeros.label_stack.presence, 0);
  decoded<notification> read(together(all_fields));
  EXPECT_EQ(read->presence, 0x5fffffffu);  // 5a5a5a5a before
  EXPECT_EQ(read->label_stack.presence, 0x5b);
}

TEST(api_msg_p2p_auto_policy_notif, copying_leaves_presence_bits_of_no_field_alone) {
  notification source{};
  source.presence = 0xf8000000u | 1u << 2;
  source.label_stack.presence = 0xff;
  const notification zeros = overwritten(0, source);
  EXPECT_EQ(zeros.presence, 1u << 2);
  EXPECT_EQ(zeros.label_stack.presence, 0x01);
  source.presence = 1u << 2;
  source.label_stack.presence = 0x00;
  const notification ones = overwritten(0xff, source);
  EXPECT_EQ(ones.presence, 0xf8000000u | 1u << 2);
  EXPECT_EQ(ones.label_stack.presence, 0xfe);
}

}  // namespace api_msg_p2p_auto_policy_notif_test
