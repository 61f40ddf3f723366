// The ready-made callbacks, each tried with all small sizes and with the largest ones.
#include "pavo_zorv_memory.h"

#include <array>
#include <set>

#include "support.hpp"

namespace {

constexpr std::size_t unit = PAVO_ZORV_ALIGNMENT;

static_assert(unit >= alignof(std::uint64_t) && unit >= alignof(void *) && (unit & (unit - 1)) == 0);
static_assert(sizeof(pavo_zorv_alignment) == 8, "what a budget charges for each block in addition");

// How many units can be allocated from a block that begins `misplaced` bytes after an aligned address.
std::size_t units_of(std::size_t misplaced, std::size_t size) {
  const std::size_t lost = (unit - misplaced % unit) % unit;
  return lost > size ? 0 : (size - lost) / unit;
}

TEST(pool, allocates_aligned_separate_blocks_inside_its_own_for_all_small_sizes) {
  for (std::size_t misplaced = 0; misplaced < unit; ++misplaced) {
    for (std::size_t size = 0; size <= 5 * unit; ++size) {
      for (std::size_t first = 0; first <= 4 * unit; ++first) {
        for (std::size_t second = 0; second <= 4 * unit; ++second) {
          alignas(16) std::array<unsigned char, 6 * unit> storage;
          unsigned char *const block = storage.data() + misplaced;
          pavo_zorv_pool pool;
          pavo_zorv_pool_init(&pool, block, size);
          std::size_t units_left = units_of(misplaced, size);
          const unsigned char *last_end = block;
          for (const std::size_t requested : {first, second}) {
            auto *const allocated = static_cast<unsigned char *>(pavo_zorv_pool_allocate(requested, &pool));
            const std::size_t units = requested == 0 ? 1 : (requested + unit - 1) / unit;
            ASSERT_EQ(allocated != nullptr, units <= units_left)
                << misplaced << " " << size << " " << first << " " << second;
            if (allocated == nullptr) continue;
            units_left -= units;
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(allocated) % unit, 0u);
            ASSERT_GE(allocated, last_end);
            ASSERT_LE(allocated + units * unit, block + size);
            last_end = allocated + units * unit;
          }
        }
      }
    }
  }
}

TEST(pool, refuses_sizes_at_which_rounding_up_or_adding_would_wrap) {
  alignas(16) std::array<unsigned char, 64> block;
  for (const std::size_t used : {std::size_t{0}, unit, block.size()}) {
    for (std::size_t less = 0; less < 100; ++less) {
      pavo_zorv_pool pool;
      pavo_zorv_pool_init(&pool, block.data(), block.size());
      if (used != 0) {
        ASSERT_NE(pavo_zorv_pool_allocate(used, &pool), nullptr);
      }
      ASSERT_EQ(pavo_zorv_pool_allocate(SIZE_MAX - less, &pool), nullptr);
      ASSERT_EQ(pool.used, used) << "a refused request takes nothing";
    }
  }
}

TEST(pool, without_memory_refuses_every_request) {
  pavo_zorv_pool pool;
  pavo_zorv_pool_init(&pool, nullptr, 1000);
  EXPECT_EQ(pavo_zorv_pool_allocate(1, &pool), nullptr);
  EXPECT_EQ(pavo_zorv_pool_allocate(0, &pool), nullptr);
  unsigned char block[1];
  pavo_zorv_pool_init(&pool, block, 0);
  EXPECT_EQ(pavo_zorv_pool_allocate(0, &pool), nullptr);
}

TEST(pool, allocates_the_same_blocks_again_after_a_reset) {
  alignas(16) unsigned char block[32];
  pavo_zorv_pool pool;
  pavo_zorv_pool_init(&pool, block, sizeof block);
  void *const first = pavo_zorv_pool_allocate(20, &pool);
  EXPECT_EQ(first, block);
  pavo_zorv_pool_release(first, &pool);
  EXPECT_EQ(pavo_zorv_pool_allocate(20, &pool), nullptr) << "a release frees nothing";
  pavo_zorv_pool_reset(&pool);
  EXPECT_EQ(pavo_zorv_pool_allocate(32, &pool), block);
}

