// What all records have in common, and the five operations on every kind of member.
#include <algorithm>
#include <type_traits>

#include "cleared_members.hpp"
#include "support.hpp"

namespace records_test {

using namespace test;

// Every kind of element that a list can have, and bytes, as the bytes they hold.
byte_string bytes_of(const std::uint8_t *elements, std::uint64_t count) {
  return byte_string(elements, elements + count);
}

std::vector<std::uint32_t> numbers_of(const std::uint32_t *elements, std::uint32_t count) {
  return std::vector<std::uint32_t>(elements, elements + count);
}

// A present text, for records that only have to hold one.
api_intf interface_named(char *name) { return {0, name, API_INTF_HAS_FIELD2}; }

int sign(int value) { return (value > 0) - (value < 0); }

// The C library's own answers, not the compiler's.
int (*volatile string_comparison)(const char *, const char *) = std::strcmp;
int (*volatile memory_comparison)(const void *, const void *, std::size_t) = std::memcmp;

// Both ways round.
template <class Record>
int compared(const Record &a, const Record &b) {
  const int result = operations<Record>::compare(&a, &b);
  EXPECT_EQ(sign(operations<Record>::compare(&b, &a)), -sign(result));
  EXPECT_EQ(operations<Record>::compare(&a, &a), 0);
  return result;
}

// --- Layout ---

TEST(layout, results_have_their_values) {
  EXPECT_EQ(int{CODEC_OK}, 0);
  EXPECT_EQ(int{CODEC_ERR_TRUNCATED}, -1);
  EXPECT_EQ(int{CODEC_ERR_BAD_WIRE_TYPE}, -2);
  EXPECT_EQ(int{CODEC_ERR_WRONG_WIRE_TYPE}, -3);
  EXPECT_EQ(int{CODEC_ERR_NO_MEMORY}, -4);
  EXPECT_EQ(int{PAVO_ZORV_REFERENCE}, 1);
}

TEST(layout, a_segment_is_a_pointer_and_a_64_bit_length) {
  if (sizeof(void *) != 8) GTEST_SKIP() << "these are the figures of 64 bits; pavo_zorv_layout.h has the others";
  EXPECT_EQ(offsetof(pavo_zorv_segment, start), 0u);
  EXPECT_EQ(offsetof(pavo_zorv_segment, length), sizeof(std::uint64_t));
  EXPECT_EQ(sizeof(pavo_zorv_segment), 16u);
  EXPECT_TRUE((std::is_same_v<decltype(pavo_zorv_segment::start), const unsigned char *>));
  EXPECT_TRUE((std::is_same_v<decltype(pavo_zorv_segment::length), std::uint64_t>));
}

TEST(layout, callbacks_take_the_context_last) {
  EXPECT_TRUE((std::is_same_v<pavo_zorv_allocate, void *(*)(std::size_t, void *)>));
  EXPECT_TRUE((std::is_same_v<pavo_zorv_release, void (*)(void *, void *)>));
}

TEST(layout, the_presence_flags_are_last_and_as_narrow_as_the_fields_allow) {
  EXPECT_TRUE((std::is_same_v<decltype(api_addr::presence), std::uint8_t>));
  EXPECT_TRUE((std::is_same_v<decltype(srv6_sid_struct::presence), std::uint8_t>)) << "8 fields";
  EXPECT_TRUE((std::is_same_v<decltype(api_policy::presence), std::uint16_t>)) << "10 fields";
  EXPECT_TRUE((std::is_same_v<decltype(api_msg::presence), std::uint16_t>)) << "16 fields";
  EXPECT_TRUE((std::is_same_v<decltype(api_msg_p2p_auto_policy::presence), std::uint32_t>)) << "22 fields";
  EXPECT_TRUE((std::is_same_v<decltype(api_msg_p2p_auto_policy_notif::presence), std::uint32_t>)) << "27 fields";

  EXPECT_EQ(offsetof(srv6_sid_struct, presence), 8u);
  EXPECT_EQ(offsetof(api_policy, presence), offsetof(api_policy, field10) + 2);
  EXPECT_EQ(offsetof(api_msg_p2p_auto_policy, presence), offsetof(api_msg_p2p_auto_policy, field22) + 4);
}

TEST(layout, members_are_in_field_order_with_natural_alignment) {
  if (sizeof(void *) != 8) GTEST_SKIP() << "these are the figures of 64 bits; pavo_zorv_layout.h has the others";
  EXPECT_EQ(offsetof(api_msg_internal, field1), 0u);
  EXPECT_EQ(offsetof(api_msg_internal, field2), 8u);
  EXPECT_EQ(offsetof(api_msg_internal, field3), 16u);
  EXPECT_EQ(offsetof(api_msg_internal, field4), 24u);
  EXPECT_EQ(offsetof(api_msg_internal, service), 28u);
  EXPECT_EQ(offsetof(api_msg_internal, field6), 32u);
  EXPECT_EQ(offsetof(api_msg_internal, field7), 36u);
  EXPECT_EQ(offsetof(api_msg_internal, presence), 37u);
  EXPECT_EQ(sizeof(api_msg_internal), 40u);

  EXPECT_EQ(offsetof(srv6_prefix, field1), 0u);
  EXPECT_EQ(offsetof(srv6_prefix, field1_length), 8u);
  EXPECT_EQ(offsetof(srv6_prefix, field2), 16u);
  EXPECT_EQ(offsetof(srv6_prefix, presence), 20u);

  EXPECT_EQ(offsetof(api_exp_path, hops), 0u);
  EXPECT_EQ(offsetof(api_exp_path, hop_count), 8u);
  EXPECT_EQ(offsetof(api_exp_path, field2), 12u);
  EXPECT_EQ(offsetof(api_exp_path, presence), 16u);
}

TEST(layout, members_have_the_types_of_their_kinds) {
  EXPECT_TRUE((std::is_same_v<decltype(api_msg_service::field1), std::uint8_t>)) << "flag";
  EXPECT_TRUE((std::is_same_v<decltype(api_prefix::field2), std::uint8_t>));
  EXPECT_TRUE((std::is_same_v<decltype(api_addr::address), std::uint32_t>));
  EXPECT_TRUE((std::is_same_v<decltype(api_policy::field9), std::int32_t>));
  EXPECT_TRUE((std::is_same_v<decltype(oam_res::field3), std::int32_t>));
  EXPECT_TRUE((std::is_same_v<decltype(api_msg_internal::field3), std::uint64_t>));
  EXPECT_TRUE((std::is_same_v<decltype(api_msg_p2p_auto_policy_notif::field27), std::int64_t>));
  EXPECT_TRUE((std::is_same_v<decltype(api_msg_internal::field2), char *>)) << "string";
  EXPECT_TRUE((std::is_same_v<decltype(srv6_prefix::field1), unsigned char *>)) << "bytes";
  EXPECT_TRUE((std::is_same_v<decltype(srv6_prefix::field1_length), std::uint64_t>));
  EXPECT_TRUE((std::is_same_v<decltype(api_lbl_stack::labels), std::uint32_t *>));
  EXPECT_TRUE((std::is_same_v<decltype(api_lbl_stack::label_count), std::uint32_t>));
  EXPECT_TRUE((std::is_same_v<decltype(prefix_sid_type::field2), std::uint8_t *>));
  EXPECT_TRUE((std::is_same_v<decltype(api_exp_path::hops), api_exp_hop *>));
  EXPECT_TRUE((std::is_same_v<decltype(policy_binding_sid_t::sid), prefix_sid_type>)) << "nested message";
}

TEST(layout, presence_bits_are_counted_in_field_order) {
  EXPECT_EQ(int{API_MSG_INTERNAL_HAS_FIELD1}, 0x01);
  EXPECT_EQ(int{API_MSG_INTERNAL_HAS_FIELD2}, 0x02);
  EXPECT_EQ(int{API_MSG_INTERNAL_HAS_FIELD3}, 0x04);
  EXPECT_EQ(int{API_MSG_INTERNAL_HAS_FIELD4}, 0x08);
  EXPECT_EQ(int{API_MSG_INTERNAL_HAS_SERVICE}, 0x10);
  EXPECT_EQ(int{API_MSG_INTERNAL_HAS_FIELD6}, 0x20);
  EXPECT_EQ(int{API_MSG_INTERNAL_HAS_FIELD7}, 0x40);
  EXPECT_EQ(decoded<api_msg_p2p_auto_policy_notif>(hex("d8 01 00"))->presence & 0x07ffffff, 0x04000000u);
  EXPECT_EQ(decoded<api_msg>(hex("78 01"))->presence, 0x4000);
}

// --- Decoding ---

TEST(decode, no_bytes_give_a_cleared_record) {
  decoded<api_msg_internal> internal(hex(""));
  EXPECT_EQ(internal.result, CODEC_OK);
  EXPECT_EQ(internal->field1, 0);
  EXPECT_EQ(internal->field2, nullptr);
  EXPECT_EQ(internal->field3, 0u);
  EXPECT_EQ(internal->field4, 0u);
  EXPECT_EQ(internal->service.field1, 0);
  EXPECT_EQ(internal->service.field2, 0);
  EXPECT_EQ(internal->service.field3, 0);
  EXPECT_EQ(internal->service.presence & 0x07, 0);
  EXPECT_EQ(internal->field6, 0u);
  EXPECT_EQ(internal->field7, 0);
  EXPECT_EQ(internal->presence & 0x7f, 0);

  api_lbl_stack stack;
  std::memset(&stack, 0xff, sizeof stack);
  EXPECT_EQ(operations<api_lbl_stack>::decode(&stack, nullptr, 0, nullptr, nullptr), CODEC_OK)
      << "no buffer, no allocator";
  EXPECT_EQ(stack.labels, nullptr);
  EXPECT_EQ(stack.label_count, 0u);
  EXPECT_EQ(stack.presence & 1, 0);
}

class every_message : public testing::TestWithParam<const naive::message *> {
 protected:
  const naive::message &type = *GetParam();
  const calls &functions = *type.functions;
  const record_block empty{type.size, 0};

