// An input that changes while it is decoded: memory shared with another process may. What is read then is anyone's
// guess, but nothing is written beyond a block that was asked for, and the record is a good one. The only moments at
// which a test can change the input without another thread are those at which the library asks for memory.
#include <algorithm>

#include "checks.hpp"
#include "random_bytes.hpp"

namespace test {

// What becomes of the input when some request for memory is made.
enum class changes { noise, continuations, keys, key_and_value, key_and_length, earlier, later, zeros, ones, one_bit };
constexpr changes every_change[] = {
    changes::noise,   changes::continuations, changes::keys,  changes::key_and_value, changes::key_and_length,
    changes::earlier, changes::later,         changes::zeros, changes::ones,          changes::one_bit};

// An input in memory, and how it changes.
class unsteady_input {
 public:
  unsteady_input(const byte_string &input, unsigned char *place, changes how, std::uint64_t seed, unsigned char key)
      : size_(input.size()), place_(place), how_(how), seed_(seed), key_(key) {
    std::memcpy(place_, input.data(), input.size());
  }

  void change() const {
    random_numbers random(seed_);
    // All of it, or what lies from some place on, or a piece.
    const auto first = random.percent(50) ? 0 : static_cast<std::size_t>(random.below(size_));
    const auto last = random.percent(70) ? size_ : static_cast<std::size_t>(random.from(first, size_));
    unsigned char *const begin = place_ + first, *const end = place_ + last;
    switch (how_) {
      case changes::noise:
        std::generate(begin, end, [&] { return random.byte(); });
        break;
      case changes::continuations:
        std::fill(begin, end, 0x80);
        break;
      case changes::keys:
        std::fill(begin, end, key_);
        break;
      case changes::key_and_value:
      case changes::key_and_length:
        for (unsigned char *at = begin; at != end; ++at) {
          const bool key_here = (at - place_) % 2 == static_cast<std::ptrdiff_t>(seed_ % 2);
          *at = key_here ? key_ : how_ == changes::key_and_length ? std::uint8_t{0} : std::uint8_t{5};
        }
        break;
      case changes::earlier:
        std::memmove(place_, place_ + 1, size_ - 1);
        break;
      case changes::later:
        std::memmove(place_ + 1, place_, size_ - 1);
        break;
      case changes::zeros:
        std::fill(begin, end, 0x00);
        break;
      case changes::ones:
        std::fill(begin, end, 0xff);
        break;
      case changes::one_bit:
        place_[random.below(size_)] ^= static_cast<unsigned char>(1u << random.below(8));
        break;
    }
  }

 private:
  std::size_t size_;
  unsigned char *place_;
  changes how_;
  std::uint64_t seed_;
  unsigned char key_;
};

class changing_input : public law {
 protected:
  // Decodes an input that changes in every way at every request for memory, or at the first ones.
  void check(const byte_string &input, random_numbers &random, std::uint32_t options, std::size_t most_requests) {
    const naive::message &type = *GetParam();
    const fence room(input.size());
    // What is loaded at once may not pass the end of the input, nor begin before it.
    unsigned char *const place = random.percent(80) ? room.last(input.size()) : room.first();
    const member &member = type.members[static_cast<std::size_t>(random.below(type.members.size()))];
    const auto key = static_cast<unsigned char>(member.number * 8 + member.wire_type());
    std::size_t requests = 1;
    for (std::size_t at = 0; at < std::min(requests, most_requests); ++at) {
      for (const changes how : every_change) {
        arena storage;
        const view record(type, storage.block(type.size));
        fill_with_rubbish(record, random);
        // The key of the message's own list, or one that many messages have, or any.
        const unsigned char keys[] = {key, 0x08, 0x0a, random.byte()};
        const unsteady_input changing(input, place, how, random.any(), keys[random.below(4)]);
        blocks_.reset();
        accountant memory;
        memory.obtain = [&](std::size_t size) { return blocks_.take(size); };
        memory.put_away = [](unsigned char *) {};
        memory.before_each = [&](std::size_t request) {
          if (request == at) changing.change();
        };
        const int result =
            type.functions->decode(record.data(), place, input.size(), accountant::allocate, &memory, options);
        requests = std::max(requests, memory.requests());
        ASSERT_TRUE(blocks_.intact()) << "something was written before a block";
        ASSERT_LE(result, CODEC_OK);
        ASSERT_GE(result, CODEC_ERR_NO_MEMORY);
        const std::vector<void *> blocks = owned_blocks(record, is_referenced(options));
        for (const void *const block : blocks) ASSERT_TRUE(memory.owns(block));
        if (result == CODEC_OK) {
          ASSERT_NO_FATAL_FAILURE(check_good(record, options));
        }
        type.functions->free(record.data(), accountant::release, &memory, options);
        for (const void *const block : blocks) ASSERT_FALSE(memory.owns(block)) << "a block did not come back";
      }
    }
  }

