// OAM requests: numbers, a string, a segment identifier, and bytes with fields after them.
#include "message_checks.hpp"

using namespace test;
using namespace test::checks;

namespace oam_req_test {

constexpr std::uint32_t by_reference = PAVO_ZORV_REFERENCE;
struct whole_request {
  char field3[3] = "ab";
  std::uint8_t sid_field2[2] = {1, 200};
  unsigned char data[3] = {0xaa, 0xbb, 0xcc};
  oam_req record{};

  whole_request(const whole_request &) = delete;
  whole_request() {
    record.field1 = 1;
    record.field2 = 300;
    record.field3 = field3;
    record.prefix_sid = {3, sid_field2, 2, PREFIX_SID_TYPE_HAS_FIELD1 | PREFIX_SID_TYPE_HAS_FIELD2};
    record.field5 = 0;
    record.field6 = data;
    record.field6_length = 3;
    record.field7 = 7;
    record.field8 = 0xffffffff;
    record.presence = 0xff;
  }
};

const fields<oam_req> all_fields = {
    {take(&oam_req::field1), hex("08 01")},
    {take(&oam_req::field2), hex("10 ac 02")},
    {take(&oam_req::field3), hex("1a 02 61 62")},
    {take(&oam_req::prefix_sid), hex("22 07 08 03 10 01 10 c8 01")},
    {take(&oam_req::field5), hex("28 00")},
    {take(&oam_req::field6, &oam_req::field6_length), hex("32 03 aa bb cc")},
    {take(&oam_req::field7), hex("38 07")},
    {take(&oam_req::field8), hex("40 ff ff ff ff 0f")},
};

// A request with bytes alone.
oam_req with_bytes(unsigned char *data, std::uint64_t length) {
  oam_req record{};
  record.field6 = data;
  record.field6_length = length;
  record.presence = OAM_REQ_HAS_FIELD6;
  return record;
}

// --- On the wire ---

TEST(oam_req, its_fields_are_of_their_kinds) { fields_are_of_kinds<oam_req>(); }

TEST(oam_req, every_field_goes_to_the_wire_and_back) { goes_to_the_wire_and_back(whole_request().record, all_fields); }

TEST(oam_req, a_thousand_bytes_by_reference_take_three_bytes_and_two_entries) {
  std::vector<unsigned char> data(1000, 0x55);
  const oam_req record = with_bytes(data.data(), 1000);
  const encoding<oam_req> call(record, 3, 8, by_reference);
  EXPECT_EQ(call.length, 3u);
  EXPECT_EQ(show(call.buffer.content()), "32 e8 07");
  EXPECT_EQ(call.segments.count, 2u);
  EXPECT_EQ(call.segments.pieces(), (std::vector<piece>{{call.at(0), 3}, {data.data(), 1000}}));
  EXPECT_TRUE(call.segments.untouched_from(2));
}

TEST(oam_req, a_thousand_bytes_do_not_go_into_a_buffer_of_a_hundred) {
  std::vector<unsigned char> data(1000, 0x55);
  const oam_req record = with_bytes(data.data(), 1000);
  const fenced_block buffer(100);
  EXPECT_EQ(operations<oam_req>::encode(&record, buffer.data(), 100, nullptr, nullptr), 1003u);
  EXPECT_EQ(show(buffer.content()), show(hex("32 e8 07") + 97 * hex("c7")));
}

TEST(oam_req, a_string_of_length_0_is_an_allocated_empty_string) {
  for (const std::uint32_t options : {0u, 1u}) {
    decoded<oam_req> read(hex("1a 00"), options);
    EXPECT_EQ(read.result, CODEC_OK);
    ASSERT_NE(read->field3, nullptr);
    EXPECT_STREQ(read->field3, "");
    EXPECT_EQ(read.memory.sizes, std::vector<std::size_t>{1});
    EXPECT_EQ(bits(read.record), std::uint32_t{OAM_REQ_HAS_FIELD3});
  }
}

TEST(oam_req, the_order_of_strings_is_handed_on_as_it_is) {
  char a[] = "a", b[] = "b", z[] = "z";
  whole_request low, high;
  low.record.field3 = a;
  high.record.field3 = b;
  EXPECT_LT(operations<oam_req>::compare(&low.record, &high.record), 0);
  EXPECT_EQ(operations<oam_req>::compare(&low.record, &high.record), string_order(a, b));
  high.record.field3 = z;
  EXPECT_EQ(operations<oam_req>::compare(&low.record, &high.record), string_order(a, z));
  EXPECT_EQ(operations<oam_req>::compare(&high.record, &low.record), string_order(z, a));
}

TEST(oam_req, a_nested_message_is_written_by_content_or_bit) {
  whole_request whole;
  whole.record.presence = 0;
  EXPECT_EQ(show(encoded(whole.record)), "22 07 08 03 10 01 10 c8 01");
  oam_req record{};
  record.presence = OAM_REQ_HAS_PREFIX_SID;
  EXPECT_EQ(show(encoded(record)), "22 00");
  takes_entries(record, {{"oam_req", 0, 2}}, by_reference);
}

TEST(oam_req, a_string_needs_its_pointer_and_bytes_only_their_bit) {
  oam_req record{};
  record.presence = OAM_REQ_HAS_FIELD3 | OAM_REQ_HAS_FIELD6;
  EXPECT_EQ(show(encoded(record)), "32 00");
}

// --- Reference mode ---

TEST(oam_req, by_reference_the_nested_entries_come_first_and_the_rest_last) {
  const whole_request whole;
  EXPECT_EQ(show(encoded(whole.record, by_reference)),
            "08 01 10 ac 02 1a 02 61 62 22 07 08 03 10 01 10 c8 01 28 00 32 03 38 07 40 ff ff ff ff 0f");
  takes_entries(
      whole.record,
      {{"prefix_sid", 11, 7}, {"oam_req", 0, 22}, referenced("field6", whole.data, 3), rest("oam_req", 22, 8, 22)},
      by_reference);
  takes_entries(whole.record, {{"prefix_sid", 11, 7}, {"oam_req", 0, 33}});
}

TEST(oam_req, by_reference_with_nothing_after_the_bytes_there_is_no_rest) {
  whole_request whole;
  whole.record.presence = 0x3f;
  EXPECT_EQ(show(encoded(whole.record, by_reference)),
            "08 01 10 ac 02 1a 02 61 62 22 07 08 03 10 01 10 c8 01 28 00 32 03");
  takes_entries(whole.record, {{"prefix_sid", 11, 7}, {"oam_req", 0, 22}, referenced("field6", whole.data, 3)},
                by_reference);
}

TEST(oam_req, by_reference_field_7_or_8_alone_is_the_rest) {
  whole_request whole;
  whole.record.prefix_sid = {};
  whole.record.presence = OAM_REQ_HAS_FIELD6 | OAM_REQ_HAS_FIELD7;
  takes_entries(whole.record, {{"oam_req", 0, 2}, referenced("field6", whole.data, 3), rest("oam_req", 2, 2, 2)},
                by_reference);
  whole.record.presence = OAM_REQ_HAS_FIELD6 | OAM_REQ_HAS_FIELD8;
  takes_entries(whole.record, {{"oam_req", 0, 2}, referenced("field6", whole.data, 3), rest("oam_req", 2, 6, 2)},
                by_reference);
}

TEST(oam_req, by_reference_without_bytes_there_is_one_entry_of_its_own) {
  whole_request whole;
  whole.record.field6_length = 0;
  EXPECT_EQ(show(encoded(whole.record, by_reference)),
            "08 01 10 ac 02 1a 02 61 62 22 07 08 03 10 01 10 c8 01 28 00 32 00 38 07 40 ff ff ff ff 0f");
  takes_entries(whole.record, {{"prefix_sid", 11, 7}, {"oam_req", 0, 30}}, by_reference);
  whole.record.field6_length = 3;
  whole.record.presence = 0xdf;
  takes_entries(whole.record, {{"prefix_sid", 11, 7}, {"oam_req", 0, 28}}, by_reference);
}

TEST(oam_req, by_reference_without_a_table_the_bytes_are_nowhere) {
  const whole_request whole;
  const fenced_block buffer(30);
  EXPECT_EQ(operations<oam_req>::encode(&whole.record, buffer.data(), 30, nullptr, nullptr, by_reference), 30u);
  EXPECT_EQ(show(buffer.content()),
            "08 01 10 ac 02 1a 02 61 62 22 07 08 03 10 01 10 c8 01 28 00 32 03 38 07 40 ff ff ff ff 0f");
}

TEST(oam_req, bytes_read_by_reference_lie_in_the_input_and_the_rest_is_owned) {
  decoded<oam_req> read(together(all_fields), by_reference);
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->field6, read.input().data() + 22);
  EXPECT_EQ(read->field6_length, 3u);
  EXPECT_EQ(read.memory.sizes, (std::vector<std::size_t>{3, 2}));
  EXPECT_TRUE(read.memory.owns(read->field3));
  copied<oam_req> copy(read.record);
  EXPECT_TRUE(copy.memory.owns(copy->field6));
  const std::vector<void *> blocks = {read->field3, read->prefix_sid.field2};
  operations<oam_req>::free(&read.record, accountant::release, &read.memory, by_reference);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->field3, nullptr);
  EXPECT_EQ(read->field6, read.input().data() + 22);
}

