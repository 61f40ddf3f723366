// Outgoing segment lists: one with a segment identifier and bytes, and one of micro-SIDs.
#include "cleared_members.hpp"
#include "message_checks.hpp"

using namespace test;
using namespace test::checks;

namespace out_sid_list_info_test {

constexpr std::uint32_t by_reference = PAVO_ZORV_REFERENCE;

struct whole_info {
  std::uint8_t sid_field2[2] = {1, 200};
  unsigned char data[3] = {0xaa, 0xbb, 0xcc};
  out_sid_list_info record{};

  whole_info(const whole_info &) = delete;
  whole_info() {
    record.prefix_sid = {3, sid_field2, 2, PREFIX_SID_TYPE_HAS_FIELD1 | PREFIX_SID_TYPE_HAS_FIELD2};
    record.field2 = 300;
    record.field3 = 0;
    record.field4 = data;
    record.field4_length = 3;
    record.presence = 15;
  }
};

// Three micro-SIDs, the second without anything.
struct whole_list {
  unsigned char data[4] = {0xaa, 0xbb, 0xcc, 0xdd};
  unsigned char other_data[1] = {0xee};
  srv6_usid usids[3]{};
  out_srv6_usid_list_info record{};

  whole_list(const whole_list &) = delete;
  whole_list() {
    usids[0].field1 = 1;
    usids[0].prefix = {data, 4, 64, SRV6_PREFIX_HAS_FIELD1 | SRV6_PREFIX_HAS_FIELD2};
    usids[0].presence = SRV6_USID_HAS_FIELD1 | SRV6_USID_HAS_PREFIX;
    usids[2].prefix = {other_data, 1, 0, SRV6_PREFIX_HAS_FIELD1};
    usids[2].presence = SRV6_USID_HAS_PREFIX;
    record = {usids, 3, OUT_SRV6_USID_LIST_INFO_HAS_USIDS};
  }
};

const fields<out_sid_list_info> info_fields = {
    {take(&out_sid_list_info::prefix_sid), hex("0a 07 08 03 10 01 10 c8 01")},
    {take(&out_sid_list_info::field2), hex("10 ac 02")},
    {take(&out_sid_list_info::field3), hex("18 00")},
    {take(&out_sid_list_info::field4, &out_sid_list_info::field4_length), hex("22 03 aa bb cc")},
};

const fields<out_srv6_usid_list_info> list_fields = {
    {take(&out_srv6_usid_list_info::usids, &out_srv6_usid_list_info::usids_count),
     hex("0a 0c 08 01 1a 08 0a 04 aa bb cc dd 10 40 0a 00 0a 05 1a 03 0a 01 ee")},
};

// --- Outgoing segment lists ---

TEST(out_sid_list_info, its_fields_are_of_their_kinds) { fields_are_of_kinds<out_sid_list_info>(); }

TEST(out_sid_list_info, every_field_goes_to_the_wire_and_back) {
  goes_to_the_wire_and_back(whole_info().record, info_fields);
}

TEST(out_sid_list_info, a_nested_message_is_written_by_content_or_bit) {
  whole_info whole;
  whole.record.presence = 0;
  EXPECT_EQ(show(encoded(whole.record)), "0a 07 08 03 10 01 10 c8 01");
  out_sid_list_info record{};
  record.presence = OUT_SID_LIST_INFO_HAS_PREFIX_SID;
  EXPECT_EQ(show(encoded(record)), "0a 00");
}

TEST(out_sid_list_info, by_reference_it_ends_with_two_entries_of_its_own_and_no_third) {
  const whole_info whole;
  EXPECT_EQ(show(encoded(whole.record, by_reference)), "0a 07 08 03 10 01 10 c8 01 10 ac 02 18 00 22 03");
  takes_entries(whole.record, {{"prefix_sid", 2, 7}, {"out_sid_list_info", 0, 16}, referenced("field4", whole.data, 3)},
                by_reference);
  takes_entries(whole.record, {{"prefix_sid", 2, 7}, {"out_sid_list_info", 0, 19}});
}

TEST(out_sid_list_info, by_reference_without_bytes_or_bytes_it_has_one_entry_of_its_own) {
  whole_info whole;
  whole.record.field4_length = 0;
  EXPECT_EQ(show(encoded(whole.record, by_reference)), "0a 07 08 03 10 01 10 c8 01 10 ac 02 18 00 22 00");
  takes_entries(whole.record, {{"prefix_sid", 2, 7}, {"out_sid_list_info", 0, 16}}, by_reference);
  whole.record.field4_length = 3;
  whole.record.presence = 7;
  takes_entries(whole.record, {{"prefix_sid", 2, 7}, {"out_sid_list_info", 0, 14}}, by_reference);
  takes_entries(out_sid_list_info{}, {}, by_reference);
}

TEST(out_sid_list_info, bytes_alone_by_reference_take_two_entries) {
  whole_info whole;
  whole.record.prefix_sid = {};
  whole.record.presence = OUT_SID_LIST_INFO_HAS_FIELD4;
  EXPECT_EQ(show(encoded(whole.record, by_reference)), "22 03");
  takes_entries(whole.record, {{"out_sid_list_info", 0, 2}, referenced("field4", whole.data, 3)}, by_reference);
}

TEST(out_sid_list_info, bytes_read_by_reference_lie_in_the_input_and_the_list_does_not) {
  decoded<out_sid_list_info> read(together(info_fields), by_reference);
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->field4, read.input().data() + 16);
  EXPECT_EQ(read->field4_length, 3u);
  EXPECT_EQ(read.memory.sizes, std::vector<std::size_t>{2});
  EXPECT_TRUE(read.memory.owns(read->prefix_sid.field2));
  copied<out_sid_list_info> copy(read.record);
  EXPECT_TRUE(copy.memory.owns(copy->field4));
  const std::vector<void *> blocks = {read->prefix_sid.field2};
  operations<out_sid_list_info>::free(&read.record, accountant::release, &read.memory, by_reference);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->field4, read.input().data() + 16);

  EXPECT_EQ(decode_without_memory<out_sid_list_info>(hex("22 01 aa"), by_reference), CODEC_OK);
  EXPECT_EQ(decode_without_memory<out_sid_list_info>(hex("22 01 aa")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<out_sid_list_info>(hex("0a 02 10 01"), by_reference), CODEC_ERR_NO_MEMORY);
}

