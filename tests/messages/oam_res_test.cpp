// OAM results: numbers, one of them signed, a flag, bytes, and a list on either side of them.
#include "message_checks.hpp"

using namespace test;
using namespace test::checks;

namespace oam_res_test {

constexpr std::uint32_t by_reference = PAVO_ZORV_REFERENCE;
struct whole_result {
  std::uint8_t sid_field2[1] = {1};
  unsigned char first[2] = {0xaa, 0xbb};
  unsigned char second[1] = {0xcc};
  out_sid_list_info sid_lists[2]{};
  unsigned char data[3] = {0xdd, 0xee, 0xff};
  unsigned char prefix[2] = {0x11, 0x22};
  srv6_usid usid{};
  out_srv6_usid_list_info usid_lists[1]{};
  oam_res record{};

  whole_result(const whole_result &) = delete;
  whole_result() {
    sid_lists[0].prefix_sid = {3, sid_field2, 1, PREFIX_SID_TYPE_HAS_FIELD1 | PREFIX_SID_TYPE_HAS_FIELD2};
    sid_lists[0].field4 = first;
    sid_lists[0].field4_length = 2;
    sid_lists[0].presence = OUT_SID_LIST_INFO_HAS_PREFIX_SID | OUT_SID_LIST_INFO_HAS_FIELD4;
    sid_lists[1].field2 = 7;
    sid_lists[1].field4 = second;
    sid_lists[1].field4_length = 1;
    sid_lists[1].presence = OUT_SID_LIST_INFO_HAS_FIELD2 | OUT_SID_LIST_INFO_HAS_FIELD4;
    usid.field1 = 9;
    usid.prefix = {prefix, 2, 64, SRV6_PREFIX_HAS_FIELD1 | SRV6_PREFIX_HAS_FIELD2};
    usid.presence = SRV6_USID_HAS_FIELD1 | SRV6_USID_HAS_PREFIX;
    usid_lists[0] = {&usid, 1, OUT_SRV6_USID_LIST_INFO_HAS_USIDS};
    record.field1 = 1;
    record.field2 = 2;
    record.field3 = -1;
    record.field4 = 1;
    record.sid_lists = sid_lists;
    record.sid_lists_count = 2;
    record.field6 = data;
    record.field6_length = 3;
    record.usid_lists = usid_lists;
    record.usid_lists_count = 1;
    record.presence = 0x7f;
  }
};

const fields<oam_res> all_fields = {
    {take(&oam_res::field1), hex("08 01")},
    {take(&oam_res::field2), hex("10 02")},
    {take(&oam_res::field3), hex("18 ff ff ff ff 0f")},
    {take(&oam_res::field4), hex("20 01")},
    {take(&oam_res::sid_lists, &oam_res::sid_lists_count),
     hex("2a 0a 0a 04 08 03 10 01 22 02 aa bb 2a 05 10 07 22 01 cc")},
    {take(&oam_res::field6, &oam_res::field6_length), hex("32 03 dd ee ff")},
    {take(&oam_res::usid_lists, &oam_res::usid_lists_count), hex("3a 0c 0a 0a 08 09 1a 06 0a 02 11 22 10 40")},
};

const char *const written_by_reference =
    "08 01 10 02 18 ff ff ff ff 0f 20 01 2a 08 0a 04 08 03 10 01 22 02 2a 04 10 07 22 01 32 03 "
    "3a 0a 0a 08 08 09 1a 04 0a 02 10 40";

// --- On the wire ---

TEST(oam_res, its_fields_are_of_their_kinds) { fields_are_of_kinds<oam_res>(); }

TEST(oam_res, every_field_goes_to_the_wire_and_back) { goes_to_the_wire_and_back(whole_result().record, all_fields); }

TEST(oam_res, two_segment_lists_and_a_micro_sid_list_are_written_and_entered_in_order) {
  out_sid_list_info sid_lists[2]{};
  sid_lists[0].field2 = 1;
  sid_lists[0].presence = OUT_SID_LIST_INFO_HAS_FIELD2;
  sid_lists[1].field3 = 2;
  sid_lists[1].presence = OUT_SID_LIST_INFO_HAS_FIELD3;
  srv6_usid usid{};
  usid.field1 = 3;
  usid.presence = SRV6_USID_HAS_FIELD1;
  out_srv6_usid_list_info usid_lists[1] = {{&usid, 1, OUT_SRV6_USID_LIST_INFO_HAS_USIDS}};
  oam_res record{};
  record.sid_lists = sid_lists;
  record.sid_lists_count = 2;
  record.usid_lists = usid_lists;
  record.usid_lists_count = 1;
  record.presence = OAM_RES_HAS_SID_LISTS | OAM_RES_HAS_USID_LISTS;
  EXPECT_EQ(show(encoded(record)), "2a 02 10 01 2a 02 18 02 3a 04 0a 02 08 03");
  takes_entries(record, {
                            {"sid_lists[0]", 2, 2},
                            {"sid_lists[1]", 6, 2},
                            {"usid_lists[0].usids[0]", 12, 2},
                            {"usid_lists[0]", 10, 4},
                            {"oam_res", 0, 14},
                        });
  takes_entries(record,
                {
                    {"sid_lists[0]", 2, 2},
                    {"sid_lists[1]", 6, 2},
                    {"usid_lists[0].usids[0]", 12, 2},
                    {"usid_lists[0]", 10, 4},
                    {"oam_res", 0, 14},
                },
                by_reference);
}

TEST(oam_res, read_by_reference_the_arrays_are_released_and_nothing_of_the_input) {
  decoded<oam_res> read(together(all_fields), by_reference);
  ASSERT_EQ(read.result, CODEC_OK);
  const unsigned char *const input = read.input().data();
  EXPECT_EQ(read->sid_lists[0].field4, input + 22);
  EXPECT_EQ(read->sid_lists[1].field4, input + 30);
  EXPECT_EQ(read->field6, input + 33);
  EXPECT_EQ(read->usid_lists[0].usids[0].prefix.field1, input + 46);
  EXPECT_EQ(read.memory.sizes, (std::vector<std::size_t>{2 * sizeof(out_sid_list_info), 1,
                                                         sizeof(out_srv6_usid_list_info), sizeof(srv6_usid)}));
  const std::vector<void *> blocks = {read->sid_lists[0].prefix_sid.field2, read->sid_lists, read->usid_lists[0].usids,
                                      read->usid_lists};
  operations<oam_res>::free(&read.record, accountant::release, &read.memory, by_reference);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->sid_lists, nullptr);
  EXPECT_EQ(read->sid_lists_count, 0u);
  EXPECT_EQ(read->field6, input + 33);
  EXPECT_EQ(read->usid_lists, nullptr);
  EXPECT_EQ(read->usid_lists_count, 0u);
  EXPECT_EQ(bits(read.record), 0x7fu);

