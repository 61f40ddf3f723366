// Requests, responses and sweeps of automatically created policies: a policy or a notification with two numbers beside
// it, and two numbers alone.
#include "message_checks.hpp"

using namespace test;
using namespace test::checks;

namespace api_msg_p2p_auto_policy_exchange_test {

using request_message = api_msg_p2p_auto_policy_request;
using response_message = api_msg_p2p_auto_policy_response;
using sweep_message = api_msg_p2p_auto_policy_sweep;

struct whole_request {
  char field1[3] = "ab";
  std::uint32_t labels[1] = {16};
  request_message record{};

  whole_request(const whole_request &) = delete;
  whole_request() {
    record.policy.field1 = field1;
    record.policy.label_stack.labels = labels;
    record.policy.label_stack.label_count = 1;
    record.policy.label_stack.presence = API_LBL_STACK_HAS_LABELS;
    record.policy.presence = API_MSG_P2P_AUTO_POLICY_HAS_FIELD1 | API_MSG_P2P_AUTO_POLICY_HAS_LABEL_STACK;
    record.field2 = 300;
    record.field3 = 0;
    record.presence = 7;
  }
};

struct whole_response {
  char field21[2] = "x";
  std::uint8_t field22[1] = {7};
  response_message record{};

  whole_response(const whole_response &) = delete;
  whole_response() {
    record.notification.field21 = field21;
    record.notification.field22 = field22;
    record.notification.field22_count = 1;
    record.notification.field27 = -1;
    record.notification.presence = 1u << 20 | 1u << 21 | 1u << 26;
    record.field2 = 0xffffffff;
    record.field3 = 3;
    record.presence = 7;
  }
};

const fields<request_message> request_fields = {
    {take(&request_message::policy), hex("0a 08 0a 02 61 62 3a 02 08 10")},
    {take(&request_message::field2), hex("10 ac 02")},
    {take(&request_message::field3), hex("18 00")},
};

const fields<response_message> response_fields = {
    {take(&response_message::notification), hex("0a 13 aa 01 01 78 b0 01 07 d8 01 ff ff ff ff ff ff ff ff ff 01")},
    {take(&response_message::field2), hex("10 ff ff ff ff 0f")},
    {take(&response_message::field3), hex("18 03")},
};

const fields<sweep_message> sweep_fields = {
    {take(&sweep_message::field1), hex("08 ac 02")},
    {take(&sweep_message::field2), hex("10 00")},
};

// --- Requests ---

TEST(api_msg_p2p_auto_policy_request, its_fields_are_of_their_kinds) { fields_are_of_kinds<request_message>(); }

TEST(api_msg_p2p_auto_policy_request, every_field_goes_to_the_wire_and_back) {
  goes_to_the_wire_and_back(whole_request().record, request_fields);
}

TEST(api_msg_p2p_auto_policy_request, an_empty_policy_with_its_bit_set_is_a_key_and_a_zero_length) {
  request_message record{};
  record.presence = API_MSG_P2P_AUTO_POLICY_REQUEST_HAS_POLICY;
  EXPECT_EQ(show(encoded(record)), "0a 00");
  decoded<request_message> read(hex("0a 00"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(bits(read.record), 1u);
  EXPECT_EQ(bits(read->policy), 0u);
  EXPECT_EQ(show(encoded(read->policy)), "");
}

TEST(api_msg_p2p_auto_policy_request, a_policy_with_content_is_written_without_its_bit) {
  request_message record{};
  record.policy.field3 = 5;
  record.policy.presence = API_MSG_P2P_AUTO_POLICY_HAS_FIELD3;
  EXPECT_EQ(show(encoded(record)), "0a 02 18 05");
  decoded<request_message> read(hex("0a 02 18 05"));
  EXPECT_EQ(bits(read.record), 1u);
  EXPECT_EQ(read->policy.field3, 5u);
}

TEST(api_msg_p2p_auto_policy_request, a_policy_that_runs_past_the_end_is_refused) {
  for (const char *bytes : {"0a", "0a 01", "0a 03 18 05", "0a ff ff ff ff 0f 18 05"}) {
    SCOPED_TRACE(bytes);
    decoded<request_message> read(hex("10 05") + hex(bytes));
    EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
    EXPECT_EQ(read->field2, 5u);
    EXPECT_EQ(bits(read.record), 2u);
  }
}

TEST(api_msg_p2p_auto_policy_request, what_the_policy_fails_with_is_handed_on_and_its_content_stays) {
  const std::vector<std::pair<const char *, int>> inputs = {
      {"0a 06 0a 02 61 62 18 80", CODEC_ERR_TRUNCATED},
      {"0a 06 0a 02 61 62 bb 01", CODEC_ERR_BAD_WIRE_TYPE},
      {"0a 05 0a 02 61 62 1a", CODEC_ERR_WRONG_WIRE_TYPE},
  };
  for (const auto &[bytes, result] : inputs) {
    SCOPED_TRACE(bytes);
    decoded<request_message> read(hex(bytes));
    EXPECT_EQ(read.result, result);
    EXPECT_STREQ(read->policy.field1, "ab");
    EXPECT_EQ(bits(read->policy), 1u);
    EXPECT_EQ(bits(read.record), 0u);
    EXPECT_EQ(read.memory.live(), 1u);
  }
  EXPECT_EQ(decode_without_memory<request_message>(hex("0a 02 0a 00")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<request_message>(hex("0a 02 18 05 10 01 18 01")), CODEC_OK);
}

TEST(api_msg_p2p_auto_policy_request, a_second_policy_replaces_the_first_and_drops_its_memory) {
  decoded<request_message> read(hex("0a 0c 0a 01 61 12 01 62 72 04 0a 02 28 07 0a 04 12 00 18 01"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->policy.field1, nullptr);
  EXPECT_STREQ(read->policy.field2, "");
  EXPECT_EQ(read->policy.field3, 1u);
  EXPECT_EQ(read->policy.exp_paths, nullptr);
  EXPECT_EQ(read->policy.exp_paths_count, 0u);
  EXPECT_EQ(bits(read->policy), 1u << 1 | 1u << 2);
  EXPECT_EQ(bits(read.record), 1u);
  EXPECT_EQ(read.memory.requests(), 6u);  // two strings, paths, hops, their numbers; the string of the second
  EXPECT_TRUE(read.memory.released.empty());
  read.dropped = 5;
}

TEST(api_msg_p2p_auto_policy_request, short_buffers_take_what_fits) {
  fills_short_buffers(whole_request().record, together(request_fields), {{"policy.field1", 4, 2}});
}

TEST(api_msg_p2p_auto_policy_request, its_own_entry_comes_after_those_of_the_policy) {
  takes_entries(whole_request().record,
                {{"policy.label_stack", 8, 2}, {"policy", 2, 8}, {"api_msg_p2p_auto_policy_request", 0, 15}});
  request_message record{};
  record.presence = 1;
  takes_entries(record, {{"api_msg_p2p_auto_policy_request", 0, 2}});
  takes_entries(request_message{}, {});
}

TEST(api_msg_p2p_auto_policy_request, the_options_word_changes_nothing) {
  const whole_request whole;
  for (const std::uint32_t options : {1u, 0xffffffffu}) {
    EXPECT_EQ(show(encoded(whole.record, options)), show(together(request_fields)));
    takes_entries(whole.record,
                  {{"policy.label_stack", 8, 2}, {"policy", 2, 8}, {"api_msg_p2p_auto_policy_request", 0, 15}},
                  options);
    decoded<request_message> read(together(request_fields), options);
    EXPECT_EQ(read.memory.sizes, (std::vector<std::size_t>{3, 4}));
    EXPECT_EQ(decode_without_memory<request_message>(hex("0a 03 0a 01 61"), options), CODEC_ERR_NO_MEMORY);
    operations<request_message>::free(&read.record, accountant::release, &read.memory, options);
    EXPECT_EQ(read.memory.live(), 0u);
  }
}

TEST(api_msg_p2p_auto_policy_request, memory_is_asked_for_by_the_policy_alone) {
  asks_for_memory(whole_request().record, request_fields,
                  {
                      {3, 1, hex("0a 04 3a 02 08 10"), hex("")},
                      {4, 1, hex("0a 06 0a 02 61 62 3a 00"), hex("0a 04 0a 02 61 62")},
                  },
                  hex("0a 02 3a 00 10 ac 02 18 00"));
}

TEST(api_msg_p2p_auto_policy_request, a_copy_that_fails_keeps_its_own_bits) {
  const whole_request whole;
  copied<request_message> copy(whole.record, {.fail_from = 0});
  EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(bits(copy.record), 7u);
  EXPECT_EQ(bits(copy->policy), std::uint32_t{API_MSG_P2P_AUTO_POLICY_HAS_LABEL_STACK});
  EXPECT_EQ(copy->field2, 300u);
  EXPECT_EQ(copy->field3, 0u);
}

TEST(api_msg_p2p_auto_policy_request, free_releases_the_policy_and_leaves_the_rest) {
  decoded<request_message> read(together(request_fields));
  ASSERT_EQ(read.result, CODEC_OK);
  const std::vector<void *> blocks = {read->policy.field1, read->policy.label_stack.labels};
  operations<request_message>::free(&read.record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->policy.field1, nullptr);
  EXPECT_EQ(read->policy.label_stack.labels, nullptr);
  EXPECT_EQ(read->field2, 300u);
  EXPECT_EQ(bits(read.record), 7u);
}

TEST(api_msg_p2p_auto_policy_request, fields_are_compared_in_order) {
  const whole_request higher;
  whole_request lower;
  lower.labels[0] = 15;
  lower.record.field2 = 299;
  request_message high = higher.record;
  high.field2 = 0x80000000;
  high.field3 = 0x80000000;
  orders_field_by_field(lower.record, high, request_fields);
}

TEST(api_msg_p2p_auto_policy_request, the_order_of_policies_is_handed_on_as_it_is) {
  whole_request low, high;
  low.field1[0] = 'a';
  high.field1[0] = 'z';
  EXPECT_EQ(operations<request_message>::compare(&low.record, &high.record), string_order(low.field1, high.field1));
  EXPECT_EQ(operations<request_message>::compare(&high.record, &low.record), string_order(high.field1, low.field1));
}

TEST(api_msg_p2p_auto_policy_request, presence_bits_of_no_field_are_left_alone) {
  const request_message ones = cleared_from<request_message>(0xff);
  EXPECT_EQ(ones.presence, 0xf8);
  EXPECT_EQ(ones.policy.presence, 0xffc00000u);
  EXPECT_EQ(ones.policy.label_stack.presence, 0xfe);
  EXPECT_EQ(ones.policy.prefix_sid.presence, 0xfc);
  request_message source{};
  source.presence = 0xfa;
  source.policy.presence = 0xffc00001u;
  source.policy.prefix_sid.presence = 0xfd;
  const request_message zeros = overwritten(0, source);
  EXPECT_EQ(zeros.presence, 0x02);
  EXPECT_EQ(zeros.policy.presence, 0x00000001u);
  EXPECT_EQ(zeros.policy.prefix_sid.presence, 0x01);
  source = {};
  const request_message copy = overwritten(0xff, source);
  EXPECT_EQ(copy.presence, 0xf8);
  EXPECT_EQ(copy.policy.presence, 0xffc00000u);
  EXPECT_EQ(copy.policy.label_stack.presence, 0xfe);
  EXPECT_EQ(copy.policy.prefix_sid.presence, 0xfc);
}

// --- Responses ---

TEST(api_msg_p2p_auto_policy_response, its_fields_are_of_their_kinds) { fields_are_of_kinds<response_message>(); }

TEST(api_msg_p2p_auto_policy_response, every_field_goes_to_the_wire_and_back) {
  goes_to_the_wire_and_back(whole_response().record, response_fields);
}

TEST(api_msg_p2p_auto_policy_response, an_empty_notification_with_its_bit_set_is_a_key_and_a_zero_length) {
  response_message record{};
  record.presence = API_MSG_P2P_AUTO_POLICY_RESPONSE_HAS_NOTIFICATION;
  EXPECT_EQ(show(encoded(record)), "0a 00");
  decoded<response_message> read(hex("0a 00"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(bits(read.record), 1u);
  EXPECT_EQ(bits(read->notification), 0u);
}

TEST(api_msg_p2p_auto_policy_response, a_notification_with_content_is_written_without_its_bit) {
  response_message record{};
  record.notification.field27 = 0;
  record.notification.presence = 1u << 26;
  EXPECT_EQ(show(encoded(record)), "0a 03 d8 01 00");
}

TEST(api_msg_p2p_auto_policy_response, what_the_notification_fails_with_is_handed_on_and_its_content_stays) {
  const std::vector<std::pair<const char *, int>> inputs = {
      {"0a 06 0a 02 61 62 d8 01", CODEC_ERR_TRUNCATED},
      {"0a 06 0a 02 61 62 e3 01", CODEC_ERR_BAD_WIRE_TYPE},
      {"0a 06 0a 02 61 62 da 01", CODEC_ERR_WRONG_WIRE_TYPE},
  };
  for (const auto &[bytes, result] : inputs) {
    SCOPED_TRACE(bytes);
    decoded<response_message> read(hex(bytes));
    EXPECT_EQ(read.result, result);
    EXPECT_STREQ(read->notification.field1, "ab");
    EXPECT_EQ(bits(read.record), 0u);
  }
  EXPECT_EQ(decode_without_memory<response_message>(hex("0a 02 0a 00")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decoded<response_message>(hex("0a 05 d8 01 05")).result, CODEC_ERR_TRUNCATED);
}

TEST(api_msg_p2p_auto_policy_response, a_second_notification_replaces_the_first_and_drops_its_memory) {
  decoded<response_message> read(hex("0a 05 0a 01 61 78 01 0a 03 d8 01 05"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->notification.field1, nullptr);
  EXPECT_EQ(read->notification.field15, nullptr);
  EXPECT_EQ(read->notification.field15_count, 0u);
  EXPECT_EQ(read->notification.field27, 5);
  EXPECT_EQ(bits(read->notification), 1u << 26);
  EXPECT_EQ(read.memory.live(), 2u);
  read.dropped = 2;
}

TEST(api_msg_p2p_auto_policy_response, short_buffers_take_what_fits) {
  fills_short_buffers(whole_response().record, together(response_fields), {{"notification.field21", 5, 1}});
}

TEST(api_msg_p2p_auto_policy_response, its_own_entry_comes_after_those_of_the_notification) {
  takes_entries(whole_response().record, {{"notification", 2, 19}, {"api_msg_p2p_auto_policy_response", 0, 29}});
}

TEST(api_msg_p2p_auto_policy_response, memory_is_asked_for_by_the_notification_alone) {
  asks_for_memory(whole_response().record, response_fields,
                  {
                      {2, 1, hex("0a 0f b0 01 07 d8 01 ff ff ff ff ff ff ff ff ff 01"), hex("")},
                      {1, 1, hex("0a 10 aa 01 01 78 d8 01 ff ff ff ff ff ff ff ff ff 01"), hex("0a 04 aa 01 01 78")},
                  },
                  hex("0a 0c d8 01 ff ff ff ff ff ff ff ff ff 01 10 ff ff ff ff 0f 18 03"));
}

TEST(api_msg_p2p_auto_policy_response, free_releases_the_notification_and_leaves_the_rest) {
  decoded<response_message> read(together(response_fields));
  ASSERT_EQ(read.result, CODEC_OK);
  const std::vector<void *> blocks = {read->notification.field21, read->notification.field22};
  operations<response_message>::free(&read.record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->notification.field21, nullptr);
  EXPECT_EQ(read->notification.field22, nullptr);
  EXPECT_EQ(read->field3, 3u);
  EXPECT_EQ(bits(read.record), 7u);
}

TEST(api_msg_p2p_auto_policy_response, fields_are_compared_in_order) {
  const whole_response higher;
  whole_response lower;
  lower.record.notification.field27 = -2;
  lower.record.field2 = 1;
  lower.record.field3 = 2;
  orders_field_by_field(lower.record, higher.record, response_fields);
}

TEST(api_msg_p2p_auto_policy_response, the_order_of_notifications_is_handed_on_as_it_is) {
  whole_response low, high;
  low.field21[0] = 'a';
  high.field21[0] = 'z';
  EXPECT_EQ(operations<response_message>::compare(&low.record, &high.record), string_order(low.field21, high.field21));
  EXPECT_EQ(operations<response_message>::compare(&high.record, &low.record), string_order(high.field21, low.field21));
}

TEST(api_msg_p2p_auto_policy_response, presence_bits_of_no_field_are_left_alone) {
  const response_message ones = cleared_from<response_message>(0xff);
  EXPECT_EQ(ones.presence, 0xf8);
  EXPECT_EQ(ones.notification.presence, 0xf8000000u);
  EXPECT_EQ(ones.notification.label_stack.presence, 0xfe);
  response_message source{};
  source.presence = 0xf9;
  source.notification.presence = 0xf8000002u;
  const response_message zeros = overwritten(0, source);
  EXPECT_EQ(zeros.presence, 0x01);
  EXPECT_EQ(zeros.notification.presence, 0x00000002u);
  source = {};
  const response_message copy = overwritten(0xff, source);
  EXPECT_EQ(copy.presence, 0xf8);
  EXPECT_EQ(copy.notification.presence, 0xf8000000u);
  EXPECT_EQ(copy.notification.label_stack.presence, 0xfe);
}

// --- Sweeps ---

TEST(api_msg_p2p_auto_policy_sweep, its_fields_are_of_their_kinds) { fields_are_of_kinds<sweep_message>(); }

TEST(api_msg_p2p_auto_policy_sweep, every_field_goes_to_the_wire_and_back) {
  goes_to_the_wire_and_back(sweep_message{300, 0, 3}, sweep_fields);
}

TEST(api_msg_p2p_auto_policy_sweep, with_both_bits_clear_there_are_no_bytes_and_no_entries) {
  const sweep_message record = {300, 7, 0};
  EXPECT_EQ(show(encoded(record)), "");
  for (const std::uint32_t capacity : {0u, 1u, 4u}) {
    const encoding<sweep_message> call(record, 8, capacity);
    EXPECT_EQ(call.length, 0u);
    EXPECT_EQ(call.segments.count, 0u);
    EXPECT_TRUE(call.segments.untouched_from(0));
  }
}

TEST(api_msg_p2p_auto_policy_sweep, the_numbers_300_and_0_take_five_bytes) {
  EXPECT_EQ(show(encoded(sweep_message{300, 0, 3})), "08 ac 02 10 00");
  takes_entries(sweep_message{300, 0, 3}, {{"api_msg_p2p_auto_policy_sweep", 0, 5}});
}

TEST(api_msg_p2p_auto_policy_sweep, nothing_needs_memory) {
  EXPECT_EQ(decode_without_memory<sweep_message>(hex("08 ac 02 10 00")), CODEC_OK);
  decoded<sweep_message> read(hex("08 ac 02 10 07 08 05"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->field1, 5u);
  EXPECT_EQ(read->field2, 7u);
  EXPECT_EQ(read.memory.requests(), 0u);
  operations<sweep_message>::free(&read.record, accountant::release, &read.memory);
  EXPECT_TRUE(read.memory.released.empty());
  EXPECT_EQ(read->field1, 5u);
  EXPECT_EQ(bits(read.record), 3u);
  asks_for_memory(sweep_message{300, 0, 3}, sweep_fields, {}, hex("08 ac 02 10 00"));
}

TEST(api_msg_p2p_auto_policy_sweep, a_failure_keeps_what_came_before) {
  const std::vector<std::pair<const char *, int>> inputs = {
      {"08 05 10", CODEC_ERR_TRUNCATED},       {"08 05 10 80", CODEC_ERR_TRUNCATED},
      {"08 05 80", CODEC_ERR_TRUNCATED},       {"08 05 1b", CODEC_ERR_BAD_WIRE_TYPE},
      {"08 05 12", CODEC_ERR_WRONG_WIRE_TYPE}, {"08 05 15", CODEC_ERR_WRONG_WIRE_TYPE},
  };
  for (const auto &[bytes, result] : inputs) {
    SCOPED_TRACE(bytes);
    decoded<sweep_message> read(hex(bytes));
    EXPECT_EQ(read.result, result);
    EXPECT_EQ(read->field1, 5u);
    EXPECT_EQ(bits(read.record), 1u);
  }
}

TEST(api_msg_p2p_auto_policy_sweep, short_buffers_take_what_fits) {
  fills_short_buffers(sweep_message{300, 0, 3}, hex("08 ac 02 10 00"), {});
}

TEST(api_msg_p2p_auto_policy_sweep, fields_are_compared_in_order_and_unsigned) {
  orders_field_by_field(sweep_message{1, 0, 3}, sweep_message{0xffffffff, 0x80000000, 3}, sweep_fields);
}

TEST(api_msg_p2p_auto_policy_sweep, presence_bits_of_no_field_are_left_alone) {
  EXPECT_EQ(cleared_from<sweep_message>(0xff).presence, 0xfc);
  EXPECT_EQ(overwritten(0, sweep_message{1, 2, 0xfe}).presence, 0x02);
  EXPECT_EQ(overwritten(0xff, sweep_message{1, 2, 0x01}).presence, 0xfd);
  EXPECT_EQ(overwritten(0xff, sweep_message{1, 2, 0x01}).field2, 2u);
}

}  // namespace api_msg_p2p_auto_policy_exchange_test