TEST(out_sid_list_info, bytes_that_occur_twice_are_refused) {
  for (const std::uint32_t options : {0u, 1u}) {
    decoded<out_sid_list_info> read(hex("22 01 aa 10 05 22 01 bb"), options);
    EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
    ASSERT_EQ(read->field4_length, 1u);
    EXPECT_EQ(read->field4[0], 0xaa);
    EXPECT_EQ(read->field2, 5u);
    EXPECT_EQ(bits(read.record), std::uint32_t{OUT_SID_LIST_INFO_HAS_FIELD2 | OUT_SID_LIST_INFO_HAS_FIELD4});
    EXPECT_EQ(decoded<out_sid_list_info>(hex("22 00 22 00"), options).result, CODEC_ERR_TRUNCATED);
    EXPECT_EQ(decoded<out_sid_list_info>(hex("22 03 aa bb"), options).result, CODEC_ERR_TRUNCATED);
  }
}

TEST(out_sid_list_info, what_the_segment_identifier_fails_with_is_handed_on_and_its_content_stays) {
  const std::vector<std::pair<const char *, int>> inputs = {
      {"0a 03 10 05 08", CODEC_ERR_TRUNCATED},
      {"0a 03 10 05 1f", CODEC_ERR_BAD_WIRE_TYPE},
      {"0a 03 10 05 0a", CODEC_ERR_WRONG_WIRE_TYPE},
  };
  for (const auto &[bytes, result] : inputs) {
    SCOPED_TRACE(bytes);
    decoded<out_sid_list_info> read(hex("18 01") + hex(bytes));
    EXPECT_EQ(read.result, result);
    ASSERT_EQ(read->prefix_sid.field2_count, 1u);
    EXPECT_EQ(read->prefix_sid.field2[0], 5);
    EXPECT_EQ(bits(read->prefix_sid), std::uint32_t{PREFIX_SID_TYPE_HAS_FIELD2});
    EXPECT_EQ(bits(read.record), std::uint32_t{OUT_SID_LIST_INFO_HAS_FIELD3});
  }
}