  whole_result whole;
  notebook notes;
  operations<oam_res>::free(&whole.record, notebook::note, &notes, by_reference);
  EXPECT_EQ(notes.released, (std::vector<void *>{whole.sid_field2, whole.sid_lists, &whole.usid, whole.usid_lists}));
  EXPECT_EQ(whole.sid_lists[0].field4, whole.first);
  EXPECT_EQ(whole.sid_lists[1].field4, whole.second);
  EXPECT_EQ(whole.usid.prefix.field1, whole.prefix);
  EXPECT_EQ(whole.record.field6, whole.data);
}

TEST(oam_res, a_second_run_of_segment_lists_is_refused_and_the_first_kept) {
  for (const std::uint32_t options : {0u, 1u}) {
    decoded<oam_res> read(hex("2a 02 10 05 32 01 aa 2a 02 10 06"), options);
    EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
    ASSERT_EQ(read->sid_lists_count, 1u);
    EXPECT_EQ(read->sid_lists[0].field2, 5u);
    ASSERT_EQ(read->field6_length, 1u);
    EXPECT_EQ(bits(read.record), std::uint32_t{OAM_RES_HAS_SID_LISTS | OAM_RES_HAS_FIELD6});
    EXPECT_EQ(decoded<oam_res>(hex("3a 00 32 00 3a 00"), options).result, CODEC_ERR_TRUNCATED);
  }
}

