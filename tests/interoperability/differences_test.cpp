// The intended differences from the peer: one test each, with what either makes of the same bytes. CONFORMANCE.md lists
// them.
#include "messages/all.hpp"
#include "peer.hpp"

namespace test {

// A value read by the peer.
std::uint64_t value_of(const protobuf::Message &message, int number) {
  const protobuf::FieldDescriptor &field = *message.GetDescriptor()->FindFieldByNumber(number);
  const protobuf::Reflection &access = *message.GetReflection();
  switch (field.type()) {
    case protobuf::FieldDescriptor::TYPE_BOOL:
      return access.GetBool(message, &field);
    case protobuf::FieldDescriptor::TYPE_INT32:
      return static_cast<std::uint64_t>(access.GetInt32(message, &field));
    case protobuf::FieldDescriptor::TYPE_UINT64:
      return access.GetUInt64(message, &field);
    default:
      return access.GetUInt32(message, &field);
  }
}

std::vector<std::uint32_t> list_of(const protobuf::Message &message, int number) {
  const protobuf::FieldDescriptor &field = *message.GetDescriptor()->FindFieldByNumber(number);
  const protobuf::Reflection &access = *message.GetReflection();
  std::vector<std::uint32_t> result;
  for (int i = 0; i < access.FieldSize(message, &field); ++i)
    result.push_back(access.GetRepeatedUInt32(message, &field, i));
  return result;
}

std::string text_of(const protobuf::Message &message, int number) {
  return message.GetReflection()->GetString(message, message.GetDescriptor()->FindFieldByNumber(number));
}

const protobuf::Message &inside(const protobuf::Message &message, int number) {
  return message.GetReflection()->GetMessage(message, message.GetDescriptor()->FindFieldByNumber(number));
}

bool has(const protobuf::Message &message, int number) {
  return message.GetReflection()->HasField(message, message.GetDescriptor()->FindFieldByNumber(number));
}

std::size_t unknown_fields(const protobuf::Message &message) {
  return static_cast<std::size_t>(message.GetReflection()->GetUnknownFields(message).field_count());
}

std::unique_ptr<protobuf::Message> read_by_peer(const char *name, const byte_string &bytes) {
  return peer::instance().read(name, bytes);
}

TEST(difference, a_negative_int32_takes_5_bytes_here_and_10_there_and_both_read_both) {
  const byte_string five = hex("18 ff ff ff ff 0f");
  const byte_string ten = hex("18 ff ff ff ff ff ff ff ff ff 01");
  oam_res record = {};
  record.field3 = -1;
  record.presence = OAM_RES_HAS_FIELD3;
  EXPECT_EQ(encoded(record), five);
  EXPECT_EQ(written(*translated(view_of(record))), ten);
  for (const byte_string &bytes : {five, ten}) {
    const auto there = read_by_peer("oam_res", bytes);
    ASSERT_NE(there, nullptr);
    EXPECT_EQ(static_cast<std::int64_t>(value_of(*there, 3)), -1);
    decoded<oam_res> here(bytes);
    ASSERT_EQ(here.result, CODEC_OK);
    EXPECT_EQ(here->field3, -1);
  }
}

TEST(difference, a_packed_list_is_refused_here) {
  const byte_string bytes = hex("0a 03 10 c1 01");
  decoded<api_lbl_stack> here(bytes);
  EXPECT_EQ(here.result, CODEC_ERR_WRONG_WIRE_TYPE);
  const auto there = read_by_peer("api_lbl_stack", bytes);
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(list_of(*there, 1), (std::vector<std::uint32_t>{16, 193}));
}

// In the keys within a run only the field number matters: the length of the packed list is taken for an element, its
// content for an unknown field 0 that runs past the end.
TEST(difference, a_packed_list_after_an_element_is_taken_for_one_element_here) {
  const byte_string bytes = hex("08 10 0a 01 05");
  decoded<api_lbl_stack> here(bytes);
  ASSERT_EQ(here.result, CODEC_OK);
  EXPECT_EQ(std::vector<std::uint32_t>(here->labels, here->labels + here->label_count),
            (std::vector<std::uint32_t>{16, 1}));
  const auto there = read_by_peer("api_lbl_stack", bytes);
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(list_of(*there, 1), (std::vector<std::uint32_t>{16, 5}));
}

TEST(difference, a_list_in_two_runs_is_refused_here_and_joined_there) {
  const byte_string bytes = hex("08 10 10 05 08 11");
  decoded<api_lbl_stack> here(bytes);
  EXPECT_EQ(here.result, CODEC_ERR_TRUNCATED);
  const auto there = read_by_peer("api_lbl_stack", bytes);
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(list_of(*there, 1), (std::vector<std::uint32_t>{16, 17}));
}

TEST(difference, a_list_of_messages_in_two_runs_is_refused_here_and_joined_there) {
  const byte_string bytes = hex("0a 02 08 01 10 05 0a 02 08 02");
  decoded<api_exp_path> here(bytes);
  EXPECT_EQ(here.result, CODEC_ERR_TRUNCATED);
  const auto there = read_by_peer("api_exp_path", bytes);
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(there->GetReflection()->FieldSize(*there, there->GetDescriptor()->FindFieldByNumber(1)), 2);
}

TEST(difference, a_repeated_nested_message_replaces_the_first_here_and_is_merged_there) {
  const byte_string bytes = hex("0a 02 08 01 0a 02 10 02");
  decoded<policy_binding_sid_t> here(bytes);
  ASSERT_EQ(here.result, CODEC_OK);
  EXPECT_EQ(here->sid.presence & 3, PREFIX_SID_TYPE_HAS_FIELD2);
  EXPECT_EQ(here->sid.field1, 0u);
  const auto there = read_by_peer("policy_binding_sid_t", bytes);
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(value_of(inside(*there, 1), 1), 1u);
  EXPECT_EQ(list_of(inside(*there, 1), 2), std::vector<std::uint32_t>{2});
}

TEST(difference, a_repeated_string_is_refused_here_and_replaces_the_first_there) {
  const byte_string bytes = hex("12 01 61 12 01 62");
  decoded<api_intf> here(bytes);
  EXPECT_EQ(here.result, CODEC_ERR_TRUNCATED);
  EXPECT_STREQ(here->field2, "a");
  const auto there = read_by_peer("api_intf", bytes);
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(text_of(*there, 2), "b");
}

TEST(difference, repeated_bytes_are_refused_here_and_replace_the_first_there) {
  const byte_string bytes = hex("0a 01 61 0a 01 62");
  for (const std::uint32_t options : {0u, std::uint32_t{PAVO_ZORV_REFERENCE}}) {
    decoded<srv6_prefix> here(bytes, options);
    EXPECT_EQ(here.result, CODEC_ERR_TRUNCATED);
  }
  const auto there = read_by_peer("srv6_prefix", bytes);
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(text_of(*there, 1), "b");
}

TEST(difference, an_unknown_group_is_refused_here_and_skipped_there) {
  const byte_string bytes = hex("08 01 a3 06 08 02 a4 06");
  decoded<api_addr> here(bytes);
  EXPECT_EQ(here.result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(here->address, 1u);
  const auto there = read_by_peer("api_addr", bytes);
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(value_of(*there, 1), 1u);
}

TEST(difference, a_known_field_of_another_wire_type_is_refused_here_and_unknown_there) {
  const byte_string bytes = hex("0d 01 00 00 00");
  decoded<api_addr> here(bytes);
  EXPECT_EQ(here.result, CODEC_ERR_WRONG_WIRE_TYPE);
  const auto there = read_by_peer("api_addr", bytes);
  ASSERT_NE(there, nullptr);
  EXPECT_FALSE(has(*there, 1));
  EXPECT_EQ(unknown_fields(*there), 1u);
}

TEST(difference, a_nul_shortens_a_string_here_and_is_a_character_there) {
  const byte_string bytes = hex("12 03 61 00 62");
  decoded<api_intf> here(bytes);
  ASSERT_EQ(here.result, CODEC_OK);
  EXPECT_EQ(std::string(here->field2), "a");
  EXPECT_EQ(encoded(here.record), hex("12 01 61"));
  const auto there = read_by_peer("api_intf", bytes);
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(text_of(*there, 2), std::string("a\0b", 3));
}

TEST(difference, a_flag_goes_by_32_bits_here_and_by_64_there) {
  const byte_string bytes = hex("08 80 80 80 80 10");
  decoded<api_msg_service> here(bytes);
  ASSERT_EQ(here.result, CODEC_OK);
  EXPECT_EQ(here->field1, 0);
  const auto there = read_by_peer("api_msg_service", bytes);
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(value_of(*there, 1), 1u);
}

TEST(difference, a_flag_is_written_as_it_is_stored_and_read_as_true_there) {
  api_msg_service record = {};
  record.field1 = 2;
  record.presence = API_MSG_SERVICE_HAS_FIELD1;
  EXPECT_EQ(encoded(record), hex("08 02"));
  const auto there = read_by_peer("api_msg_service", encoded(record));
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(value_of(*there, 1), 1u);
  record.field1 = 0x80;
  EXPECT_EQ(read_by_peer("api_msg_service", encoded(record)), nullptr)
      << "a stored byte of 128 or more is an unended varint";
}

TEST(difference, an_8_bit_value_is_cut_here_and_whole_there) {
  const byte_string bytes = hex("08 04 10 ac 02");
  decoded<api_nodeid> here(bytes);
  ASSERT_EQ(here.result, CODEC_OK);
  ASSERT_EQ(here->octets_count, 1u);
  EXPECT_EQ(here->octets[0], 44);
  const auto there = read_by_peer("api_nodeid", bytes);
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(list_of(*there, 2), std::vector<std::uint32_t>{300});
}

TEST(difference, an_unknown_field_that_runs_past_the_end_is_accepted_here) {
  for (const char *const bytes : {"08 01 a1 06 00", "08 01 a5 06", "08 01 a2 06 64 00"}) {
    decoded<api_addr> here(hex(bytes));
    EXPECT_EQ(here.result, CODEC_OK) << bytes;
    EXPECT_EQ(here->address, 1u);
    EXPECT_EQ(read_by_peer("api_addr", hex(bytes)), nullptr) << bytes;
  }
  // In a nested message, which ends there; what follows the message is read.
  const byte_string nested = hex("0a 02 1a 64 10 05");
  decoded<policy_binding_sid_t> here(nested);
  EXPECT_EQ(here.result, CODEC_OK);
  EXPECT_EQ(here->field2, 5u);
  EXPECT_EQ(read_by_peer("policy_binding_sid_t", nested), nullptr);
}

TEST(difference, unknown_fields_are_dropped_here_and_kept_there) {
  const byte_string bytes = hex("08 01 a0 06 07");
  decoded<api_addr> here(bytes);
  ASSERT_EQ(here.result, CODEC_OK);
  EXPECT_EQ(encoded(here.record), hex("08 01"));
  const auto there = read_by_peer("api_addr", bytes);
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(written(*there), bytes);
}

TEST(difference, field_number_0_is_unknown_here_and_refused_there) {
  const byte_string bytes = hex("00 05 08 01");
  decoded<api_addr> here(bytes);
  ASSERT_EQ(here.result, CODEC_OK);
  EXPECT_EQ(here->address, 1u);
  EXPECT_EQ(read_by_peer("api_addr", bytes), nullptr);
}

TEST(difference, varints_may_have_any_number_of_bytes_here_and_10_there) {
  const byte_string ten = hex("08 81 80 80 80 80 80 80 80 80 00");
  const byte_string eleven = hex("08 81 80 80 80 80 80 80 80 80 80 00");
  for (const byte_string &bytes : {ten, eleven}) {
    decoded<api_addr> here(bytes);
    ASSERT_EQ(here.result, CODEC_OK);
    EXPECT_EQ(here->address, 1u);
  }
  EXPECT_NE(read_by_peer("api_addr", ten), nullptr);
  EXPECT_EQ(read_by_peer("api_addr", eleven), nullptr);
}

TEST(difference, keys_may_have_any_number_of_bytes_here_and_5_there) {
  const byte_string five = hex("88 80 80 80 00 01");
  const byte_string six = hex("88 80 80 80 80 00 01");
  for (const byte_string &bytes : {five, six}) {
    decoded<api_addr> here(bytes);
    ASSERT_EQ(here.result, CODEC_OK);
    EXPECT_EQ(here->address, 1u);
  }
  EXPECT_NE(read_by_peer("api_addr", five), nullptr);
  EXPECT_EQ(read_by_peer("api_addr", six), nullptr);
}

TEST(difference, keys_are_cut_to_32_bits_in_either) {
  const byte_string bytes = hex("88 80 80 80 10 07");
  decoded<api_addr> here(bytes);
  ASSERT_EQ(here.result, CODEC_OK);
  EXPECT_EQ(here->address, 7u);
  const auto there = read_by_peer("api_addr", bytes);
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(value_of(*there, 1), 7u);
}

TEST(difference, lengths_may_have_any_number_of_bytes_here_and_5_there) {
  const byte_string five = hex("12 82 80 80 80 00 61 62");
  const byte_string six = hex("12 82 80 80 80 80 00 61 62");
  for (const byte_string &bytes : {five, six}) {
    decoded<api_intf> here(bytes);
    ASSERT_EQ(here.result, CODEC_OK);
    EXPECT_STREQ(here->field2, "ab");
  }
  const auto there = read_by_peer("api_intf", five);
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(text_of(*there, 2), "ab");
  EXPECT_EQ(read_by_peer("api_intf", six), nullptr);
}

// A length of 2^32 + 2, of a string, of bytes, of a nested message, and of an unknown field before a known one.
TEST(difference, a_length_above_32_bits_is_cut_here_and_refused_there) {
  const byte_string text = hex("12 82 80 80 80 10 61 62");
  decoded<api_intf> interface(text);
  ASSERT_EQ(interface.result, CODEC_OK);
  EXPECT_STREQ(interface->field2, "ab");
  EXPECT_EQ(read_by_peer("api_intf", text), nullptr);

  const byte_string block = hex("0a 82 80 80 80 10 61 62");
  decoded<srv6_prefix> prefix(block);
  ASSERT_EQ(prefix.result, CODEC_OK);
  EXPECT_EQ(prefix->field1_length, 2u);
  EXPECT_EQ(read_by_peer("srv6_prefix", block), nullptr);

  const byte_string nested = hex("0a 82 80 80 80 10 08 09");
  decoded<policy_binding_sid_t> binding(nested);
  ASSERT_EQ(binding.result, CODEC_OK);
  EXPECT_EQ(binding->sid.field1, 9u);
  EXPECT_EQ(read_by_peer("policy_binding_sid_t", nested), nullptr);

  const byte_string unknown = hex("12 82 80 80 80 10 61 62 08 07");
  decoded<api_addr> address(unknown);
  ASSERT_EQ(address.result, CODEC_OK);
  EXPECT_EQ(address->address, 7u);
  EXPECT_EQ(read_by_peer("api_addr", unknown), nullptr);
}

// A buffer for the key, the length and two of four billion bytes: its content is a complete message.
TEST(difference, a_length_of_4_gib_is_written_from_its_low_32_bits_and_read_so_there) {
  if (sizeof(std::size_t) < 8) GTEST_SKIP() << "no encoding is longer than 32 bits can count";
  srv6_prefix record = {};
  record.field1_length = (std::uint64_t{1} << 32) + 2;
  record.presence = SRV6_PREFIX_HAS_FIELD1;
  const fenced_block start(4);
  EXPECT_EQ(operations<srv6_prefix>::encode(&record, start.data(), 4, nullptr, nullptr), (std::uint64_t{1} << 32) + 4);
  EXPECT_EQ(byte_string(start.data(), start.data() + 2), hex("0a 02"));
  const auto there = read_by_peer("srv6_prefix", start.content());
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(text_of(*there, 1).size(), 2u);
}

TEST(difference, an_unknown_field_whose_varint_or_length_is_cut_off_is_refused_in_either) {
  for (const char *const bytes : {"08 01 a0 06", "08 01 a0 06 ff", "08 01 a2 06", "08 01 a2 06 ff"}) {
    decoded<api_addr> here(hex(bytes));
    EXPECT_EQ(here.result, CODEC_ERR_TRUNCATED) << bytes;
    EXPECT_EQ(read_by_peer("api_addr", hex(bytes)), nullptr) << bytes;
  }
}

TEST(difference, an_unknown_field_of_wire_type_4_6_or_7_is_refused_in_either) {
  for (const char *const bytes : {"08 01 a4 06", "08 01 a6 06 00", "08 01 a7 06 00"}) {
    decoded<api_addr> here(hex(bytes));
    EXPECT_EQ(here.result, CODEC_ERR_BAD_WIRE_TYPE) << bytes;
    EXPECT_EQ(read_by_peer("api_addr", hex(bytes)), nullptr) << bytes;
  }
}

// What the peer has read of bytes that it refuses, as encoded by it.
byte_string left_over_there(const char *name, const byte_string &bytes) {
  const auto message = peer::instance().message(name);
  EXPECT_FALSE(message->ParseFromArray(bytes.data(), static_cast<int>(bytes.size())));
  return written(*message);
}

TEST(difference, what_a_nested_message_had_before_it_failed_is_written_again_in_either) {
  const byte_string bytes = hex("0a 03 08 05 1f");
  decoded<policy_binding_sid_t> here(bytes);
  EXPECT_EQ(here.result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(here->presence & POLICY_BINDING_SID_T_HAS_SID, 0);
  EXPECT_EQ(encoded(here.record), hex("0a 02 08 05"));
  EXPECT_EQ(left_over_there("policy_binding_sid_t", bytes), hex("0a 02 08 05"));
}

TEST(difference, a_list_of_messages_that_failed_is_not_written_again_here) {
  const byte_string bytes = hex("0a 02 08 05 0a 01 3f");
  decoded<api_exp_path> here(bytes);
  EXPECT_EQ(here.result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(here->hop_count, 2u);
  EXPECT_EQ(encoded(here.record), byte_string{});
  EXPECT_EQ(left_over_there("api_exp_path", bytes), hex("0a 02 08 05 0a 00"));
}

TEST(difference, flags_are_compared_as_they_are_stored_here_and_as_yes_or_no_there) {
  api_msg_service two = {}, one = {};
  two.field1 = 2;
  one.field1 = 1;
  two.presence = one.presence = API_MSG_SERVICE_HAS_FIELD1;
  EXPECT_GT(operations<api_msg_service>::compare(&two, &one), 0);
  const auto two_there = read_by_peer("api_msg_service", encoded(two));
  const auto one_there = read_by_peer("api_msg_service", encoded(one));
  ASSERT_NE(two_there, nullptr);
  ASSERT_NE(one_there, nullptr);
  EXPECT_EQ(difference_of(*two_there, *one_there), "");
  decoded<api_msg_service> two_here(encoded(two)), one_here(encoded(one));
  EXPECT_EQ(operations<api_msg_service>::compare(&two_here.record, &one_here.record), 0) << "once they were read";
}

TEST(difference, a_nested_message_with_content_is_written_without_its_presence_bit) {
  policy_binding_sid_t record = {};
  record.sid.field1 = 7;
  record.sid.presence = PREFIX_SID_TYPE_HAS_FIELD1;
  EXPECT_EQ(encoded(record), hex("0a 02 08 07"));
  const auto there = read_by_peer("policy_binding_sid_t", encoded(record));
  ASSERT_NE(there, nullptr);
  EXPECT_TRUE(has(*there, 1));
}

TEST(difference, a_nested_message_with_content_is_not_compared_without_its_presence_bit) {
  policy_binding_sid_t record = {};
  const policy_binding_sid_t empty = {};
  record.sid.field1 = 7;
  record.sid.presence = PREFIX_SID_TYPE_HAS_FIELD1;
  EXPECT_EQ(operations<policy_binding_sid_t>::compare(&record, &empty), 0);
  EXPECT_EQ(encoded(record), hex("0a 02 08 07"));
  EXPECT_EQ(encoded(empty), byte_string{});
  const auto there = read_by_peer("policy_binding_sid_t", encoded(record));
  const auto empty_there = read_by_peer("policy_binding_sid_t", encoded(empty));
  ASSERT_NE(there, nullptr);
  ASSERT_NE(empty_there, nullptr);
  EXPECT_NE(difference_of(*there, *empty_there), "");
}

// The pieces of an encoding in reference mode, joined as they would be sent.
template <class Record>
byte_string sent_in_pieces(const Record &record) {
  const std::size_t length = operations<Record>::encode(&record, nullptr, 0, nullptr, nullptr, PAVO_ZORV_REFERENCE);
  const fenced_block buffer(length);
  table entries(16);
  operations<Record>::encode(&record, buffer.data(), length, entries.entries(), &entries.count, PAVO_ZORV_REFERENCE);
  byte_string result;
  for (const piece &entry : entries.pieces()) result = result + byte_string(entry.start, entry.start + entry.length);
  return result;
}

TEST(difference, referenced_bytes_of_the_outermost_message_make_a_correct_encoding) {
  unsigned char block[] = {1, 2, 3};
  srv6_prefix record = {};
  record.field1 = block;
  record.field1_length = 3;
  record.field2 = 64;
  record.presence = SRV6_PREFIX_HAS_FIELD1 | SRV6_PREFIX_HAS_FIELD2;
  EXPECT_EQ(sent_in_pieces(record), hex("0a 03 01 02 03 10 40"));
  const auto there = read_by_peer("srv6_prefix", sent_in_pieces(record));
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(difference_of(*there, *translated(view_of(record))), "");
}

TEST(difference, the_length_of_a_nested_message_leaves_referenced_bytes_out) {
  unsigned char block[] = {1, 2, 3};
  srv6_usid record = {};
  record.prefix.field1 = block;
  record.prefix.field1_length = 3;
  record.prefix.presence = SRV6_PREFIX_HAS_FIELD1;
  record.presence = SRV6_USID_HAS_PREFIX;
  EXPECT_EQ(encoded(record), hex("1a 05 0a 03 01 02 03"));
  EXPECT_EQ(encoded(record, PAVO_ZORV_REFERENCE), hex("1a 02 0a 03"))
      << "a nested message of 2 bytes that announces 3 more";
  EXPECT_EQ(read_by_peer("srv6_usid", encoded(record, PAVO_ZORV_REFERENCE)), nullptr);
  EXPECT_EQ(read_by_peer("srv6_usid", hex("1a 02 0a 03 01 02 03")), nullptr) << "nor with the bytes after it";
}

TEST(difference, a_string_need_not_be_utf_8_in_either) {
  const byte_string bytes = hex("12 02 ff fe");
  decoded<api_intf> here(bytes);
  ASSERT_EQ(here.result, CODEC_OK);
  EXPECT_EQ(encoded(here.record), bytes);
  const auto there = read_by_peer("api_intf", bytes);
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(text_of(*there, 2), "\xff\xfe");
}

}  // namespace test