TEST(out_sid_list_info, a_second_segment_identifier_replaces_the_first_and_drops_its_memory) {
  decoded<out_sid_list_info> read(hex("0a 04 08 01 10 02 0a 02 10 03"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->prefix_sid.field1, 0u);
  ASSERT_EQ(read->prefix_sid.field2_count, 1u);
  EXPECT_EQ(read->prefix_sid.field2[0], 3);
  EXPECT_EQ(bits(read->prefix_sid), std::uint32_t{PREFIX_SID_TYPE_HAS_FIELD2});
  read.dropped = 1;
}

TEST(out_sid_list_info, short_buffers_take_what_fits) {
  fills_short_buffers(whole_info().record, together(info_fields), {{"field4", 16, 3}});
}

TEST(out_sid_list_info, memory_is_asked_for_in_field_order_and_its_lack_costs_one_member) {
  asks_for_memory(whole_info().record, info_fields,
                  {
                      {2, 1, hex("0a 02 08 03"), hex("0a 02 08 03")},
                      {3, 4, hex(""), hex("")},
                  },
                  hex("0a 02 08 03 10 ac 02 18 00"));
  copied<out_sid_list_info> copy(whole_info().record, {.fail_at = 1});
  EXPECT_EQ(copy->field4, nullptr);
  EXPECT_EQ(copy->field4_length, 0u);
  EXPECT_EQ(bits(copy.record), 7u);
}

TEST(out_sid_list_info, bytes_of_length_0_are_copied_as_null_with_their_bit) {
  whole_info whole;
  whole.record.field4_length = 0;
  copied<out_sid_list_info> copy(whole.record);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy.memory.sizes, std::vector<std::size_t>{2});
  EXPECT_EQ(copy->field4, nullptr);
  EXPECT_EQ(bits(copy.record), 15u);
}

TEST(out_sid_list_info, blocks_are_released_in_their_order) {
  decoded<out_sid_list_info> read(together(info_fields));
  const std::vector<void *> blocks = {read->prefix_sid.field2, read->field4};
  operations<out_sid_list_info>::free(&read.record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->prefix_sid.field2, nullptr);
  EXPECT_EQ(read->prefix_sid.field2_count, 2u);
  EXPECT_EQ(read->field4, nullptr);
  EXPECT_EQ(read->field4_length, 3u);
  EXPECT_EQ(bits(read.record), 15u);
}

TEST(out_sid_list_info, fields_are_compared_in_order) {
  const whole_info higher;
  whole_info lower;
  lower.sid_field2[1] = 100;
  lower.record.field2 = 299;
  lower.data[2] = 0x0c;
  out_sid_list_info high = higher.record;
  high.field3 = 0x80000000;
  orders_field_by_field(lower.record, high, info_fields);
}

TEST(out_sid_list_info, the_order_of_bytes_is_handed_on_as_it_is_and_then_the_shorter_is_less) {
  whole_info low, high;
  low.data[0] = 1;
  EXPECT_EQ(operations<out_sid_list_info>::compare(&low.record, &high.record), byte_order(low.data, high.data, 3));
  EXPECT_EQ(operations<out_sid_list_info>::compare(&high.record, &low.record), byte_order(high.data, low.data, 3));
  low.data[0] = 0xaa;
  low.record.field4_length = 2;
  EXPECT_EQ(operations<out_sid_list_info>::compare(&low.record, &high.record), -1);
  EXPECT_EQ(operations<out_sid_list_info>::compare(&high.record, &low.record), 1);
}

TEST(out_sid_list_info, presence_bits_of_no_field_are_left_alone_at_every_depth) {
  const out_sid_list_info ones = cleared_from<out_sid_list_info>(0xff);
  EXPECT_EQ(ones.presence, 0xf0);
  EXPECT_EQ(ones.prefix_sid.presence, 0xfc);
  out_sid_list_info source{};
  source.presence = 0xf2;
  source.prefix_sid.presence = 0xfd;
  const out_sid_list_info zeros = overwritten(0, source);
  EXPECT_EQ(zeros.presence, 0x02);
  EXPECT_EQ(zeros.prefix_sid.presence, 0x01);
  const out_sid_list_info copy = overwritten(0xff, out_sid_list_info{});
  EXPECT_EQ(copy.presence, 0xf0);
  EXPECT_EQ(copy.prefix_sid.presence, 0xfc);
}