 private:
  // Whatever it holds by now, it is written, copied and compared like any other.
  void check_good(view record, std::uint32_t options) {
    const naive::message &type = *GetParam();
    const byte_string written = encoding_of(record, options);
    EXPECT_EQ(compared(record, record), 0);
    accountant memory;
    arena storage;
    const view copy(type, storage.block(type.size));
    std::memset(copy.data(), 0x5a, type.size);
    ASSERT_EQ(type.functions->duplicate(copy.data(), record.data(), accountant::allocate, &memory), CODEC_OK);
    EXPECT_EQ(compared(record, copy), 0);
    EXPECT_TRUE(encoding_of(copy, options) == written);
    type.functions->free(copy.data(), accountant::release, &memory, 0);
    EXPECT_EQ(memory.live(), 0u);
  }

  fenced_blocks blocks_;
};
INSTANTIATE_TEST_SUITE_P(every, changing_input, testing::ValuesIn(subjects()), name_of_subject);

TEST_P(changing_input, writes_only_into_the_blocks_that_were_asked_for) {
  for_seeds(60, [&](random_numbers &random) {
    byte_string bytes = naive::encoding(random_record(*GetParam(), random, shapes::canonical)).bytes();
    if (random.percent(30)) bytes = bytes_maker(random).message(*GetParam());
    if (bytes.empty()) return;
    tried() = bytes;
    for (const std::uint32_t options : GetParam()->modes()) {
      ASSERT_NO_FATAL_FAILURE(check(bytes, random, options, 40));
    }
  });
}

// Where a list of the message itself has many elements, of every size, in as many windows as it takes.
TEST_P(changing_input, does_not_make_a_list_longer_than_it_was_counted) {
  for_seeds(3, [&](random_numbers &random) {
    for (const member &list : GetParam()->members) {
      if (!list.is_list()) continue;
      for (const unsigned count : {1u, 2u, 3u, 9u, 30u, 70u, 300u}) {
        for (const unsigned size : {1u, 2u, 3u, 5u}) {
          byte_string bytes;
          bytes_maker maker(random);
          for (unsigned element = 0; element < count; ++element) {
            maker.varint(bytes, list.number * 8 + list.wire_type(), 32, 0);
            switch (list.wire()) {
              case naive::wire::varint:
                maker.varint(bytes, std::uint64_t{1} << 7 * (size - 1), 32, 0);
                break;
              case naive::wire::delimited:
                // Unknown members inside.
                bytes = bytes + byte_string{static_cast<unsigned char>(3 * (size - 1))} +
                        (size - 1) * byte_string{0xf8, 0x01, 0x05};
                break;
            }
          }
          // An unknown field after it, now and then: so the run does not end with the input.
          if (random.percent(50)) bytes = bytes + byte_string{0xf8, 0x01, 0x05};
          tried() = bytes;
          for (const std::uint32_t options : GetParam()->modes()) {
            ASSERT_NO_FATAL_FAILURE(check(bytes, random, options, 3));
          }
        }
      }
    }
  });
}

}  // namespace test