TEST(oam_res, presence_of_an_empty_list_does_not_survive_the_wire) {
  out_sid_list_info sid_lists[1]{};
  oam_res record{};
  record.field1 = 1;
  record.sid_lists = sid_lists;
  record.presence = OAM_RES_HAS_FIELD1 | OAM_RES_HAS_SID_LISTS | OAM_RES_HAS_USID_LISTS;
  EXPECT_EQ(show(encoded(record)), "08 01");
  decoded<oam_res> read(encoded(record));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(bits(read.record), std::uint32_t{OAM_RES_HAS_FIELD1});
  EXPECT_EQ(read->sid_lists, nullptr);
}

TEST(oam_res, a_negative_field_3_takes_five_bytes_and_is_read_from_ten) {
  const std::vector<std::pair<std::int32_t, const char *>> numbers = {
      {-1, "18 ff ff ff ff 0f"}, {INT32_MIN, "18 80 80 80 80 08"}, {INT32_MAX, "18 ff ff ff ff 07"}, {0, "18 00"}};
  for (const auto &[number, bytes] : numbers) {
    SCOPED_TRACE(bytes);
    oam_res record{};
    record.field3 = number;
    record.presence = OAM_RES_HAS_FIELD3;
    EXPECT_EQ(show(encoded(record)), bytes);
    decoded<oam_res> read(hex(bytes));
    EXPECT_EQ(read->field3, number);
  }
  decoded<oam_res> ten(hex("18 fe ff ff ff ff ff ff ff ff 01"));
  EXPECT_EQ(ten.result, CODEC_OK);
  EXPECT_EQ(ten->field3, -2);
  EXPECT_EQ(show(encoded(ten.record)), "18 fe ff ff ff 0f");
}

TEST(oam_res, the_flag_is_written_as_the_stored_byte_and_read_as_1) {
  oam_res record{};
  record.field4 = 0x82;
  record.presence = OAM_RES_HAS_FIELD4;
  EXPECT_EQ(show(encoded(record)), "20 82");
  decoded<oam_res> read(hex("20 82 01"));
  EXPECT_EQ(read->field4, 1);
}

TEST(oam_res, empty_elements_are_written_as_keys_and_zero_lengths) {
  out_sid_list_info sid_lists[2]{};
  out_srv6_usid_list_info usid_lists[1]{};
  oam_res record{};
  record.sid_lists = sid_lists;
  record.sid_lists_count = 2;
  record.usid_lists = usid_lists;
  record.usid_lists_count = 1;
  record.presence = OAM_RES_HAS_SID_LISTS | OAM_RES_HAS_USID_LISTS;
  EXPECT_EQ(show(encoded(record)), "2a 00 2a 00 3a 00");
  takes_entries(record, {{"oam_res", 0, 6}});
  takes_entries(oam_res{}, {});
}

// --- Reference mode ---

TEST(oam_res, by_reference_the_entries_of_all_elements_come_before_the_rest) {
  const whole_result whole;
  EXPECT_EQ(show(encoded(whole.record, by_reference)), written_by_reference);
  takes_entries(whole.record,
                {
                    {"sid_lists[0].prefix_sid", 16, 4},
                    {"sid_lists[0]", 14, 8},
                    referenced("sid_lists[0].field4", whole.first, 2),
                    {"sid_lists[1]", 24, 4},
                    referenced("sid_lists[1].field4", whole.second, 1),
                    {"oam_res", 0, 30},
                    referenced("field6", whole.data, 3),
                    {"usid_lists[0].usids[0].prefix", 38, 2},
                    referenced("usid_lists[0].usids[0].prefix.field1", whole.prefix, 2),
                    rest("usid_lists[0].usids[0].prefix", 40, 2, 2),
                    {"usid_lists[0].usids[0]", 34, 8},
                    {"usid_lists[0]", 32, 10},
                    rest("oam_res", 30, 12, 30),
                },
                by_reference);
  takes_entries(whole.record, {
                                  {"sid_lists[0].prefix_sid", 16, 4},
                                  {"sid_lists[0]", 14, 10},
                                  {"sid_lists[1]", 26, 5},
                                  {"usid_lists[0].usids[0].prefix", 44, 6},
                                  {"usid_lists[0].usids[0]", 40, 10},
                                  {"usid_lists[0]", 38, 12},
                                  {"oam_res", 0, 50},
                              });
}