// --- Lists of micro-SIDs ---

TEST(out_srv6_usid_list_info, its_fields_are_of_their_kinds) { fields_are_of_kinds<out_srv6_usid_list_info>(); }

TEST(out_srv6_usid_list_info, every_field_goes_to_the_wire_and_back) {
  goes_to_the_wire_and_back(whole_list().record, list_fields);
}

TEST(out_srv6_usid_list_info, a_present_but_empty_list_is_nothing_and_takes_no_entry) {
  srv6_usid usids[1]{};
  const out_srv6_usid_list_info record = {usids, 0, OUT_SRV6_USID_LIST_INFO_HAS_USIDS};
  for (const std::uint32_t options : {0u, 1u}) {
    EXPECT_EQ(show(encoded(record, options)), "");
    takes_entries(record, {}, options);
  }
}

TEST(out_srv6_usid_list_info, an_empty_micro_sid_is_a_key_and_a_zero_length_and_comes_back) {
  srv6_usid usids[3]{};
  usids[0].field1 = 1;
  usids[0].presence = SRV6_USID_HAS_FIELD1;
  usids[2].field2 = 2;
  usids[2].presence = SRV6_USID_HAS_FIELD2;
  const out_srv6_usid_list_info record = {usids, 3, OUT_SRV6_USID_LIST_INFO_HAS_USIDS};
  EXPECT_EQ(show(encoded(record)), "0a 02 08 01 0a 00 0a 02 10 02");
  decoded<out_srv6_usid_list_info> read(hex("0a 02 08 01 0a 00 0a 02 10 02"));
  EXPECT_EQ(read.result, CODEC_OK);
  ASSERT_EQ(read->usids_count, 3u);
  EXPECT_EQ(read->usids[0].field1, 1u);
  EXPECT_EQ(left_in(read->usids[1]), "");
  EXPECT_EQ(read->usids[1].presence, 0);
  EXPECT_EQ(read->usids[1].prefix.presence, 0);
  EXPECT_EQ(read->usids[1].sid_struct.presence, 0);
  EXPECT_EQ(read->usids[2].field2, 2u);
  EXPECT_EQ(bits(read.record), 1u);
}

TEST(out_srv6_usid_list_info, read_by_reference_only_the_array_is_released) {
  decoded<out_srv6_usid_list_info> read(together(list_fields), by_reference);
  EXPECT_EQ(read.result, CODEC_OK);
  ASSERT_EQ(read->usids_count, 3u);
  EXPECT_EQ(read->usids[0].prefix.field1, read.input().data() + 8);
  EXPECT_EQ(read->usids[2].prefix.field1, read.input().data() + 22);
  EXPECT_EQ(read.memory.sizes, std::vector<std::size_t>{3 * sizeof(srv6_usid)});
  const std::vector<void *> blocks = {read->usids};
  operations<out_srv6_usid_list_info>::free(&read.record, accountant::release, &read.memory, by_reference);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->usids, nullptr);
  EXPECT_EQ(read->usids_count, 0u);
  EXPECT_EQ(bits(read.record), 1u);

  whole_list whole;
  notebook notes;
  operations<out_srv6_usid_list_info>::free(&whole.record, notebook::note, &notes, by_reference);
  EXPECT_EQ(notes.released, std::vector<void *>{whole.usids});
  EXPECT_EQ(whole.usids[0].prefix.field1, whole.data);
  EXPECT_EQ(whole.usids[2].prefix.field1, whole.other_data);
}

TEST(out_srv6_usid_list_info, a_longer_list_is_greater) {
  const whole_list longer;
  whole_list shorter;
  shorter.record.usids_count = 2;
  EXPECT_EQ(operations<out_srv6_usid_list_info>::compare(&shorter.record, &longer.record), -1);
  EXPECT_EQ(operations<out_srv6_usid_list_info>::compare(&longer.record, &shorter.record), 1);
  shorter.record.usids_count = 3;
  EXPECT_EQ(operations<out_srv6_usid_list_info>::compare(&longer.record, &shorter.record), 0);
}

