// Explicit-path hops and paths.
#include "support.hpp"

namespace api_exp_hop_path_test {

using namespace test;

// A hop with a number and one element, in four bytes: 08 01 28 07.
api_exp_hop small_hop(std::uint8_t *element) {
  api_exp_hop hop{};
  hop.field1 = 1;
  hop.field5 = element;
  hop.field5_count = 1;
  hop.presence = API_EXP_HOP_HAS_FIELD1 | API_EXP_HOP_HAS_FIELD5;
  return hop;
}

// --- api_exp_hop ---

TEST(api_exp_hop, a_number_and_one_element_take_four_bytes) {
  std::uint8_t element = 7;
  EXPECT_EQ(show(encoded(small_hop(&element))), "08 01 28 07");
}

TEST(api_exp_hop, fields_are_written_in_order_with_a_key_before_every_element) {
  std::uint8_t five[] = {5, 200}, six[] = {6, 255, 0};
  const api_exp_hop hop{1, 2, 3, 300, five, 2, six, 3, 0x3f};
  const byte_string bytes = hex("08 01 10 02 18 03 20 ac 02 28 05 28 c8 01 30 06 30 ff 01 30 00");
  EXPECT_EQ(encoded(hop), bytes);
  decoded<api_exp_hop> back(bytes);
  EXPECT_EQ(back.result, CODEC_OK);
  EXPECT_EQ(pavo_zorv_api_exp_hop_compare(&back.record, &hop), 0);
  EXPECT_EQ(back->presence & 0x3f, 0x3f);
  EXPECT_EQ(back.memory.sizes, (std::vector<std::size_t>{2, 3}));
}

TEST(api_exp_hop, elements_are_cut_to_eight_bits) {
  decoded<api_exp_hop> hop(hex("28 ac 02 30 ff ff ff ff 0f"));
  EXPECT_EQ(hop.result, CODEC_OK);
  EXPECT_EQ(hop->field5[0], 44);
  EXPECT_EQ(hop->field6[0], 255);
}

TEST(api_exp_hop, each_list_may_be_one_run_only) {
  EXPECT_EQ(decoded<api_exp_hop>(hex("28 01 30 01")).result, CODEC_OK);
  EXPECT_EQ(decoded<api_exp_hop>(hex("30 01 28 01")).result, CODEC_OK);
  EXPECT_EQ(decoded<api_exp_hop>(hex("28 01 30 01 28 02")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_exp_hop>(hex("30 01 28 01 30 02")).result, CODEC_ERR_TRUNCATED);
}

TEST(api_exp_hop, a_copy_goes_on_after_a_list_without_memory) {
  std::uint8_t five[] = {5}, six[] = {6, 7};
  const api_exp_hop hop{1, 2, 3, 4, five, 1, six, 2, 0x3f};
  for (const std::size_t failing : {std::size_t{0}, std::size_t{1}}) {
    accountant memory;
    memory.fail_at = failing;
    api_exp_hop copy{};
    EXPECT_EQ(pavo_zorv_api_exp_hop_duplicate(&copy, &hop, accountant::allocate, &memory), CODEC_ERR_NO_MEMORY);
    EXPECT_EQ(memory.sizes, (std::vector<std::size_t>{1, 2}));
    EXPECT_EQ(copy.field4, 4u);
    EXPECT_EQ(copy.field5 == nullptr, failing == 0);
    EXPECT_EQ(copy.field5_count, failing == 0 ? 0u : 1u);
    EXPECT_EQ(copy.field6 == nullptr, failing == 1);
    EXPECT_EQ(copy.field6_count, failing == 1 ? 0u : 2u);
    EXPECT_EQ(copy.presence, failing == 0 ? 0x2f : 0x1f);
    pavo_zorv_api_exp_hop_free_ext(&copy, accountant::release, &memory);
    EXPECT_EQ(memory.live(), 0u);
  }
}

TEST(api_exp_hop, releases_field5_then_field6_and_keeps_counts_and_bits) {
  decoded<api_exp_hop> hop(hex("30 01 30 02 28 03"));
  const std::vector<void *> expected = {hop->field5, hop->field6};
  pavo_zorv_api_exp_hop_free_ext(&hop.record, accountant::release, &hop.memory);
  EXPECT_EQ(hop.memory.released, expected);
  EXPECT_EQ(hop->field5, nullptr);
  EXPECT_EQ(hop->field6, nullptr);
  EXPECT_EQ(hop->field5_count, 1u);
  EXPECT_EQ(hop->field6_count, 2u);
  EXPECT_EQ(hop->presence & 0x3f, 0x30);
}

TEST(api_exp_hop, is_compared_in_field_order) {
  std::uint8_t low[] = {1, 100}, high[] = {1, 200};
  const auto compared = [](const api_exp_hop &a, const api_exp_hop &b) {
    return pavo_zorv_api_exp_hop_compare(&a, &b);
  };
  const api_exp_hop hop{1, 2, 3, 4, low, 2, low, 2, 0x3f};
  api_exp_hop other = hop;
  EXPECT_EQ(compared(hop, other), 0);
  other.field6 = high;
  EXPECT_EQ(compared(hop, other), -1);
  other.field6_count = 1;
  EXPECT_EQ(compared(hop, other), 1);
  other.field5 = high;
  EXPECT_EQ(compared(hop, other), -1);
  other.field4 = 3;
  EXPECT_EQ(compared(hop, other), 1);
  other.field3 = 0x80000000;
  EXPECT_EQ(compared(hop, other), -1);
  other.field2 = 1;
  EXPECT_EQ(compared(hop, other), 1);
  other.field1 = 2;
  EXPECT_EQ(compared(hop, other), -1);
  other.presence = 0x3e;
  EXPECT_EQ(compared(hop, other), 1);
}

// --- api_exp_path ---

TEST(api_exp_path, takes_eight_bytes_and_two_entries_also_when_only_one_has_room) {
  std::uint8_t element = 7;
  api_exp_hop hop = small_hop(&element);
  const api_exp_path path{&hop, 1, 2, API_EXP_PATH_HAS_HOPS | API_EXP_PATH_HAS_FIELD2};
  const fenced_block buffer(8);
  table four(4);
  EXPECT_EQ(pavo_zorv_api_exp_path_encode_ext(&path, buffer.data(), 8, four.entries(), &four.count), 8u);
  EXPECT_EQ(show(buffer.content()), "0a 04 08 01 28 07 10 02");
  EXPECT_EQ(four.count, 2u);
  EXPECT_EQ(four.pieces(), (std::vector<piece>{{buffer.data() + 2, 4}, {buffer.data(), 8}}));
  EXPECT_TRUE(four.untouched_from(2));

  table one(1);
  EXPECT_EQ(pavo_zorv_api_exp_path_encode_ext(&path, buffer.data(), 8, one.entries(), &one.count), 8u);
  EXPECT_EQ(one.count, 2u);
  EXPECT_EQ(one.pieces(), (std::vector<piece>{{buffer.data() + 2, 4}}));
}

TEST(api_exp_path, without_hops_writes_nothing_for_field_1) {
  api_exp_hop hop{};
  EXPECT_EQ(show(encoded(api_exp_path{&hop, 0, 2, 3})), "10 02");
  EXPECT_EQ(show(encoded(api_exp_path{nullptr, 0, 0, API_EXP_PATH_HAS_HOPS})), "");
}

TEST(api_exp_path, a_second_run_after_field_2_is_refused) {
  decoded<api_exp_path> path(hex("0a 02 08 01 10 02 0a 02 08 02"));
  EXPECT_EQ(path.result, CODEC_ERR_TRUNCATED);
  ASSERT_EQ(path->hop_count, 1u);
  EXPECT_EQ(path->hops[0].field1, 1u);
  EXPECT_EQ(path->field2, 2u);
  EXPECT_EQ(path->presence & 3, 3);
}

TEST(api_exp_path, a_hop_that_runs_past_the_end_is_refused) {
  decoded<api_exp_path> path(hex("0a 05 08 01"));
  EXPECT_EQ(path.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(path->hops, nullptr);
  EXPECT_EQ(path->hop_count, 0u);
  EXPECT_EQ(path->presence & 3, 0);
  EXPECT_EQ(path.memory.requests(), 0u);
}

TEST(api_exp_path, is_read_into_one_array_of_cleared_records) {
  decoded<api_exp_path> path(hex("0a 04 08 01 28 07 0a 00 0a 02 20 05 10 02"));
  EXPECT_EQ(path.result, CODEC_OK);
  ASSERT_EQ(path->hop_count, 3u);
  EXPECT_EQ(path.memory.sizes, (std::vector<std::size_t>{3 * sizeof(api_exp_hop), 1}));
  EXPECT_EQ(path->hops[0].field1, 1u);
  EXPECT_EQ(path->hops[0].field5[0], 7);
  EXPECT_EQ(path->hops[0].presence, API_EXP_HOP_HAS_FIELD1 | API_EXP_HOP_HAS_FIELD5);
  EXPECT_EQ(path->hops[1].presence, 0);
  EXPECT_EQ(path->hops[2].field4, 5u);
  EXPECT_EQ(path->hops[2].presence, API_EXP_HOP_HAS_FIELD4);
  EXPECT_EQ(path->field2, 2u);
}

TEST(api_exp_path, a_failure_inside_a_hop_is_the_result_and_the_hops_before_are_kept) {
  decoded<api_exp_path> path(hex("0a 04 08 01 28 07 0a 04 10 05 0d 00"));
  EXPECT_EQ(path.result, CODEC_ERR_WRONG_WIRE_TYPE);
  ASSERT_EQ(path->hop_count, 2u);
  EXPECT_EQ(path->hops[0].field5_count, 1u);
  EXPECT_EQ(path->hops[1].field2, 5u);
  EXPECT_EQ(path->presence & 3, 0);
  EXPECT_EQ(decoded<api_exp_path>(hex("0a 01 3b")).result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decoded<api_exp_path>(hex("0a 01 08")).result, CODEC_ERR_TRUNCATED);
}

TEST(api_exp_path, needs_an_allocator_for_hops_only) {
  EXPECT_EQ(decode_without_memory<api_exp_path>(hex("10 02")), CODEC_OK);
  EXPECT_EQ(decode_without_memory<api_exp_path>(hex("10 02 0a 00")), CODEC_ERR_NO_MEMORY);
}

TEST(api_exp_path, field_1_has_wire_type_2_only) {
  EXPECT_EQ(decoded<api_exp_path>(hex("08 01")).result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decoded<api_exp_path>(hex("12 00")).result, CODEC_ERR_WRONG_WIRE_TYPE) << "and field 2 wire type 0";
}

TEST(api_exp_path, a_copy_attempts_every_hop_and_copies_field2_in_every_case) {
  decoded<api_exp_path> source(hex("0a 02 28 01 0a 02 28 02 10 05"));
  for (std::size_t failing = 0; failing < 3; ++failing) {
    accountant memory;
    memory.fail_at = failing;
    api_exp_path copy{};
    EXPECT_EQ(pavo_zorv_api_exp_path_duplicate(&copy, &source.record, accountant::allocate, &memory),
              CODEC_ERR_NO_MEMORY);
    EXPECT_EQ(memory.requests(), failing == 0 ? 1u : 3u);
    EXPECT_EQ(copy.hop_count, failing == 0 ? 0u : 2u);
    EXPECT_EQ(copy.hops == nullptr, failing == 0);
    EXPECT_EQ(copy.presence, failing == 0 ? 2 : 3);
    EXPECT_EQ(copy.field2, 5u);
    pavo_zorv_api_exp_path_free_ext(&copy, accountant::release, &memory);
    EXPECT_EQ(memory.live(), 0u);
  }
}

TEST(api_exp_path, a_copy_without_hops_keeps_the_bit) {
  api_exp_hop hop{};
  const api_exp_path path{&hop, 0, 5, API_EXP_PATH_HAS_HOPS};
  api_exp_path copy{&hop, 1, 0, 0};
  EXPECT_EQ(pavo_zorv_api_exp_path_duplicate(&copy, &path, nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(copy.hops, nullptr);
  EXPECT_EQ(copy.hop_count, 0u);
  EXPECT_EQ(copy.field2, 5u);
  EXPECT_EQ(copy.presence, API_EXP_PATH_HAS_HOPS);
}

TEST(api_exp_path, releases_what_its_hops_own_then_the_hops) {
  decoded<api_exp_path> path(hex("0a 04 28 01 30 02 0a 00 0a 02 30 03 10 05"));
  const std::vector<void *> expected = {path->hops[0].field5, path->hops[0].field6, path->hops[2].field6, path->hops};
  pavo_zorv_api_exp_path_free_ext(&path.record, accountant::release, &path.memory);
  EXPECT_EQ(path.memory.released, expected);
  EXPECT_EQ(path->hops, nullptr);
  EXPECT_EQ(path->hop_count, 0u);
  EXPECT_EQ(path->field2, 5u);
  EXPECT_EQ(path->presence & 3, 3);
}

TEST(api_exp_path, is_compared_by_its_hops_then_their_count_then_its_number) {
  api_exp_hop one[2]{}, other[2]{};
  one[0].presence = other[0].presence = API_EXP_HOP_HAS_FIELD1;
  one[0].field1 = 1;
  other[0].field1 = 2;
  const auto compared = [](const api_exp_path &a, const api_exp_path &b) {
    return pavo_zorv_api_exp_path_compare(&a, &b);
  };
  EXPECT_EQ(compared({one, 2, 5, 3}, {one, 2, 5, 3}), 0);
  EXPECT_EQ(compared({one, 2, 5, 3}, {other, 1, 4, 3}), -1);
  EXPECT_EQ(compared({one, 2, 5, 3}, {one, 1, 6, 3}), 1);
  EXPECT_EQ(compared({one, 1, 5, 3}, {one, 2, 4, 3}), -1);
  EXPECT_EQ(compared({one, 2, 5, 3}, {one, 2, 6, 3}), -1);
  EXPECT_EQ(compared({one, 2, 5, 2}, {one, 0, 5, 3}), -1);
  EXPECT_EQ(compared({one, 2, 5, 2}, {other, 1, 5, 2}), 0);
}

}  // namespace api_exp_hop_path_test
