// An input that changes while it is decoded: memory shared with another process may. What is read then is anyone's
// guess, but nothing is written beyond a block that was asked for, and the record is a good one. The only moments at
// which a test can change the input without another thread are those at which the library asks for memory.
#include <algorithm>
#include <map>

#include "checks.hpp"
#include "random_bytes.hpp"

namespace test {

namespace {

// What becomes of the input when some request for memory is made.
enum class change { noise, continuations, keys, key_and_value, key_and_length, earlier, later, zeros, ones, one_bit };
constexpr change every_change[] = {change::noise,          change::continuations, change::keys,  change::key_and_value,
                                   change::key_and_length, change::earlier,       change::later, change::zeros,
                                   change::ones,           change::one_bit};

// Blocks of exactly the size asked for, each before an inaccessible page and after bytes that must stay. Used again
// from one decoding to the next.
class guarded_memory {
 public:
  guarded_memory(const byte_string &input, unsigned char *place) : input_(input), place_(place) {}
  guarded_memory(const guarded_memory &) = delete;
  guarded_memory &operator=(const guarded_memory &) = delete;

  // The input is changed at the request of a number, from 0 on.
  void begin(std::size_t at, change how, std::uint64_t seed, unsigned char key) {
    used_ = requests_ = 0;
    large_.clear();
    live_.clear();
    at_ = at;
    how_ = how;
    seed_ = seed;
    key_ = key;
    if (!input_.empty()) std::memcpy(place_, input_.data(), input_.size());
  }

  static void *allocate(std::size_t size, void *context) { return static_cast<guarded_memory *>(context)->take(size); }
  static void release(void *block, void *context) {
    auto &live = static_cast<guarded_memory *>(context)->live_;
    EXPECT_EQ(live.erase(block), 1u) << "a block came back that is not out";
  }

  std::size_t requests() const { return requests_; }
  bool owns(const void *block) const { return live_.count(const_cast<void *>(block)) != 0; }

  // Whether the bytes before every block are as they were.
  bool intact() const {
    return std::all_of(live_.begin(), live_.end(), [](const auto &block) {
      const auto *const before = static_cast<const unsigned char *>(block.first) - block.second;
      return std::count(before, before + block.second, canary) == static_cast<std::ptrdiff_t>(block.second);
    });
  }

 private:
  static constexpr unsigned char canary = 0xc7;
  static constexpr std::size_t slot = 4096, most_before = 64;

  void *take(std::size_t size) {
    if (requests_++ == at_) change_input();
    fence *room;
    if (size <= slot) {
      if (used_ == slots_.size()) slots_.push_back(std::make_unique<fence>(slot));
      room = slots_[used_++].get();
    } else {
      large_.push_back(std::make_unique<fence>(size + most_before));
      room = large_.back().get();
    }
    unsigned char *const block = room->last(size);
    const auto before = std::min(most_before, static_cast<std::size_t>(block - room->first()));
    std::memset(block - before, canary, before);
    std::memset(block, 0xa5, size);
    live_[block] = before;
    return block;
  }

  void change_input() {
    const std::size_t size = input_.size();
    dice dice(seed_);
    // All of it, or what lies from some place on, or a piece.
    const auto first = dice.percent(50) ? 0 : static_cast<std::size_t>(dice.below(size));
    const auto last = dice.percent(70) ? size : static_cast<std::size_t>(dice.from(first, size));
    unsigned char *const begin = place_ + first, *const end = place_ + last;
    switch (how_) {
      case change::noise:
        std::generate(begin, end, [&] { return dice.byte(); });
        break;
      case change::continuations:
        std::fill(begin, end, 0x80);
        break;
      case change::keys:
        std::fill(begin, end, key_);
        break;
      case change::key_and_value:
      case change::key_and_length:
        for (unsigned char *at = begin; at != end; ++at) {
          const bool key_here = (at - place_) % 2 == static_cast<std::ptrdiff_t>(seed_ % 2);
          *at = key_here ? key_ : how_ == change::key_and_length ? std::uint8_t{0} : std::uint8_t{5};
        }
        break;
      case change::earlier:
        std::memmove(place_, place_ + 1, size - 1);
        break;
      case change::later:
        std::memmove(place_ + 1, place_, size - 1);
        break;
      case change::zeros:
        std::fill(begin, end, 0x00);
        break;
      case change::ones:
        std::fill(begin, end, 0xff);
        break;
      case change::one_bit:
        place_[dice.below(size)] ^= static_cast<unsigned char>(1u << dice.below(8));
        break;
    }
  }