TEST(oam_req, by_reference_only_the_bytes_need_no_memory) {
  EXPECT_EQ(decode_without_memory<oam_req>(hex("32 01 aa 38 07"), by_reference), CODEC_OK);
  EXPECT_EQ(decode_without_memory<oam_req>(hex("32 01 aa 38 07")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<oam_req>(hex("1a 01 61"), by_reference), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<oam_req>(hex("1a"), by_reference), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<oam_req>(hex("22 02 10 01"), by_reference), CODEC_ERR_NO_MEMORY);
}

// --- Failures ---

TEST(oam_req, a_second_string_or_bytes_is_refused_and_the_first_kept) {
  for (const std::uint32_t options : {0u, 1u}) {
    decoded<oam_req> string(hex("1a 01 61 28 05 1a 01 62"), options);
    EXPECT_EQ(string.result, CODEC_ERR_TRUNCATED);
    EXPECT_STREQ(string->field3, "a");
    EXPECT_EQ(bits(string.record), 0x14u);
    decoded<oam_req> bytes(hex("32 01 aa 28 05 32 01 bb"), options);
    EXPECT_EQ(bytes.result, CODEC_ERR_TRUNCATED);
    ASSERT_EQ(bytes->field6_length, 1u);
    EXPECT_EQ(bytes->field6[0], 0xaa);
    EXPECT_EQ(bits(bytes.record), 0x30u);
    EXPECT_EQ(decoded<oam_req>(hex("32 00 32 00"), options).result, CODEC_ERR_TRUNCATED);
  }
}

TEST(oam_req, a_length_beyond_the_input_is_refused_and_what_came_before_kept) {
  for (const std::uint32_t options : {0u, 1u}) {
    for (const char *bytes :
         {"1a 03 61 62", "22 03 08 01", "32 03 aa bb", "32 ff ff ff ff 0f", "32 80", "38", "48 80"}) {
      SCOPED_TRACE(bytes);
      decoded<oam_req> read(hex("08 05 10 06") + hex(bytes), options);
      EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
      EXPECT_EQ(read->field1, 5u);
      EXPECT_EQ(read->field2, 6u);
      EXPECT_EQ(bits(read.record), 3u);
      EXPECT_EQ(read.memory.requests(), 0u);
    }
  }
}

TEST(oam_req, what_the_segment_identifier_fails_with_is_handed_on_and_its_content_stays) {
  const std::vector<std::pair<const char *, int>> inputs = {
      {"22 03 10 05 08", CODEC_ERR_TRUNCATED},
      {"22 03 10 05 1f", CODEC_ERR_BAD_WIRE_TYPE},
      {"22 03 10 05 0a", CODEC_ERR_WRONG_WIRE_TYPE},
  };
  for (const auto &[bytes, result] : inputs) {
    SCOPED_TRACE(bytes);
    decoded<oam_req> read(hex("08 01") + hex(bytes));
    EXPECT_EQ(read.result, result);
    EXPECT_EQ(read->prefix_sid.field2[0], 5);
    EXPECT_EQ(bits(read->prefix_sid), std::uint32_t{PREFIX_SID_TYPE_HAS_FIELD2});
    EXPECT_EQ(bits(read.record), std::uint32_t{OAM_REQ_HAS_FIELD1});
  }
}

TEST(oam_req, a_second_segment_identifier_replaces_the_first_and_drops_its_memory) {
  decoded<oam_req> read(hex("22 04 08 01 10 02 22 02 08 03"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->prefix_sid.field1, 3u);
  EXPECT_EQ(read->prefix_sid.field2, nullptr);
  EXPECT_EQ(read->prefix_sid.field2_count, 0u);
  EXPECT_EQ(bits(read->prefix_sid), std::uint32_t{PREFIX_SID_TYPE_HAS_FIELD1});
  read.dropped = 1;
}

// --- Buffers and memory ---

TEST(oam_req, short_buffers_take_what_fits) {
  fills_short_buffers(whole_request().record, together(all_fields), {{"field3", 7, 2}, {"field6", 22, 3}});
  fills_short_buffers(whole_request().record,
                      hex("08 01 10 ac 02 1a 02 61 62 22 07 08 03 10 01 10 c8 01 28 00 32 03 38 07 40 ff ff ff ff 0f"),
                      {{"field3", 7, 2}}, by_reference);
}

TEST(oam_req, memory_is_asked_for_in_field_order_and_its_lack_costs_one_member) {
  asks_for_memory(whole_request().record, all_fields,
                  {
                      {3, 3, hex(""), hex("")},
                      {2, 4, hex("22 02 08 03"), hex("22 02 08 03")},
                      {3, 6, hex(""), hex("")},
                  },
                  hex("08 01 10 ac 02 22 02 08 03 28 00 38 07 40 ff ff ff ff 0f"));
  copied<oam_req> copy(whole_request().record, {.fail_from = 0});
  EXPECT_EQ(copy->field3, nullptr);
  EXPECT_EQ(copy->prefix_sid.field2, nullptr);
  EXPECT_EQ(copy->prefix_sid.field2_count, 0u);
  EXPECT_EQ(copy->field6, nullptr);
  EXPECT_EQ(copy->field6_length, 0u);
  EXPECT_EQ(bits(copy.record), 0xdbu);
}

TEST(oam_req, empty_members_are_copied_as_empty_with_their_bits) {
  unsigned char data[1] = {0};
  oam_req source{};
  source.field6 = data;
  source.presence = 0xff;
  copied<oam_req> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy.memory.requests(), 0u);
  EXPECT_EQ(copy->field3, nullptr);
  EXPECT_EQ(copy->field6, nullptr);
  EXPECT_EQ(copy->field6_length, 0u);
  EXPECT_EQ(bits(copy.record), 0xffu);
}

TEST(oam_req, blocks_are_released_in_their_order) {
  decoded<oam_req> read(together(all_fields));
  ASSERT_EQ(read.result, CODEC_OK);
  const std::vector<void *> blocks = {read->field3, read->prefix_sid.field2, read->field6};
  operations<oam_req>::free(&read.record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->field3, nullptr);
  EXPECT_EQ(read->prefix_sid.field2, nullptr);
  EXPECT_EQ(read->prefix_sid.field2_count, 2u);
  EXPECT_EQ(read->field6, nullptr);
  EXPECT_EQ(read->field6_length, 3u);
  EXPECT_EQ(bits(read.record), 0xffu);
}

// --- Order ---

TEST(oam_req, fields_are_compared_in_order) {
  const whole_request higher;
  whole_request lower;
  lower.record.field1 = 0;
  lower.record.field2 = 299;
  lower.field3[1] = 'a';
  lower.sid_field2[1] = 100;
  lower.data[2] = 0x0c;
  lower.record.field7 = 6;
  lower.record.field8 = 1;
  oam_req high = higher.record;
  high.field1 = 0x80000000;
  high.field5 = 1;
  orders_field_by_field(lower.record, high, all_fields);
}

TEST(oam_req, the_order_of_bytes_is_handed_on_as_it_is_and_then_the_shorter_is_less) {
  whole_request low, high;
  low.data[0] = 1;
  EXPECT_EQ(operations<oam_req>::compare(&low.record, &high.record), byte_order(low.data, high.data, 3));
  EXPECT_EQ(operations<oam_req>::compare(&high.record, &low.record), byte_order(high.data, low.data, 3));
  low.data[0] = 0xaa;
  low.record.field6_length = 2;
  low.record.field7 = 8;
  EXPECT_EQ(operations<oam_req>::compare(&low.record, &high.record), -1);
  EXPECT_EQ(operations<oam_req>::compare(&high.record, &low.record), 1);
}

// --- Presence bits of no field ---

TEST(oam_req, presence_bits_of_no_field_are_left_alone_in_the_segment_identifier) {
  const oam_req ones = cleared_from<oam_req>(0xff);
  EXPECT_EQ(ones.presence, 0);
  EXPECT_EQ(ones.prefix_sid.presence, 0xfc);
  oam_req source{};
  source.presence = 0x81;
  source.prefix_sid.presence = 0xfd;
  const oam_req zeros = overwritten(0, source);
  EXPECT_EQ(zeros.presence, 0x81);
  EXPECT_EQ(zeros.prefix_sid.presence, 0x01);
  EXPECT_EQ(overwritten(0xff, oam_req{}).prefix_sid.presence, 0xfc);
  EXPECT_EQ(overwritten(0xff, oam_req{}).presence, 0);
}

}  // namespace oam_req_test