TEST(oam_res, by_reference_without_micro_sid_lists_there_is_no_rest) {
  whole_result whole;
  whole.record.presence = 0x3f;
  takes_entries(whole.record,
                {
                    {"sid_lists[0].prefix_sid", 16, 4},
                    {"sid_lists[0]", 14, 8},
                    referenced("sid_lists[0].field4", whole.first, 2),
                    {"sid_lists[1]", 24, 4},
                    referenced("sid_lists[1].field4", whole.second, 1),
                    {"oam_res", 0, 30},
                    referenced("field6", whole.data, 3),
                },
                by_reference);
}

TEST(oam_res, by_reference_without_bytes_of_its_own_it_has_one_entry_last) {
  whole_result whole;
  whole.record.field6_length = 0;
  takes_entries(whole.record,
                {
                    {"sid_lists[0].prefix_sid", 16, 4},
                    {"sid_lists[0]", 14, 8},
                    referenced("sid_lists[0].field4", whole.first, 2),
                    {"sid_lists[1]", 24, 4},
                    referenced("sid_lists[1].field4", whole.second, 1),
                    {"usid_lists[0].usids[0].prefix", 38, 2},
                    referenced("usid_lists[0].usids[0].prefix.field1", whole.prefix, 2),
                    rest("usid_lists[0].usids[0].prefix", 40, 2, 2),
                    {"usid_lists[0].usids[0]", 34, 8},
                    {"usid_lists[0]", 32, 10},
                    {"oam_res", 0, 42},
                },
                by_reference);
}

TEST(oam_res, by_reference_without_a_table_the_bytes_are_nowhere) {
  const whole_result whole;
  const fenced_block buffer(42);
  EXPECT_EQ(operations<oam_res>::encode(&whole.record, buffer.data(), 42, nullptr, nullptr, by_reference), 42u);
  EXPECT_EQ(show(buffer.content()), written_by_reference);
}

TEST(oam_res, options_go_to_every_element) {
  decoded<oam_res> owned(together(all_fields));
  EXPECT_EQ(owned.memory.requests(), 8u);
  EXPECT_TRUE(owned.memory.owns(owned->sid_lists[1].field4));
  EXPECT_TRUE(owned.memory.owns(owned->usid_lists[0].usids[0].prefix.field1));
  decoded<oam_res> borrowed(together(all_fields), by_reference);
  copied<oam_res> copy(borrowed.record);
  EXPECT_EQ(copy.memory.requests(), 8u);
  EXPECT_TRUE(copy.memory.owns(copy->sid_lists[0].field4));
  EXPECT_TRUE(copy.memory.owns(copy->field6));
  EXPECT_TRUE(copy.memory.owns(copy->usid_lists[0].usids[0].prefix.field1));
}