TEST(out_srv6_usid_list_info, its_own_entry_comes_after_those_of_prefixes_and_micro_sids) {
  const whole_list whole;
  takes_entries(whole.record, {
                                  {"usids[0].prefix", 6, 8},
                                  {"usids[0]", 2, 12},
                                  {"usids[2].prefix", 20, 3},
                                  {"usids[2]", 18, 5},
                                  {"out_srv6_usid_list_info", 0, 23},
                              });
  EXPECT_EQ(show(encoded(whole.record, by_reference)), "0a 08 08 01 1a 04 0a 04 10 40 0a 00 0a 04 1a 02 0a 01");
  takes_entries(whole.record,
                {
                    {"usids[0].prefix", 6, 2},
                    referenced("usids[0].prefix.field1", whole.data, 4),
                    rest("usids[0].prefix", 8, 2, 2),
                    {"usids[0]", 2, 8},
                    {"usids[2].prefix", 16, 2},
                    referenced("usids[2].prefix.field1", whole.other_data, 1),
                    {"usids[2]", 14, 4},
                    {"out_srv6_usid_list_info", 0, 18},
                },
                by_reference);
}

TEST(out_srv6_usid_list_info, the_array_needs_memory_also_by_reference) {
  for (const std::uint32_t options : {0u, 1u}) {
    EXPECT_EQ(decode_without_memory<out_srv6_usid_list_info>(hex("0a 00"), options), CODEC_ERR_NO_MEMORY);
    EXPECT_EQ(decode_without_memory<out_srv6_usid_list_info>(hex("0a"), options), CODEC_ERR_NO_MEMORY);
    EXPECT_EQ(decode_without_memory<out_srv6_usid_list_info>(hex("08 00"), options), CODEC_ERR_WRONG_WIRE_TYPE);
    EXPECT_EQ(decode_without_memory<out_srv6_usid_list_info>(hex("10 00"), options), CODEC_OK);
  }
}

TEST(out_srv6_usid_list_info, a_second_run_is_refused_and_the_first_kept) {
  for (const std::uint32_t options : {0u, 1u}) {
    decoded<out_srv6_usid_list_info> read(hex("0a 02 08 01 0a 00 10 05 0a 00"), options);
    EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
    ASSERT_EQ(read->usids_count, 2u);
    EXPECT_EQ(read->usids[0].field1, 1u);
    EXPECT_EQ(bits(read.record), 1u);
  }
}

TEST(out_srv6_usid_list_info, a_micro_sid_that_fails_leaves_the_array_and_its_bit_clear) {
  decoded<out_srv6_usid_list_info> read(hex("0a 05 1a 03 0a 01 aa 0a 09 08 07 1a 05 0a 01 bb 10 80 0a 00"));
  EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
  ASSERT_EQ(read->usids_count, 3u);
  EXPECT_EQ(read->usids[0].prefix.field1[0], 0xaa);
  EXPECT_EQ(read->usids[0].presence, SRV6_USID_HAS_PREFIX);
  EXPECT_EQ(read->usids[1].field1, 7u);
  EXPECT_EQ(read->usids[1].prefix.field1[0], 0xbb);
  EXPECT_EQ(read->usids[1].prefix.presence, SRV6_PREFIX_HAS_FIELD1);
  EXPECT_EQ(read->usids[1].presence, SRV6_USID_HAS_FIELD1);
  EXPECT_EQ(read->usids[2].presence, 0);
  EXPECT_EQ(bits(read.record), 0u);
  EXPECT_EQ(read.memory.live(), 3u);
}

TEST(out_srv6_usid_list_info, a_run_that_is_cut_off_asks_for_no_memory) {
  for (const char *bytes : {"0a 00 0a 01", "0a 00 0a", "0a 00 8a", "0a 01", "0a 80"}) {
    SCOPED_TRACE(bytes);
    decoded<out_srv6_usid_list_info> read(hex(bytes));
    EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
    EXPECT_EQ(read->usids, nullptr);
    EXPECT_EQ(read->usids_count, 0u);
    EXPECT_EQ(read.memory.requests(), 0u);
  }
}

