// Node identifiers and prefixes: a number and a list of bytes, each byte a field of its own on the wire.
#include "message_checks.hpp"

using namespace test;
using namespace test::checks;

namespace api_nodeid_prefix_test {

struct whole_nodeid {
  std::uint8_t bytes[3] = {10, 128, 255};
  api_nodeid record{};

  whole_nodeid(const whole_nodeid &) = delete;
  whole_nodeid() {
    record.field1 = 300;
    record.octets = bytes;
    record.octets_count = 3;
    record.presence = API_NODEID_HAS_FIELD1 | API_NODEID_HAS_OCTETS;
  }
};

struct whole_prefix {
  std::uint8_t bytes[2] = {127, 200};
  api_prefix record{};

  whole_prefix(const whole_prefix &) = delete;
  whole_prefix() {
    record.octets = bytes;
    record.octets_count = 2;
    record.field2 = 128;
    record.presence = API_PREFIX_HAS_OCTETS | API_PREFIX_HAS_FIELD2;
  }
};

const fields<api_nodeid> nodeid_fields = {
    {take(&api_nodeid::field1), hex("08 ac 02")},
    {take(&api_nodeid::octets, &api_nodeid::octets_count), hex("10 0a 10 80 01 10 ff 01")},
};

const fields<api_prefix> prefix_fields = {
    {take(&api_prefix::octets, &api_prefix::octets_count), hex("08 7f 08 c8 01")},
    {take(&api_prefix::field2), hex("10 80 01")},
};

// --- Node identifiers ---

TEST(api_nodeid, its_fields_are_of_their_kinds) { fields_are_of_kinds<api_nodeid>(); }

TEST(api_nodeid, every_field_goes_to_the_wire_and_back) {
  goes_to_the_wire_and_back(whole_nodeid().record, nodeid_fields);
}

TEST(api_nodeid, the_bytes_0a_80_take_five_bytes) {
  std::uint8_t bytes[] = {0x0a, 0x80};
  api_nodeid record{};
  record.octets = bytes;
  record.octets_count = 2;
  record.presence = API_NODEID_HAS_OCTETS;
  EXPECT_EQ(show(encoded(record)), "10 0a 10 80 01");
}

TEST(api_nodeid, bytes_are_written_by_their_bit_and_count_alone) {
  whole_nodeid whole;
  whole.record.presence = API_NODEID_HAS_OCTETS;
  EXPECT_EQ(show(encoded(whole.record)), "10 0a 10 80 01 10 ff 01");
  whole.record.octets_count = 1;
  EXPECT_EQ(show(encoded(whole.record)), "10 0a");
  whole.record.octets_count = 0;  // with a pointer
  EXPECT_EQ(show(encoded(whole.record)), "");
  whole.record.octets = nullptr;
  EXPECT_EQ(show(encoded(whole.record)), "");
  whole.record.octets_count = 3;
  whole.record.presence = 0;
  EXPECT_EQ(show(encoded(whole.record)), "");
}

TEST(api_nodeid, only_the_first_key_of_a_run_has_its_wire_type_checked) {
  decoded<api_nodeid> read(hex("10 05 12 01"));
  EXPECT_EQ(read.result, CODEC_OK);
  ASSERT_EQ(read->octets_count, 2u);
  EXPECT_EQ(read->octets[0], 5);
  EXPECT_EQ(read->octets[1], 1);
  EXPECT_EQ(bits(read.record), std::uint32_t{API_NODEID_HAS_OCTETS});
  EXPECT_EQ(read.memory.sizes, std::vector<std::size_t>{2});
  EXPECT_EQ(decoded<api_nodeid>(hex("12 05 10 01")).result, CODEC_ERR_WRONG_WIRE_TYPE);
}

TEST(api_nodeid, values_are_cut_to_their_width) {
  decoded<api_nodeid> read(hex("08 ff ff ff ff ff ff ff ff ff 01 10 ac 02 10 80 02 10 80 80 80 80 10"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->field1, 0xffffffffu);
  ASSERT_EQ(read->octets_count, 3u);
  EXPECT_EQ(read->octets[0], 44);
  EXPECT_EQ(read->octets[1], 0);
  EXPECT_EQ(read->octets[2], 0);
}

TEST(api_nodeid, a_run_that_is_cut_off_asks_for_no_memory) {
  for (const char *bytes : {"10 05 10", "10 05 10 80", "10 05 90", "10 80"}) {
    SCOPED_TRACE(bytes);
    decoded<api_nodeid> read(hex("08 07") + hex(bytes));
    EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
    EXPECT_EQ(read->field1, 7u);
    EXPECT_EQ(read->octets, nullptr);
    EXPECT_EQ(read->octets_count, 0u);
    EXPECT_EQ(bits(read.record), std::uint32_t{API_NODEID_HAS_FIELD1});
    EXPECT_EQ(read.memory.requests(), 0u);
  }
}

TEST(api_nodeid, a_second_run_is_refused_and_the_first_kept) {
  decoded<api_nodeid> read(hex("10 01 08 07 10 02"));
  EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
  ASSERT_EQ(read->octets_count, 1u);
  EXPECT_EQ(read->octets[0], 1);
  EXPECT_EQ(read->field1, 7u);
  EXPECT_EQ(bits(read.record), 3u);
}

TEST(api_nodeid, it_takes_one_entry) {
  takes_entries(whole_nodeid().record, {{"api_nodeid", 0, 11}});
  takes_entries(api_nodeid{}, {});
}

TEST(api_nodeid, short_buffers_take_what_fits) {
  fills_short_buffers(whole_nodeid().record, together(nodeid_fields), {});
}

TEST(api_nodeid, the_lack_of_memory_costs_the_bytes) {
  asks_for_memory(whole_nodeid().record, nodeid_fields, {{3, 2, hex(""), hex("")}}, hex("08 ac 02"));
  copied<api_nodeid> copy(whole_nodeid().record, {.fail_at = 0});
  EXPECT_EQ(copy->octets, nullptr);
  EXPECT_EQ(copy->octets_count, 0u);
  EXPECT_EQ(bits(copy.record), std::uint32_t{API_NODEID_HAS_FIELD1});
}

TEST(api_nodeid, a_present_but_empty_list_stays_present_in_a_copy) {
  std::uint8_t bytes[] = {1};
  api_nodeid source{};
  source.octets = bytes;
  source.presence = API_NODEID_HAS_OCTETS;
  copied<api_nodeid> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy.memory.requests(), 0u);
  EXPECT_EQ(copy->octets, nullptr);
  EXPECT_EQ(copy->octets_count, 0u);
  EXPECT_EQ(bits(copy.record), std::uint32_t{API_NODEID_HAS_OCTETS});
}

TEST(api_nodeid, free_releases_the_bytes_and_leaves_count_and_bits) {
  decoded<api_nodeid> read(together(nodeid_fields));
  const std::vector<void *> blocks = {read->octets};
  operations<api_nodeid>::free(&read.record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->octets, nullptr);
  EXPECT_EQ(read->octets_count, 3u);
  EXPECT_EQ(bits(read.record), 3u);
}

TEST(api_nodeid, fields_are_compared_in_order) {
  const whole_nodeid higher;
  whole_nodeid lower;
  lower.record.field1 = 1;
  lower.bytes[1] = 127;
  api_nodeid high = higher.record;
  high.field1 = 0xffffffff;
  orders_field_by_field(lower.record, high, nodeid_fields);
}

TEST(api_nodeid, bytes_are_compared_unsigned_and_before_their_counts) {
  std::uint8_t a[] = {1, 127, 255}, b[] = {1, 128};
  const api_nodeid longer = {0, a, 3, API_NODEID_HAS_OCTETS}, greater = {0, b, 2, API_NODEID_HAS_OCTETS};
  EXPECT_EQ(operations<api_nodeid>::compare(&longer, &greater), -1);
  EXPECT_EQ(operations<api_nodeid>::compare(&greater, &longer), 1);
  const api_nodeid shorter = {0, a, 2, API_NODEID_HAS_OCTETS};
  EXPECT_EQ(operations<api_nodeid>::compare(&shorter, &longer), -1);
  EXPECT_EQ(operations<api_nodeid>::compare(&longer, &shorter), 1);
  const api_nodeid empty = {0, nullptr, 0, API_NODEID_HAS_OCTETS}, empty_too = {0, a, 0, API_NODEID_HAS_OCTETS};
  EXPECT_EQ(operations<api_nodeid>::compare(&empty, &empty_too), 0);
  EXPECT_EQ(operations<api_nodeid>::compare(&empty, &shorter), -1);
}

TEST(api_nodeid, presence_bits_of_no_field_are_left_alone) {
  EXPECT_EQ(cleared_from<api_nodeid>(0xff).presence, 0xfc);
  EXPECT_EQ(cleared_from<api_nodeid>(0).presence, 0);
  EXPECT_EQ(overwritten(0, api_nodeid{1, nullptr, 0, 0xfd}).presence, 0x01);
  EXPECT_EQ(overwritten(0xff, api_nodeid{1, nullptr, 0, 0x02}).presence, 0xfe);
}

// --- Prefixes ---

TEST(api_prefix, its_fields_are_of_their_kinds) { fields_are_of_kinds<api_prefix>(); }

TEST(api_prefix, every_field_goes_to_the_wire_and_back) {
  goes_to_the_wire_and_back(whole_prefix().record, prefix_fields);
}

TEST(api_prefix, a_second_run_of_bytes_is_refused_and_the_first_kept) {
  decoded<api_prefix> read(hex("08 01 10 18 08 02"));
  EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
  ASSERT_EQ(read->octets_count, 1u);
  EXPECT_EQ(read->octets[0], 1);
  EXPECT_EQ(read->field2, 0x18);
  EXPECT_EQ(bits(read.record), 3u);
  EXPECT_EQ(read.memory.sizes, std::vector<std::size_t>{1});
}

TEST(api_prefix, field_2_of_255_comes_back_and_256_is_read_as_0) {
  api_prefix record{};
  record.field2 = 255;
  record.presence = API_PREFIX_HAS_FIELD2;
  EXPECT_EQ(show(encoded(record)), "10 ff 01");
  decoded<api_prefix> read(hex("10 ff 01"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->field2, 255);
  decoded<api_prefix> cut(hex("10 80 02"));
  EXPECT_EQ(cut.result, CODEC_OK);
  EXPECT_EQ(cut->field2, 0);
  EXPECT_EQ(bits(cut.record), std::uint32_t{API_PREFIX_HAS_FIELD2});
  decoded<api_prefix> more(hex("10 ac 02"));
  EXPECT_EQ(more->field2, 44);
}

TEST(api_prefix, a_copy_without_memory_for_the_bytes_has_field_2) {
  const whole_prefix whole;
  copied<api_prefix> copy(whole.record, {.fail_at = 0});
  EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(copy->octets, nullptr);
  EXPECT_EQ(copy->octets_count, 0u);
  EXPECT_EQ(copy->field2, 128);
  EXPECT_EQ(bits(copy.record), std::uint32_t{API_PREFIX_HAS_FIELD2});
  EXPECT_EQ(copy.memory.sizes, std::vector<std::size_t>{2});
}

TEST(api_prefix, it_takes_one_entry) {
  takes_entries(whole_prefix().record, {{"api_prefix", 0, 8}});
  takes_entries(api_prefix{}, {});
}

TEST(api_prefix, short_buffers_take_what_fits) {
  fills_short_buffers(whole_prefix().record, together(prefix_fields), {});
}

TEST(api_prefix, the_lack_of_memory_costs_the_bytes) {
  asks_for_memory(whole_prefix().record, prefix_fields, {{2, 1, hex(""), hex("")}}, hex("10 80 01"));
}

TEST(api_prefix, a_present_but_empty_list_stays_present_in_a_copy) {
  api_prefix source{};
  source.presence = API_PREFIX_HAS_OCTETS;
  copied<api_prefix> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(copy->octets, nullptr);
  EXPECT_EQ(bits(copy.record), std::uint32_t{API_PREFIX_HAS_OCTETS});
}

TEST(api_prefix, free_releases_the_bytes_and_leaves_count_and_bits) {
  decoded<api_prefix> read(together(prefix_fields));
  const std::vector<void *> blocks = {read->octets};
  operations<api_prefix>::free(&read.record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->octets, nullptr);
  EXPECT_EQ(read->octets_count, 2u);
  EXPECT_EQ(read->field2, 128);
  EXPECT_EQ(bits(read.record), 3u);
}

TEST(api_prefix, fields_are_compared_in_order_and_unsigned) {
  const whole_prefix higher;
  whole_prefix lower;
  lower.bytes[1] = 100;
  lower.record.field2 = 127;
  orders_field_by_field(lower.record, higher.record, prefix_fields);
  api_prefix longer = higher.record, shorter = higher.record;
  shorter.octets_count = 1;
  shorter.field2 = 255;
  EXPECT_EQ(operations<api_prefix>::compare(&shorter, &longer), -1);
  EXPECT_EQ(operations<api_prefix>::compare(&longer, &shorter), 1);
}

TEST(api_prefix, presence_bits_of_no_field_are_left_alone) {
  EXPECT_EQ(cleared_from<api_prefix>(0xff).presence, 0xfc);
  EXPECT_EQ(overwritten(0, api_prefix{nullptr, 0, 1, 0xfe}).presence, 0x02);
  EXPECT_EQ(overwritten(0xff, api_prefix{nullptr, 0, 1, 0x01}).presence, 0xfd);
}

}  // namespace api_nodeid_prefix_test
