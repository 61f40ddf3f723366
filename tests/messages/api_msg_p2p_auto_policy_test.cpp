// An automatically created point-to-point policy: 22 fields, a label stack, explicit paths and a segment identifier.
#include "message_checks.hpp"

using namespace test;
using namespace test::checks;

namespace api_msg_p2p_auto_policy_test {

using policy = api_msg_p2p_auto_policy;

// A policy with every field.
struct whole_policy {
  char field1[3] = "ab";
  char field2[2] = "c";
  std::uint32_t labels[2] = {16, 24001};
  std::uint8_t field11[2] = {1, 200};
  std::uint8_t hop_field5[1] = {7};
  api_exp_hop hop{};
  api_exp_path paths[2]{};
  char field20[4] = "xyz";
  std::uint8_t sid_field2[2] = {1, 200};
  policy record{};

  whole_policy(const whole_policy &) = delete;
  whole_policy() {
    hop.field1 = 1;
    hop.field5 = hop_field5;
    hop.field5_count = 1;
    hop.presence = API_EXP_HOP_HAS_FIELD1 | API_EXP_HOP_HAS_FIELD5;
    paths[0].hops = &hop;
    paths[0].hop_count = 1;
    paths[0].field2 = 2;
    paths[0].presence = API_EXP_PATH_HAS_HOPS | API_EXP_PATH_HAS_FIELD2;
    record.field1 = field1;
    record.field2 = field2;
    record.field3 = 300;
    record.field4 = 0;
    record.field5 = 1;
    record.field6 = 0;
    record.label_stack.labels = labels;
    record.label_stack.label_count = 2;
    record.label_stack.presence = API_LBL_STACK_HAS_LABELS;
    record.field8 = 8;
    record.field9 = 0xffffffff;
    record.field10 = 1;
    record.field11 = field11;
    record.field11_count = 2;
    record.field12 = 12;
    record.field13 = 13;
    record.exp_paths = paths;
    record.exp_paths_count = 2;
    record.field15 = 15;
    record.field16 = 16;
    record.field17 = 17;
    record.field18 = 18;
    record.field19 = 1;
    record.field20 = field20;
    record.prefix_sid.field1 = 3;
    record.prefix_sid.field2 = sid_field2;
    record.prefix_sid.field2_count = 2;
    record.prefix_sid.presence = PREFIX_SID_TYPE_HAS_FIELD1 | PREFIX_SID_TYPE_HAS_FIELD2;
    record.field22 = 22;
    record.presence = 0x3fffff;
  }
};

const fields<policy> all_fields = {
    {take(&policy::field1), hex("0a 02 61 62")},
    {take(&policy::field2), hex("12 01 63")},
    {take(&policy::field3), hex("18 ac 02")},
    {take(&policy::field4), hex("20 00")},
    {take(&policy::field5), hex("28 01")},
    {take(&policy::field6), hex("30 00")},
    {take(&policy::label_stack), hex("3a 06 08 10 08 c1 bb 01")},
    {take(&policy::field8), hex("40 08")},
    {take(&policy::field9), hex("48 ff ff ff ff 0f")},
    {take(&policy::field10), hex("50 01")},
    {take(&policy::field11, &policy::field11_count), hex("58 01 58 c8 01")},
    {take(&policy::field12), hex("60 0c")},
    {take(&policy::field13), hex("68 0d")},
    {take(&policy::exp_paths, &policy::exp_paths_count), hex("72 08 0a 04 08 01 28 07 10 02 72 00")},
    {take(&policy::field15), hex("78 0f")},
    {take(&policy::field16), hex("80 01 10")},
    {take(&policy::field17), hex("88 01 11")},
    {take(&policy::field18), hex("90 01 12")},
    {take(&policy::field19), hex("98 01 01")},
    {take(&policy::field20), hex("a2 01 03 78 79 7a")},
    {take(&policy::prefix_sid), hex("aa 01 07 08 03 10 01 10 c8 01")},
    {take(&policy::field22), hex("b0 01 16")},
};

// --- On the wire ---

TEST(api_msg_p2p_auto_policy, its_fields_are_of_their_kinds) { fields_are_of_kinds<policy>(); }

TEST(api_msg_p2p_auto_policy, every_field_goes_to_the_wire_and_back) {
  goes_to_the_wire_and_back(whole_policy().record, all_fields);
}

TEST(api_msg_p2p_auto_policy, an_empty_nested_message_with_its_bit_set_is_a_key_and_a_zero_length) {
  policy record{};
  record.presence = 1u << 6;
  EXPECT_EQ(show(encoded(record)), "3a 00");
  record.presence = 1u << 20;
  EXPECT_EQ(show(encoded(record)), "aa 01 00");
}

TEST(api_msg_p2p_auto_policy, nested_content_is_written_without_its_bit) {
  const whole_policy whole;
  policy record{};
  record.prefix_sid = whole.record.prefix_sid;
  EXPECT_EQ(show(encoded(record)), "aa 01 07 08 03 10 01 10 c8 01");
  decoded<policy> with_sid(hex("aa 01 07 08 03 10 01 10 c8 01"));
  EXPECT_EQ(with_sid.result, CODEC_OK);
  EXPECT_EQ(bits(with_sid.record), 1u << 20);
  EXPECT_EQ(with_sid->prefix_sid.field1, 3u);

  record = {};
  record.label_stack = whole.record.label_stack;
  EXPECT_EQ(show(encoded(record)), "3a 06 08 10 08 c1 bb 01");
  decoded<policy> with_labels(hex("3a 06 08 10 08 c1 bb 01"));
  EXPECT_EQ(with_labels.result, CODEC_OK);
  EXPECT_EQ(bits(with_labels.record), 1u << 6);
  EXPECT_EQ(with_labels->label_stack.label_count, 2u);
}

TEST(api_msg_p2p_auto_policy, a_flag_that_holds_2_is_written_as_it_is_and_read_as_1) {
  policy record{};
  record.field5 = 2;
  record.presence = 1u << 4;
  EXPECT_EQ(show(encoded(record)), "28 02");
  decoded<policy> read(hex("28 02"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->field5, 1);
  EXPECT_EQ(bits(read.record), 1u << 4);
}

TEST(api_msg_p2p_auto_policy, small_numbers_from_128_take_two_bytes_and_greater_ones_are_cut) {
  std::uint8_t elements[] = {200};
  policy record{};
  record.field11 = elements;
  record.field11_count = 1;
  record.presence = 1u << 10;
  EXPECT_EQ(show(encoded(record)), "58 c8 01");
  decoded<policy> read(hex("58 ac 02"));
  EXPECT_EQ(read.result, CODEC_OK);
  ASSERT_EQ(read->field11_count, 1u);
  EXPECT_EQ(read->field11[0], 44);
}

TEST(api_msg_p2p_auto_policy, a_string_that_occurs_twice_is_refused) {
  decoded<policy> first(hex("0a 01 61 0a 01 62"));
  EXPECT_EQ(first.result, CODEC_ERR_TRUNCATED);
  EXPECT_STREQ(first->field1, "a");
  EXPECT_EQ(bits(first.record), 1u << 0);
  EXPECT_EQ(first.memory.requests(), 1u);
  EXPECT_EQ(decoded<policy>(hex("12 00 12 00")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<policy>(hex("a2 01 00 18 05 a2 01 00")).result, CODEC_ERR_TRUNCATED);
}

TEST(api_msg_p2p_auto_policy, a_second_run_of_explicit_paths_is_refused) {
  decoded<policy> read(hex("72 02 10 05 78 07 72 02 10 06"));
  EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
  ASSERT_EQ(read->exp_paths_count, 1u);
  EXPECT_EQ(read->exp_paths[0].field2, 5u);
  EXPECT_EQ(read->field15, 7u);
  EXPECT_EQ(bits(read.record), 1u << 13 | 1u << 14);
}

TEST(api_msg_p2p_auto_policy, an_unknown_field_23_alone_is_skipped) {
  for (const char *bytes : {"b8 01 05", "b9 01 00 00 00 00 00 00 00 00", "ba 01 01 ff", "bd 01 00 00 00 00"}) {
    SCOPED_TRACE(bytes);
    decoded<policy> read(hex(bytes));
    EXPECT_EQ(read.result, CODEC_OK);
    EXPECT_EQ(bits(read.record), 0u);
    EXPECT_EQ(show(encoded(read.record)), "");
    EXPECT_EQ(read.memory.requests(), 0u);
  }
}

TEST(api_msg_p2p_auto_policy, every_flag_is_written_as_the_stored_byte) {
  policy record{};
  record.field5 = 0x80;
  record.field6 = 0xff;
  record.field10 = 3;
  record.field19 = 0x81;
  record.presence = 1u << 4 | 1u << 5 | 1u << 9 | 1u << 18;
  EXPECT_EQ(show(encoded(record)), "28 80 30 ff 50 03 98 01 81");
}

TEST(api_msg_p2p_auto_policy, a_string_needs_its_pointer_and_a_list_its_count) {
  std::uint8_t elements[] = {9};
  api_exp_path paths[1]{};
  policy record{};
  record.field11 = elements;
  record.exp_paths = paths;
  record.presence = 1u << 0 | 1u << 1 | 1u << 19 | 1u << 10 | 1u << 13;
  EXPECT_EQ(show(encoded(record)), "");
  record.field11_count = 1;
  record.exp_paths_count = 1;
  EXPECT_EQ(show(encoded(record)), "58 09 72 00");
}

TEST(api_msg_p2p_auto_policy, a_list_may_have_other_wire_types_after_its_first_key) {
  decoded<policy> read(hex("58 01 5a 02 5d 03"));
  EXPECT_EQ(read.result, CODEC_OK);
  ASSERT_EQ(read->field11_count, 3u);
  EXPECT_EQ(read->field11[0], 1);
  EXPECT_EQ(read->field11[1], 2);
  EXPECT_EQ(read->field11[2], 3);
}

TEST(api_msg_p2p_auto_policy, a_second_run_of_small_numbers_is_refused) {
  decoded<policy> read(hex("58 01 60 05 58 02"));
  EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
  ASSERT_EQ(read->field11_count, 1u);
  EXPECT_EQ(read->field11[0], 1);
  EXPECT_EQ(bits(read.record), 1u << 10 | 1u << 11);
}

TEST(api_msg_p2p_auto_policy, a_nested_message_that_runs_past_the_end_is_refused) {
  for (const char *bytes : {"3a 03 08 10", "aa 01 03 08 10", "3a ff ff ff ff 0f 00", "aa 01 ff ff ff ff 0f 00"}) {
    SCOPED_TRACE(bytes);
    decoded<policy> read(hex(bytes));
    EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
    EXPECT_EQ(bits(read.record), 0u);
    EXPECT_EQ(read.memory.requests(), 0u);
  }
}

TEST(api_msg_p2p_auto_policy, what_a_nested_message_fails_with_is_handed_on) {
  EXPECT_EQ(decoded<policy>(hex("3a 01 08")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<policy>(hex("3a 01 1f")).result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decoded<policy>(hex("3a 02 0a 00")).result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decoded<policy>(hex("aa 01 01 10")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<policy>(hex("aa 01 01 1f")).result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decoded<policy>(hex("aa 01 01 0d")).result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decode_without_memory<policy>(hex("3a 02 08 10")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<policy>(hex("aa 01 02 10 01")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<policy>(hex("aa 01 02 08 01")), CODEC_OK);
}

// --- A nested message that occurs twice ---

TEST(api_msg_p2p_auto_policy, a_second_label_stack_replaces_the_first_and_drops_its_memory) {
  decoded<policy> read(hex("3a 02 08 10 3a 04 08 11 08 12"));
  EXPECT_EQ(read.result, CODEC_OK);
  ASSERT_EQ(read->label_stack.label_count, 2u);
  EXPECT_EQ(read->label_stack.labels[0], 17u);
  EXPECT_EQ(read->label_stack.labels[1], 18u);
  EXPECT_EQ(read.memory.sizes, (std::vector<std::size_t>{4, 8}));
  EXPECT_EQ(read.memory.live(), 2u);
  EXPECT_TRUE(read.memory.released.empty());
  read.dropped = 1;
}

TEST(api_msg_p2p_auto_policy, a_second_nested_message_that_is_empty_leaves_nothing_of_the_first) {
  decoded<policy> labels(hex("3a 02 08 10 3a 00"));
  EXPECT_EQ(labels.result, CODEC_OK);
  EXPECT_EQ(labels->label_stack.labels, nullptr);
  EXPECT_EQ(labels->label_stack.label_count, 0u);
  EXPECT_EQ(bits(labels->label_stack), 0u);
  EXPECT_EQ(bits(labels.record), 1u << 6);
  EXPECT_EQ(show(encoded(labels.record)), "3a 00");
  labels.dropped = 1;

  decoded<policy> sid(hex("aa 01 04 08 07 10 01 aa 01 00"));
  EXPECT_EQ(sid.result, CODEC_OK);
  EXPECT_EQ(sid->prefix_sid.field1, 0u);
  EXPECT_EQ(sid->prefix_sid.field2, nullptr);
  EXPECT_EQ(sid->prefix_sid.field2_count, 0u);
  EXPECT_EQ(bits(sid->prefix_sid), 0u);
  EXPECT_EQ(show(encoded(sid.record)), "aa 01 00");
  sid.dropped = 1;
}

TEST(api_msg_p2p_auto_policy, a_second_nested_message_that_fails_leaves_the_bit_of_the_first) {
  decoded<policy> read(hex("3a 02 08 10 3a 01 08"));
  EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(bits(read.record), 1u << 6);
  EXPECT_EQ(read->label_stack.labels, nullptr);
  EXPECT_EQ(bits(read->label_stack), 0u);
  read.dropped = 1;
}

// --- Explicit paths that fail ---

TEST(api_msg_p2p_auto_policy, a_path_that_fails_leaves_the_array_and_its_bit_clear) {
  decoded<policy> read(hex("78 01 72 02 10 05 72 03 10 06 1f 72 00"));
  EXPECT_EQ(read.result, CODEC_ERR_BAD_WIRE_TYPE);
  ASSERT_EQ(read->exp_paths_count, 3u);
  EXPECT_EQ(read->exp_paths[0].field2, 5u);
  EXPECT_EQ(read->exp_paths[0].presence, API_EXP_PATH_HAS_FIELD2);
  EXPECT_EQ(read->exp_paths[1].field2, 6u);
  EXPECT_EQ(read->exp_paths[1].presence, API_EXP_PATH_HAS_FIELD2);
  EXPECT_EQ(read->exp_paths[2].presence, 0u);
  EXPECT_EQ(bits(read.record), 1u << 14);
}

TEST(api_msg_p2p_auto_policy, a_run_of_paths_that_is_cut_off_asks_for_no_memory) {
  for (const char *bytes : {"72 00 72 01", "72 00 72", "72 00 f2", "72 00 72 80", "72 80"}) {
    SCOPED_TRACE(bytes);
    decoded<policy> read(hex(bytes));
    EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
    EXPECT_EQ(read->exp_paths, nullptr);
    EXPECT_EQ(read->exp_paths_count, 0u);
    EXPECT_EQ(bits(read.record), 0u);
    EXPECT_EQ(read.memory.requests(), 0u);
  }
}

// --- Buffers, tables and options ---

TEST(api_msg_p2p_auto_policy, short_buffers_take_what_fits) {
  fills_short_buffers(whole_policy().record, together(all_fields),
                      {{"field1", 2, 2}, {"field2", 6, 1}, {"field20", 72, 3}});
}

TEST(api_msg_p2p_auto_policy, its_own_entry_comes_after_those_of_labels_hops_paths_and_segment_identifier) {
  takes_entries(whole_policy().record, {
                                           {"label_stack", 18, 6},
                                           {"exp_paths[0].hops[0]", 47, 4},
                                           {"exp_paths[0]", 45, 8},
                                           {"prefix_sid", 78, 7},
                                           {"api_msg_p2p_auto_policy", 0, 88},
                                       });
}

TEST(api_msg_p2p_auto_policy, empty_nested_messages_have_no_entries) {
  api_exp_path paths[2]{};
  policy record{};
  record.exp_paths = paths;
  record.exp_paths_count = 2;
  record.presence = 1u << 6 | 1u << 13 | 1u << 20;
  EXPECT_EQ(show(encoded(record)), "3a 00 72 00 72 00 aa 01 00");
  takes_entries(record, {{"api_msg_p2p_auto_policy", 0, 9}});
  takes_entries(policy{}, {});
}

TEST(api_msg_p2p_auto_policy, the_options_word_changes_nothing) {
  const whole_policy whole;
  for (const std::uint32_t options : {1u, 0xffffffffu}) {
    EXPECT_EQ(show(encoded(whole.record, options)), show(together(all_fields)));
    takes_entries(whole.record,
                  {
                      {"label_stack", 18, 6},
                      {"exp_paths[0].hops[0]", 47, 4},
                      {"exp_paths[0]", 45, 8},
                      {"prefix_sid", 78, 7},
                      {"api_msg_p2p_auto_policy", 0, 88},
                  },
                  options);
    decoded<policy> read(together(all_fields), options);
    EXPECT_EQ(read.result, CODEC_OK);
    EXPECT_EQ(read.memory.sizes,
              (std::vector<std::size_t>{3, 2, 8, 2, 2 * sizeof(api_exp_path), sizeof(api_exp_hop), 1, 4, 2}));
    EXPECT_EQ(decode_without_memory<policy>(hex("0a 01 61"), options), CODEC_ERR_NO_MEMORY);
    operations<policy>::free(&read.record, accountant::release, &read.memory, options);
    EXPECT_EQ(read.memory.live(), 0u);
  }
}

// --- Memory ---

TEST(api_msg_p2p_auto_policy, memory_is_asked_for_in_field_order_and_its_lack_costs_one_member) {
  asks_for_memory(whole_policy().record, all_fields,
                  {
                      {3, 1, hex(""), hex("")},
                      {2, 2, hex(""), hex("")},
                      {8, 7, hex("3a 00"), hex("")},
                      {2, 11, hex(""), hex("")},
                      {2 * sizeof(api_exp_path), 14, hex(""), hex(""), 2},
                      {sizeof(api_exp_hop), 14, hex("72 02 10 02 72 00"), hex(""), 1},
                      {1, 14, hex("72 06 0a 02 08 01 10 02 72 00"), hex("")},
                      {4, 20, hex(""), hex("")},
                      {2, 21, hex("aa 01 02 08 03"), hex("aa 01 02 08 03")},
                  },
                  hex("18 ac 02 20 00 28 01 30 00 3a 00 40 08 48 ff ff ff ff 0f 50 01 60 0c 68 0d 78 0f 80 01 10"
                      "88 01 11 90 01 12 98 01 01 aa 01 02 08 03 b0 01 16"));
}

TEST(api_msg_p2p_auto_policy, a_copy_without_memory_has_empty_members_and_keeps_the_bits_of_nested_messages) {
  const whole_policy whole;
  copied<policy> copy(whole.record, {.fail_from = 0});
  EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(bits(copy.record), 0x3fffffu & ~(1u << 0 | 1u << 1 | 1u << 10 | 1u << 13 | 1u << 19));
  EXPECT_EQ(copy->field1, nullptr);
  EXPECT_EQ(copy->field2, nullptr);
  EXPECT_EQ(copy->label_stack.labels, nullptr);
  EXPECT_EQ(copy->label_stack.label_count, 0u);
  EXPECT_EQ(bits(copy->label_stack), 0u);
  EXPECT_EQ(copy->field11, nullptr);
  EXPECT_EQ(copy->field11_count, 0u);
  EXPECT_EQ(copy->exp_paths, nullptr);
  EXPECT_EQ(copy->exp_paths_count, 0u);
  EXPECT_EQ(copy->field20, nullptr);
  EXPECT_EQ(copy->prefix_sid.field2, nullptr);
  EXPECT_EQ(copy->prefix_sid.field2_count, 0u);
  EXPECT_EQ(bits(copy->prefix_sid), std::uint32_t{PREFIX_SID_TYPE_HAS_FIELD1});
  EXPECT_EQ(copy.memory.sizes, (std::vector<std::size_t>{3, 2, 8, 2, 2 * sizeof(api_exp_path), 4, 2}));
}

TEST(api_msg_p2p_auto_policy, null_arrays_count_as_empty_in_a_copy_whatever_their_count) {
  policy source{};
  source.label_stack.label_count = 2;
  source.label_stack.presence = API_LBL_STACK_HAS_LABELS;
  source.field11_count = 5;
  source.exp_paths_count = 3;
  source.presence = 1u << 6 | 1u << 10 | 1u << 13;
  copied<policy> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy.memory.requests(), 0u);
  EXPECT_EQ(copy->label_stack.labels, nullptr);
  EXPECT_EQ(copy->label_stack.label_count, 0u);
  EXPECT_EQ(bits(copy->label_stack), std::uint32_t{API_LBL_STACK_HAS_LABELS});
  EXPECT_EQ(copy->field11, nullptr);
  EXPECT_EQ(copy->field11_count, 0u);
  EXPECT_EQ(copy->exp_paths, nullptr);
  EXPECT_EQ(copy->exp_paths_count, 0u);
  EXPECT_EQ(bits(copy.record), 1u << 6 | 1u << 10 | 1u << 13);
  policy without{};
  EXPECT_EQ(operations<policy>::duplicate(&without, &source, nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(without.presence, 1u << 6 | 1u << 10 | 1u << 13);
}

TEST(api_msg_p2p_auto_policy, null_strings_and_arrays_of_count_0_are_copied_as_empty_with_their_bits) {
  std::uint8_t elements[] = {1};
  api_exp_path paths[1]{};
  std::uint32_t labels[] = {1};
  policy source{};
  source.field11 = elements;
  source.exp_paths = paths;
  source.label_stack.labels = labels;
  source.label_stack.presence = API_LBL_STACK_HAS_LABELS;
  source.presence = 0x3fffff;
  copied<policy> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy.memory.requests(), 0u);
  EXPECT_EQ(bits(copy.record), 0x3fffffu);
  EXPECT_EQ(copy->field1, nullptr);
  EXPECT_EQ(copy->field11, nullptr);
  EXPECT_EQ(copy->exp_paths, nullptr);
  EXPECT_EQ(copy->label_stack.labels, nullptr);
  EXPECT_EQ(bits(copy->label_stack), std::uint32_t{API_LBL_STACK_HAS_LABELS});
}

TEST(api_msg_p2p_auto_policy, members_are_copied_whatever_their_bits) {
  const whole_policy whole;
  policy source = whole.record;
  source.presence = 0;
  copied<policy> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(bits(copy.record), 0u);
  EXPECT_STREQ(copy->field1, "ab");
  EXPECT_STREQ(copy->field20, "xyz");
  EXPECT_EQ(copy->field3, 300u);
  EXPECT_EQ(copy->field19, 1);
  ASSERT_EQ(copy->field11_count, 2u);
  EXPECT_EQ(copy->field11[1], 200);
  ASSERT_EQ(copy->exp_paths_count, 2u);
  EXPECT_EQ(copy->exp_paths[0].hops[0].field5[0], 7);
  EXPECT_EQ(copy.memory.requests(), 9u);
}

TEST(api_msg_p2p_auto_policy, blocks_are_released_in_their_order) {
  decoded<policy> read(together(all_fields));
  ASSERT_EQ(read.result, CODEC_OK);
  policy &record = read.record;
  const std::vector<void *> blocks = {record.field1,
                                      record.field2,
                                      record.label_stack.labels,
                                      record.field11,
                                      record.exp_paths[0].hops[0].field5,
                                      record.exp_paths[0].hops,
                                      record.exp_paths,
                                      record.field20,
                                      record.prefix_sid.field2};
  operations<policy>::free(&record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(record.field1, nullptr);
  EXPECT_EQ(record.field2, nullptr);
  EXPECT_EQ(record.label_stack.labels, nullptr);
  EXPECT_EQ(record.label_stack.label_count, 2u);
  EXPECT_EQ(record.field11, nullptr);
  EXPECT_EQ(record.field11_count, 2u);
  EXPECT_EQ(record.exp_paths, nullptr);
  EXPECT_EQ(record.exp_paths_count, 0u);
  EXPECT_EQ(record.field20, nullptr);
  EXPECT_EQ(record.prefix_sid.field2, nullptr);
  EXPECT_EQ(record.prefix_sid.field2_count, 2u);
  EXPECT_EQ(bits(record), 0x3fffffu);
  EXPECT_EQ(bits(record.label_stack), 1u);
  EXPECT_EQ(bits(record.prefix_sid), 3u);
  operations<policy>::free(&record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released.size(), blocks.size());
}

// --- Order ---

TEST(api_msg_p2p_auto_policy, fields_are_compared_in_order) {
  const whole_policy higher;
  whole_policy lower;
  lower.field1[1] = 'a';
  lower.field2[0] = 'b';
  lower.record.field3 = 299;
  lower.record.field4 = 0;
  lower.record.field5 = 0;
  lower.labels[1] = 24000;
  lower.record.field8 = 7;
  lower.record.field9 = 1;  // 0xffffffff is greater: unsigned
  lower.record.field10 = 0;
  lower.field11[1] = 100;  // 200 is greater: unsigned
  lower.record.field12 = 11;
  lower.record.field13 = 12;
  lower.hop_field5[0] = 6;
  lower.record.field15 = 14;
  lower.record.field16 = 15;
  lower.record.field17 = 16;
  lower.record.field18 = 17;
  lower.record.field19 = 0;
  lower.field20[2] = 'y';
  lower.sid_field2[1] = 100;
  lower.record.field22 = 21;
  policy high = higher.record;
  high.field4 = 1;
  high.field6 = 0x80;
  orders_field_by_field(lower.record, high, all_fields);
}

TEST(api_msg_p2p_auto_policy, the_order_of_strings_is_handed_on_as_it_is) {
  char a[] = "a", z[] = "z";
  for (char *policy::*const member : {&policy::field1, &policy::field2, &policy::field20}) {
    policy low{}, high{};
    low.*member = a;
    high.*member = z;
    low.presence = high.presence = 1u << 0 | 1u << 1 | 1u << 19;
    for (char *policy::*const other : {&policy::field1, &policy::field2, &policy::field20}) {
      if (other != member) low.*other = high.*other = a;
    }
    EXPECT_EQ(operations<policy>::compare(&low, &high), string_order(a, z));
    EXPECT_EQ(operations<policy>::compare(&high, &low), string_order(z, a));
  }
}

TEST(api_msg_p2p_auto_policy, a_longer_list_is_greater) {
  const whole_policy longer;
  for (const std::uint32_t bit : {6u, 10u, 13u}) {
    SCOPED_TRACE(bit);
    policy shorter = longer.record;
    if (bit == 6) shorter.label_stack.label_count = 1;
    if (bit == 10) shorter.field11_count = 1;
    if (bit == 13) shorter.exp_paths_count = 1;
    EXPECT_EQ(operations<policy>::compare(&shorter, &longer.record), -1);
    EXPECT_EQ(operations<policy>::compare(&longer.record, &shorter), 1);
  }
}

TEST(api_msg_p2p_auto_policy, the_label_stacks_own_bit_comes_before_its_labels) {
  const whole_policy whole;
  policy without = whole.record;
  without.label_stack.presence = 0;
  EXPECT_EQ(operations<policy>::compare(&whole.record, &without), 1);
  EXPECT_EQ(operations<policy>::compare(&without, &whole.record), -1);
}

// --- Presence bits of no field ---

TEST(api_msg_p2p_auto_policy, decoding_leaves_presence_bits_of_no_field_alone) {
  const policy ones = cleared_from<policy>(0xff);
  EXPECT_EQ(ones.presence, 0xffc00000u);
  EXPECT_EQ(ones.label_stack.presence, 0xfe);
  EXPECT_EQ(ones.prefix_sid.presence, 0xfc);
  const policy zeros = cleared_from<policy>(0);
  EXPECT_EQ(zeros.presence, 0u);
  EXPECT_EQ(zeros.label_stack.presence, 0);
  EXPECT_EQ(zeros.prefix_sid.presence, 0);

  decoded<policy> read(together(all_fields));
  EXPECT_EQ(read->presence, 0x5a7fffffu);  // 5a5a5a5a before
  EXPECT_EQ(read->label_stack.presence, 0x5b);
  EXPECT_EQ(read->prefix_sid.presence, 0x5b);
  EXPECT_EQ(read->exp_paths[0].presence, 0x03);
  EXPECT_EQ(read->exp_paths[1].presence, 0x00);
  EXPECT_EQ(read->exp_paths[0].hops[0].presence, 0x11);
}

TEST(api_msg_p2p_auto_policy, a_second_nested_message_leaves_presence_bits_of_no_field_alone) {
  decoded<policy> read(hex("aa 01 02 08 01 aa 01 00"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->prefix_sid.presence, 0x58);  // 5a before
}

TEST(api_msg_p2p_auto_policy, copying_leaves_presence_bits_of_no_field_alone) {
  policy source{};
  source.presence = 0xffc00000u | 1u << 2;
  source.label_stack.presence = 0xff;
  source.prefix_sid.presence = 0xfd;
  const policy zeros = overwritten(0, source);
  EXPECT_EQ(zeros.presence, 1u << 2);
  EXPECT_EQ(zeros.label_stack.presence, 0x01);
  EXPECT_EQ(zeros.prefix_sid.presence, 0x01);
  source.presence = 1u << 2;
  source.label_stack.presence = 0x01;
  source.prefix_sid.presence = 0x01;
  const policy ones = overwritten(0xff, source);
  EXPECT_EQ(ones.presence, 0xffc00000u | 1u << 2);
  EXPECT_EQ(ones.label_stack.presence, 0xff);
  EXPECT_EQ(ones.prefix_sid.presence, 0xfd);
}

}  // namespace api_msg_p2p_auto_policy_test