TEST(pool, recovers_on_reset_what_a_repeated_nested_message_owned_first) {
  // An interface twice, each time with a name: the library drops the first.
  const test::byte_string input = test::hex("12 06 12 04 65 74 68 30  12 06 12 04 65 74 68 31");
  alignas(16) unsigned char block[16];
  pavo_zorv_pool pool;
  pavo_zorv_pool_init(&pool, block, sizeof block);
  for (int round = 0; round < 3; ++round) {
    api_to_zorv record;
    ASSERT_EQ(pavo_zorv_api_to_zorv_decode_ext(&record, input.data(), input.size(), pavo_zorv_pool_allocate, &pool), 0);
    ASSERT_STREQ(record.intf.field2, "eth1");
    ASSERT_EQ(pool.used, 16u);
    pavo_zorv_pool_reset(&pool);
  }
}

TEST(budget, charges_each_block_and_8_bytes_up_to_its_limit_for_all_small_sizes) {
  for (std::size_t limit = 0; limit <= 48; ++limit) {
    for (std::size_t first = 0; first <= 40; ++first) {
      for (std::size_t second = 0; second <= 40; ++second) {
        test::accountant memory;
        pavo_zorv_budget budget;
        pavo_zorv_budget_init(&budget, limit, test::accountant::allocate, test::accountant::release, &memory);
        void *const one = pavo_zorv_budget_allocate(first, &budget);
        ASSERT_EQ(one != nullptr, first + 8 <= limit);
        const std::size_t spent = one != nullptr ? first + 8 : 0;
        ASSERT_EQ(budget.spent, spent);
        void *const two = pavo_zorv_budget_allocate(second, &budget);
        ASSERT_EQ(two != nullptr, spent + second + 8 <= limit);
        if (one != nullptr) std::memset(one, 0xff, first);
        if (two != nullptr) std::memset(two, 0xff, second);
        for (void *const block : {one, two}) ASSERT_EQ(reinterpret_cast<std::uintptr_t>(block) % unit, 0u);
        pavo_zorv_budget_release(one, &budget);
        ASSERT_EQ(budget.spent, two != nullptr ? second + 8 : 0);
        pavo_zorv_budget_release(two, &budget);
        ASSERT_EQ(budget.spent, 0u);
        ASSERT_EQ(memory.live(), 0u);
        for (const std::size_t asked : memory.sizes) ASSERT_LE(asked, limit);
      }
    }
  }
}

TEST(budget, refuses_sizes_at_which_adding_its_own_8_bytes_would_wrap) {
  test::accountant memory;
  pavo_zorv_budget budget;
  pavo_zorv_budget_init(&budget, SIZE_MAX, test::accountant::allocate, test::accountant::release, &memory);
  for (std::size_t less = 0; less < 8; ++less) {
    EXPECT_EQ(pavo_zorv_budget_allocate(SIZE_MAX - less, &budget), nullptr);
  }
  EXPECT_EQ(memory.requests(), 0u);
}

TEST(budget, is_not_charged_for_what_the_underlying_callback_refuses) {
  test::accountant memory;
  memory.fail_from = 0;
  pavo_zorv_budget budget;
  pavo_zorv_budget_init(&budget, 100, test::accountant::allocate, test::accountant::release, &memory);
  EXPECT_EQ(pavo_zorv_budget_allocate(10, &budget), nullptr);
  EXPECT_EQ(budget.spent, 0u);
}

TEST(budget, refuses_every_request_while_its_limit_is_below_what_is_in_use) {
  test::accountant memory;
  pavo_zorv_budget budget;
  pavo_zorv_budget_init(&budget, 100, test::accountant::allocate, test::accountant::release, &memory);
  void *const block = pavo_zorv_budget_allocate(50, &budget);
  budget.limit = 20;
  EXPECT_EQ(pavo_zorv_budget_allocate(0, &budget), nullptr);
  pavo_zorv_budget_release(block, &budget);
  pavo_zorv_budget_release(nullptr, &budget);
  EXPECT_EQ(budget.spent, 0u);
}

TEST(budget, over_a_pool_needs_no_underlying_release) {
  alignas(16) unsigned char block[32];
  pavo_zorv_pool pool;
  pavo_zorv_pool_init(&pool, block, sizeof block);
  pavo_zorv_budget budget;
  pavo_zorv_budget_init(&budget, 32, pavo_zorv_pool_allocate, nullptr, &pool);
  void *const allocated = pavo_zorv_budget_allocate(24, &budget);
  ASSERT_EQ(allocated, block + 8);
  pavo_zorv_budget_release(allocated, &budget);
  EXPECT_EQ(budget.spent, 0u);
}

