// The most memory that decoding allocates: the bounds in pavo_zorv_memory.h against the schema and against hostile
// input.
#include <algorithm>
#include <memory>

#include "laws.hpp"
#include "messages/all.hpp"
#include "pavo_zorv_memory.h"
#include "random_bytes.hpp"

namespace {

using test::byte_string;
using test::operator*;

// A list element takes a record in memory, and on the wire at least a key and a length of one byte each.
TEST(bounds, are_those_of_the_largest_record_in_a_list) {
  std::size_t largest = 0;
  pavo_zorv::for_each_message([&](auto message) {
    using record = typename decltype(message)::type;
    pavo_zorv::for_each_row<record>([&](auto index) {
      using row = std::remove_cvref_t<decltype(pavo_zorv::row_at<record, index>)>;
      if constexpr (row::type == pavo_zorv::kind::message_list)
        largest = std::max(largest, sizeof(typename row::message));
    });
  });
  if (sizeof(void *) == 8) {
    EXPECT_EQ(largest, 2 * PAVO_ZORV_MEMORY_PER_BYTE);
    EXPECT_EQ(largest + 8, 2 * PAVO_ZORV_BUDGET_PER_BYTE);
  } else {
    EXPECT_LE(largest, 2 * PAVO_ZORV_MEMORY_PER_BYTE);
  }
}

TEST(bounds, do_not_wrap) {
  constexpr std::size_t lost = PAVO_ZORV_ALIGNMENT - 1;
  constexpr std::size_t last = (SIZE_MAX - lost) / 36;
  EXPECT_EQ(pavo_zorv_pool_size_for(0), lost);
  EXPECT_EQ(pavo_zorv_pool_size_for(100), 3600 + lost);
  EXPECT_EQ(pavo_zorv_pool_size_for(last), last * 36 + lost);
  EXPECT_EQ(pavo_zorv_pool_size_for(last + 1), SIZE_MAX);
  EXPECT_EQ(pavo_zorv_pool_size_for(SIZE_MAX), SIZE_MAX);
}

// Empty policies: the worst case.
TEST(bounds, are_reached_by_a_list_of_empty_policies) {
  if (sizeof(void *) != 8) GTEST_SKIP() << "records are smaller here";
  const byte_string input = std::size_t{500} * test::hex("1a 00");
  const auto block = std::make_unique<std::uint64_t[]>(500 * 72 / 8);
  for (const std::size_t missing : {0u, 1u}) {
    pavo_zorv_pool pool;
    pavo_zorv_pool_init(&pool, block.get(), 500 * 72 - missing);
    api_aa_list record;
    EXPECT_EQ(pavo_zorv_api_aa_list_decode_ext(&record, input.data(), input.size(), pavo_zorv_pool_allocate, &pool),
              missing == 0 ? CODEC_OK : CODEC_ERR_NO_MEMORY);
  }
}

// Referenced bytes are not allocated, but a copy owns them.
TEST(bounds, of_decoding_hold_for_a_copy_of_a_record_that_was_decoded_by_reference) {
  const test::fenced_block input(test::hex("0a 04 01 02 03 04"));
  srv6_prefix record, copy;
  pavo_zorv_counter decoding, copying;
  pavo_zorv_counter_init(&decoding, pavo_zorv_heap_allocate, pavo_zorv_heap_release, nullptr);
  pavo_zorv_counter_init(&copying, pavo_zorv_heap_allocate, pavo_zorv_heap_release, nullptr);
  ASSERT_EQ(pavo_zorv_srv6_prefix_decode_ext(&record, input.data(), input.size(), pavo_zorv_counter_allocate, &decoding,
                                             PAVO_ZORV_REFERENCE),
            CODEC_OK);
  EXPECT_EQ(decoding.requests, 0u);
  ASSERT_EQ(pavo_zorv_srv6_prefix_duplicate(&copy, &record, pavo_zorv_counter_allocate, &copying), CODEC_OK);
  EXPECT_EQ(copying.requests, 1u);
  EXPECT_EQ(copying.bytes, 4u);
  pavo_zorv_srv6_prefix_free_ext(&copy, pavo_zorv_counter_release, &copying, 0);
  EXPECT_EQ(copying.live, 0u);
}

using hostile = test::law;

const byte_string &hostile_input(test::random_numbers &random, const naive::message &type) {
  test::bytes_maker maker(random);
  test::tried() = maker.message(type, 12);
  for (std::uint64_t times = random.below(4); times-- != 0;) maker.damage(test::tried());
  return test::tried();
}

// Room for a record of any message.
std::unique_ptr<std::uint64_t[]> room_for(const naive::message &type) {
  return std::make_unique<std::uint64_t[]>((type.size + 7) / 8);
}

// With a pool of just the promised size memory is never short, whatever comes.
TEST_P(hostile, input_never_asks_for_more_than_the_bounds) {
  const naive::message &type = *GetParam();
  std::size_t decoded = 0;
  test::for_seeds(400, [&](test::random_numbers &random) {
    const test::fenced_block input(hostile_input(random, type));
    // One byte after an aligned place is the worst that a pool can begin at.
    const std::size_t size = pavo_zorv_pool_size_for(input.size());
    const auto block = std::make_unique<unsigned char[]>(size + 1);
    pavo_zorv_pool pool;
    pavo_zorv_pool_init(&pool, block.get() + 1, size);
    pavo_zorv_counter counter;
    pavo_zorv_counter_init(&counter, pavo_zorv_pool_allocate, nullptr, &pool);
    const auto record = room_for(type);
    const int result =
        type.functions->decode(record.get(), input.data(), input.size(), pavo_zorv_counter_allocate, &counter, 0);
    ASSERT_NE(result, CODEC_ERR_NO_MEMORY);
    ASSERT_LE(counter.bytes, input.size() * PAVO_ZORV_MEMORY_PER_BYTE);
    ASSERT_LE(counter.requests * PAVO_ZORV_BYTES_PER_REQUEST, input.size());
    decoded += result == CODEC_OK;

    // A copy asks for no more, also of what was decoded by reference, and what is charged for it comes back.
    const auto referenced = room_for(type);
    test::accountant strings_and_lists;
    ASSERT_EQ(type.functions->decode(referenced.get(), input.data(), input.size(), test::accountant::allocate,
                                     &strings_and_lists, PAVO_ZORV_REFERENCE),
              result);
    for (void *const source : {static_cast<void *>(record.get()), static_cast<void *>(referenced.get())}) {
      pavo_zorv_budget budget;
      pavo_zorv_budget_init(&budget, input.size() * PAVO_ZORV_BUDGET_PER_BYTE, pavo_zorv_heap_allocate,
                            pavo_zorv_heap_release, nullptr);
      pavo_zorv_counter copies;
      pavo_zorv_counter_init(&copies, pavo_zorv_budget_allocate, pavo_zorv_budget_release, &budget);
      const auto copy = room_for(type);
      ASSERT_EQ(type.functions->duplicate(copy.get(), source, pavo_zorv_counter_allocate, &copies), CODEC_OK);
      ASSERT_LE(copies.bytes, counter.bytes);
      ASSERT_LE(copies.requests, counter.requests);
      type.functions->free(copy.get(), pavo_zorv_counter_release, &copies, 0);
      ASSERT_EQ(budget.spent, 0u);
    }
    type.functions->free(referenced.get(), test::accountant::release, &strings_and_lists, PAVO_ZORV_REFERENCE);
  });
  if (test::is_tried_in_full()) {
    EXPECT_GT(decoded, 20u) << "input that is always refused shows little";
  }
}

// With a budget that may be too small decoding ends in good order, and no more than it is ever out.
TEST_P(hostile, input_gets_no_more_than_the_budget) {
  const naive::message &type = *GetParam();
  test::for_seeds(200, [&](test::random_numbers &random) {
    const test::fenced_block input(hostile_input(random, type));
    test::accountant memory;
    pavo_zorv_budget budget;
    pavo_zorv_budget_init(&budget, static_cast<std::size_t>(random.below(input.size() * 4 + 1)),
                          test::accountant::allocate, test::accountant::release, &memory);
    const auto record = room_for(type);
    type.functions->decode(record.get(), input.data(), input.size(), pavo_zorv_budget_allocate, &budget, 0);
    std::size_t given = 0;
    for (const std::size_t asked : memory.sizes) given += asked;
    ASSERT_LE(given, budget.limit);
    ASSERT_EQ(budget.spent, given);
    type.functions->free(record.get(), pavo_zorv_budget_release, &budget, 0);
    // What a nested message that came twice owned at first is still out, and still charged.
    ASSERT_EQ(budget.spent == 0, memory.live() == 0);
  });
}

INSTANTIATE_TEST_SUITE_P(, hostile, testing::ValuesIn(test::subjects()), test::name_of_subject);

}  // namespace