TEST(oam_res, by_reference_lists_need_memory_and_bytes_do_not) {
  EXPECT_EQ(decode_without_memory<oam_res>(hex("32 01 aa 20 01"), by_reference), CODEC_OK);
  EXPECT_EQ(decode_without_memory<oam_res>(hex("32 01 aa")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<oam_res>(hex("2a 00"), by_reference), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<oam_res>(hex("3a 00"), by_reference), CODEC_ERR_NO_MEMORY);
}

// --- Failures ---

TEST(oam_res, second_bytes_are_refused_and_the_first_kept) {
  for (const std::uint32_t options : {0u, 1u}) {
    decoded<oam_res> read(hex("32 01 aa 08 05 32 01 bb"), options);
    EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
    EXPECT_EQ(read->field6[0], 0xaa);
    EXPECT_EQ(bits(read.record), 0x21u);
    EXPECT_EQ(decoded<oam_res>(hex("32 00 32 00"), options).result, CODEC_ERR_TRUNCATED);
    EXPECT_EQ(decoded<oam_res>(hex("32 02 aa"), options).result, CODEC_ERR_TRUNCATED);
  }
}

TEST(oam_res, an_element_that_fails_leaves_a_partly_filled_array_and_its_bit_clear) {
  decoded<oam_res> sids(hex("08 05 2a 06 22 01 aa 0a 01 1f 2a 00"));
  EXPECT_EQ(sids.result, CODEC_ERR_BAD_WIRE_TYPE);
  ASSERT_EQ(sids->sid_lists_count, 2u);
  EXPECT_EQ(sids->sid_lists[0].field4[0], 0xaa);
  EXPECT_EQ(sids->sid_lists[0].presence, OUT_SID_LIST_INFO_HAS_FIELD4);
  EXPECT_EQ(sids->sid_lists[1].presence, 0);
  EXPECT_EQ(bits(sids.record), std::uint32_t{OAM_RES_HAS_FIELD1});

  decoded<oam_res> usids(hex("08 05 3a 07 0a 05 1a 03 0a 01 aa 3a 04 0a 02 08 80 3a 00"));
  EXPECT_EQ(usids.result, CODEC_ERR_TRUNCATED);
  ASSERT_EQ(usids->usid_lists_count, 3u);
  EXPECT_EQ(usids->usid_lists[0].usids[0].prefix.field1[0], 0xaa);
  EXPECT_EQ(usids->usid_lists[0].presence, OUT_SRV6_USID_LIST_INFO_HAS_USIDS);
  EXPECT_EQ(usids->usid_lists[1].usids_count, 1u);
  EXPECT_EQ(usids->usid_lists[1].presence, 0);
  EXPECT_EQ(usids->usid_lists[2].usids, nullptr);
  EXPECT_EQ(bits(usids.record), std::uint32_t{OAM_RES_HAS_FIELD1});
  EXPECT_EQ(usids.memory.live(), 4u);
  EXPECT_EQ(decoded<oam_res>(hex("3a 04 0a 02 08 80"), by_reference).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<oam_res>(hex("3a 03 0a 01 0a")).result, CODEC_ERR_WRONG_WIRE_TYPE);
}

TEST(oam_res, a_run_that_is_cut_off_asks_for_no_memory) {
  for (const char *bytes :
       {"2a 00 2a 01", "2a 00 2a", "2a 00 aa", "2a 01", "3a 00 3a 01", "3a 00 3a", "3a 00 ba", "3a 01"}) {
    SCOPED_TRACE(bytes);
    decoded<oam_res> read(hex(bytes));
    EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
    EXPECT_EQ(read->sid_lists, nullptr);
    EXPECT_EQ(read->usid_lists, nullptr);
    EXPECT_EQ(read.memory.requests(), 0u);
    EXPECT_EQ(bits(read.record), 0u);
  }
}

// --- Buffers and memory ---

TEST(oam_res, short_buffers_take_what_fits) {
  fills_short_buffers(whole_result().record, together(all_fields),
                      {{"sid_lists[0].field4", 22, 2},
                       {"sid_lists[1].field4", 30, 1},
                       {"field6", 33, 3},
                       {"usid_lists[0].usids[0].prefix.field1", 46, 2}});
  fills_short_buffers(whole_result().record, hex(written_by_reference), {}, by_reference);
}

TEST(oam_res, memory_is_asked_for_in_field_order_and_its_lack_costs_one_member) {
  const byte_string first = hex("2a 0a 0a 04 08 03 10 01 22 02 aa bb"), second = hex("2a 05 10 07 22 01 cc");
  asks_for_memory(whole_result().record, all_fields,
                  {
                      {2 * sizeof(out_sid_list_info), 5, hex(""), hex(""), 3},
                      {1, 5, hex("2a 08 0a 02 08 03 22 02 aa bb") + second, hex("")},
                      {2, 5, hex("2a 06 0a 04 08 03 10 01") + second, hex("")},
                      {1, 5, first + hex("2a 02 10 07"), hex("")},
                      {3, 6, hex(""), hex("")},
                      {sizeof(out_srv6_usid_list_info), 7, hex(""), hex(""), 2},
                      {sizeof(srv6_usid), 7, hex("3a 00"), hex(""), 1},
                      {2, 7, hex("3a 08 0a 06 08 09 1a 02 10 40"), hex("")},
                  },
                  hex("08 01 10 02 18 ff ff ff ff 0f 20 01"));
}

TEST(oam_res, a_copy_without_memory_has_empty_members) {
  const whole_result whole;
  copied<oam_res> copy(whole.record, {.fail_from = 0});
  EXPECT_EQ(copy->sid_lists, nullptr);
  EXPECT_EQ(copy->sid_lists_count, 0u);
  EXPECT_EQ(copy->field6, nullptr);
  EXPECT_EQ(copy->field6_length, 0u);
  EXPECT_EQ(copy->usid_lists, nullptr);
  EXPECT_EQ(copy->usid_lists_count, 0u);
  EXPECT_EQ(bits(copy.record), 0x0fu);
  EXPECT_EQ(copy.memory.sizes,
            (std::vector<std::size_t>{2 * sizeof(out_sid_list_info), 3, sizeof(out_srv6_usid_list_info)}));
}

TEST(oam_res, every_element_is_copied_also_when_earlier_ones_fail) {
  const whole_result whole;
  copied<oam_res> copy(whole.record, {.fail_at = 2});
  EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(bits(copy.record), 0x7fu);
  EXPECT_EQ(copy->sid_lists[0].field4, nullptr);
  EXPECT_EQ(copy->sid_lists[0].field4_length, 0u);
  EXPECT_EQ(bits(copy->sid_lists[0]), std::uint32_t{OUT_SID_LIST_INFO_HAS_PREFIX_SID});
  EXPECT_EQ(copy->sid_lists[0].prefix_sid.field2[0], 1);
  EXPECT_EQ(copy->sid_lists[1].field4[0], 0xcc);
  EXPECT_EQ(copy->usid_lists[0].usids[0].prefix.field1[1], 0x22);
}

TEST(oam_res, present_but_empty_members_stay_present_in_a_copy) {
  unsigned char data[1] = {0};
  out_sid_list_info sid_lists[1]{};
  out_srv6_usid_list_info usid_lists[1]{};
  oam_res source{};
  source.sid_lists = sid_lists;
  source.field6 = data;
  source.usid_lists = usid_lists;
  source.presence = 0x7f;
  copied<oam_res> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy.memory.requests(), 0u);
  EXPECT_EQ(copy->sid_lists, nullptr);
  EXPECT_EQ(copy->field6, nullptr);
  EXPECT_EQ(copy->usid_lists, nullptr);
  EXPECT_EQ(bits(copy.record), 0x7fu);
}