TEST(counter, counts_requests_and_refuses_those_that_are_to_fail) {
  for (std::size_t fail_at = 0; fail_at < 6; ++fail_at) {
    for (std::size_t fail_from = 0; fail_from < 6; ++fail_from) {
      test::accountant memory;
      pavo_zorv_counter counter;
      pavo_zorv_counter_init(&counter, test::accountant::allocate, test::accountant::release, &memory);
      counter.fail_at = fail_at;
      counter.fail_from = fail_from;
      std::vector<void *> blocks;
      std::size_t total = 0;
      for (std::size_t request = 0; request < 6; ++request) {
        void *const block = pavo_zorv_counter_allocate(10 + request, &counter);
        ASSERT_EQ(block == nullptr, request == fail_at || request >= fail_from);
        if (block == nullptr) continue;
        total += 10 + request;
        blocks.push_back(block);
      }
      ASSERT_EQ(counter.requests, 6u);
      ASSERT_EQ(counter.bytes, total);
      ASSERT_EQ(counter.live, blocks.size());
      for (void *const block : blocks) pavo_zorv_counter_release(block, &counter);
      ASSERT_EQ(counter.live, 0u);
      ASSERT_EQ(memory.live(), 0u);
    }
  }
}

TEST(counter, does_not_count_blocks_that_the_underlying_callback_refuses) {
  pavo_zorv_pool pool;
  pavo_zorv_pool_init(&pool, nullptr, 0);
  pavo_zorv_counter counter;
  pavo_zorv_counter_init(&counter, pavo_zorv_pool_allocate, nullptr, &pool);
  EXPECT_EQ(pavo_zorv_counter_allocate(1, &counter), nullptr);
  EXPECT_EQ(counter.requests, 1u);
  EXPECT_EQ(counter.bytes, 0u);
  EXPECT_EQ(counter.live, 0u);
}

TEST(callbacks, over_a_null_allocator_return_no_memory) {
  pavo_zorv_budget budget;
  pavo_zorv_budget_init(&budget, 100, nullptr, nullptr, nullptr);
  EXPECT_EQ(pavo_zorv_budget_allocate(1, &budget), nullptr);
  EXPECT_EQ(budget.spent, 0u);
  pavo_zorv_counter counter;
  pavo_zorv_counter_init(&counter, nullptr, nullptr, nullptr);
  EXPECT_EQ(pavo_zorv_counter_allocate(1, &counter), nullptr);
  EXPECT_EQ(counter.requests, 1u);
  EXPECT_EQ(counter.live, 0u);
}

TEST(heap, allocates_a_block_for_0_bytes) {
  void *const block = pavo_zorv_heap_allocate(0, nullptr);
  EXPECT_NE(block, nullptr);
  pavo_zorv_heap_release(block, nullptr);
  pavo_zorv_heap_release(nullptr, nullptr);
}

TEST(results, have_distinct_names_and_texts_and_other_numbers_have_none) {
  EXPECT_STREQ(pavo_zorv_result_name(0), "CODEC_OK");
  EXPECT_STREQ(pavo_zorv_result_name(-1), "CODEC_ERR_TRUNCATED");
  EXPECT_STREQ(pavo_zorv_result_name(-2), "CODEC_ERR_BAD_WIRE_TYPE");
  EXPECT_STREQ(pavo_zorv_result_name(-3), "CODEC_ERR_WRONG_WIRE_TYPE");
  EXPECT_STREQ(pavo_zorv_result_name(-4), "CODEC_ERR_NO_MEMORY");
  std::set<std::string> texts;
  for (int result = 0; result >= -5; --result) texts.insert(pavo_zorv_result_text(result));
  EXPECT_EQ(texts.size(), 6u);
  for (const int other : {1, -5, INT_MAX, INT_MIN}) {
    EXPECT_STREQ(pavo_zorv_result_name(other), "not a result of pavo_zorv");
    EXPECT_STREQ(pavo_zorv_result_text(other), "not a result of pavo_zorv");
  }
}

}  // namespace
