// SRv6 prefixes, SID structures and micro-SIDs. The prefix has the bytes member, and with it reference mode.
#include "message_checks.hpp"

using namespace test;
using namespace test::checks;

namespace srv6_prefix_sid_struct_usid_test {

constexpr std::uint32_t by_reference = PAVO_ZORV_REFERENCE;

struct whole_prefix {
  unsigned char field1[4] = {0xaa, 0xbb, 0xcc, 0xdd};
  srv6_prefix record{};

  whole_prefix(const whole_prefix &) = delete;
  whole_prefix() { record = {field1, 4, 64, SRV6_PREFIX_HAS_FIELD1 | SRV6_PREFIX_HAS_FIELD2}; }
};

struct whole_usid {
  unsigned char data[4] = {0xaa, 0xbb, 0xcc, 0xdd};
  srv6_usid record{};

  whole_usid(const whole_usid &) = delete;
  whole_usid() {
    record.field1 = 1;
    record.field2 = 300;
    record.prefix = {data, 4, 64, SRV6_PREFIX_HAS_FIELD1 | SRV6_PREFIX_HAS_FIELD2};
    record.sid_struct.field1 = 1;
    record.sid_struct.field3 = 200;
    record.sid_struct.presence = SRV6_SID_STRUCT_HAS_FIELD1 | SRV6_SID_STRUCT_HAS_FIELD3;
    record.presence = 15;
  }
};

const srv6_sid_struct whole_struct = {1, 0, 200, 127, 128, 0, 255, 1, 0xff};

const fields<srv6_prefix> prefix_fields = {
    {take(&srv6_prefix::field1, &srv6_prefix::field1_length), hex("0a 04 aa bb cc dd")},
    {take(&srv6_prefix::field2), hex("10 40")},
};

const fields<srv6_sid_struct> struct_fields = {
    {take(&srv6_sid_struct::field1), hex("08 01")},    {take(&srv6_sid_struct::field2), hex("10 00")},
    {take(&srv6_sid_struct::field3), hex("18 c8 01")}, {take(&srv6_sid_struct::field4), hex("20 7f")},
    {take(&srv6_sid_struct::field5), hex("28 80 01")}, {take(&srv6_sid_struct::field6), hex("30 00")},
    {take(&srv6_sid_struct::field7), hex("38 ff 01")}, {take(&srv6_sid_struct::field8), hex("40 01")},
};

const fields<srv6_usid> usid_fields = {
    {take(&srv6_usid::field1), hex("08 01")},
    {take(&srv6_usid::field2), hex("10 ac 02")},
    {take(&srv6_usid::prefix), hex("1a 08 0a 04 aa bb cc dd 10 40")},
    {take(&srv6_usid::sid_struct), hex("22 05 08 01 18 c8 01")},
};

// --- Prefixes ---

TEST(srv6_prefix, its_fields_are_of_their_kinds) { fields_are_of_kinds<srv6_prefix>(); }

TEST(srv6_prefix, every_field_goes_to_the_wire_and_back) {
  goes_to_the_wire_and_back(whole_prefix().record, prefix_fields);
}

TEST(srv6_prefix, bytes_that_occur_twice_are_refused) {
  for (const std::uint32_t options : {0u, 1u}) {
    for (const char *bytes : {"0a 01 aa 0a 01 aa", "0a 01 aa 10 05 0a 01 aa", "0a 01 aa 0a"}) {
      SCOPED_TRACE(bytes);
      decoded<srv6_prefix> read(hex(bytes), options);
      EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
      ASSERT_EQ(read->field1_length, 1u);
      EXPECT_EQ(read->field1[0], 0xaa);
      EXPECT_TRUE(bits(read.record) & SRV6_PREFIX_HAS_FIELD1);
    }
    decoded<srv6_prefix> empty(hex("0a 00 0a 00"), options);
    EXPECT_EQ(empty.result, CODEC_ERR_TRUNCATED);
    EXPECT_NE(empty->field1, nullptr);
    EXPECT_EQ(empty->field1_length, 0u);
    EXPECT_EQ(bits(empty.record), std::uint32_t{SRV6_PREFIX_HAS_FIELD1});
  }
}

TEST(srv6_prefix, bytes_read_by_reference_lie_in_the_input_and_are_not_released) {
  const fenced_block input(hex("10 40 0a 04 aa bb cc dd"));
  srv6_prefix record;
  std::memset(&record, 0x5a, sizeof record);
  EXPECT_EQ(pavo_zorv_srv6_prefix_decode_ext(&record, input.data(), 8, nullptr, nullptr, by_reference), CODEC_OK);
  EXPECT_EQ(record.field1, input.data() + 4);
  EXPECT_EQ(record.field1_length, 4u);
  EXPECT_EQ(record.field2, 64u);
  EXPECT_EQ(bits(record), 3u);

  notebook notes;
  pavo_zorv_srv6_prefix_free_ext(&record, notebook::note, &notes, by_reference);
  EXPECT_TRUE(notes.released.empty());
  EXPECT_EQ(record.field1, input.data() + 4);
  EXPECT_EQ(record.field1_length, 4u);
  EXPECT_EQ(bits(record), 3u);
}

TEST(srv6_prefix, sixteen_bytes_by_reference_take_three_entries_and_copied_one) {
  unsigned char data[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
  const srv6_prefix record = {data, 16, 64, 3};
  const encoding<srv6_prefix> call(record, 4, 4, by_reference);
  EXPECT_EQ(call.length, 4u);
  EXPECT_EQ(show(call.buffer.content()), "0a 10 10 40");
  EXPECT_EQ(call.segments.count, 3u);
  EXPECT_EQ(call.segments.pieces(), (std::vector<piece>{{call.at(0), 2}, {data, 16}, {call.at(2), 2}}));
  EXPECT_TRUE(call.segments.untouched_from(3));

  const encoding<srv6_prefix> copy(record, 20, 4);
  EXPECT_EQ(copy.length, 20u);
  EXPECT_EQ(show(copy.buffer.content()), "0a 10 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f 10 10 40");
  EXPECT_EQ(copy.segments.count, 1u);
  EXPECT_EQ(copy.segments.pieces(), (std::vector<piece>{{copy.at(0), 20}}));
  EXPECT_TRUE(copy.segments.untouched_from(1));

  takes_entries(record, {{"srv6_prefix", 0, 2}, referenced("field1", data, 16), rest("srv6_prefix", 2, 2, 2)},
                by_reference);
  takes_entries(record, {{"srv6_prefix", 0, 20}});
}

TEST(srv6_prefix, the_order_of_bytes_is_handed_on_as_it_is_and_then_the_shorter_is_less) {
  unsigned char ab[] = {97, 98}, abc[] = {97, 98, 99}, ac[] = {97, 99}, az[] = {97, 122};
  const srv6_prefix a = {ab, 2, 0, 1}, b = {abc, 3, 0, 1}, c = {ac, 2, 0, 1}, z = {az, 2, 0, 1};
  EXPECT_EQ(operations<srv6_prefix>::compare(&a, &b), -1);
  EXPECT_EQ(operations<srv6_prefix>::compare(&b, &a), 1);
  EXPECT_LT(operations<srv6_prefix>::compare(&a, &c), 0);
  EXPECT_EQ(operations<srv6_prefix>::compare(&a, &c), byte_order(ab, ac, 2));
  EXPECT_EQ(operations<srv6_prefix>::compare(&c, &a), byte_order(ac, ab, 2));
  EXPECT_EQ(operations<srv6_prefix>::compare(&b, &z), byte_order(abc, az, 2));
  EXPECT_EQ(operations<srv6_prefix>::compare(&z, &b), byte_order(az, abc, 2));
}

TEST(srv6_prefix, bytes_are_compared_as_unsigned_bytes_with_their_nuls) {
  unsigned char low[] = {0, 0x7f}, high[] = {0, 0x80};
  const srv6_prefix a = {low, 2, 0, 1}, b = {high, 2, 0, 1}, empty = {nullptr, 0, 0, 1}, empty_too = {low, 0, 0, 1};
  EXPECT_LT(operations<srv6_prefix>::compare(&a, &b), 0);
  EXPECT_GT(operations<srv6_prefix>::compare(&b, &a), 0);
  EXPECT_EQ(operations<srv6_prefix>::compare(&empty, &empty_too), 0);
  EXPECT_EQ(operations<srv6_prefix>::compare(&empty, &a), -1);
  EXPECT_EQ(operations<srv6_prefix>::compare(&a, &empty), 1);
}

TEST(srv6_prefix, bytes_of_length_0_are_a_block_of_their_own_or_a_place_in_the_input) {
  decoded<srv6_prefix> owned(hex("0a 00"));
  EXPECT_EQ(owned.result, CODEC_OK);
  EXPECT_NE(owned->field1, nullptr);
  EXPECT_EQ(owned->field1_length, 0u);
  EXPECT_EQ(owned.memory.sizes, std::vector<std::size_t>{0});
  EXPECT_EQ(bits(owned.record), std::uint32_t{SRV6_PREFIX_HAS_FIELD1});

  decoded<srv6_prefix> borrowed(hex("0a 00 10 05"), by_reference);
  EXPECT_EQ(borrowed.result, CODEC_OK);
  EXPECT_EQ(borrowed->field1, borrowed.input().data() + 2);
  EXPECT_EQ(borrowed->field1_length, 0u);
  EXPECT_EQ(borrowed.memory.requests(), 0u);

  accountant memory;
  memory.fail_at = 0;
  const fenced_block input(hex("0a 00"));
  srv6_prefix record;
  EXPECT_EQ(pavo_zorv_srv6_prefix_decode_ext(&record, input.data(), 2, accountant::allocate, &memory, 0),
            CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(record.field1, nullptr);
  EXPECT_EQ(bits(record), 0u);
}

TEST(srv6_prefix, owned_bytes_are_a_copy_without_a_terminator) {
  decoded<srv6_prefix> read(hex("0a 03 aa 00 cc"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read.memory.sizes, std::vector<std::size_t>{3});
  EXPECT_TRUE(read.memory.owns(read->field1));
  EXPECT_EQ(show(byte_string(read->field1, read->field1 + 3)), "aa 00 cc");
}

TEST(srv6_prefix, only_options_bit_0_means_reference) {
  decoded<srv6_prefix> owned(hex("0a 01 aa"), 0xfffffffe);
  EXPECT_EQ(owned.memory.requests(), 1u);
  decoded<srv6_prefix> borrowed(hex("0a 01 aa"), 0xffffffff);
  EXPECT_EQ(borrowed.memory.requests(), 0u);
  EXPECT_EQ(decode_without_memory<srv6_prefix>(hex("0a 01 aa"), 0xfffffffe), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<srv6_prefix>(hex("0a 01 aa"), 0xffffffff), CODEC_OK);
  const whole_prefix whole;
  EXPECT_EQ(show(encoded(whole.record, 0xfffffffe)), "0a 04 aa bb cc dd 10 40");
  EXPECT_EQ(show(encoded(whole.record, 0xffffffff)), "0a 04 10 40");

  notebook notes;
  srv6_prefix record = whole.record;
  pavo_zorv_srv6_prefix_free_ext(&record, notebook::note, &notes, 0xffffffff);
  EXPECT_TRUE(notes.released.empty());
  pavo_zorv_srv6_prefix_free_ext(&record, notebook::note, &notes, 0xfffffffe);
  EXPECT_EQ(notes.released.size(), 1u);
  EXPECT_EQ(record.field1, nullptr);
}

TEST(srv6_prefix, bytes_that_run_past_the_end_are_refused_in_either_mode) {
  for (const std::uint32_t options : {0u, 1u}) {
    for (const char *bytes : {"0a", "0a 80", "0a 01", "0a 03 aa bb", "0a ff ff ff ff 0f aa"}) {
      SCOPED_TRACE(bytes);
      decoded<srv6_prefix> read(hex("10 05") + hex(bytes), options);
      EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
      EXPECT_EQ(read->field1, nullptr);
      EXPECT_EQ(read->field1_length, 0u);
      EXPECT_EQ(bits(read.record), std::uint32_t{SRV6_PREFIX_HAS_FIELD2});
      EXPECT_EQ(read.memory.requests(), 0u);
    }
  }
}

TEST(srv6_prefix, by_reference_without_a_table_the_bytes_are_nowhere) {
  const whole_prefix whole;
  const fenced_block buffer(4);
  EXPECT_EQ(operations<srv6_prefix>::encode(&whole.record, buffer.data(), 4, nullptr, nullptr, by_reference), 4u);
  EXPECT_EQ(show(buffer.content()), "0a 04 10 40");
}

TEST(srv6_prefix, bytes_alone_by_reference_end_the_message_with_two_entries) {
  whole_prefix whole;
  whole.record.presence = SRV6_PREFIX_HAS_FIELD1;
  EXPECT_EQ(show(encoded(whole.record, by_reference)), "0a 04");
  takes_entries(whole.record, {{"srv6_prefix", 0, 2}, referenced("field1", whole.field1, 4)}, by_reference);
}

TEST(srv6_prefix, by_reference_a_length_of_0_leaves_one_entry) {
  whole_prefix whole;
  whole.record.field1_length = 0;
  EXPECT_EQ(show(encoded(whole.record, by_reference)), "0a 00 10 40");
  takes_entries(whole.record, {{"srv6_prefix", 0, 4}}, by_reference);
  whole.record.field1 = nullptr;
  takes_entries(whole.record, {{"srv6_prefix", 0, 4}}, by_reference);
  takes_entries(whole.record, {{"srv6_prefix", 0, 4}});
}

TEST(srv6_prefix, absent_bytes_leave_one_entry_by_reference) {
  whole_prefix whole;
  whole.record.presence = SRV6_PREFIX_HAS_FIELD2;
  EXPECT_EQ(show(encoded(whole.record, by_reference)), "10 40");
  takes_entries(whole.record, {{"srv6_prefix", 0, 2}}, by_reference);
  takes_entries(srv6_prefix{}, {}, by_reference);
}

TEST(srv6_prefix, a_null_pointer_with_a_length_has_its_room_but_no_bytes) {
  const srv6_prefix record = {nullptr, 3, 64, 3};
  const fenced_block buffer(7);
  EXPECT_EQ(operations<srv6_prefix>::encode(&record, buffer.data(), 7, nullptr, nullptr), 7u);
  EXPECT_EQ(show(buffer.content()), "0a 03 c7 c7 c7 10 40");
  fills_short_buffers(record, hex("0a 03 c7 c7 c7 10 40"), {});
  const encoding<srv6_prefix> call(record, 4, 3, by_reference);
  EXPECT_EQ(call.length, 4u);
  EXPECT_EQ(call.segments.pieces(), (std::vector<piece>{{call.at(0), 2}, {nullptr, 3}, {call.at(2), 2}}));
}

TEST(srv6_prefix, the_prefix_of_a_length_beyond_32_bits_is_its_low_32_bits) {
  unsigned char data[1] = {0};
  for (const auto &[length, bytes] : std::vector<std::pair<std::uint64_t, const char *>>{
           {0x100000000, "0a 00 10 40"}, {0x100000005, "0a 05 10 40"}, {0x10000012c, "0a ac 02 10 40"}}) {
    SCOPED_TRACE(bytes);
    const srv6_prefix record = {data, length, 64, 3};
    const std::size_t size = hex(bytes).size();
    EXPECT_EQ(show(encoded(record, by_reference)), bytes);
    takes_entries(
        record,
        {{"srv6_prefix", 0, size - 2}, referenced("field1", data, length), rest("srv6_prefix", size - 2, 2, size - 2)},
        by_reference);
    if constexpr (sizeof(std::size_t) == 8) {
      EXPECT_EQ(operations<srv6_prefix>::encode(&record, nullptr, 0, nullptr, nullptr), size + length);
      const fenced_block buffer(8);
      EXPECT_EQ(operations<srv6_prefix>::encode(&record, buffer.data(), 8, nullptr, nullptr), size + length);
      byte_string expected = hex(bytes);
      expected.resize(size - 2);
      expected.resize(8, 0xc7);
      EXPECT_EQ(show(buffer.content()), show(expected));
    }
  }
}

TEST(srv6_prefix, short_buffers_take_what_fits) {
  fills_short_buffers(whole_prefix().record, together(prefix_fields), {{"field1", 2, 4}});
  fills_short_buffers(whole_prefix().record, hex("0a 04 10 40"), {}, by_reference);
}

TEST(srv6_prefix, the_lack_of_memory_costs_the_bytes) {
  asks_for_memory(whole_prefix().record, prefix_fields, {{4, 1, hex(""), hex("")}}, hex("10 40"));
  const whole_prefix whole;
  copied<srv6_prefix> copy(whole.record, {.fail_at = 0});
  EXPECT_EQ(copy->field1, nullptr);
  EXPECT_EQ(copy->field1_length, 0u);
  EXPECT_EQ(copy->field2, 64u);
  EXPECT_EQ(bits(copy.record), std::uint32_t{SRV6_PREFIX_HAS_FIELD2});
}

TEST(srv6_prefix, a_copy_of_borrowed_bytes_is_owned) {
  decoded<srv6_prefix> borrowed(hex("0a 04 aa bb cc dd"), by_reference);
  copied<srv6_prefix> copy(borrowed.record);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_TRUE(copy.memory.owns(copy->field1));
  EXPECT_EQ(copy->field1_length, 4u);
  EXPECT_EQ(show(byte_string(copy->field1, copy->field1 + 4)), "aa bb cc dd");
}

TEST(srv6_prefix, a_length_of_0_is_copied_as_null_with_its_bit) {
  unsigned char data[1] = {0};
  const srv6_prefix source = {data, 0, 0, SRV6_PREFIX_HAS_FIELD1};
  copied<srv6_prefix> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy.memory.requests(), 0u);
  EXPECT_EQ(copy->field1, nullptr);
  EXPECT_EQ(copy->field1_length, 0u);
  EXPECT_EQ(bits(copy.record), std::uint32_t{SRV6_PREFIX_HAS_FIELD1});
}

TEST(srv6_prefix, free_releases_owned_bytes_and_leaves_their_length) {
  decoded<srv6_prefix> read(hex("0a 04 aa bb cc dd 10 40"));
  const std::vector<void *> blocks = {read->field1};
  operations<srv6_prefix>::free(&read.record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->field1, nullptr);
  EXPECT_EQ(read->field1_length, 4u);
  EXPECT_EQ(bits(read.record), 3u);
}

TEST(srv6_prefix, fields_are_compared_in_order) {
  const whole_prefix higher;
  whole_prefix lower;
  lower.field1[3] = 0x0d;
  lower.record.field2 = 1;
  srv6_prefix high = higher.record;
  high.field2 = 0x80000000;
  orders_field_by_field(lower.record, high, prefix_fields);
}

TEST(srv6_prefix, presence_bits_of_no_field_are_left_alone) {
  EXPECT_EQ(cleared_from<srv6_prefix>(0xff).presence, 0xfc);
  EXPECT_EQ(cleared_from<srv6_prefix>(0).presence, 0);
  EXPECT_EQ(overwritten(0, srv6_prefix{nullptr, 0, 1, 0xfe}).presence, 0x02);
  EXPECT_EQ(overwritten(0xff, srv6_prefix{nullptr, 0, 1, 0x02}).presence, 0xfe);
}

// --- SID structures ---

TEST(srv6_sid_struct, its_fields_are_of_their_kinds) { fields_are_of_kinds<srv6_sid_struct>(); }

TEST(srv6_sid_struct, every_field_goes_to_the_wire_and_back) { goes_to_the_wire_and_back(whole_struct, struct_fields); }

TEST(srv6_sid_struct, field_3_of_300_is_cut_to_44_and_200_takes_two_bytes) {
  decoded<srv6_sid_struct> read(hex("18 ac 02"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->field3, 44);
  EXPECT_EQ(bits(read.record), std::uint32_t{SRV6_SID_STRUCT_HAS_FIELD3});
  srv6_sid_struct record{};
  record.field3 = 200;
  record.presence = SRV6_SID_STRUCT_HAS_FIELD3;
  EXPECT_EQ(show(encoded(record)), "18 c8 01");
}

TEST(srv6_sid_struct, flags_are_read_as_yes_or_no_and_written_as_the_stored_bytes) {
  decoded<srv6_sid_struct> read(hex("08 ac 02 10 80 80 80 80 10"));
  EXPECT_EQ(read->field1, 1);
  EXPECT_EQ(read->field2, 0);
  EXPECT_EQ(bits(read.record), 3u);
  const srv6_sid_struct record = {0x80, 0xff, 0, 0, 0, 0, 0, 0, 3};
  EXPECT_EQ(show(encoded(record)), "08 80 10 ff");
}

TEST(srv6_sid_struct, nothing_needs_memory) {
  EXPECT_EQ(decode_without_memory<srv6_sid_struct>(together(struct_fields)), CODEC_OK);
  asks_for_memory(whole_struct, struct_fields, {}, together(struct_fields));
  srv6_sid_struct record = whole_struct;
  notebook notes;
  pavo_zorv_srv6_sid_struct_free_ext(&record, notebook::note, &notes);
  EXPECT_TRUE(notes.released.empty());
  EXPECT_EQ(std::memcmp(&record, &whole_struct, sizeof record), 0);
}

TEST(srv6_sid_struct, repeated_values_replace_the_earlier_ones) {
  decoded<srv6_sid_struct> read(hex("18 05 08 01 18 06 08 00"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->field1, 0);
  EXPECT_EQ(read->field3, 6);
}

TEST(srv6_sid_struct, it_takes_one_entry) {
  takes_entries(whole_struct, {{"srv6_sid_struct", 0, 19}});
  takes_entries(srv6_sid_struct{}, {});
}

TEST(srv6_sid_struct, short_buffers_take_what_fits) { fills_short_buffers(whole_struct, together(struct_fields), {}); }

TEST(srv6_sid_struct, fields_are_compared_in_order_and_unsigned) {
  orders_field_by_field(srv6_sid_struct{1, 1, 1, 1, 1, 1, 1, 1, 0xff},
                        srv6_sid_struct{0x80, 0x81, 0xff, 0x80, 0x90, 0xa0, 0xb0, 0xc0, 0xff}, struct_fields);
}

TEST(srv6_sid_struct, every_presence_bit_belongs_to_a_field) {
  EXPECT_EQ(cleared_from<srv6_sid_struct>(0xff).presence, 0);
  EXPECT_EQ(overwritten(0xff, srv6_sid_struct{}).presence, 0);
  EXPECT_EQ(overwritten(0, whole_struct).presence, 0xff);
}

// --- Micro-SIDs ---

TEST(srv6_usid, its_fields_are_of_their_kinds) { fields_are_of_kinds<srv6_usid>(); }

TEST(srv6_usid, every_field_goes_to_the_wire_and_back) { goes_to_the_wire_and_back(whole_usid().record, usid_fields); }

TEST(srv6_usid, the_length_of_a_prefix_leaves_referenced_bytes_out) {
  unsigned char data[16] = {};
  srv6_usid record{};
  record.field1 = 1;
  record.prefix = {data, 16, 64, 3};
  record.presence = SRV6_USID_HAS_FIELD1 | SRV6_USID_HAS_PREFIX;
  const encoding<srv6_usid> call(record, 8, 8, by_reference);
  EXPECT_EQ(call.length, 8u);
  EXPECT_EQ(show(call.buffer.content()), "08 01 1a 04 0a 10 10 40");
  EXPECT_EQ(call.segments.count, 4u);
  EXPECT_EQ(call.segments.pieces(),
            (std::vector<piece>{{call.at(4), 2}, {data, 16}, {call.at(6), 2}, {call.at(0), 8}}));
  EXPECT_TRUE(call.segments.untouched_from(4));
}

TEST(srv6_usid, its_own_entry_comes_after_those_of_prefix_and_structure) {
  const whole_usid whole;
  takes_entries(whole.record, {{"prefix", 7, 8}, {"sid_struct", 17, 5}, {"srv6_usid", 0, 22}});
  EXPECT_EQ(show(encoded(whole.record, by_reference)), "08 01 10 ac 02 1a 04 0a 04 10 40 22 05 08 01 18 c8 01");
  takes_entries(whole.record,
                {
                    {"prefix", 7, 2},
                    referenced("prefix.field1", whole.data, 4),
                    rest("prefix", 9, 2, 2),
                    {"sid_struct", 13, 5},
                    {"srv6_usid", 0, 18},
                },
                by_reference);
  takes_entries(srv6_usid{}, {}, by_reference);
}

TEST(srv6_usid, empty_nested_messages_with_their_bits_are_keys_and_zero_lengths) {
  srv6_usid record{};
  record.presence = SRV6_USID_HAS_PREFIX | SRV6_USID_HAS_SID_STRUCT;
  EXPECT_EQ(show(encoded(record)), "1a 00 22 00");
  takes_entries(record, {{"srv6_usid", 0, 4}});
  takes_entries(record, {{"srv6_usid", 0, 4}}, by_reference);
}

TEST(srv6_usid, options_go_to_the_prefix) {
  decoded<srv6_usid> borrowed(together(usid_fields), by_reference);
  EXPECT_EQ(borrowed.result, CODEC_OK);
  EXPECT_EQ(borrowed->prefix.field1, borrowed.input().data() + 9);
  EXPECT_EQ(borrowed->prefix.field1_length, 4u);
  EXPECT_EQ(borrowed.memory.requests(), 0u);
  operations<srv6_usid>::free(&borrowed.record, accountant::release, &borrowed.memory, by_reference);
  EXPECT_EQ(borrowed->prefix.field1, borrowed.input().data() + 9);
  EXPECT_EQ(decode_without_memory<srv6_usid>(together(usid_fields), by_reference), CODEC_OK);
  EXPECT_EQ(decode_without_memory<srv6_usid>(together(usid_fields)), CODEC_ERR_NO_MEMORY);
  copied<srv6_usid> copy(borrowed.record);
  EXPECT_TRUE(copy.memory.owns(copy->prefix.field1));
}

TEST(srv6_usid, what_a_nested_message_fails_with_is_handed_on_and_its_content_stays) {
  const std::vector<std::pair<const char *, int>> inputs = {
      {"1a 06 0a 01 aa 0a 01 aa", CODEC_ERR_TRUNCATED},
      {"1a 05 0a 01 aa 10 80", CODEC_ERR_TRUNCATED},
      {"1a 04 0a 01 aa 1f", CODEC_ERR_BAD_WIRE_TYPE},
      {"1a 04 0a 01 aa 12", CODEC_ERR_WRONG_WIRE_TYPE},
  };
  for (const std::uint32_t options : {0u, 1u}) {
    for (const auto &[bytes, result] : inputs) {
      SCOPED_TRACE(bytes);
      decoded<srv6_usid> read(hex("08 05") + hex(bytes), options);
      EXPECT_EQ(read.result, result);
      ASSERT_EQ(read->prefix.field1_length, 1u);
      EXPECT_EQ(read->prefix.field1[0], 0xaa);
      EXPECT_EQ(bits(read->prefix), 1u);
      EXPECT_EQ(bits(read.record), 1u);
    }
  }
  EXPECT_EQ(decoded<srv6_usid>(hex("22 01 08")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<srv6_usid>(hex("22 01 4b")).result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decoded<srv6_usid>(hex("22 01 0a")).result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decoded<srv6_usid>(hex("22 03 08 01")).result, CODEC_ERR_TRUNCATED);
}

TEST(srv6_usid, a_second_prefix_replaces_the_first_and_drops_its_memory) {
  decoded<srv6_usid> read(hex("1a 05 0a 03 aa bb cc 1a 02 10 05"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->prefix.field1, nullptr);
  EXPECT_EQ(read->prefix.field1_length, 0u);
  EXPECT_EQ(read->prefix.field2, 5u);
  EXPECT_EQ(bits(read->prefix), 2u);
  read.dropped = 1;
  decoded<srv6_usid> bytes(hex("1a 03 0a 01 aa 1a 03 0a 01 bb"), by_reference);
  EXPECT_EQ(bytes.result, CODEC_OK);
  EXPECT_EQ(bytes->prefix.field1, bytes.input().data() + 9);
  decoded<srv6_usid> structure(hex("22 04 08 01 18 05 22 02 20 06"));
  EXPECT_EQ(structure.result, CODEC_OK);
  EXPECT_EQ(structure->sid_struct.field1, 0);
  EXPECT_EQ(structure->sid_struct.field3, 0);
  EXPECT_EQ(structure->sid_struct.field4, 6);
  EXPECT_EQ(bits(structure->sid_struct), std::uint32_t{SRV6_SID_STRUCT_HAS_FIELD4});
}

TEST(srv6_usid, short_buffers_take_what_fits) {
  fills_short_buffers(whole_usid().record, together(usid_fields), {{"prefix.field1", 9, 4}});
  fills_short_buffers(whole_usid().record, hex("08 01 10 ac 02 1a 04 0a 04 10 40 22 05 08 01 18 c8 01"), {},
                      by_reference);
}

TEST(srv6_usid, memory_is_asked_for_by_the_prefix_alone) {
  asks_for_memory(whole_usid().record, usid_fields, {{4, 3, hex("1a 02 10 40"), hex("")}},
                  hex("08 01 10 ac 02 1a 02 10 40 22 05 08 01 18 c8 01"));
  copied<srv6_usid> copy(whole_usid().record, {.fail_at = 0});
  EXPECT_EQ(bits(copy.record), 15u);
  EXPECT_EQ(copy->prefix.field1, nullptr);
  EXPECT_EQ(copy->prefix.field1_length, 0u);
}

TEST(srv6_usid, free_releases_the_bytes_of_the_prefix) {
  decoded<srv6_usid> read(together(usid_fields));
  const std::vector<void *> blocks = {read->prefix.field1};
  operations<srv6_usid>::free(&read.record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->prefix.field1, nullptr);
  EXPECT_EQ(read->prefix.field1_length, 4u);
  EXPECT_EQ(bits(read.record), 15u);
}

TEST(srv6_usid, fields_are_compared_in_order) {
  const whole_usid higher;
  whole_usid lower;
  lower.record.field1 = 0;
  lower.record.field2 = 1;
  lower.data[3] = 0x0d;
  lower.record.sid_struct.field3 = 100;
  srv6_usid high = higher.record;
  high.field1 = 0x80000000;
  orders_field_by_field(lower.record, high, usid_fields);
}

TEST(srv6_usid, the_order_of_bytes_is_handed_on_as_it_is) {
  whole_usid low, high;
  low.data[0] = 1;
  EXPECT_EQ(operations<srv6_usid>::compare(&low.record, &high.record), byte_order(low.data, high.data, 4));
  EXPECT_EQ(operations<srv6_usid>::compare(&high.record, &low.record), byte_order(high.data, low.data, 4));
}

TEST(srv6_usid, presence_bits_of_no_field_are_left_alone_at_every_depth) {
  const srv6_usid ones = cleared_from<srv6_usid>(0xff);
  EXPECT_EQ(ones.presence, 0xf0);
  EXPECT_EQ(ones.prefix.presence, 0xfc);
  EXPECT_EQ(ones.sid_struct.presence, 0);
  srv6_usid source{};
  source.presence = 0xf1;
  source.prefix.presence = 0xfe;
  source.sid_struct.presence = 0x55;
  const srv6_usid zeros = overwritten(0, source);
  EXPECT_EQ(zeros.presence, 0x01);
  EXPECT_EQ(zeros.prefix.presence, 0x02);
  EXPECT_EQ(zeros.sid_struct.presence, 0x55);
  const srv6_usid copy = overwritten(0xff, srv6_usid{});
  EXPECT_EQ(copy.presence, 0xf0);
  EXPECT_EQ(copy.prefix.presence, 0xfc);
  EXPECT_EQ(copy.sid_struct.presence, 0);
}

}  // namespace srv6_prefix_sid_struct_usid_test