TEST(oam_res, blocks_are_released_in_their_order) {
  whole_result whole;
  notebook notes;
  operations<oam_res>::free(&whole.record, notebook::note, &notes);
  EXPECT_EQ(notes.released, (std::vector<void *>{whole.sid_field2, whole.first, whole.second, whole.sid_lists,
                                                 whole.data, whole.prefix, &whole.usid, whole.usid_lists}));
  EXPECT_EQ(whole.sid_lists[0].prefix_sid.field2, nullptr);
  EXPECT_EQ(whole.sid_lists[0].field4, nullptr);
  EXPECT_EQ(whole.sid_lists[1].field4, nullptr);
  EXPECT_EQ(whole.usid.prefix.field1, nullptr);
  EXPECT_EQ(whole.usid_lists[0].usids, nullptr);
  EXPECT_EQ(whole.usid_lists[0].usids_count, 0u);
  EXPECT_EQ(whole.record.sid_lists, nullptr);
  EXPECT_EQ(whole.record.sid_lists_count, 0u);
  EXPECT_EQ(whole.record.field6, nullptr);
  EXPECT_EQ(whole.record.field6_length, 3u);
  EXPECT_EQ(whole.record.usid_lists, nullptr);
  EXPECT_EQ(whole.record.usid_lists_count, 0u);
  EXPECT_EQ(bits(whole.record), 0x7fu);
}

// --- Order ---

TEST(oam_res, fields_are_compared_in_order) {
  const whole_result higher;
  whole_result lower;
  lower.record.field1 = 0;
  lower.record.field2 = 1;
  lower.record.field3 = INT32_MIN;
  lower.record.field4 = 0;
  lower.second[0] = 0x0c;
  lower.data[2] = 0x0f;
  lower.prefix[1] = 0x02;
  oam_res high = higher.record;
  high.field2 = 0x80000000;
  high.field4 = 0x80;
  orders_field_by_field(lower.record, high, all_fields);
}

TEST(oam_res, field_3_is_compared_signed) {
  oam_res low{}, high{};
  low.presence = high.presence = OAM_RES_HAS_FIELD3;
  for (const auto &[less, more] :
       std::vector<std::pair<std::int32_t, std::int32_t>>{{-1, 0}, {-2, -1}, {INT32_MIN, INT32_MAX}, {-1, INT32_MAX}}) {
    low.field3 = less;
    high.field3 = more;
    EXPECT_EQ(operations<oam_res>::compare(&low, &high), -1) << less << ' ' << more;
    EXPECT_EQ(operations<oam_res>::compare(&high, &low), 1) << less << ' ' << more;
  }
}