TEST(out_srv6_usid_list_info, short_buffers_take_what_fits) {
  fills_short_buffers(whole_list().record, together(list_fields),
                      {{"usids[0].prefix.field1", 8, 4}, {"usids[2].prefix.field1", 22, 1}});
}

TEST(out_srv6_usid_list_info, the_lack_of_memory_costs_the_array_or_one_block) {
  asks_for_memory(whole_list().record, list_fields,
                  {
                      {3 * sizeof(srv6_usid), 1, hex(""), hex(""), 2},
                      {4, 1, hex("0a 06 08 01 1a 02 10 40 0a 00 0a 05 1a 03 0a 01 ee"), hex("")},
                      {1, 1, hex("0a 0c 08 01 1a 08 0a 04 aa bb cc dd 10 40 0a 00 0a 02 1a 00"), hex("")},
                  },
                  hex(""));
  copied<out_srv6_usid_list_info> copy(whole_list().record, {.fail_at = 0});
  EXPECT_EQ(copy->usids, nullptr);
  EXPECT_EQ(copy->usids_count, 0u);
  EXPECT_EQ(bits(copy.record), 0u);
  copied<out_srv6_usid_list_info> elements(whole_list().record, {.fail_from = 1});
  EXPECT_EQ(elements.result, CODEC_ERR_NO_MEMORY);
  ASSERT_EQ(elements->usids_count, 3u);
  EXPECT_EQ(elements->usids[0].prefix.field1, nullptr);
  EXPECT_EQ(elements->usids[2].prefix.field1, nullptr);
  EXPECT_EQ(bits(elements.record), 1u);
}

TEST(out_srv6_usid_list_info, a_present_but_empty_list_stays_present_in_a_copy) {
  srv6_usid usids[1]{};
  const out_srv6_usid_list_info source = {usids, 0, OUT_SRV6_USID_LIST_INFO_HAS_USIDS};
  copied<out_srv6_usid_list_info> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy.memory.requests(), 0u);
  EXPECT_EQ(copy->usids, nullptr);
  EXPECT_EQ(bits(copy.record), 1u);
}

TEST(out_srv6_usid_list_info, blocks_are_released_in_their_order) {
  whole_list whole;
  notebook notes;
  operations<out_srv6_usid_list_info>::free(&whole.record, notebook::note, &notes);
  EXPECT_EQ(notes.released, (std::vector<void *>{whole.data, whole.other_data, whole.usids}));
  EXPECT_EQ(whole.usids[0].prefix.field1, nullptr);
  EXPECT_EQ(whole.usids[0].prefix.field1_length, 4u);
  EXPECT_EQ(whole.usids[2].prefix.field1, nullptr);
  EXPECT_EQ(whole.record.usids, nullptr);
  EXPECT_EQ(whole.record.usids_count, 0u);
  EXPECT_EQ(bits(whole.record), 1u);
  operations<out_srv6_usid_list_info>::free(&whole.record, notebook::note, &notes);
  EXPECT_EQ(notes.released.size(), 3u);
}

TEST(out_srv6_usid_list_info, elements_are_compared_one_by_one) {
  whole_list lower;
  const whole_list higher;
  lower.other_data[0] = 0x0e;
  orders_field_by_field(lower.record, higher.record, list_fields);
  EXPECT_EQ(operations<out_srv6_usid_list_info>::compare(&lower.record, &higher.record),
            byte_order(lower.other_data, higher.other_data, 1));
}

TEST(out_srv6_usid_list_info, presence_bits_of_no_field_are_left_alone) {
  EXPECT_EQ(cleared_from<out_srv6_usid_list_info>(0xff).presence, 0xfe);
  EXPECT_EQ(overwritten(0, out_srv6_usid_list_info{nullptr, 0, 0xff}).presence, 0x01);
  EXPECT_EQ(overwritten(0xff, out_srv6_usid_list_info{nullptr, 0, 0x00}).presence, 0xfe);
}

}  // namespace out_sid_list_info_test
