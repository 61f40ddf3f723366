// Segment-identifier descriptions.
#include "support.hpp"

namespace prefix_sid_type_binding_sid_test {

using namespace test;

byte_string elements_of(const prefix_sid_type &sid) { return byte_string(sid.field2, sid.field2 + sid.field2_count); }

// --- prefix_sid_type ---

TEST(prefix_sid_type, a_number_and_two_elements_take_seven_bytes) {
  std::uint8_t elements[] = {1, 200};
  const prefix_sid_type sid{3, elements, 2, PREFIX_SID_TYPE_HAS_FIELD1 | PREFIX_SID_TYPE_HAS_FIELD2};
  EXPECT_EQ(show(encoded(sid)), "08 03 10 01 10 c8 01");

  decoded<prefix_sid_type> back(hex("08 03 10 01 10 c8 01"));
  EXPECT_EQ(back.result, CODEC_OK);
  EXPECT_EQ(back->field1, 3u);
  EXPECT_EQ(elements_of(back.record), (byte_string{1, 200}));
  EXPECT_EQ(back->presence & 3, 3);
  EXPECT_EQ(back.memory.sizes, (std::vector<std::size_t>{2}));
}

TEST(prefix_sid_type, an_element_of_300_is_cut_to_44) {
  decoded<prefix_sid_type> sid(hex("10 ac 02"));
  EXPECT_EQ(sid.result, CODEC_OK);
  EXPECT_EQ(elements_of(sid.record), (byte_string{44}));
  EXPECT_EQ(sid->presence & 3, PREFIX_SID_TYPE_HAS_FIELD2);
  EXPECT_EQ(show(encoded(sid.record)), "10 2c");
}

TEST(prefix_sid_type, elements_take_two_bytes_from_128_on) {
  std::uint8_t elements[] = {0, 127, 128, 255};
  EXPECT_EQ(show(encoded(prefix_sid_type{0, elements, 4, PREFIX_SID_TYPE_HAS_FIELD2})),
            "10 00 10 7f 10 80 01 10 ff 01");
}

TEST(prefix_sid_type, needs_an_allocator_for_its_list_only) {
  EXPECT_EQ(decode_without_memory<prefix_sid_type>(hex("08 03")), CODEC_OK);
  EXPECT_EQ(decode_without_memory<prefix_sid_type>(hex("08 03 10 01")), CODEC_ERR_NO_MEMORY);
}

TEST(prefix_sid_type, a_second_run_is_refused) {
  decoded<prefix_sid_type> sid(hex("10 01 08 03 10 02"));
  EXPECT_EQ(sid.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(elements_of(sid.record), (byte_string{1}));
  EXPECT_EQ(sid->presence & 3, 3);
}

TEST(prefix_sid_type, a_packed_list_is_refused) {
  EXPECT_EQ(decoded<prefix_sid_type>(hex("12 02 01 02")).result, CODEC_ERR_WRONG_WIRE_TYPE);
}

TEST(prefix_sid_type, an_absent_or_empty_list_is_not_written) {
  std::uint8_t elements[] = {1};
  EXPECT_EQ(show(encoded(prefix_sid_type{3, elements, 1, PREFIX_SID_TYPE_HAS_FIELD1})), "08 03");
  EXPECT_EQ(show(encoded(prefix_sid_type{3, elements, 0, 3})), "08 03");
}

TEST(prefix_sid_type, is_copied_with_elements_of_its_own) {
  std::uint8_t elements[] = {1, 200};
  const prefix_sid_type sid{3, elements, 2, 3};
  accountant memory;
  prefix_sid_type copy{};
  EXPECT_EQ(pavo_zorv_prefix_sid_type_duplicate(&copy, &sid, accountant::allocate, &memory), CODEC_OK);
  EXPECT_EQ(memory.sizes, (std::vector<std::size_t>{2}));
  EXPECT_EQ(copy.field1, 3u);
  EXPECT_EQ(elements_of(copy), (byte_string{1, 200}));
  EXPECT_TRUE(memory.owns(copy.field2));
  EXPECT_EQ(copy.presence, 3);
  pavo_zorv_prefix_sid_type_free_ext(&copy, accountant::release, &memory);
  EXPECT_EQ(memory.live(), 0u);
  EXPECT_EQ(copy.field2, nullptr);
  EXPECT_EQ(copy.field2_count, 2u);
  EXPECT_EQ(copy.presence, 3);
}

TEST(prefix_sid_type, a_copy_without_memory_keeps_the_number) {
  std::uint8_t elements[] = {1, 200};
  const prefix_sid_type sid{3, elements, 2, 3};
  prefix_sid_type copy{};
  EXPECT_EQ(pavo_zorv_prefix_sid_type_duplicate(&copy, &sid, nullptr, nullptr), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(copy.field1, 3u);
  EXPECT_EQ(copy.field2, nullptr);
  EXPECT_EQ(copy.field2_count, 0u);
  EXPECT_EQ(copy.presence, PREFIX_SID_TYPE_HAS_FIELD1);
}

TEST(prefix_sid_type, is_compared_by_its_number_then_its_elements) {
  std::uint8_t one[] = {1, 100}, other[] = {1, 200};
  const auto compared = [](const prefix_sid_type &a, const prefix_sid_type &b) {
    return pavo_zorv_prefix_sid_type_compare(&a, &b);
  };
  EXPECT_EQ(compared({3, one, 2, 3}, {3, one, 2, 3}), 0);
  EXPECT_EQ(compared({3, one, 2, 3}, {4, one, 1, 3}), -1);
  EXPECT_EQ(compared({3, one, 2, 3}, {3, other, 2, 3}), -1);
  EXPECT_EQ(compared({3, other, 1, 3}, {3, one, 2, 3}), -1);
  EXPECT_EQ(compared({3, other, 2, 3}, {3, one, 1, 3}), 1);
  EXPECT_EQ(compared({3, one, 2, 1}, {3, one, 2, 3}), -1);
  EXPECT_EQ(compared({0, one, 2, 2}, {3, one, 2, 3}), -1);
}

// --- policy_binding_sid_t ---

TEST(policy_binding_sid_t, takes_eleven_bytes_and_two_entries) {
  std::uint8_t elements[] = {1, 200};
  const policy_binding_sid_t binding{
      {3, elements, 2, 3}, 5, POLICY_BINDING_SID_T_HAS_SID | POLICY_BINDING_SID_T_HAS_FIELD2};
  const fenced_block buffer(11);
  table segments(2);
  EXPECT_EQ(pavo_zorv_policy_binding_sid_t_encode_ext(&binding, buffer.data(), 11, segments.entries(), &segments.count),
            11u);
  EXPECT_EQ(show(buffer.content()), "0a 07 08 03 10 01 10 c8 01 10 05");
  EXPECT_EQ(segments.count, 2u);
  EXPECT_EQ(segments.pieces(), (std::vector<piece>{{buffer.data() + 2, 7}, {buffer.data(), 11}}));
}

TEST(policy_binding_sid_t, field_1_is_written_for_its_content_or_for_its_bit) {
  EXPECT_EQ(show(encoded(policy_binding_sid_t{{3, nullptr, 0, PREFIX_SID_TYPE_HAS_FIELD1}, 0, 0})), "0a 02 08 03");
  EXPECT_EQ(show(encoded(policy_binding_sid_t{{3, nullptr, 0, 0}, 0, POLICY_BINDING_SID_T_HAS_SID})), "0a 00");
}

TEST(policy_binding_sid_t, a_length_past_the_end_is_refused_and_a_failure_inside_is_the_result) {
  EXPECT_EQ(decoded<policy_binding_sid_t>(hex("0a 03 08 03")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<policy_binding_sid_t>(hex("0a 02 0d 00")).result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decoded<policy_binding_sid_t>(hex("0a 01 0d")).result, CODEC_ERR_WRONG_WIRE_TYPE);
}

TEST(policy_binding_sid_t, is_read_with_bits_of_its_own_beside_those_of_the_nested_record) {
  decoded<policy_binding_sid_t> binding(hex("0a 07 08 03 10 01 10 c8 01 10 05"));
  EXPECT_EQ(binding.result, CODEC_OK);
  EXPECT_EQ(binding->sid.field1, 3u);
  EXPECT_EQ(elements_of(binding->sid), (byte_string{1, 200}));
  EXPECT_EQ(binding->sid.presence & 3, 3);
  EXPECT_EQ(binding->field2, 5u);
  EXPECT_EQ(binding->presence & 3, 3);
  decoded<policy_binding_sid_t> without(hex("10 05"));
  EXPECT_EQ(without->sid.presence & 3, 0);
  EXPECT_EQ(without->presence & 3, POLICY_BINDING_SID_T_HAS_FIELD2);
}

TEST(policy_binding_sid_t, needs_memory_only_for_the_list_inside) {
  EXPECT_EQ(decode_without_memory<policy_binding_sid_t>(hex("0a 02 08 03 10 05")), CODEC_OK);
  EXPECT_EQ(decode_without_memory<policy_binding_sid_t>(hex("0a 02 10 03 10 05")), CODEC_ERR_NO_MEMORY);
}

TEST(policy_binding_sid_t, a_copy_goes_on_after_a_list_without_memory) {
  std::uint8_t elements[] = {1};
  const policy_binding_sid_t binding{{3, elements, 1, 3}, 5, 3};
  policy_binding_sid_t copy{};
  EXPECT_EQ(pavo_zorv_policy_binding_sid_t_duplicate(&copy, &binding, nullptr, nullptr), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(copy.sid.field1, 3u);
  EXPECT_EQ(copy.sid.field2, nullptr);
  EXPECT_EQ(copy.sid.field2_count, 0u);
  EXPECT_EQ(copy.sid.presence, PREFIX_SID_TYPE_HAS_FIELD1);
  EXPECT_EQ(copy.field2, 5u);
  EXPECT_EQ(copy.presence, 3);
}

TEST(policy_binding_sid_t, releases_the_list_inside) {
  decoded<policy_binding_sid_t> binding(hex("0a 02 10 01 10 05"));
  void *const elements = binding->sid.field2;
  pavo_zorv_policy_binding_sid_t_free_ext(&binding.record, accountant::release, &binding.memory);
  EXPECT_EQ(binding.memory.released, (std::vector<void *>{elements}));
  EXPECT_EQ(binding->sid.field2, nullptr);
  EXPECT_EQ(binding->sid.field2_count, 1u);
  EXPECT_EQ(binding->sid.presence & 3, PREFIX_SID_TYPE_HAS_FIELD2);
  EXPECT_EQ(binding->presence & 3, 3);
}

TEST(policy_binding_sid_t, is_compared_by_the_nested_record_then_its_number) {
  const auto compared = [](const policy_binding_sid_t &a, const policy_binding_sid_t &b) {
    return pavo_zorv_policy_binding_sid_t_compare(&a, &b);
  };
  const auto sid = [](std::uint32_t number) { return prefix_sid_type{number, nullptr, 0, PREFIX_SID_TYPE_HAS_FIELD1}; };
  EXPECT_EQ(compared({sid(3), 5, 3}, {sid(3), 5, 3}), 0);
  EXPECT_EQ(compared({sid(3), 6, 3}, {sid(4), 5, 3}), -1);
  EXPECT_EQ(compared({sid(3), 6, 3}, {sid(3), 5, 3}), 1);
  EXPECT_EQ(compared({sid(3), 5, 2}, {sid(2), 5, 3}), -1) << "the bit before the nested record";
  EXPECT_EQ(compared({sid(3), 5, 2}, {sid(2), 5, 2}), 0) << "without their bit the nested records do not count";
  EXPECT_EQ(compared({sid(3), 5, 1}, {sid(3), 5, 3}), -1);
}

}  // namespace prefix_sid_type_binding_sid_test