  const byte_string &input_;
  unsigned char *place_;
  std::vector<std::unique_ptr<fence>> slots_, large_;
  std::map<void *, std::size_t> live_;  // with the bytes before each that must stay
  std::size_t used_ = 0, requests_ = 0, at_ = 0;
  change how_ = change::noise;
  std::uint64_t seed_ = 0;
  unsigned char key_ = 0;
};

}  // namespace

class changing_input : public law {
 protected:
  // Decodes an input that changes in every way at every request for memory, or at the first ones.
  void check(const byte_string &input, dice &dice, std::uint32_t options, std::size_t most_requests) {
    const message_type &type = *GetParam();
    const fence room(input.size());
    // What is loaded at once may not pass the end of the input, nor begin before it.
    unsigned char *const place = dice.percent(80) ? room.last(input.size()) : room.first();
    guarded_memory memory(input, place);
    const field &field = type.fields[static_cast<std::size_t>(dice.below(type.fields.size()))];
    const auto key = static_cast<unsigned char>(field.number * 8 + (field.is_varint() ? 0 : 2));
    std::size_t requests = 1;
    for (std::size_t at = 0; at < std::min(requests, most_requests); ++at) {
      for (const change how : every_change) {
        arena storage;
        const view record(type, storage.block(type.size));
        litter(record, dice);
        // The key of the message's own list, or one that many messages have, or any.
        const unsigned char keys[] = {key, 0x08, 0x0a, dice.byte()};
        memory.begin(at, how, dice.any(), keys[dice.below(4)]);
        const int result = type.decode(record.data(), place, input.size(), guarded_memory::allocate, &memory, options);
        requests = std::max(requests, memory.requests());
        ASSERT_TRUE(memory.intact()) << "something was written before a block";
        ASSERT_LE(result, CODEC_OK);
        ASSERT_GE(result, CODEC_ERR_NO_MEMORY);
        const std::vector<void *> blocks = owned_blocks(record, is_referenced(options));
        for (const void *const block : blocks) ASSERT_TRUE(memory.owns(block));
        if (result == CODEC_OK) {
          ASSERT_NO_FATAL_FAILURE(check_good(record, options));
        }
        type.free(record.data(), guarded_memory::release, &memory, options);
        for (const void *const block : blocks) ASSERT_FALSE(memory.owns(block)) << "a block did not come back";
      }
    }
  }

 private:
  // Whatever it holds by now, it is written, copied and compared like any other.
  void check_good(view record, std::uint32_t options) {
    const message_type &type = *GetParam();
    const byte_string written = encoding_of(record, options);
    EXPECT_EQ(compared(record, record), 0);
    accountant memory;
    arena storage;
    const view copy(type, storage.block(type.size));
    std::memset(copy.data(), 0x5a, type.size);
    ASSERT_EQ(type.duplicate(copy.data(), record.data(), accountant::allocate, &memory), CODEC_OK);
    EXPECT_EQ(compared(record, copy), 0);
    EXPECT_TRUE(encoding_of(copy, options) == written);
    type.free(copy.data(), accountant::release, &memory, 0);
    EXPECT_EQ(memory.live(), 0u);
  }
};
INSTANTIATE_TEST_SUITE_P(every, changing_input, testing::ValuesIn(subjects()), name_of_subject);

TEST_P(changing_input, writes_only_into_the_blocks_that_were_asked_for) {
  for_seeds(60, [&](dice &dice) {
    byte_string bytes = model_encode(random_record(*GetParam(), dice, recipes::canonical), false).bytes;
    if (dice.percent(30)) bytes = bytes_maker(dice).message(*GetParam());
    if (bytes.empty()) return;
    on_trial() = bytes;
    for (const std::uint32_t options : GetParam()->modes()) {
      ASSERT_NO_FATAL_FAILURE(check(bytes, dice, options, 40));
    }
  });
}

// Where a list of the message itself has many elements, of every size, in as many windows as it takes.
TEST_P(changing_input, does_not_make_a_list_longer_than_it_was_counted) {
  for_seeds(3, [&](dice &dice) {
    for (const field &list : GetParam()->fields) {
      if (!list.is_list()) continue;
      for (const unsigned count : {1u, 2u, 3u, 9u, 30u, 70u, 300u}) {
        for (const unsigned size : {1u, 2u, 3u, 5u}) {
          byte_string bytes;
          bytes_maker maker(dice);
          for (unsigned element = 0; element < count; ++element) {
            maker.varint(bytes, list.number * 8 + (list.is_varint() ? 0 : 2), 32, 0);
            if (list.is_varint()) {
              maker.varint(bytes, std::uint64_t{1} << 7 * (size - 1), 32, 0);
            } else {
              // Unknown fields inside.
              bytes = bytes + byte_string{static_cast<unsigned char>(3 * (size - 1))} +
                      (size - 1) * byte_string{0xf8, 0x01, 0x05};
            }
          }
          // An unknown field after it, now and then: so the run does not end with the input.
          if (dice.percent(50)) bytes = bytes + byte_string{0xf8, 0x01, 0x05};
          on_trial() = bytes;
          for (const std::uint32_t options : GetParam()->modes()) {
            ASSERT_NO_FATAL_FAILURE(check(bytes, dice, options, 3));
          }
        }
      }
    }
  });
}

}  // namespace test