  record_block filled_with(int byte) const { return {type.size, static_cast<unsigned char>(byte)}; }
  int decode(record_block &record, const byte_string &bytes) const {
    const fenced_block input(bytes);
    return functions.decode(record.data(), input.data(), input.size(), nullptr, nullptr, 0);
  }
  void expect_clear(const record_block &record) const {
    EXPECT_EQ(left_in(naive::view(type, record.data())), "");
    EXPECT_EQ(functions.compare(record.data(), empty.data()), 0);
    EXPECT_EQ(functions.encode(record.data(), nullptr, 0, nullptr, nullptr, 0), 0u);
  }
  std::uint32_t presence(const record_block &record) const { return naive::view(type, record.data()).presence(); }
};

INSTANTIATE_TEST_SUITE_P(all, every_message, testing::ValuesIn(naive::pointers_to(naive::messages())),
                         [](const auto &tested) { return std::string(tested.param->name); });

TEST_P(every_message, is_cleared_whatever_it_held) {
  for (const int rubbish : {0x00, 0x01, 0x5a, 0xff}) {
    record_block record = filled_with(rubbish);
    EXPECT_EQ(functions.decode(record.data(), nullptr, 0, nullptr, nullptr, 0), CODEC_OK);
    expect_clear(record);
    functions.free(
        record.data(), [](void *, void *) { FAIL() << "nothing to release"; }, nullptr, 0);
  }
}

TEST_P(every_message, is_cleared_before_a_failure) {
  for (const char *const bytes : {"80", "fb 01", "0f"}) {
    record_block record = filled_with(0xff);
    EXPECT_LT(decode(record, hex(bytes)), 0);
    expect_clear(record);
  }
}

TEST_P(every_message, that_is_empty_is_copied_compared_and_released_without_callbacks) {
  record_block copy = filled_with(0xff);
  EXPECT_EQ(functions.duplicate(copy.data(), empty.data(), nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(functions.compare(copy.data(), empty.data()), 0);
  functions.free(copy.data(), nullptr, nullptr, 0);
  EXPECT_EQ(functions.encode(copy.data(), nullptr, 0, nullptr, nullptr, 0), 0u);
}

TEST_P(every_message, keeps_the_presence_bits_of_no_field) {
  record_block all_clear = filled_with(0x00), all_set = filled_with(0xff);
  EXPECT_EQ(decode(all_clear, {}), CODEC_OK);
  EXPECT_EQ(decode(all_set, {}), CODEC_OK);
  EXPECT_EQ(presence(all_clear), 0u);
  // What is left set belongs to no field: it is above all bits that do, and copying leaves it as well.
  const std::uint32_t unowned = presence(all_set), owned = type.all_bits() & ~unowned;
  EXPECT_NE(owned, 0u);
  EXPECT_EQ(owned & (owned + 1u), 0u);
  record_block source = filled_with(0x00);
  EXPECT_EQ(functions.duplicate(all_set.data(), source.data(), nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(presence(all_set), unowned);
  EXPECT_EQ(functions.duplicate(source.data(), all_set.data(), nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(presence(source), 0u);
}

TEST(decode, presence_bits_of_no_field_stay_also_in_nested_records) {
  api_msg message;
  std::memset(static_cast<void *>(&message), 0xff, sizeof message);
  const fenced_block input(hex("12 04 2a 02 08 01 2a 08 0a 06 0a 00 1a 02 08 05"));
  accountant memory;
  EXPECT_EQ(operations<api_msg>::decode(&message, input.data(), input.size(), accountant::allocate, &memory), CODEC_OK);
  EXPECT_EQ(message.internal.presence, 0x80 | API_MSG_INTERNAL_HAS_SERVICE);
  EXPECT_EQ(message.internal.service.presence, 0xf8 | API_MSG_SERVICE_HAS_FIELD1);
  EXPECT_EQ(message.field3.presence, 0xffc00000u);
  EXPECT_EQ(message.field3.label_stack.presence, 0xfe);
  EXPECT_EQ(message.oam_req.presence, 0);
  EXPECT_EQ(message.oam_req.prefix_sid.presence, 0xfc);
  EXPECT_EQ(message.p2p_auto_policy_request.policy.prefix_sid.presence, 0xfc);
  EXPECT_EQ(message.p2p_auto_policy_response.notification.label_stack.presence, 0xfe);
  EXPECT_EQ(message.to_igp.aa_list.presence, 0xf8);
  operations<api_msg>::free(&message, accountant::release, &memory);
}

TEST(decode, presence_bits_of_no_field_stay_when_a_nested_message_is_repeated) {
  policy_binding_sid_t binding;
  std::memset(&binding, 0xff, sizeof binding);
  const fenced_block input(hex("0a 02 08 01 0a 00"));
  EXPECT_EQ(operations<policy_binding_sid_t>::decode(&binding, input.data(), input.size(), nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(binding.sid.presence, 0xfc);
  EXPECT_EQ(binding.presence, 0xfc | POLICY_BINDING_SID_T_HAS_SID);
}

TEST(decode, presence_bits_of_no_field_are_0_in_the_elements_of_a_list) {
  decoded<api_exp_path> path(hex("0a 02 08 01 0a 00"));
  ASSERT_EQ(path->hop_count, 2u);
  EXPECT_EQ(path->hops[0].presence, API_EXP_HOP_HAS_FIELD1);
  EXPECT_EQ(path->hops[1].presence, 0);

  decoded<out_srv6_usid_list_info> list(hex("0a 04 1a 02 10 05"));
  ASSERT_EQ(list->usids_count, 1u);
  EXPECT_EQ(list->usids[0].presence, SRV6_USID_HAS_PREFIX);
  EXPECT_EQ(list->usids[0].prefix.presence, SRV6_PREFIX_HAS_FIELD2);
  EXPECT_EQ(list->usids[0].sid_struct.presence, 0);
}

TEST(decode, elements_of_a_list_are_zero_but_for_what_was_read) {
  decoded<api_exp_path> path(hex("0a 02 18 07"));
  ASSERT_EQ(path->hop_count, 1u);
  const api_exp_hop &hop = path->hops[0];
  EXPECT_EQ(hop.field1, 0u);
  EXPECT_EQ(hop.field2, 0u);
  EXPECT_EQ(hop.field3, 7u);
  EXPECT_EQ(hop.field4, 0u);
  EXPECT_EQ(hop.field5, nullptr);
  EXPECT_EQ(hop.field5_count, 0u);
  EXPECT_EQ(hop.field6, nullptr);
  EXPECT_EQ(hop.field6_count, 0u);
}

TEST(decode, fields_may_come_in_any_order) {
  decoded<api_exp_hop> hop(hex("30 06 20 04 28 05 08 01 18 03 10 02"));
  EXPECT_EQ(hop.result, CODEC_OK);
  EXPECT_EQ(show(encoded(hop.record)), "08 01 10 02 18 03 20 04 28 05 30 06");
}

TEST(decode, flags_are_1_for_every_value_but_0) {
  struct example {
    const char *bytes;
    int value;
  };
  for (const auto &[bytes, value] : {example{"08 00", 0},
                                     {"08 01", 1},
                                     {"08 02", 1},
                                     {"08 05", 1},
                                     {"08 7f", 1},
                                     {"08 80 01", 1},
                                     {"08 80 02", 1},
                                     {"08 80 80 80 80 08", 1},
                                     {"08 ff ff ff ff 0f", 1},
                                     {"08 80 00", 0},
                                     {"08 80 80 80 80 00", 0}}) {
    decoded<api_msg_service> service{hex(bytes)};
    EXPECT_EQ(service.result, CODEC_OK);
    EXPECT_EQ(service->field1, value) << bytes;
    EXPECT_EQ(service->presence & 7, API_MSG_SERVICE_HAS_FIELD1) << bytes;
  }
}

TEST(decode, flags_look_at_32_bits_only) {
  EXPECT_EQ(decoded<api_msg_service>(hex("08 80 80 80 80 10"))->field1, 0);
  EXPECT_EQ(decoded<api_msg_service>(hex("08 80 80 80 80 80 80 80 80 80 01"))->field1, 0);
}

TEST(decode, eight_bit_members_keep_the_low_eight_bits) {
  struct example {
    const char *bytes;
    int value;
  };
  for (const auto &[bytes, value] : {example{"10 00", 0},
                                     {"10 7f", 127},
                                     {"10 80 01", 128},
                                     {"10 ff 01", 255},
                                     {"10 80 02", 0},
                                     {"10 ac 02", 44},
                                     {"10 ff ff ff ff 0f", 255},
                                     {"10 85 80 80 80 10", 5}}) {
    decoded<api_prefix> prefix{hex(bytes)};
    EXPECT_EQ(prefix.result, CODEC_OK);
    EXPECT_EQ(prefix->field2, value) << bytes;
    EXPECT_EQ(prefix->presence & 3, API_PREFIX_HAS_FIELD2) << bytes;
  }
}

TEST(decode, list_elements_are_cut_to_their_width) {
  decoded<prefix_sid_type> sid(hex("10 ac 02 10 ff ff ff ff 0f 10 80 02 10 ff 01"));
  ASSERT_EQ(sid->field2_count, 4u);
  EXPECT_EQ(bytes_of(sid->field2, 4), (byte_string{44, 255, 0, 255}));
  decoded<api_link_update> update(hex("28 85 80 80 80 10 28 ff ff ff ff ff ff ff ff ff 01"));
  ASSERT_EQ(update->field5_count, 2u);
  EXPECT_EQ(numbers_of(update->field5, 2), (std::vector<std::uint32_t>{5, 0xffffffff}));
}

TEST(decode, a_repeated_number_replaces_the_earlier_one) {
  EXPECT_EQ(decoded<api_addr>(hex("08 07 08 09"))->address, 9u);
  EXPECT_EQ(decoded<api_msg_internal>(hex("18 07 20 01 18 09"))->field3, 9u);
  EXPECT_EQ(decoded<api_msg_service>(hex("08 01 08 00"))->field1, 0);
  EXPECT_EQ(decoded<api_prefix>(hex("10 07 10 09"))->field2, 9);
}

TEST(decode, a_repeated_number_that_is_cut_off_leaves_the_earlier_one) {
  decoded<api_addr> addr(hex("08 07 08 80"));
  EXPECT_EQ(addr.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(addr->address, 7u);
  EXPECT_EQ(addr->presence & 1, 1);
}

TEST(decode, a_repeated_nested_message_replaces_the_earlier_one) {
  decoded<api_msg_internal> internal(hex("2a 04 08 01 10 01 2a 02 18 01"));
  EXPECT_EQ(internal.result, CODEC_OK);
  EXPECT_EQ(internal->service.field1, 0);
  EXPECT_EQ(internal->service.field2, 0);
  EXPECT_EQ(internal->service.field3, 1);
  EXPECT_EQ(internal->service.presence & 7, API_MSG_SERVICE_HAS_FIELD3);
}

TEST(decode, a_repeated_nested_message_drops_what_the_earlier_one_owned) {
  decoded<policy_binding_sid_t> binding(hex("0a 04 10 05 10 06 0a 02 08 03"));
  EXPECT_EQ(binding.result, CODEC_OK);
  EXPECT_EQ(binding->sid.field1, 3u);
  EXPECT_EQ(binding->sid.field2, nullptr);
  EXPECT_EQ(binding->sid.field2_count, 0u);
  EXPECT_EQ(binding->sid.presence & 3, PREFIX_SID_TYPE_HAS_FIELD1);
  EXPECT_EQ(binding.memory.released.size(), 0u);
  binding.dropped = 1;
}

TEST(decode, a_list_in_a_repeated_nested_message_is_a_first_run) {
  decoded<policy_binding_sid_t> binding(hex("0a 02 10 05 0a 02 10 06"));
  EXPECT_EQ(binding.result, CODEC_OK);
  ASSERT_EQ(binding->sid.field2_count, 1u);
  EXPECT_EQ(binding->sid.field2[0], 6);
  binding.dropped = 1;
}

TEST(decode, a_repeated_nested_message_that_fails_leaves_the_outer_bit) {
  for (const char *const again : {"2a 01 0d", "2a 01 23", "2a 01 08", "2a 05 08 01", "2a"}) {
    decoded<api_msg_internal> internal(hex("2a 02 08 01") + hex(again));
    EXPECT_LT(internal.result, 0) << again;
    EXPECT_EQ(internal->presence & 0x7f, API_MSG_INTERNAL_HAS_SERVICE) << again;
  }
  decoded<api_msg_internal> internal(hex("2a 02 08 01 2a 03 10 01 0d"));
  EXPECT_EQ(internal.result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(internal->presence & 0x7f, API_MSG_INTERNAL_HAS_SERVICE);
  EXPECT_EQ(internal->service.presence & 7, API_MSG_SERVICE_HAS_FIELD2) << "the earlier one was cleared first";
  EXPECT_EQ(internal->service.field1, 0);
}

TEST(decode, a_repeated_nested_message_past_the_end_keeps_the_earlier_one) {
  decoded<api_msg_internal> internal(hex("2a 02 08 01 2a 03 10 01"));
  EXPECT_EQ(internal.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(internal->service.field1, 1);
  EXPECT_EQ(internal->service.presence & 7, API_MSG_SERVICE_HAS_FIELD1);
}

TEST(decode, a_nested_message_that_fails_keeps_what_it_read_without_the_outer_bit) {
  decoded<api_msg_internal> internal(hex("08 01 2a 03 10 01 0d"));
  EXPECT_EQ(internal.result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(internal->presence & 0x7f, API_MSG_INTERNAL_HAS_FIELD1);
  EXPECT_EQ(internal->service.field2, 1);
  EXPECT_EQ(internal->service.presence & 7, API_MSG_SERVICE_HAS_FIELD2);
}

TEST(decode, what_a_nested_message_read_before_it_failed_is_written_again_and_nothing_of_a_list) {
  decoded<policy_binding_sid_t> binding(hex("0a 03 08 05 0d"));
  EXPECT_EQ(binding.result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(binding->presence & 3, 0);
  EXPECT_EQ(show(encoded(binding.record)), "0a 02 08 05");
  decoded<api_exp_path> path(hex("10 05 0a 02 08 05 0a 01 0d"));
  EXPECT_EQ(path.result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(path->hop_count, 2u);
  EXPECT_EQ(show(encoded(path.record)), "10 05");
  // An interface whose name is cut off, in front of what is not reached.
  decoded<api_to_zorv> message(hex("12 05 08 07 12 02 61 18 01"));
  EXPECT_EQ(message.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(message->presence & 7, 0);
  EXPECT_EQ(show(encoded(message.record)), "12 02 08 07");
}

TEST(decode, a_failure_keeps_what_was_read_before_and_stops_there) {
  struct example {
    const char *bytes;
    int result;
  };
  for (const auto &[bytes, result] : {example{"20 07 12 01 61 80", CODEC_ERR_TRUNCATED},
                                      {"20 07 12 01 61 43 30 01", CODEC_ERR_BAD_WIRE_TYPE},
                                      {"20 07 12 01 61 0d 30 01", CODEC_ERR_WRONG_WIRE_TYPE},
                                      {"20 07 12 01 61 12 01 61 30 01", CODEC_ERR_TRUNCATED}}) {
    decoded<api_msg_internal> internal{hex(bytes)};
    EXPECT_EQ(internal.result, result) << bytes;
    EXPECT_EQ(internal->field4, 7u) << bytes;
    EXPECT_STREQ(internal->field2, "a") << bytes;
    EXPECT_EQ(internal->presence & 0x7f, API_MSG_INTERNAL_HAS_FIELD2 | API_MSG_INTERNAL_HAS_FIELD4) << bytes;
  }
}

TEST(decode, strings_are_copied_with_a_nul_after_them) {
  decoded<api_intf> intf(hex("12 03 61 62 63"));
  EXPECT_EQ(intf.result, CODEC_OK);
  EXPECT_EQ(intf.memory.sizes, (std::vector<std::size_t>{4}));
  EXPECT_EQ(std::memcmp(intf->field2, "abc", 4), 0);
  EXPECT_EQ(intf->presence & 3, API_INTF_HAS_FIELD2);
  EXPECT_TRUE(intf.memory.owns(intf->field2));
}

TEST(decode, an_empty_string_is_present) {
  decoded<api_intf> intf(hex("12 00"));
  EXPECT_EQ(intf.result, CODEC_OK);
  EXPECT_STREQ(intf->field2, "");
  EXPECT_EQ(intf.memory.sizes, (std::vector<std::size_t>{1}));
  EXPECT_EQ(intf->presence & 3, API_INTF_HAS_FIELD2);
}

TEST(decode, a_nul_inside_a_string_is_copied_and_shortens_it_for_every_later_use) {
  decoded<api_intf> intf(hex("12 05 61 62 00 63 64"));
  EXPECT_EQ(intf.result, CODEC_OK);
  EXPECT_EQ(intf.memory.sizes, (std::vector<std::size_t>{6}));
  EXPECT_EQ(std::memcmp(intf->field2, "ab\0cd", 6), 0);
  EXPECT_EQ(show(encoded(intf.record)), "12 02 61 62");
  char other[] = "ab";
  EXPECT_EQ(compared(intf.record, interface_named(other)), 0);
  copied<api_intf> copy(intf.record);
  EXPECT_EQ(copy.memory.sizes, (std::vector<std::size_t>{3}));
  EXPECT_STREQ(copy->field2, "ab");
}

TEST(decode, a_string_given_twice_is_refused) {
  decoded<api_intf> intf(hex("12 02 61 62 12 02 63 64"));
  EXPECT_EQ(intf.result, CODEC_ERR_TRUNCATED);
  EXPECT_STREQ(intf->field2, "ab");
  EXPECT_EQ(intf->presence & 3, API_INTF_HAS_FIELD2);
  EXPECT_EQ(intf.memory.requests(), 1u);
}

TEST(decode, a_string_given_twice_is_refused_also_after_an_empty_one_and_when_it_is_the_same) {
  EXPECT_EQ(decoded<api_intf>(hex("12 00 12 00")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_intf>(hex("12 01 61 08 01 12 01 61")).result, CODEC_ERR_TRUNCATED);
}

TEST(decode, bytes_given_twice_are_refused_also_after_empty_ones) {
  for (const std::uint32_t options : {std::uint32_t{0}, std::uint32_t{PAVO_ZORV_REFERENCE}}) {
    for (const char *const bytes : {"0a 01 61 0a 01 61", "0a 00 0a 01 61", "0a 00 0a 00", "0a 00 10 05 0a 00"}) {
      decoded<srv6_prefix> prefix(hex(bytes), options);
      EXPECT_EQ(prefix.result, CODEC_ERR_TRUNCATED) << bytes;
      EXPECT_NE(prefix->field1, nullptr) << bytes;
      EXPECT_EQ(prefix->presence & SRV6_PREFIX_HAS_FIELD1, 1) << bytes;
      EXPECT_EQ(prefix.memory.requests(), options == 0 ? 1u : 0u) << bytes;
    }
  }
}

TEST(decode, bytes_are_copied_without_a_nul) {
  decoded<srv6_prefix> prefix(hex("0a 04 61 00 62 ff"));
  EXPECT_EQ(prefix.result, CODEC_OK);
  EXPECT_EQ(prefix.memory.sizes, (std::vector<std::size_t>{4}));
  EXPECT_EQ(prefix->field1_length, 4u);
  EXPECT_EQ(show(bytes_of(prefix->field1, 4)), "61 00 62 ff");
  EXPECT_TRUE(prefix.memory.owns(prefix->field1));
  EXPECT_EQ(prefix->presence & 3, SRV6_PREFIX_HAS_FIELD1);
}

TEST(decode, bytes_without_bytes_ask_for_a_block_of_none) {
  decoded<srv6_prefix> prefix(hex("0a 00"));
  EXPECT_EQ(prefix.result, CODEC_OK);
  EXPECT_EQ(prefix.memory.sizes, (std::vector<std::size_t>{0}));
  EXPECT_TRUE(prefix.memory.owns(prefix->field1));
  EXPECT_EQ(prefix->field1_length, 0u);
  EXPECT_EQ(prefix->presence & 3, SRV6_PREFIX_HAS_FIELD1);
}

TEST(decode, without_an_allocator_lists_fail_before_their_values_are_read_and_messages_that_own_nothing_succeed) {
  EXPECT_EQ(decode_without_memory<api_lbl_stack>(hex("08 10")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<api_lbl_stack>(hex("08")), CODEC_ERR_NO_MEMORY) << "there is no value to read";
  EXPECT_EQ(decode_without_memory<api_lbl_stack>(hex("08 80")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<api_exp_path>(hex("0a 64")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<api_addr>(hex("08 ac 02")), CODEC_OK);
  EXPECT_EQ(decode_without_memory<api_msg_service>(hex("08 01 10 01 18 01")), CODEC_OK);
}

TEST(decode, without_an_allocator_strings_and_bytes_fail_before_their_length_is_read) {
  for (const char *const bytes : {"12 01 61", "12 00", "12", "12 80", "12 64"}) {
    EXPECT_EQ(decode_without_memory<api_intf>(hex(bytes)), CODEC_ERR_NO_MEMORY) << bytes;
  }
  for (const char *const bytes : {"0a 01 61", "0a 00", "0a", "0a 80", "0a 64"}) {
    EXPECT_EQ(decode_without_memory<srv6_prefix>(hex(bytes)), CODEC_ERR_NO_MEMORY) << bytes;
  }
}

TEST(decode, without_an_allocator_absent_members_are_no_hindrance) {
  EXPECT_EQ(decode_without_memory<api_intf>(hex("08 05")), CODEC_OK);
  EXPECT_EQ(decode_without_memory<prefix_sid_type>(hex("08 05")), CODEC_OK);
  EXPECT_EQ(decode_without_memory<api_exp_path>(hex("10 05")), CODEC_OK);
  EXPECT_EQ(decode_without_memory<policy_binding_sid_t>(hex("0a 02 08 05 10 05")), CODEC_OK);
}

TEST(decode, the_wire_type_is_looked_at_before_the_allocator) {
  EXPECT_EQ(decode_without_memory<api_intf>(hex("10")), CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decode_without_memory<srv6_prefix>(hex("08")), CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decode_without_memory<api_lbl_stack>(hex("0a")), CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decode_without_memory<api_exp_path>(hex("08")), CODEC_ERR_WRONG_WIRE_TYPE);
}

TEST(decode, the_wire_type_is_looked_at_before_whether_the_member_is_set) {
  EXPECT_EQ(decoded<api_intf>(hex("12 01 61 10")).result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decoded<srv6_prefix>(hex("0a 01 61 08")).result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decoded<prefix_sid_type>(hex("10 05 08 01 12 00")).result, CODEC_ERR_WRONG_WIRE_TYPE) << "a second run";
  EXPECT_EQ(decoded<api_exp_path>(hex("0a 00 10 05 08 01")).result, CODEC_ERR_WRONG_WIRE_TYPE) << "a second run";
}

TEST(decode, whether_the_member_is_set_is_looked_at_before_the_allocator_and_the_length) {
  EXPECT_EQ(decode_without_memory<srv6_prefix>(hex("0a 01 61 0a 01 62"), PAVO_ZORV_REFERENCE), CODEC_ERR_TRUNCATED);
  for (const char *const again : {"12", "12 80", "12 64"}) {
    decoded<api_intf> intf(hex("12 01 61") + hex(again));
    EXPECT_EQ(intf.result, CODEC_ERR_TRUNCATED) << again;
    EXPECT_EQ(intf.memory.requests(), 1u) << again;
  }
}

TEST(decode, a_run_is_one_array) {
  decoded<api_link_update> update(hex("28 05 28 06 28 07"));
  EXPECT_EQ(update.result, CODEC_OK);
  ASSERT_EQ(update->field5_count, 3u);
  EXPECT_EQ(numbers_of(update->field5, 3), (std::vector<std::uint32_t>{5, 6, 7}));
  EXPECT_EQ(update.memory.sizes, (std::vector<std::size_t>{12}));
  EXPECT_EQ(update->presence & 0x1f, API_LINK_UPDATE_HAS_FIELD5);
}

TEST(decode, runs_of_every_length_up_to_200) {
  for (std::uint32_t count = 1; count <= 200; ++count) {
    byte_string bytes;
    for (std::uint32_t i = 0; i < count; ++i) bytes = bytes + byte_string{0x10, static_cast<unsigned char>(i % 128)};
    bytes = bytes + hex("08 07");
    decoded<prefix_sid_type> sid(bytes);
    ASSERT_EQ(sid.result, CODEC_OK);
    ASSERT_EQ(sid->field2_count, count);
    for (std::uint32_t i = 0; i < count; ++i) ASSERT_EQ(sid->field2[i], i % 128) << count;
    EXPECT_EQ(sid->field1, 7u);
    EXPECT_EQ(sid.memory.sizes, (std::vector<std::size_t>{count}));
  }
}

TEST(decode, inside_a_run_only_the_number_of_a_key_is_looked_at) {
  for (unsigned type = 0; type < 8; ++type) {
    const byte_string key = {static_cast<unsigned char>(0x08 | type)};
    decoded<api_lbl_stack> stack(hex("08 10") + key + hex("05 08 06"));
    EXPECT_EQ(stack.result, CODEC_OK) << type;
    ASSERT_EQ(stack->label_count, 3u) << type;
    EXPECT_EQ(numbers_of(stack->labels, 3), (std::vector<std::uint32_t>{16, 5, 6})) << type;

    decoded<api_exp_path> path(hex("0a 02 08 01") + key + hex("02 08 02 0a 00"));
    EXPECT_EQ(path.result, CODEC_OK) << type;
    ASSERT_EQ(path->hop_count, 3u) << type;
    EXPECT_EQ(path->hops[1].field1, 2u) << type;
  }
}

TEST(decode, a_second_run_is_refused_and_the_first_is_kept) {
  decoded<prefix_sid_type> sid(hex("10 05 10 06 08 01 10 07"));
  EXPECT_EQ(sid.result, CODEC_ERR_TRUNCATED);
  ASSERT_EQ(sid->field2_count, 2u);
  EXPECT_EQ(bytes_of(sid->field2, 2), (byte_string{5, 6}));
  EXPECT_EQ(sid->presence & 3, 3);
  EXPECT_EQ(sid.memory.requests(), 1u);
  EXPECT_EQ(decoded<prefix_sid_type>(hex("10 05 18 01 10 07")).result, CODEC_ERR_TRUNCATED) << "after an unknown field";
  EXPECT_EQ(decoded<prefix_sid_type>(hex("10 05 08 01 10")).result, CODEC_ERR_TRUNCATED) << "without a value";
}

TEST(decode, a_run_that_is_cut_off_asks_for_no_memory_and_stores_nothing) {
  for (const char *const bytes : {"10 05 10", "10 05 10 80", "10 05 90", "10 05 10 06 88"}) {
    decoded<prefix_sid_type> sid{hex(bytes)};
    EXPECT_EQ(sid.result, CODEC_ERR_TRUNCATED) << bytes;
    EXPECT_EQ(sid.memory.requests(), 0u) << bytes;
    EXPECT_EQ(sid->field2, nullptr) << bytes;
    EXPECT_EQ(sid->field2_count, 0u) << bytes;
    EXPECT_EQ(sid->presence & 3, 0) << bytes;
  }
}

TEST(decode, a_key_that_is_cut_off_after_a_run_fails_before_anything_is_stored) {
  decoded<api_lbl_stack> stack(hex("08 10 90"));
  EXPECT_EQ(stack.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(stack->labels, nullptr);
  EXPECT_EQ(stack.memory.requests(), 0u);
  decoded<api_exp_path> path(hex("0a 02 08 01 90 80"));
  EXPECT_EQ(path.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(path->hops, nullptr);
  EXPECT_EQ(path.memory.requests(), 0u);
}

TEST(decode, elements_that_run_past_the_end_fail_before_anything_is_stored) {
  const auto refused = [](auto &record, const auto *array, std::uint32_t count) {
    EXPECT_EQ(record.result, CODEC_ERR_TRUNCATED);
    EXPECT_EQ(record.memory.requests(), 0u);
    EXPECT_EQ(array, nullptr);
    EXPECT_EQ(count, 0u);
  };
  for (const char *const last : {"03 08 01", "64", "ff ff ff ff 0f", "80", ""}) {
    SCOPED_TRACE(last);
    decoded<api_exp_path> path(hex("0a 02 08 01 0a") + hex(last));
    refused(path, path->hops, path->hop_count);
    EXPECT_EQ(path->presence & 3, 0);
    decoded<api_policy> policy(hex("2a 02 10 01 2a") + hex(last));
    refused(policy, policy->prefixes, policy->prefixes_count);
    decoded<api_aa_list> list(hex("1a 02 10 01 1a") + hex(last));
    refused(list, list->policies, list->policies_count);
    decoded<api_msg_p2p_auto_policy> auto_policy(hex("72 02 10 01 72") + hex(last));
    refused(auto_policy, auto_policy->exp_paths, auto_policy->exp_paths_count);
    decoded<out_srv6_usid_list_info> usids(hex("0a 02 10 01 0a") + hex(last));
    refused(usids, usids->usids, usids->usids_count);
    decoded<oam_res> sid_lists(hex("2a 02 10 01 2a") + hex(last));
    refused(sid_lists, sid_lists->sid_lists, sid_lists->sid_lists_count);
    decoded<oam_res> usid_lists(hex("3a 00 3a") + hex(last));
    refused(usid_lists, usid_lists->usid_lists, usid_lists->usid_lists_count);
  }
}

TEST(decode, an_element_that_fails_is_the_result_and_the_list_stays_without_its_bit) {
  struct example {
    const char *second;
    int result;
  };
  for (const auto &[second, result] : {example{"0a 01 08", CODEC_ERR_TRUNCATED},
                                       {"0a 01 3b", CODEC_ERR_BAD_WIRE_TYPE},
                                       {"0a 01 0d", CODEC_ERR_WRONG_WIRE_TYPE}}) {
    decoded<api_exp_path> path(hex("0a 04 08 01 28 07") + hex(second) + hex("0a 02 08 03 10 05"));
    EXPECT_EQ(path.result, result) << second;
    ASSERT_NE(path->hops, nullptr);
    EXPECT_EQ(path->hop_count, 3u) << second;
    EXPECT_EQ(path->hops[0].field1, 1u);
    EXPECT_EQ(path->hops[0].field5_count, 1u);
    EXPECT_EQ(path->hops[1].presence, 0);
    EXPECT_EQ(path->hops[2].presence, 0) << "not reached";
    EXPECT_EQ(path->presence & 3, 0) << second;
    EXPECT_EQ(path->field2, 0u);
  }
}

TEST(decode, an_element_for_which_there_is_no_memory_is_the_result_too) {
  const fenced_block input(hex("0a 02 28 07 0a 02 28 08"));
  for (const std::size_t fail_at : {0u, 1u, 2u}) {
    accountant memory;
    memory.fail_at = fail_at;
    api_exp_path path;
    std::memset(&path, 0x5a, sizeof path);
    EXPECT_EQ(operations<api_exp_path>::decode(&path, input.data(), input.size(), accountant::allocate, &memory),
              CODEC_ERR_NO_MEMORY);
    EXPECT_EQ(path.hop_count, fail_at == 0 ? 0u : 2u);
    EXPECT_EQ(path.hops == nullptr, fail_at == 0);
    EXPECT_EQ(path.presence & 3, 0);
    EXPECT_EQ(memory.requests(), fail_at + 1) << "decoding stops";
    operations<api_exp_path>::free(&path, accountant::release, &memory);
    EXPECT_EQ(memory.live(), 0u);
  }
}

TEST(decode, a_message_of_one_byte_may_be_all_there_is) {
  EXPECT_EQ(decoded<api_exp_path>(hex("0a 00")).result, CODEC_OK);
  decoded<api_exp_path> path(hex("0a 00 0a 00"));
  EXPECT_EQ(path->hop_count, 2u);
  EXPECT_EQ(show(encoded(path.record)), "0a 00 0a 00");
}

TEST(decode, of_the_same_bytes_gives_an_equal_record) {
  const byte_string bytes = hex("08 01 12 02 61 62 18 80 80 80 80 80 20 2a 02 08 01 38 01");
  decoded<api_msg_internal> first(bytes), second(bytes);
  EXPECT_EQ(compared(first.record, second.record), 0);
  EXPECT_NE(first->field2, second->field2);
}

// --- Encoding ---

TEST(encode, numbers_and_flags_are_written_when_present_whatever_their_value) {
  api_msg_internal internal{};
  internal.presence = API_MSG_INTERNAL_HAS_FIELD1 | API_MSG_INTERNAL_HAS_FIELD3 | API_MSG_INTERNAL_HAS_FIELD4 |
                      API_MSG_INTERNAL_HAS_FIELD6 | API_MSG_INTERNAL_HAS_FIELD7;
  EXPECT_EQ(show(encoded(internal)), "08 00 18 00 20 00 30 00 38 00");
  api_prefix prefix{};
  prefix.presence = API_PREFIX_HAS_FIELD2;
  EXPECT_EQ(show(encoded(prefix)), "10 00");
  api_policy policy{};
  policy.presence = API_POLICY_HAS_FIELD9;
  EXPECT_EQ(show(encoded(policy)), "48 00");
  api_msg_p2p_auto_policy_notif notif{};
  notif.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD27;
  EXPECT_EQ(show(encoded(notif)), "d8 01 00");
}

TEST(encode, absent_members_are_not_written_whatever_they_hold) {
  char text[] = "ab";
  unsigned char data[] = {1, 2};
  std::uint32_t labels[] = {1};
  api_exp_hop hops[1]{};
  api_msg_internal internal{1, text, 1, 1, {}, 1, 1, 0};
  EXPECT_EQ(show(encoded(internal)), "");
  srv6_prefix prefix{data, 2, 1, 0};
  EXPECT_EQ(show(encoded(prefix)), "");
  EXPECT_EQ(show(encoded(prefix, PAVO_ZORV_REFERENCE)), "");
  EXPECT_EQ(show(encoded(api_lbl_stack{labels, 1, 0})), "");
  EXPECT_EQ(show(encoded(api_exp_path{hops, 1, 1, 0})), "");
}

TEST(encode, eight_bit_members_are_varints) {
  for (const auto &[value, bytes] : std::map<int, const char *>{
           {0, "10 00"}, {127, "10 7f"}, {128, "10 80 01"}, {200, "10 c8 01"}, {255, "10 ff 01"}}) {
    api_prefix prefix{};
    prefix.field2 = static_cast<std::uint8_t>(value);
    prefix.presence = API_PREFIX_HAS_FIELD2;
    EXPECT_EQ(show(encoded(prefix)), bytes);
    std::uint8_t element = static_cast<std::uint8_t>(value);
    EXPECT_EQ(show(encoded(prefix_sid_type{0, &element, 1, PREFIX_SID_TYPE_HAS_FIELD2})), bytes);
  }
}

TEST(encode, flags_are_the_stored_byte_in_every_message) {
  for (const int value : {0, 1, 2, 127, 128, 200, 255}) {
    const auto raw = static_cast<std::uint8_t>(value);
    api_msg_service service{};
    service.field2 = raw;
    service.presence = API_MSG_SERVICE_HAS_FIELD2;
    EXPECT_EQ(encoded(service), (byte_string{0x10, raw}));
    api_msg_internal internal{};
    internal.field7 = raw;
    internal.presence = API_MSG_INTERNAL_HAS_FIELD7;
    EXPECT_EQ(encoded(internal), (byte_string{0x38, raw}));
    internal = {};
    internal.service = service;
    EXPECT_EQ(encoded(internal), (byte_string{0x2a, 0x02, 0x10, raw}));
    api_msg_p2p_auto_policy policy{};
    policy.field19 = raw;
    policy.presence = API_MSG_P2P_AUTO_POLICY_HAS_FIELD19;
    EXPECT_EQ(encoded(policy), (byte_string{0x98, 0x01, raw}));
    api_msg_p2p_auto_policy_notif notif{};
    notif.field26 = raw;
    notif.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD26;
    EXPECT_EQ(encoded(notif), (byte_string{0xd0, 0x01, raw}));
    api_policy plain{};
    plain.field4 = raw;
    plain.presence = API_POLICY_HAS_FIELD4;
    EXPECT_EQ(encoded(plain), (byte_string{0x20, raw}));
    api_to_zorv to_zorv{};
    to_zorv.field3 = raw;
    to_zorv.presence = API_TO_ZORV_HAS_FIELD3;
    EXPECT_EQ(encoded(to_zorv), (byte_string{0x18, raw}));
    api_to_igp to_igp{};
    to_igp.field3 = raw;
    to_igp.presence = API_TO_IGP_HAS_FIELD3;
    EXPECT_EQ(encoded(to_igp), (byte_string{0x18, raw}));
    api_msg_policy_reg registration{};
    registration.field1 = raw;
    registration.presence = API_MSG_POLICY_REG_HAS_FIELD1;
    EXPECT_EQ(encoded(registration), (byte_string{0x08, raw}));
    srv6_sid_struct structure{};
    structure.field1 = raw;
    structure.presence = SRV6_SID_STRUCT_HAS_FIELD1;
    EXPECT_EQ(encoded(structure), (byte_string{0x08, raw}));
    oam_res res{};
    res.field4 = raw;
    res.presence = OAM_RES_HAS_FIELD4;
    EXPECT_EQ(encoded(res), (byte_string{0x20, raw}));
    api_msg message{};
    message.field15 = raw;
    message.presence = API_MSG_HAS_FIELD15;
    EXPECT_EQ(encoded(message), (byte_string{0x78, raw}));
  }
}

TEST(encode, strings_are_written_when_present_and_not_null) {
  char empty[] = "", text[] = "abc";
  EXPECT_EQ(show(encoded(interface_named(text))), "12 03 61 62 63");
  EXPECT_EQ(show(encoded(interface_named(empty))), "12 00");
  EXPECT_EQ(show(encoded(interface_named(nullptr))), "");
}

TEST(encode, lists_are_written_when_present_and_not_empty) {
  std::uint32_t labels[] = {1, 2};
  api_exp_hop hops[1]{};
  EXPECT_EQ(show(encoded(api_lbl_stack{labels, 2, API_LBL_STACK_HAS_LABELS})), "08 01 08 02");
  EXPECT_EQ(show(encoded(api_lbl_stack{labels, 0, API_LBL_STACK_HAS_LABELS})), "");
  EXPECT_EQ(show(encoded(api_lbl_stack{nullptr, 0, API_LBL_STACK_HAS_LABELS})), "");
  EXPECT_EQ(show(encoded(api_exp_path{hops, 1, 0, API_EXP_PATH_HAS_HOPS})), "0a 00");
  EXPECT_EQ(show(encoded(api_exp_path{hops, 0, 0, API_EXP_PATH_HAS_HOPS})), "");
  EXPECT_EQ(show(encoded(api_exp_path{nullptr, 0, 0, API_EXP_PATH_HAS_HOPS})), "");
}

TEST(encode, bytes_are_written_when_present_also_without_bytes) {
  EXPECT_EQ(show(encoded(srv6_prefix{nullptr, 0, 0, SRV6_PREFIX_HAS_FIELD1})), "0a 00");
  unsigned char data[] = {1, 0, 2};
  EXPECT_EQ(show(encoded(srv6_prefix{data, 3, 0, SRV6_PREFIX_HAS_FIELD1})), "0a 03 01 00 02");
}

TEST(encode, lists_of_integers_are_never_packed) {
  std::uint32_t labels[] = {1, 300, 0, 0xffffffff};
  EXPECT_EQ(show(encoded(api_lbl_stack{labels, 4, API_LBL_STACK_HAS_LABELS})),
            "08 01 08 ac 02 08 00 08 ff ff ff ff 0f");
  std::uint8_t elements[] = {0, 127, 128, 255};
  api_msg_p2p_auto_policy_notif notif{};
  notif.field22 = elements;
  notif.field22_count = 4;
  notif.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD22;
  EXPECT_EQ(show(encoded(notif)), "b0 01 00 b0 01 7f b0 01 80 01 b0 01 ff 01");
}

TEST(encode, runs_of_every_length_up_to_200) {
  std::vector<std::uint32_t> labels;
  byte_string bytes;
  for (std::uint32_t i = 0; i < 200; ++i) {
    labels.push_back(100000 + i);
    bytes = bytes + varint_field(1, 100000 + i);
    EXPECT_EQ(encoded(api_lbl_stack{labels.data(), i + 1, API_LBL_STACK_HAS_LABELS}), bytes);
  }
}

// Runs of values of all sizes, in the middle of a block: what is around the encoding stays.
template <class Record>
void written_in_place(const Record &record, const byte_string &expected) {
  const fenced_block around(expected.size() + 64);
  EXPECT_EQ(operations<Record>::encode(&record, around.data() + 32, expected.size(), nullptr, nullptr),
            expected.size());
  EXPECT_EQ(show(around.content()), show(32 * hex("c7") + expected + 32 * hex("c7")));
  EXPECT_EQ(encoded(record), expected);
}

TEST(encode, runs_of_values_of_all_sizes) {
  const std::vector<std::pair<std::uint32_t, byte_string>> numbers = {{5, hex("05")},
                                                                      {300, hex("ac 02")},
                                                                      {0x4000, hex("80 80 01")},
                                                                      {0x1fffff, hex("ff ff 7f")},
                                                                      {0x200000, hex("80 80 80 01")},
                                                                      {0xffffffff, hex("ff ff ff ff 0f")},
                                                                      {127, hex("7f")},
                                                                      {0x10000000, hex("80 80 80 80 01")},
                                                                      {128, hex("80 01")},
                                                                      {24001, hex("c1 bb 01")},
                                                                      {0, hex("00")}};
  std::vector<std::uint32_t> labels;
  std::vector<std::uint8_t> elements;
  byte_string with_labels, with_short_keys, with_long_keys;
  for (std::uint32_t i = 0; i < 90; ++i) {
    const auto &[label, label_bytes] = numbers[i * i % numbers.size()];
    labels.push_back(label);
    with_labels = with_labels + hex("08") + label_bytes;
    const auto element = static_cast<std::uint8_t>(i * 89);
    elements.push_back(element);
    const byte_string element_bytes = element < 128 ? byte_string{element} : byte_string{element, 1};
    with_short_keys = with_short_keys + hex("10") + element_bytes;
    with_long_keys = with_long_keys + hex("b0 01") + element_bytes;
    SCOPED_TRACE(i + 1);
    written_in_place(api_lbl_stack{labels.data(), i + 1, API_LBL_STACK_HAS_LABELS}, with_labels);
    written_in_place(prefix_sid_type{0, elements.data(), i + 1, PREFIX_SID_TYPE_HAS_FIELD2}, with_short_keys);
    api_msg_p2p_auto_policy_notif notif{};
    notif.field22 = elements.data();
    notif.field22_count = i + 1;
    notif.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD22;
    written_in_place(notif, with_long_keys);
    notif.field3 = 5;
    notif.field25 = 300;
    notif.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD3 | API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD22 |
                     API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD25;
    written_in_place(notif, hex("18 05") + with_long_keys + hex("c8 01 ac 02"));
  }
}

TEST(encode, fields_are_written_in_ascending_order) {
  char text[] = "a";
  api_msg_internal internal{1, text, 2, 3, {1, 0, 0, API_MSG_SERVICE_HAS_FIELD1}, 4, 1, 0x7f};
  EXPECT_EQ(show(encoded(internal)), "08 01 12 01 61 18 02 20 03 2a 02 08 01 30 04 38 01");
}

TEST(encode, presence_bits_of_no_field_mean_nothing) {
  EXPECT_EQ(show(encoded(api_addr{5, 0xfe})), "");
  EXPECT_EQ(show(encoded(api_addr{5, 0xff})), "08 05");
  policy_binding_sid_t binding{};
  binding.sid.presence = 0xfc;
  binding.presence = 0xfc;
  EXPECT_EQ(show(encoded(binding)), "");
}

TEST(encode, leaves_the_record_as_it_is) {
  char text[] = "a";
  const api_msg_internal internal{1, text, 2, 3, {1, 0, 0, 1}, 4, 1, 0x7f};
  const api_msg_internal before = internal;
  encoded(internal);
  EXPECT_EQ(std::memcmp(&internal, &before, sizeof before), 0);
}

// --- Copying ---

TEST(duplicate, numbers_and_flags_are_copied_with_their_bits) {
  api_msg_service service{200, 0, 1, API_MSG_SERVICE_HAS_FIELD1 | API_MSG_SERVICE_HAS_FIELD2};
  api_msg_service copy;
  std::memset(&copy, 0x07, sizeof copy);
  EXPECT_EQ(operations<api_msg_service>::duplicate(&copy, &service, nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(copy.field1, 200);
  EXPECT_EQ(copy.field2, 0);
  EXPECT_EQ(copy.field3, 1) << "also without its bit";
  EXPECT_EQ(copy.presence, API_MSG_SERVICE_HAS_FIELD1 | API_MSG_SERVICE_HAS_FIELD2);

  api_msg_p2p_auto_policy_notif notif{}, second;
  notif.field27 = -5;
  notif.field26 = 1;
  notif.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD27;
  std::memset(static_cast<void *>(&second), 0xff, sizeof second);
  EXPECT_EQ(operations<api_msg_p2p_auto_policy_notif>::duplicate(&second, &notif, nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(second.field27, -5);
  EXPECT_EQ(second.field26, 1);
  EXPECT_EQ(second.presence, 0xf8000000u | API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD27);
}

TEST(duplicate, owns_all_that_it_holds) {
  decoded<api_msg_p2p_auto_policy> source(
      hex("0a 01 61 12 01 62 3a 04 08 10 08 11 58 05 72 08 0a 04 08 01 28 07 10 02 a2 01 01 63 aa 01 02 10 09"));
  ASSERT_EQ(source.result, CODEC_OK);
  copied<api_msg_p2p_auto_policy> copy(source.record);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(compared(copy.record, source.record), 0);
  EXPECT_EQ(encoded(copy.record), encoded(source.record));
  EXPECT_TRUE(copy.memory.owns(copy->field1));
  EXPECT_TRUE(copy.memory.owns(copy->field2));
  EXPECT_TRUE(copy.memory.owns(copy->label_stack.labels));
  EXPECT_TRUE(copy.memory.owns(copy->field11));
  EXPECT_TRUE(copy.memory.owns(copy->exp_paths));
  EXPECT_TRUE(copy.memory.owns(copy->exp_paths[0].hops));
  EXPECT_TRUE(copy.memory.owns(copy->exp_paths[0].hops[0].field5));
  EXPECT_TRUE(copy.memory.owns(copy->field20));
  EXPECT_TRUE(copy.memory.owns(copy->prefix_sid.field2));
  EXPECT_EQ(copy.memory.live(), 9u);
}

TEST(duplicate, leaves_the_source_as_it_is) {
  decoded<api_msg_internal> source(hex("08 01 12 02 61 62 2a 02 08 01"));
  const api_msg_internal before = source.record;
  const copied<api_msg_internal> copy(source.record);
  EXPECT_EQ(std::memcmp(&source.record, &before, sizeof before), 0);
}

TEST(duplicate, overwrites_without_releasing) {
  char old_text[] = "old", text[] = "new";
  api_intf destination = interface_named(old_text);
  const api_intf source = interface_named(text);
  accountant memory;
  EXPECT_EQ(operations<api_intf>::duplicate(&destination, &source, accountant::allocate, &memory), CODEC_OK);
  EXPECT_TRUE(memory.released.empty());
  EXPECT_STREQ(destination.field2, "new");
  EXPECT_STREQ(old_text, "old");
  operations<api_intf>::free(&destination, accountant::release, &memory);
}

TEST(duplicate, a_null_string_stays_null_and_keeps_its_bit) {
  for (std::uint8_t presence = 0; presence <= 3; ++presence) {
    const api_intf source{5, nullptr, presence};
    copied<api_intf> copy(source);
    EXPECT_EQ(copy.result, CODEC_OK);
    EXPECT_EQ(copy->field2, nullptr);
    EXPECT_EQ(copy->presence & 3, presence);
    EXPECT_EQ(copy.memory.requests(), 0u);
  }
}

TEST(duplicate, an_empty_string_is_copied_with_its_nul) {
  char text[] = "";
  copied<api_intf> copy(interface_named(text));
  EXPECT_EQ(copy.memory.sizes, (std::vector<std::size_t>{1}));
  EXPECT_STREQ(copy->field2, "");
}

TEST(duplicate, an_empty_list_is_null_and_keeps_its_bit) {
  std::uint32_t labels[] = {1};
  api_exp_hop hops[1]{};
  for (std::uint8_t presence = 0; presence <= 1; ++presence) {
    copied<api_lbl_stack> stack({labels, 0, presence});
    EXPECT_EQ(stack.result, CODEC_OK);
    EXPECT_EQ(stack->labels, nullptr);
    EXPECT_EQ(stack->label_count, 0u);
    EXPECT_EQ(stack->presence & 1, presence);
    EXPECT_EQ(stack.memory.requests(), 0u);
    copied<api_exp_path> path({hops, 0, 0, presence});
    EXPECT_EQ(path.result, CODEC_OK);
    EXPECT_EQ(path->hops, nullptr);
    EXPECT_EQ(path->hop_count, 0u);
    EXPECT_EQ(path->presence & 1, presence);
    EXPECT_EQ(path.memory.requests(), 0u);
  }
}

TEST(duplicate, bytes_without_bytes_are_null_and_keep_their_bit) {
  unsigned char data[] = {1};
  for (std::uint8_t presence = 0; presence <= 1; ++presence) {
    copied<srv6_prefix> prefix({data, 0, 5, presence});
    EXPECT_EQ(prefix.result, CODEC_OK);
    EXPECT_EQ(prefix->field1, nullptr);
    EXPECT_EQ(prefix->field1_length, 0u);
    EXPECT_EQ(prefix->field2, 5u);
    EXPECT_EQ(prefix->presence & 3, presence);
    EXPECT_EQ(prefix.memory.requests(), 0u);
  }
}

TEST(duplicate, a_null_array_counts_as_empty_in_every_message_whatever_its_count) {
  copied<api_lbl_stack> stack({nullptr, 3, API_LBL_STACK_HAS_LABELS});
  EXPECT_EQ(stack.result, CODEC_OK);
  EXPECT_EQ(stack->label_count, 0u);
  EXPECT_EQ(stack->presence & 1, API_LBL_STACK_HAS_LABELS);
  EXPECT_EQ(stack.memory.requests(), 0u);
  copied<api_exp_path> path({nullptr, 3, 5, API_EXP_PATH_HAS_HOPS | API_EXP_PATH_HAS_FIELD2});
  EXPECT_EQ(path.result, CODEC_OK);
  EXPECT_EQ(path->hop_count, 0u);
  EXPECT_EQ(path->field2, 5u);
  EXPECT_EQ(path->presence & 3, API_EXP_PATH_HAS_HOPS | API_EXP_PATH_HAS_FIELD2);
  EXPECT_EQ(path.memory.requests(), 0u);
}

TEST(duplicate, bytes_that_are_null_are_asked_for_by_their_length_and_empty_where_there_is_no_memory) {
  for (const std::uint64_t length : {std::uint64_t{3}, std::uint64_t{1} << 32}) {
    api_msg message{};
    message.oam_req.field6_length = length;
    message.oam_req.presence = OAM_REQ_HAS_FIELD5 | OAM_REQ_HAS_FIELD6;
    message.presence = API_MSG_HAS_OAM_REQ;
    copied<api_msg> copy(message, {.fail_at = 0});
    EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY) << length;
    EXPECT_EQ(copy->oam_req.field6, nullptr) << length;
    EXPECT_EQ(copy->oam_req.field6_length, 0u) << length;
    EXPECT_EQ(copy->oam_req.presence, OAM_REQ_HAS_FIELD5) << length;
    EXPECT_EQ(copy.memory.requests(), length <= SIZE_MAX ? 1u : 0u) << length;
  }
}

TEST(duplicate, copies_members_whose_bit_is_clear) {
  char text[] = "ab";
  std::uint32_t numbers[] = {5, 6};
  copied<api_link_update> update({1, text, 3, 4, numbers, 2, 0});
  EXPECT_EQ(update.result, CODEC_OK);
  EXPECT_EQ(update->field1, 1u);
  EXPECT_STREQ(update->field2, "ab");
  EXPECT_EQ(update->field3, 3u);
  EXPECT_EQ(update->field4, 4u);
  ASSERT_EQ(update->field5_count, 2u);
  EXPECT_EQ(numbers_of(update->field5, 2), (std::vector<std::uint32_t>{5, 6}));
  EXPECT_EQ(update->presence & 0x1f, 0);
  EXPECT_EQ(update.memory.sizes, (std::vector<std::size_t>{3, 8}));

  unsigned char data[] = {1, 2, 3};
  copied<srv6_prefix> prefix({data, 3, 0, 0});
  EXPECT_EQ(prefix.memory.sizes, (std::vector<std::size_t>{3}));
  EXPECT_EQ(bytes_of(prefix->field1, prefix->field1_length), (byte_string{1, 2, 3}));

  api_exp_hop hops[1]{};
  copied<api_exp_path> path({hops, 1, 0, 0});
  EXPECT_EQ(path.memory.sizes, (std::vector<std::size_t>{sizeof(api_exp_hop)}));
  EXPECT_EQ(path->hop_count, 1u);
  EXPECT_EQ(path->presence & 3, 0);
}

TEST(duplicate, a_member_without_memory_is_left_empty_and_the_copy_goes_on) {
  char text[] = "ab";
  std::uint32_t numbers[] = {5, 6};
  const api_link_update source{1, text, 3, 4, numbers, 2, 0x1f};

  copied<api_link_update> without_text(source, {.fail_at = 0});
  EXPECT_EQ(without_text.result, CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(without_text->field2, nullptr);
  EXPECT_EQ(without_text->field5_count, 2u);
  EXPECT_EQ(without_text->presence & 0x1f, 0x1d);
  EXPECT_EQ(without_text->field4, 4u);

  copied<api_link_update> without_numbers(source, {.fail_at = 1});
  EXPECT_EQ(without_numbers.result, CODEC_ERR_NO_MEMORY);
  EXPECT_STREQ(without_numbers->field2, "ab");
  EXPECT_EQ(without_numbers->field5, nullptr);
  EXPECT_EQ(without_numbers->field5_count, 0u);
  EXPECT_EQ(without_numbers->presence & 0x1f, 0x0f);
}

TEST(duplicate, without_an_allocator_every_member_that_needs_memory_is_left_empty) {
  char text[] = "ab";
  std::uint32_t numbers[] = {5, 6};
  const api_link_update source{1, text, 3, 4, numbers, 2, 0x1f};
  api_link_update copy;
  std::memset(&copy, 0xff, sizeof copy);
  EXPECT_EQ(operations<api_link_update>::duplicate(&copy, &source, nullptr, nullptr), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(copy.field1, 1u);
  EXPECT_EQ(copy.field2, nullptr);
  EXPECT_EQ(copy.field3, 3u);
  EXPECT_EQ(copy.field4, 4u);
  EXPECT_EQ(copy.field5, nullptr);
  EXPECT_EQ(copy.field5_count, 0u);
  EXPECT_EQ(copy.presence, 0xe0 | 0x0d);

  unsigned char data[] = {1};
  const srv6_prefix prefix{data, 1, 5, 3};
  srv6_prefix second;
  EXPECT_EQ(operations<srv6_prefix>::duplicate(&second, &prefix, nullptr, nullptr), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(second.field1, nullptr);
  EXPECT_EQ(second.field1_length, 0u);
  EXPECT_EQ(second.field2, 5u);
  EXPECT_EQ(second.presence & 3, SRV6_PREFIX_HAS_FIELD2);
}

TEST(duplicate, bytes_without_memory_are_left_empty) {
  unsigned char data[] = {1, 2};
  copied<srv6_prefix> prefix({data, 2, 5, 3}, {.fail_at = 0});
  EXPECT_EQ(prefix.result, CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(prefix->field1, nullptr);
  EXPECT_EQ(prefix->field1_length, 0u);
  EXPECT_EQ(prefix->field2, 5u);
  EXPECT_EQ(prefix->presence & 3, SRV6_PREFIX_HAS_FIELD2);
}

TEST(duplicate, elements_that_fail_leave_the_list_its_count_and_its_bit) {
  decoded<api_exp_path> source(hex("0a 02 28 07 0a 02 28 08 0a 02 08 09 10 05"));
  ASSERT_EQ(source.result, CODEC_OK);
  copied<api_exp_path> copy(source.record, {.fail_at = 1});
  EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(copy->hop_count, 3u);
  EXPECT_EQ(copy->presence & 3, 3);
  EXPECT_EQ(copy->field2, 5u);
  EXPECT_EQ(copy->hops[0].field5, nullptr);
  EXPECT_EQ(copy->hops[0].field5_count, 0u);
  EXPECT_EQ(copy->hops[0].presence & API_EXP_HOP_HAS_FIELD5, 0);
  EXPECT_EQ(copy->hops[1].field5_count, 1u) << "every element is attempted";
  EXPECT_EQ(copy->hops[2].field1, 9u);
}

TEST(duplicate, a_list_of_messages_without_memory_is_left_empty) {
  decoded<api_exp_path> source(hex("0a 02 28 07 10 05"));
  copied<api_exp_path> copy(source.record, {.fail_at = 0});
  EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(copy->hops, nullptr);
  EXPECT_EQ(copy->hop_count, 0u);
  EXPECT_EQ(copy->field2, 5u);
  EXPECT_EQ(copy->presence & 3, API_EXP_PATH_HAS_FIELD2);
  EXPECT_EQ(copy.memory.requests(), 1u) << "its elements are not attempted";
}

TEST(duplicate, a_nested_message_that_fails_keeps_the_outer_bit) {
  decoded<policy_binding_sid_t> source(hex("0a 04 08 03 10 05 10 06"));
  copied<policy_binding_sid_t> copy(source.record, {.fail_at = 0});
  EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(copy->presence & 3, 3);
  EXPECT_EQ(copy->sid.field1, 3u);
  EXPECT_EQ(copy->sid.field2, nullptr);
  EXPECT_EQ(copy->sid.field2_count, 0u);
  EXPECT_EQ(copy->sid.presence & 3, PREFIX_SID_TYPE_HAS_FIELD1);
  EXPECT_EQ(copy->field2, 6u);
}

TEST(duplicate, presence_bits_of_no_field_stay_those_of_the_destination_also_in_nested_records) {
  policy_binding_sid_t source{}, copy;
  source.sid.presence = 0x54 | PREFIX_SID_TYPE_HAS_FIELD1;
  source.presence = 0xa8 | POLICY_BINDING_SID_T_HAS_FIELD2;
  std::memset(&copy, 0, sizeof copy);
  EXPECT_EQ(operations<policy_binding_sid_t>::duplicate(&copy, &source, nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(copy.sid.presence, PREFIX_SID_TYPE_HAS_FIELD1);
  EXPECT_EQ(copy.presence, POLICY_BINDING_SID_T_HAS_FIELD2);
  std::memset(&copy, 0xff, sizeof copy);
  EXPECT_EQ(operations<policy_binding_sid_t>::duplicate(&copy, &source, nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(copy.sid.presence, 0xfc | PREFIX_SID_TYPE_HAS_FIELD1);
  EXPECT_EQ(copy.presence, 0xfc | POLICY_BINDING_SID_T_HAS_FIELD2);

  api_msg empty{}, message;
  std::memset(static_cast<void *>(&message), 0xff, sizeof message);
  EXPECT_EQ(operations<api_msg>::duplicate(&message, &empty, nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(message.internal.presence, 0x80);
  EXPECT_EQ(message.internal.service.presence, 0xf8);
  EXPECT_EQ(message.field4.presence, 0xffc00000u);
  EXPECT_EQ(message.field4.prefix_sid.presence, 0xfc);
  EXPECT_EQ(message.to_zorv.nodeid.presence, 0xfc);
}

TEST(duplicate, a_null_array_counts_as_empty_in_automatic_policies_whatever_its_count) {
  api_msg_p2p_auto_policy policy{};
  policy.field11_count = 3;
  policy.exp_paths_count = 4;
  policy.label_stack.label_count = 5;
  policy.label_stack.presence = API_LBL_STACK_HAS_LABELS;
  policy.presence = API_MSG_P2P_AUTO_POLICY_HAS_FIELD11 | API_MSG_P2P_AUTO_POLICY_HAS_EXP_PATHS;
  copied<api_msg_p2p_auto_policy> copy(policy);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy.memory.requests(), 0u);
  EXPECT_EQ(copy->field11, nullptr);
  EXPECT_EQ(copy->field11_count, 0u);
  EXPECT_EQ(copy->exp_paths, nullptr);
  EXPECT_EQ(copy->exp_paths_count, 0u);
  EXPECT_EQ(copy->label_stack.labels, nullptr);
  EXPECT_EQ(copy->label_stack.label_count, 0u);
  EXPECT_EQ(copy->label_stack.presence & 1, 1);
  EXPECT_EQ(copy->presence & 0x3fffff,
            API_MSG_P2P_AUTO_POLICY_HAS_FIELD11 | 0u | API_MSG_P2P_AUTO_POLICY_HAS_EXP_PATHS);

  api_msg_p2p_auto_policy_notif notif{};
  notif.field15_count = 3;
  notif.field22_count = 4;
  notif.label_stack.label_count = 5;
  notif.label_stack.presence = API_LBL_STACK_HAS_LABELS;
  notif.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD15 | API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD22;
  api_msg_p2p_auto_policy_notif second;
  EXPECT_EQ(operations<api_msg_p2p_auto_policy_notif>::duplicate(&second, &notif, nullptr, nullptr), CODEC_OK)
      << "no allocator is needed";
  EXPECT_EQ(second.field15, nullptr);
  EXPECT_EQ(second.field15_count, 0u);
  EXPECT_EQ(second.field22, nullptr);
  EXPECT_EQ(second.field22_count, 0u);
  EXPECT_EQ(second.label_stack.labels, nullptr);
  EXPECT_EQ(second.label_stack.label_count, 0u);
  EXPECT_EQ(second.label_stack.presence & 1, 1);
  EXPECT_EQ(second.presence & 0x7ffffff,
            API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD15 | 0u | API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD22);
}

// --- Releasing ---

TEST(release, a_string_is_released_and_set_to_null) {
  decoded<api_intf> intf(hex("08 05 12 01 61"));
  void *const text = intf->field2;
  operations<api_intf>::free(&intf.record, accountant::release, &intf.memory);
  EXPECT_EQ(intf.memory.released, (std::vector<void *>{text}));
  EXPECT_EQ(intf->field2, nullptr);
  EXPECT_EQ(intf->field1, 5u);
  EXPECT_EQ(intf->presence & 3, 3) << "presence bits stay";
}

TEST(release, a_list_of_integers_keeps_its_count_and_bit) {
  decoded<api_lbl_stack> stack(hex("08 10 08 11"));
  void *const labels = stack->labels;
  operations<api_lbl_stack>::free(&stack.record, accountant::release, &stack.memory);
  EXPECT_EQ(stack.memory.released, (std::vector<void *>{labels}));
  EXPECT_EQ(stack->labels, nullptr);
  EXPECT_EQ(stack->label_count, 2u);
  EXPECT_EQ(stack->presence & 1, 1);
}

TEST(release, bytes_keep_their_length_and_bit) {
  decoded<srv6_prefix> prefix(hex("0a 03 61 62 63"));
  void *const data = prefix->field1;
  operations<srv6_prefix>::free(&prefix.record, accountant::release, &prefix.memory);
  EXPECT_EQ(prefix.memory.released, (std::vector<void *>{data}));
  EXPECT_EQ(prefix->field1, nullptr);
  EXPECT_EQ(prefix->field1_length, 3u);
  EXPECT_EQ(prefix->presence & 3, SRV6_PREFIX_HAS_FIELD1);
}

TEST(release, a_list_of_messages_releases_its_elements_then_itself_and_is_empty) {
  decoded<api_exp_path> path(hex("0a 04 28 01 30 02 0a 00 0a 02 28 03 10 05"));
  void *const array = path->hops;
  const std::vector<void *> expected = {path->hops[0].field5, path->hops[0].field6, path->hops[2].field5, array};
  operations<api_exp_path>::free(&path.record, accountant::release, &path.memory);
  EXPECT_EQ(path.memory.released, expected);
  EXPECT_EQ(path->hops, nullptr);
  EXPECT_EQ(path->hop_count, 0u);
  EXPECT_EQ(path->field2, 5u);
  EXPECT_EQ(path->presence & 3, 3);
}

TEST(release, a_list_that_is_null_keeps_its_count) {
  api_exp_path path{};
  path.hop_count = 3;
  operations<api_exp_path>::free(
      &path, [](void *, void *) { FAIL(); }, nullptr);
  EXPECT_EQ(path.hop_count, 3u);
}

TEST(release, a_second_time_does_nothing) {
  decoded<api_msg_p2p_auto_policy> policy(hex("0a 01 61 3a 02 08 10 72 02 0a 00 aa 01 02 10 09"));
  ASSERT_EQ(policy.result, CODEC_OK);
  operations<api_msg_p2p_auto_policy>::free(&policy.record, accountant::release, &policy.memory);
  EXPECT_EQ(policy.memory.live(), 0u);
  EXPECT_EQ(policy.memory.released.size(), 5u);
  operations<api_msg_p2p_auto_policy>::free(&policy.record, accountant::release, &policy.memory);
  EXPECT_EQ(policy.memory.released.size(), 5u);
}

TEST(release, works_whatever_the_presence_bits_say) {
  decoded<api_exp_path> path(hex("0a 02 28 01"));
  path->presence = 0;
  path->hops[0].presence = 0;
  operations<api_exp_path>::free(&path.record, accountant::release, &path.memory);
  EXPECT_EQ(path.memory.released.size(), 2u);
}

TEST(release, without_a_callback_nothing_is_released_and_the_pointers_are_set_to_null) {
  decoded<api_msg_internal> internal(hex("12 01 61"));
  operations<api_msg_internal>::free(&internal.record, nullptr, nullptr);
  EXPECT_EQ(internal->field2, nullptr);
  EXPECT_EQ(internal.memory.live(), 1u);
  internal.dropped = 1;

  decoded<api_lbl_stack> stack(hex("08 10"));
  operations<api_lbl_stack>::free(&stack.record, nullptr, nullptr);
  EXPECT_EQ(stack->labels, nullptr);
  EXPECT_EQ(stack->label_count, 1u);
  stack.dropped = 1;

  decoded<srv6_prefix> prefix(hex("0a 01 61"));
  operations<srv6_prefix>::free(&prefix.record, nullptr, nullptr);
  EXPECT_EQ(prefix->field1, nullptr);
  EXPECT_EQ(prefix->field1_length, 1u);
  prefix.dropped = 1;

  decoded<api_exp_path> path(hex("0a 02 28 01"));
  api_exp_hop *const hops = path->hops;
  operations<api_exp_path>::free(&path.record, nullptr, nullptr);
  EXPECT_EQ(path->hops, nullptr);
  EXPECT_EQ(path->hop_count, 0u);
  EXPECT_EQ(hops[0].field5, nullptr) << "also in the elements";
  EXPECT_EQ(path.memory.live(), 2u);
  path.dropped = 2;
}

TEST(release, of_messages_that_own_nothing_does_nothing) {
  api_addr addr{5, 0xff};
  operations<api_addr>::free(
      &addr, [](void *, void *) { FAIL(); }, nullptr);
  EXPECT_EQ(addr.address, 5u);
  EXPECT_EQ(addr.presence, 0xff);
}

// --- Comparing ---

TEST(compare, presence_decides_before_values_in_field_order) {
  const auto hop = [](std::uint8_t presence, std::uint32_t one, std::uint32_t two) {
    return api_exp_hop{one, two, 0, 0, nullptr, 0, nullptr, 0, presence};
  };
  EXPECT_EQ(compared(hop(1, 0, 0), hop(0, 9, 9)), 1);
  EXPECT_EQ(compared(hop(0, 9, 9), hop(1, 0, 0)), -1);
  EXPECT_EQ(compared(hop(0, 1, 2), hop(0, 3, 4)), 0) << "both absent";
  EXPECT_EQ(compared(hop(1, 5, 0), hop(2, 0, 5)), 1) << "the first field decides";
  EXPECT_EQ(compared(hop(3, 5, 6), hop(3, 5, 7)), -1);
  EXPECT_EQ(compared(hop(3, 6, 6), hop(3, 5, 7)), 1) << "the first difference decides";
  EXPECT_EQ(compared(hop(1, 5, 0), hop(3, 5, 0)), -1);
  EXPECT_EQ(compared(hop(1, 6, 0), hop(3, 5, 0)), 1);
}

TEST(compare, every_bit_of_a_record_counts) {
  api_msg_p2p_auto_policy_notif without{};
  for (unsigned bit = 0; bit < 27; ++bit) {
    api_msg_p2p_auto_policy_notif with{};
    with.presence = 1u << bit;
    EXPECT_EQ(operations<api_msg_p2p_auto_policy_notif>::compare(&with, &without), 1) << bit;
    EXPECT_EQ(operations<api_msg_p2p_auto_policy_notif>::compare(&without, &with), -1) << bit;
  }
}

TEST(compare, presence_bits_of_no_field_do_not_count) {
  EXPECT_EQ(compared(api_addr{5, 0xff}, api_addr{5, 0x01}), 0);
  EXPECT_EQ(compared(api_addr{5, 0xfe}, api_addr{6, 0x00}), 0);
  EXPECT_EQ(compared(api_addr{5, 0xfe}, api_addr{5, 0x01}), -1);
}

TEST(compare, unsigned_members_are_compared_unsigned) {
  EXPECT_EQ(compared(api_addr{0x80000000, 1}, api_addr{1, 1}), 1);
  EXPECT_EQ(compared(api_addr{0xffffffff, 1}, api_addr{0, 1}), 1);
  EXPECT_EQ(compared(api_addr{7, 1}, api_addr{7, 1}), 0);
  api_msg_internal a{}, b{};
  a.presence = b.presence = API_MSG_INTERNAL_HAS_FIELD3;
  a.field3 = std::uint64_t{1} << 63;
  b.field3 = 1;
  EXPECT_EQ(compared(a, b), 1);
  b.field3 = a.field3 + 1;
  EXPECT_EQ(compared(a, b), -1);
  a.field3 = std::uint64_t{1} << 32;
  b.field3 = 0xffffffff;
  EXPECT_EQ(compared(a, b), 1);
  const auto prefix = [](std::uint8_t value) { return api_prefix{nullptr, 0, value, API_PREFIX_HAS_FIELD2}; };
  EXPECT_EQ(compared(prefix(200), prefix(100)), 1);
  EXPECT_EQ(compared(prefix(128), prefix(127)), 1);
}

TEST(compare, flags_are_compared_by_their_stored_bytes) {
  const auto service = [](std::uint8_t value) { return api_msg_service{value, 0, 0, 1}; };
  EXPECT_EQ(compared(service(0), service(1)), -1);
  EXPECT_EQ(compared(service(2), service(1)), 1);
  EXPECT_EQ(compared(service(200), service(100)), 1);
  EXPECT_EQ(compared(service(200), service(200)), 0);
}

TEST(compare, the_three_signed_members_are_compared_signed) {
  const auto policy = [](std::int32_t value) {
    api_policy result{};
    result.field9 = value;
    result.presence = API_POLICY_HAS_FIELD9;
    return result;
  };
  EXPECT_EQ(compared(policy(-1), policy(0)), -1);
  EXPECT_EQ(compared(policy(INT32_MIN), policy(INT32_MAX)), -1);
  EXPECT_EQ(compared(policy(5), policy(-5)), 1);
  const auto res = [](std::int32_t value) {
    oam_res result{};
    result.field3 = value;
    result.presence = OAM_RES_HAS_FIELD3;
    return result;
  };
  EXPECT_EQ(compared(res(-1), res(0)), -1);
  EXPECT_EQ(compared(res(INT32_MIN), res(INT32_MAX)), -1);
  EXPECT_EQ(compared(res(5), res(-5)), 1);
  const auto notif = [](std::int64_t value) {
    api_msg_p2p_auto_policy_notif result{};
    result.field27 = value;
    result.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD27;
    return result;
  };
  EXPECT_EQ(compared(notif(-1), notif(0)), -1);
  EXPECT_EQ(compared(notif(INT64_MIN), notif(INT64_MAX)), -1);
  EXPECT_EQ(compared(notif(std::int64_t{1} << 32), notif(1)), 1);
}

// The first bytes of "ab" and "b" differ by one, which is what a folded result would say as well: those of "ab" and the
// other two by more.
TEST(compare, the_strings_ab_and_b_give_the_result_of_the_string_comparison) {
  char ab[] = "ab", b[] = "b", z[] = "z", high[] = "\xff";
  for (char *const greater : {b, z, high}) {
    SCOPED_TRACE(greater);
    const api_intf one = interface_named(ab), other = interface_named(greater);
    EXPECT_LT(operations<api_intf>::compare(&one, &other), 0);
    EXPECT_EQ(operations<api_intf>::compare(&one, &other), string_comparison(ab, greater));
    EXPECT_GT(operations<api_intf>::compare(&other, &one), 0);
    EXPECT_EQ(operations<api_intf>::compare(&other, &one), string_comparison(greater, ab));
  }
}

TEST(compare, strings_give_the_result_of_the_string_comparison_as_it_is) {
  std::vector<std::string> texts = {
      "", "a", "b", "z", "ab", "abc", "\x80", "\xff", "a\xff", "zzzzzzzzzzzzzzzzzzzz", "zzzzzzzzzzzzzzzzzzza"};
  for (std::string &a : texts) {
    for (std::string &b : texts) {
      const int result = compared(interface_named(a.data()), interface_named(b.data()));
      EXPECT_EQ(result, string_comparison(a.c_str(), b.c_str())) << a << " " << b;
      EXPECT_EQ(sign(result), sign(a.compare(b))) << a << " " << b;
    }
  }
}

TEST(compare, lists_of_integers_are_compared_element_by_element_then_by_count) {
  std::uint32_t one[] = {1, 2, 3}, other[] = {1, 2, 4}, great[] = {0x80000000};
  const auto stack = [](std::uint32_t *labels, std::uint32_t count) { return api_lbl_stack{labels, count, 1}; };
  EXPECT_EQ(compared(stack(one, 3), stack(other, 3)), -1);
  EXPECT_EQ(compared(stack(one, 2), stack(other, 2)), 0);
  EXPECT_EQ(compared(stack(one, 2), stack(other, 3)), -1);
  EXPECT_EQ(compared(stack(great, 1), stack(one, 3)), 1) << "unsigned";
  EXPECT_EQ(compared(stack(nullptr, 0), stack(one, 1)), -1);
  EXPECT_EQ(compared(stack(nullptr, 0), stack(nullptr, 0)), 0);
  std::uint8_t small[] = {127}, big[] = {200};
  EXPECT_EQ(compared(prefix_sid_type{0, big, 1, 2}, prefix_sid_type{0, small, 1, 2}), 1) << "unsigned";
}

TEST(compare, a_longer_list_is_greater_also_when_the_counts_are_far_apart) {
  api_exp_hop hops[1]{};
  EXPECT_EQ(compared(api_lbl_stack{nullptr, 0, 1}, api_lbl_stack{nullptr, 0, 1}), 0);
  std::vector<std::uint32_t> many(1000, 0);
  EXPECT_EQ(compared(api_lbl_stack{many.data(), 1000, 1}, api_lbl_stack{many.data(), 1, 1}), 1);
  EXPECT_EQ(compared(api_exp_path{hops, 1, 0, 1}, api_exp_path{nullptr, 0, 0, 1}), 1);
}

TEST(compare, long_lists_differ_at_any_place) {
  std::vector<std::uint32_t> one(100, 7);
  for (std::size_t place = 0; place < 100; ++place) {
    std::vector<std::uint32_t> other = one;
    other[place] = 0x80000000;
    if (place + 1 < 100) other[place + 1] = 0;
    EXPECT_EQ(compared(api_lbl_stack{one.data(), 100, 1}, api_lbl_stack{other.data(), 100, 1}), -1) << place;
  }
  std::vector<std::uint8_t> bytes(100, 7);
  for (std::size_t place = 0; place < 100; ++place) {
    std::vector<std::uint8_t> other = bytes;
    other[place] = 200;
    if (place + 1 < 100) other[place + 1] = 0;
    EXPECT_EQ(compared(prefix_sid_type{0, bytes.data(), 100, 2}, prefix_sid_type{0, other.data(), 100, 2}), -1)
        << place;
  }
}

TEST(compare, what_lies_before_a_long_list_is_not_compared) {
  // Eight labels before the list, as the second eight of the other list would have to be if the two were equal.
  std::vector<std::uint32_t> after_nines(8, 9), sevens(16, 7), nines_after_sevens(8, 7);
  after_nines.insert(after_nines.end(), 16, 7);
  nines_after_sevens.insert(nines_after_sevens.end(), 8, 9);
  const api_lbl_stack all_sevens{after_nines.data() + 8, 16, 1}, ends_with_nines{nines_after_sevens.data(), 16, 1};
  EXPECT_EQ(compared(all_sevens, ends_with_nines), -1);
  EXPECT_EQ(compared(ends_with_nines, all_sevens), 1);
}

TEST(compare, elements_are_compared_as_messages_then_the_count) {
  api_exp_hop one[2]{}, other[2]{};
  one[0].field1 = other[0].field1 = 1;
  one[0].presence = other[0].presence = 1;
  const auto path = [](api_exp_hop *hops, std::uint32_t count) { return api_exp_path{hops, count, 0, 1}; };
  EXPECT_EQ(compared(path(one, 2), path(other, 2)), 0);
  EXPECT_EQ(compared(path(one, 1), path(other, 2)), -1);
  other[1].presence = 1;
  EXPECT_EQ(compared(path(one, 2), path(other, 2)), -1);
  EXPECT_EQ(compared(path(one, 2), path(other, 1)), 1);
  one[0].field1 = 2;
  EXPECT_EQ(compared(path(one, 1), path(other, 2)), 1) << "an element decides before the count";
}

TEST(compare, results_from_within_elements_and_nested_messages_come_back_as_they_are) {
  char a[] = "a", z[] = "z";
  api_policy one[1]{}, other[1]{};
  one[0].field1 = a;
  other[0].field1 = z;
  one[0].presence = other[0].presence = API_POLICY_HAS_FIELD1;
  api_to_igp left{}, right{};
  left.aa_list = {nullptr, 0, 0, one, 1, API_AA_LIST_HAS_POLICIES};
  right.aa_list = {nullptr, 0, 0, other, 1, API_AA_LIST_HAS_POLICIES};
  left.presence = right.presence = API_TO_IGP_HAS_AA_LIST;
  EXPECT_EQ(compared(left, right), string_comparison(a, z));
  EXPECT_EQ(compared(right, left), string_comparison(z, a));

  unsigned char low[] = {1, 9}, high[] = {200, 1};
  srv6_usid first{}, second{};
  first.prefix = {low, 2, 0, 1};
  second.prefix = {high, 2, 0, 1};
  first.presence = second.presence = SRV6_USID_HAS_PREFIX;
  EXPECT_EQ(compared(first, second), memory_comparison(low, high, 2));
}

TEST(compare, bytes_give_the_result_of_the_memory_comparison_then_the_length_decides) {
  unsigned char one[] = {97, 98, 99}, other[] = {97, 99}, great[] = {200}, small[] = {100};
  const auto prefix = [](unsigned char *data, std::uint64_t length) { return srv6_prefix{data, length, 0, 1}; };
  EXPECT_EQ(compared(prefix(one, 3), prefix(other, 2)), memory_comparison(one, other, 2));
  EXPECT_LT(compared(prefix(one, 3), prefix(other, 2)), 0);
  EXPECT_EQ(compared(prefix(one, 2), prefix(one, 3)), -1);
  EXPECT_EQ(compared(prefix(one, 3), prefix(one, 2)), 1);
  EXPECT_EQ(compared(prefix(great, 1), prefix(small, 1)), memory_comparison(great, small, 1));
  EXPECT_GT(compared(prefix(great, 1), prefix(small, 1)), 0);
}

TEST(compare, bytes_without_bytes_are_not_looked_at) {
  unsigned char data[] = {1};
  const auto prefix = [](unsigned char *bytes, std::uint64_t length) { return srv6_prefix{bytes, length, 0, 1}; };
  EXPECT_EQ(compared(prefix(nullptr, 0), prefix(nullptr, 0)), 0);
  EXPECT_EQ(compared(prefix(nullptr, 0), prefix(data, 0)), 0);
  EXPECT_EQ(compared(prefix(nullptr, 0), prefix(data, 1)), -1);
}

TEST(compare, bytes_lengths_are_compared_in_64_bits) {
  EXPECT_EQ(compared(srv6_prefix{nullptr, 0, 0, 1}, srv6_prefix{nullptr, std::uint64_t{1} << 32, 0, 1}), -1);
  EXPECT_EQ(compared(srv6_prefix{nullptr, 0, 0, 1}, srv6_prefix{nullptr, std::uint64_t{1} << 63, 0, 1}), -1);
}

TEST(compare, nested_messages_are_compared_only_where_both_outer_bits_are_set) {
  policy_binding_sid_t a{}, b{};
  a.sid = {1, nullptr, 0, PREFIX_SID_TYPE_HAS_FIELD1};
  b.sid = {2, nullptr, 0, PREFIX_SID_TYPE_HAS_FIELD1};
  EXPECT_EQ(compared(a, b), 0);
  a.presence = POLICY_BINDING_SID_T_HAS_SID;
  EXPECT_EQ(compared(a, b), 1);
  b.presence = POLICY_BINDING_SID_T_HAS_SID;
  EXPECT_EQ(compared(a, b), -1);
  b.sid.field1 = 1;
  EXPECT_EQ(compared(a, b), 0);
}

}  // namespace records_test
