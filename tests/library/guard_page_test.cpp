// However little stack is left, an operation either touches the guard page or completes, and never writes below that
// page. Tried with every amount of stack up to 16 KB, for every message.
#include "laws.hpp"
#include "other_stack.hpp"

namespace {

using namespace test;

// Everything that an operation reads or writes. It is at the same address in every attempt, so that all bytes of the
// results are equal, including pointers.
struct state {
  std::size_t result;    // a code, a length, a sign
  std::size_t used;      // bytes of the pool
  std::size_t released;  // blocks that were released
  unsigned char record[2048];
  unsigned char buffer[9000];
  alignas(16) unsigned char pool[128 * 1024];
};
state now;

void *take(std::size_t size, void *) {
  const std::size_t place = now.used;
  now.used += (size + 16) / 16 * 16;  // also for an empty block
  return now.used <= sizeof now.pool ? now.pool + place : nullptr;
}
void give(void *, void *) { ++now.released; }

std::size_t size_with(std::size_t used) { return offsetof(state, pool) + used; }

// Runs `work` on the state `before`, first with plenty of stack, then with every amount of stack: each attempt must
// fault at the guard or give the same state. Returns that state.
std::unique_ptr<state> is_tried(other_stack &stack, const std::string &name, const state &before,
                                const std::function<void()> &work) {
  now = before;
  work();
  auto after = std::make_unique<state>(now);
  EXPECT_LT(now.used, sizeof now.pool) << name;
  const std::size_t size = size_with(now.used);
  std::size_t faults = 0, done = 0, others = 0, steps_over = 0;
  for (std::size_t left = 0; left <= 16384; left += 16) {
    std::memcpy(&now, &before, size);
    if (stack.is_enough(other_stack::least + left, work)) {
      ++done;
      others += std::memcmp(&now, after.get(), size) != 0;
    } else {
      ++faults;
    }
    if (!stack.is_untouched_below()) {
      ++steps_over;
      stack.fill_below();
    }
  }
  EXPECT_EQ(steps_over, 0u) << name << " writes below the guard with this many amounts of stack";
  EXPECT_EQ(others, 0u) << name << " gives another result with this many amounts of stack";
  // Both outcomes must occur.
  EXPECT_NE(faults, 0u) << name;
  EXPECT_NE(done, 0u) << name;
  return after;
}

std::unique_ptr<state> rubbish() {
  auto result = std::make_unique<state>();
  std::memset(result.get(), 0x5a, sizeof *result);
  result->used = result->released = 0;
  return result;
}

constexpr shape filled{.presence = 100, .longest_list = 2, .longest_text = 6};

class guard_page : public testing::Test {
 protected:
  // For every message and the options that it takes, a record with all its members.
  template <class Work>
  void for_every_message(Work work) {
    for (const naive::message *const type : subjects()) {
      random_numbers random(7);
      const random_record record(*type, random, filled);
      ASSERT_LE(type->size, sizeof now.record);
      for (const std::uint32_t options : type->modes()) work(*type, record, options);
    }
  }

  other_stack stack_;
};

TEST_F(guard_page, and_what_is_written_below_it_are_seen) {
  const auto write_below = [] { static_cast<volatile unsigned char *>(__builtin_frame_address(0))[-5000] = 1; };
  EXPECT_TRUE(stack_.is_enough(other_stack::most, write_below));
  EXPECT_TRUE(stack_.is_untouched_below());
  std::size_t faults = 0, steps_over = 0;
  for (std::size_t left = 0; left <= 16384; left += 16) {
    faults += !stack_.is_enough(other_stack::least + left, write_below);
    steps_over += !stack_.is_untouched_below();
    stack_.fill_below();
  }
  EXPECT_GT(faults, 200u);
  EXPECT_GT(steps_over, 20u);
}

TEST_F(guard_page, is_not_stepped_over_by_encoding) {
  for_every_message([&](const naive::message &type, const random_record &record, std::uint32_t options) {
    for (const std::size_t length : {std::size_t{0}, std::size_t{64}, std::size_t{4000}, std::size_t{9000}}) {
      unsigned char *const buffer = length != 0 ? now.buffer : nullptr;
      const auto after = is_tried(stack_, std::string(type.name) + ", " + std::to_string(length), *rubbish(), [&] {
        now.result = type.functions->encode(record.data(), buffer, length, nullptr, nullptr, options);
      });
      EXPECT_GT(after->result, 0u) << type.name;
    }
  });
}

TEST_F(guard_page, is_not_stepped_over_by_decoding_and_releasing) {
  for_every_message([&](const naive::message &type, const random_record &record, std::uint32_t options) {
    const byte_string input = encoding_of(record, 0);
    const auto read = is_tried(stack_, std::string("decode ") + type.name, *rubbish(), [&] {
      now.result = static_cast<std::size_t>(
          type.functions->decode(now.record, input.data(), input.size(), take, nullptr, options));
    });
    EXPECT_EQ(read->result, static_cast<std::size_t>(CODEC_OK)) << type.name;
    const auto released = is_tried(stack_, std::string("free ") + type.name, *read,
                                   [&] { type.functions->free(now.record, give, nullptr, options); });
    EXPECT_EQ(released->released != 0, read->used != 0) << type.name;
  });
}

TEST_F(guard_page, is_not_stepped_over_by_copying_and_comparing) {
  for_every_message([&](const naive::message &type, const random_record &record, std::uint32_t) {
    const auto copied = is_tried(stack_, std::string("duplicate ") + type.name, *rubbish(), [&] {
      now.result = static_cast<std::size_t>(type.functions->duplicate(now.record, record.data(), take, nullptr));
    });
    EXPECT_EQ(copied->result, static_cast<std::size_t>(CODEC_OK)) << type.name;
    const auto compared = is_tried(stack_, std::string("compare ") + type.name, *copied, [&] {
      now.result = static_cast<std::size_t>(type.functions->compare(now.record, record.data()));
    });
    EXPECT_EQ(compared->result, 0u) << type.name;
  });
}

}  // namespace
