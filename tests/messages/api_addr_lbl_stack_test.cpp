// Addresses and label stacks.
#include <algorithm>

#include "support.hpp"

namespace api_addr_lbl_stack_test {

using namespace test;

// Fails the test when it is called.
void *no_memory_is_needed(std::size_t, void *) {
  ADD_FAILURE() << "the allocator was called";
  return nullptr;
}

void nothing_is_released(void *, void *) { ADD_FAILURE() << "the release callback was called"; }

std::vector<std::uint32_t> labels_of(const api_lbl_stack &stack) {
  return std::vector<std::uint32_t>(stack.labels, stack.labels + stack.label_count);
}

// --- api_addr ---

TEST(api_addr, is_written_when_present_whatever_its_value) {
  EXPECT_EQ(show(encoded(api_addr{300, API_ADDR_HAS_ADDRESS})), "08 ac 02");
  EXPECT_EQ(show(encoded(api_addr{0, API_ADDR_HAS_ADDRESS})), "08 00");
  EXPECT_EQ(show(encoded(api_addr{300, 0})), "");
}

TEST(api_addr, is_read_from_varints_only) {
  decoded<api_addr> addr(hex("08 ac 02"));
  EXPECT_EQ(addr.result, CODEC_OK);
  EXPECT_EQ(addr->address, 300u);
  EXPECT_EQ(addr->presence & 1, API_ADDR_HAS_ADDRESS);

  decoded<api_addr> sign_extended(hex("08 ff ff ff ff ff ff ff ff ff 01"));
  EXPECT_EQ(sign_extended.result, CODEC_OK);
  EXPECT_EQ(sign_extended->address, 0xffffffffu);
  EXPECT_EQ(sign_extended->presence & 1, API_ADDR_HAS_ADDRESS);

  decoded<api_addr> delimited(hex("0a 00"));
  EXPECT_EQ(delimited.result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(delimited->presence & 1, 0);
}

TEST(api_addr, takes_two_to_six_bytes) {
  EXPECT_EQ(encoded(api_addr{0, 1}).size(), 2u);
  EXPECT_EQ(encoded(api_addr{127, 1}).size(), 2u);
  EXPECT_EQ(encoded(api_addr{128, 1}).size(), 3u);
  EXPECT_EQ(encoded(api_addr{0xffffffff, 1}).size(), 6u);
}

TEST(api_addr, that_is_given_again_counts_by_its_last_value) {
  decoded<api_addr> addr(hex("08 07 10 01 08 ac 02 08 09"));
  EXPECT_EQ(addr.result, CODEC_OK);
  EXPECT_EQ(addr->address, 9u);
}

TEST(api_addr, takes_one_entry_of_the_table_when_present) {
  table segments(2);
  const fenced_block buffer(3);
  const api_addr addr{300, API_ADDR_HAS_ADDRESS}, absent{300, 0};
  EXPECT_EQ(pavo_zorv_api_addr_encode_ext(&addr, buffer.data(), 3, segments.entries(), &segments.count), 3u);
  EXPECT_EQ(segments.count, 1u);
  EXPECT_EQ(segments.pieces(), (std::vector<piece>{{buffer.data(), 3}}));
  segments.count = 2;
  EXPECT_EQ(pavo_zorv_api_addr_encode_ext(&absent, buffer.data(), 3, segments.entries(), &segments.count), 0u);
  EXPECT_EQ(segments.count, 0u);
}

TEST(api_addr, uses_no_callbacks) {
  const fenced_block input(hex("08 ac 02 12 01 61"));
  api_addr addr, copy;
  EXPECT_EQ(pavo_zorv_api_addr_decode_ext(&addr, input.data(), input.size(), no_memory_is_needed, nullptr), CODEC_OK);
  EXPECT_EQ(pavo_zorv_api_addr_decode_ext(&addr, input.data(), input.size(), nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(pavo_zorv_api_addr_duplicate(&copy, &addr, no_memory_is_needed, nullptr), CODEC_OK);
  EXPECT_EQ(pavo_zorv_api_addr_duplicate(&copy, &addr, nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(copy.address, 300u);
  EXPECT_EQ(copy.presence & 1, 1);
  pavo_zorv_api_addr_free_ext(&copy, nothing_is_released, nullptr);
  pavo_zorv_api_addr_free_ext(&copy, nullptr, nullptr);
  EXPECT_EQ(copy.address, 300u);
  EXPECT_EQ(copy.presence & 1, 1);
}

TEST(api_addr, is_copied_with_its_bit_whatever_that_is) {
  for (std::uint8_t presence = 0; presence <= 1; ++presence) {
    const api_addr addr{300, presence};
    api_addr copy{1, 1};
    EXPECT_EQ(pavo_zorv_api_addr_duplicate(&copy, &addr, nullptr, nullptr), CODEC_OK);
    EXPECT_EQ(copy.address, 300u);
    EXPECT_EQ(copy.presence, presence);
  }
}

TEST(api_addr, is_compared_by_presence_then_unsigned) {
  const auto compared = [](const api_addr &a, const api_addr &b) { return pavo_zorv_api_addr_compare(&a, &b); };
  EXPECT_EQ(compared({5, 1}, {5, 1}), 0);
  EXPECT_EQ(compared({5, 1}, {6, 1}), -1);
  EXPECT_EQ(compared({6, 1}, {5, 1}), 1);
  EXPECT_EQ(compared({0xffffffff, 1}, {0, 1}), 1);
  EXPECT_EQ(compared({0, 1}, {9, 0}), 1);
  EXPECT_EQ(compared({9, 0}, {0, 1}), -1);
  EXPECT_EQ(compared({5, 0}, {6, 0}), 0);
}

TEST(api_addr, fails_only_by_its_input) {
  EXPECT_EQ(decode_without_memory<api_addr>(hex("08")), CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decode_without_memory<api_addr>(hex("13")), CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decode_without_memory<api_addr>(hex("09")), CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decode_without_memory<api_addr>(hex("12 02 08 07")), CODEC_OK);
}

// --- api_lbl_stack ---

TEST(api_lbl_stack, the_labels_16_and_24001_take_six_bytes_both_ways) {
  std::uint32_t labels[] = {16, 24001};
  EXPECT_EQ(show(encoded(api_lbl_stack{labels, 2, API_LBL_STACK_HAS_LABELS})), "08 10 08 c1 bb 01");

  decoded<api_lbl_stack> stack(hex("08 10 08 c1 bb 01"));
  EXPECT_EQ(stack.result, CODEC_OK);
  EXPECT_EQ(stack->label_count, 2u);
  EXPECT_EQ(labels_of(stack.record), (std::vector<std::uint32_t>{16, 24001}));
  EXPECT_EQ(stack->presence & 1, API_LBL_STACK_HAS_LABELS);
  EXPECT_EQ(stack.memory.sizes, (std::vector<std::size_t>{8}));
}

TEST(api_lbl_stack, a_second_run_after_an_unknown_field_is_refused_and_the_first_is_kept) {
  decoded<api_lbl_stack> stack(hex("08 10 10 05 08 11"));
  EXPECT_EQ(stack.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(labels_of(stack.record), (std::vector<std::uint32_t>{16}));
  EXPECT_EQ(stack->presence & 1, API_LBL_STACK_HAS_LABELS);
}

TEST(api_lbl_stack, a_key_of_wire_type_2_inside_the_run_counts_as_one_of_a_label) {
  decoded<api_lbl_stack> stack(hex("08 10 0a 05"));
  EXPECT_EQ(stack.result, CODEC_OK);
  EXPECT_EQ(labels_of(stack.record), (std::vector<std::uint32_t>{16, 5}));
}

// The last byte of 1029 is that of the key. After some such labels there are keys that are too long: one of two bytes,
// or others before the label 8, which is a byte like the key as well.
TEST(api_lbl_stack, labels_may_end_like_their_key_where_keys_are_too_long) {
  for (std::size_t before = 1; before <= 17; ++before) {
    const byte_string some = before * hex("08 85 08"), rest = 20 * hex("08 85 08");
    decoded<api_lbl_stack> one(some + hex("88 00 85 08") + rest);
    EXPECT_EQ(one.result, CODEC_OK) << before;
    EXPECT_EQ(labels_of(one.record), std::vector<std::uint32_t>(before + 21, 1029)) << before;

    decoded<api_lbl_stack> several(some + hex("88 80 00 08 88 00 08 88 00 08 88 00 08") + rest);
    std::vector<std::uint32_t> labels(before + 24, 1029);
    std::fill_n(labels.begin() + static_cast<std::ptrdiff_t>(before), 4, 8);
    EXPECT_EQ(several.result, CODEC_OK) << before;
    EXPECT_EQ(labels_of(several.record), labels) << before;
  }
}

TEST(api_lbl_stack, without_labels_is_written_as_nothing_and_a_longer_stack_is_greater) {
  EXPECT_EQ(show(encoded(api_lbl_stack{nullptr, 0, API_LBL_STACK_HAS_LABELS})), "");
  std::uint32_t labels[] = {1, 2, 3};
  const api_lbl_stack two{labels, 2, API_LBL_STACK_HAS_LABELS}, three{labels, 3, API_LBL_STACK_HAS_LABELS};
  EXPECT_EQ(pavo_zorv_api_lbl_stack_compare(&two, &three), -1);
  EXPECT_EQ(pavo_zorv_api_lbl_stack_compare(&three, &two), 1);
}

TEST(api_lbl_stack, a_packed_list_is_refused) {
  decoded<api_lbl_stack> stack(hex("0a 02 10 11"));
  EXPECT_EQ(stack.result, CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(stack.memory.requests(), 0u);
  EXPECT_EQ(stack->labels, nullptr);
}

TEST(api_lbl_stack, labels_keep_all_32_bits) {
  std::uint32_t labels[] = {0, 127, 128, 1048575, 0x80000000, 0xffffffff};
  const byte_string bytes = hex("08 00 08 7f 08 80 01 08 ff ff 3f 08 80 80 80 80 08 08 ff ff ff ff 0f");
  EXPECT_EQ(encoded(api_lbl_stack{labels, 6, 1}), bytes);
  decoded<api_lbl_stack> stack(bytes);
  EXPECT_EQ(labels_of(stack.record), std::vector<std::uint32_t>(labels, labels + 6));
}

TEST(api_lbl_stack, takes_one_entry_of_the_table_when_anything_was_written) {
  std::uint32_t labels[] = {16, 24001};
  table segments(2);
  const fenced_block buffer(6);
  const api_lbl_stack stack{labels, 2, 1}, empty{labels, 0, 1};
  EXPECT_EQ(pavo_zorv_api_lbl_stack_encode_ext(&stack, buffer.data(), 6, segments.entries(), &segments.count), 6u);
  EXPECT_EQ(segments.pieces(), (std::vector<piece>{{buffer.data(), 6}}));
  EXPECT_EQ(pavo_zorv_api_lbl_stack_encode_ext(&empty, buffer.data(), 6, segments.entries(), &segments.count), 0u);
  EXPECT_EQ(segments.count, 0u);
}

TEST(api_lbl_stack, without_an_allocator_has_no_memory_for_labels) {
  EXPECT_EQ(decode_without_memory<api_lbl_stack>(hex("08 10")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<api_lbl_stack>(hex("10 05")), CODEC_OK);
  std::uint32_t labels[] = {16};
  const api_lbl_stack stack{labels, 1, 1}, empty{labels, 0, 1};
  api_lbl_stack copy{labels, 9, 1};
  EXPECT_EQ(pavo_zorv_api_lbl_stack_duplicate(&copy, &stack, nullptr, nullptr), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(copy.labels, nullptr);
  EXPECT_EQ(copy.label_count, 0u);
  EXPECT_EQ(copy.presence, 0);
  EXPECT_EQ(pavo_zorv_api_lbl_stack_duplicate(&copy, &empty, nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(copy.labels, nullptr);
  EXPECT_EQ(copy.label_count, 0u);
  EXPECT_EQ(copy.presence, 1);
}

TEST(api_lbl_stack, is_copied_into_an_array_of_its_own) {
  std::uint32_t labels[] = {16, 24001};
  const api_lbl_stack stack{labels, 2, 1};
  accountant memory;
  api_lbl_stack copy{};
  EXPECT_EQ(pavo_zorv_api_lbl_stack_duplicate(&copy, &stack, accountant::allocate, &memory), CODEC_OK);
  EXPECT_EQ(memory.sizes, (std::vector<std::size_t>{8}));
  EXPECT_TRUE(memory.owns(copy.labels));
  EXPECT_EQ(labels_of(copy), (std::vector<std::uint32_t>{16, 24001}));
  pavo_zorv_api_lbl_stack_free_ext(&copy, accountant::release, &memory);
  EXPECT_EQ(memory.live(), 0u);
  EXPECT_EQ(copy.labels, nullptr);
  EXPECT_EQ(copy.label_count, 2u) << "the count and the bit stay";
  EXPECT_EQ(copy.presence, 1);
}

TEST(api_lbl_stack, a_copy_without_memory_is_empty_and_absent) {
  std::uint32_t labels[] = {16, 24001};
  const api_lbl_stack stack{labels, 2, 1};
  accountant memory;
  memory.fail_at = 0;
  api_lbl_stack copy{labels, 7, 1};
  EXPECT_EQ(pavo_zorv_api_lbl_stack_duplicate(&copy, &stack, accountant::allocate, &memory), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(copy.labels, nullptr);
  EXPECT_EQ(copy.label_count, 0u);
  EXPECT_EQ(copy.presence, 0);
}

TEST(api_lbl_stack, is_compared_by_presence_then_labels_then_count) {
  std::uint32_t one[] = {1, 2, 3}, other[] = {1, 0x80000000};
  const auto compared = [](const api_lbl_stack &a, const api_lbl_stack &b) {
    return pavo_zorv_api_lbl_stack_compare(&a, &b);
  };
  EXPECT_EQ(compared({one, 3, 1}, {one, 3, 1}), 0);
  EXPECT_EQ(compared({one, 3, 1}, {other, 2, 1}), -1);
  EXPECT_EQ(compared({other, 2, 1}, {one, 3, 1}), 1);
  EXPECT_EQ(compared({one, 3, 0}, {nullptr, 0, 1}), -1);
  EXPECT_EQ(compared({nullptr, 0, 1}, {one, 3, 0}), 1);
  EXPECT_EQ(compared({one, 3, 0}, {other, 2, 0}), 0);
}

}  // namespace api_addr_lbl_stack_test