TEST(oam_res, the_order_of_bytes_is_handed_on_as_it_is_from_every_depth) {
  whole_result low, high;
  low.data[0] = 1;
  EXPECT_EQ(operations<oam_res>::compare(&low.record, &high.record), byte_order(low.data, high.data, 3));
  EXPECT_EQ(operations<oam_res>::compare(&high.record, &low.record), byte_order(high.data, low.data, 3));
  low.first[0] = 2;
  EXPECT_EQ(operations<oam_res>::compare(&low.record, &high.record), byte_order(low.first, high.first, 2));
  high.first[0] = 2;
  high.data[0] = 1;
  high.prefix[0] = 0x99;
  EXPECT_EQ(operations<oam_res>::compare(&high.record, &low.record), byte_order(high.prefix, low.prefix, 2));
}

TEST(oam_res, longer_members_are_greater) {
  const whole_result longer;
  for (const std::uint32_t bit : {4u, 5u, 6u}) {
    SCOPED_TRACE(bit);
    oam_res shorter = longer.record;
    if (bit == 4) shorter.sid_lists_count = 1;
    if (bit == 5) shorter.field6_length = 2;
    if (bit == 6) shorter.usid_lists_count = 0;
    EXPECT_EQ(operations<oam_res>::compare(&shorter, &longer.record), -1);
    EXPECT_EQ(operations<oam_res>::compare(&longer.record, &shorter), 1);
  }
}

// --- Presence bits of no field ---

TEST(oam_res, presence_bits_of_no_field_are_left_alone) {
  EXPECT_EQ(cleared_from<oam_res>(0xff).presence, 0x80);
  EXPECT_EQ(cleared_from<oam_res>(0).presence, 0);
  oam_res source{};
  source.presence = 0x81;
  EXPECT_EQ(overwritten(0, source).presence, 0x01);
  source.presence = 0x01;
  EXPECT_EQ(overwritten(0xff, source).presence, 0x81);
  decoded<oam_res> read(together(all_fields));
  EXPECT_EQ(read->presence, 0x7f);
  EXPECT_EQ(read->sid_lists[0].presence, 0x09);
  EXPECT_EQ(read->sid_lists[0].prefix_sid.presence, 0x03);
  EXPECT_EQ(read->sid_lists[1].prefix_sid.presence, 0x00);
  EXPECT_EQ(read->usid_lists[0].presence, 0x01);
  EXPECT_EQ(read->usid_lists[0].usids[0].presence, 0x05);
  EXPECT_EQ(read->usid_lists[0].usids[0].prefix.presence, 0x03);
}

}  // namespace oam_res_test

// What is after such a place is stored some bytes at a time, and must not reach into it.
TEST(oam_res, bytes_that_are_missing_leave_their_place_in_the_buffer_as_it_was) {
  std::uint8_t address[] = {10, 0, 200, 1};
  out_sid_list_info lists[3] = {};
  lists[0].field4_length = 6;
  lists[0].presence = OUT_SID_LIST_INFO_HAS_FIELD4;
  lists[1].field2 = 1 << 21;
  lists[1].field4_length = 6;
  lists[1].presence = OUT_SID_LIST_INFO_HAS_FIELD2 | OUT_SID_LIST_INFO_HAS_FIELD4;
  lists[2].prefix_sid.field2 = address;
  lists[2].prefix_sid.field2_count = 4;
  lists[2].prefix_sid.presence = PREFIX_SID_TYPE_HAS_FIELD2;
  lists[2].presence = OUT_SID_LIST_INFO_HAS_PREFIX_SID;
  oam_res record{};
  record.sid_lists = lists;
  record.sid_lists_count = 3;
  record.presence = OAM_RES_HAS_SID_LISTS;

  byte_string buffer(41, 0xc7);
  EXPECT_EQ(pavo_zorv_oam_res_encode_ext(&record, buffer.data(), buffer.size(), nullptr, nullptr, 0), 38u);
  EXPECT_EQ(buffer, hex("2a 08  22 06 c7 c7 c7 c7 c7 c7"
                        "2a 0d  10 80 80 80 01 22 06 c7 c7 c7 c7 c7 c7"
                        "2a 0b  0a 09 10 0a 10 00 10 c8 01 10 01  c7 c7 c7"));
}
