// The wire primitives against their proved reference implementation in proof/: on every short input, on over-long
// varints with every pattern of top bits, and on numbers around every power of two.
#include "wire.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/memory.hpp"
#include "core/writer.hpp"
#include "support.hpp"

namespace {

namespace core = pavo_zorv;
using test::fenced_block;

// Every primitive that reads, on one input.
class readers {
 public:
  void agree_on(const unsigned char *at, const unsigned char *end) {
    const auto [next_32, value_32] = core::read_varint<std::uint32_t>(at, end);
    const varint_32 proved_32 = ::read_varint_32(at, end);
    expect(proved_32.next == next_32 && (next_32 == nullptr || proved_32.value == value_32), "read_varint, 32 bits", at,
           end);

    const auto [next_64, value_64] = core::read_varint<std::uint64_t>(at, end);
    const varint_64 proved_64 = ::read_varint_64(at, end);
    expect(proved_64.next == next_64 && (next_64 == nullptr || proved_64.value == value_64), "read_varint, 64 bits", at,
           end);

    const auto [past_32, number_32] = core::read_number<std::uint32_t>(at, end);
    const varint_32 proved_number_32 = ::read_number_32(at, end);
    expect(proved_number_32.next == past_32 && (past_32 == nullptr || proved_number_32.value == number_32),
           "read_number, 32 bits", at, end);

    const auto [past_64, number_64] = core::read_number<std::uint64_t>(at, end);
    const varint_64 proved_number_64 = ::read_number_64(at, end);
    expect(proved_number_64.next == past_64 && (past_64 == nullptr || proved_number_64.value == number_64),
           "read_number, 64 bits", at, end);

    expect(::skip_varint(at, end) == core::skip_varint(at, end), "skip_varint", at, end);

    const core::delimited found = core::read_delimited(at, end);
    const ::delimited proved = ::read_delimited(at, end);
    expect(proved.first == found.first && proved.last == found.last, "read_delimited", at, end);
    expect(::skip_delimited(at, end) == core::skip_delimited(at, end), "skip_delimited", at, end);

    for (std::uint32_t key = 8; key < 16; ++key) {
      const core::step passed = core::skip_unknown(key, at, end);
      const ::step proved_passed = ::skip_unknown(key, at, end);
      expect(proved_passed.result == passed.result && (passed.result != 0 || proved_passed.next == passed.next),
             "skip_unknown", at, end);
    }
    ++inputs_;
  }

  std::size_t inputs() const { return inputs_; }

 private:
  static void expect(bool same, const char *what, const unsigned char *at, const unsigned char *end) {
    if (!same) ADD_FAILURE() << what << " and its reference differ: " << test::show(test::byte_string(at, end));
  }

  std::size_t inputs_ = 0;
};

// Bytes around all that is compared with: beside 0x80, and lengths near those of the inputs.
constexpr unsigned char letters[] = {0x00, 0x01, 0x02, 0x03, 0x04, 0x07, 0x08, 0x0f, 0x10, 0x40,
                                     0x7f, 0x80, 0x81, 0x82, 0x84, 0x8f, 0x90, 0xc0, 0xfe, 0xff};

TEST(proved_reference, reads_every_input_of_up_to_two_bytes_as_the_core_does) {
  readers both;
  const fenced_block block(2);
  unsigned char *const end = block.data() + 2;
  both.agree_on(end, end);
  for (unsigned first = 0; first < 256; ++first) {
    end[-1] = static_cast<unsigned char>(first);
    both.agree_on(end - 1, end);
    end[-2] = static_cast<unsigned char>(first);
    for (unsigned second = 0; second < 256; ++second) {
      end[-1] = static_cast<unsigned char>(second);
      both.agree_on(end - 2, end);
    }
  }
  EXPECT_EQ(both.inputs(), 1u + 256u + 65536u);
}

// All of them in the tier `proof` of ./test --long; of every day, those with every thirteenth first byte.
TEST(proved_reference, reads_inputs_of_three_bytes_as_the_core_does) {
  readers both;
  const unsigned step = std::getenv("PAVO_ZORV_EVERY_INPUT") != nullptr ? 1 : 13;
  const fenced_block block(3);
  unsigned char *const at = block.data();
  for (unsigned first = 0; first < 256 && !HasFailure(); first += step) {
    for (unsigned others = 0; others < 1u << 16; ++others) {
      at[0] = static_cast<unsigned char>(first);
      at[1] = static_cast<unsigned char>(others);
      at[2] = static_cast<unsigned char>(others >> 8);
      both.agree_on(at, at + 3);
    }
  }
  EXPECT_EQ(both.inputs(), std::size_t{step == 1 ? 256u : 20u} << 16);
  std::printf("%zu inputs of three bytes\n", both.inputs());
}

TEST(proved_reference, reads_inputs_of_four_bytes_around_all_boundaries_as_the_core_does) {
  readers both;
  constexpr std::size_t count = sizeof letters;
  const fenced_block block(4);
  unsigned char *const at = block.data();
  for (std::size_t string = 0; string < count * count * count * count && !HasFailure(); ++string) {
    for (std::size_t i = 0, rest = string; i < 4; ++i, rest /= count) at[i] = letters[rest % count];
    both.agree_on(at, at + 4);
  }
  EXPECT_EQ(both.inputs(), 160000u);
}

TEST(proved_reference, reads_over_long_varints_with_every_pattern_of_top_bits_as_the_core_does) {
  readers both;
  for (std::size_t size = 1; size <= 13; ++size) {
    const fenced_block block(size);
    for (unsigned pattern = 0; pattern >> size == 0 && !HasFailure(); ++pattern) {
      for (const unsigned low : {0x00u, 0x01u, 0x55u, 0x7fu}) {
        for (std::size_t i = 0; i < size; ++i)
          block.data()[i] = static_cast<unsigned char>((low + 3 * i) % 0x80 | (pattern >> i & 1) << 7);
        both.agree_on(block.data(), block.data() + size);
      }
    }
  }
  EXPECT_EQ(both.inputs(), 4u * ((1u << 14) - 2));
}

TEST(proved_reference, skips_and_delimits_at_the_end_of_the_input_as_the_core_does) {
  readers both;
  for (const std::size_t after : {0u, 1u, 3u, 4u, 5u, 7u, 8u, 9u, 126u, 127u, 128u, 129u, 300u}) {
    for (std::size_t length = 0; length <= 302; ++length) {
      const fenced_block block(2 + after);
      block.data()[0] = static_cast<unsigned char>(length | 0x80);
      block.data()[1] = static_cast<unsigned char>(length >> 7);
      both.agree_on(block.data(), block.data() + 2 + after);
    }
  }
  EXPECT_EQ(both.inputs(), 13u * 303u);
}

// Sizes and writers, for a number, with `before` bytes that may be written before it.
template <class Value, class Size, class Long, class Exact, class Clipped>
void agree_on_number(Value value, std::size_t before, Size size_of, Long prepend_long, Exact prepend, Clipped clipped) {
  const std::size_t size = core::varint_size(value);
  ASSERT_EQ(size_of(value), size) << value;
  unsigned char ours[32], theirs[32];
  const std::size_t room = size + before;
  const auto clear = [&] { std::memset(ours, 0xc7, 32), std::memset(theirs, 0xc7, 32); };
  const auto same = [&](const char *what) {
    ASSERT_EQ(std::memcmp(ours, theirs, sizeof ours), 0) << what << ", " << value << ", room for " << room;
  };
  clear();
  ASSERT_EQ(core::prepend_varint(ours + room, value) - ours, static_cast<std::ptrdiff_t>(before));
  ASSERT_EQ(prepend_long(theirs + room, value) - theirs, static_cast<std::ptrdiff_t>(before));
  same("byte by byte");
  clear();
  ASSERT_EQ(core::writer::exact(ours, nullptr, false).prepend_varint(ours + room, value) - ours,
            static_cast<std::ptrdiff_t>(before));
  ASSERT_EQ(prepend(theirs, theirs + room, value) - theirs, static_cast<std::ptrdiff_t>(before));
  same("exact");
  const auto read = core::read_varint<Value>(theirs + before, theirs + room);
  ASSERT_TRUE(read.next == theirs + room && read.value == value) << value;
  for (const std::size_t length : {std::size_t{0}, before, before + 1, before + size / 2, room - 1, room}) {
    clear();
    ASSERT_EQ(core::clipped_writer(ours, length, nullptr, false).prepend_varint(room, value), before);
    ASSERT_EQ(clipped(theirs, length, room, value), before);
    same("clipped");
  }
}

void agree_on_32(std::uint32_t value, std::size_t before) {
  agree_on_number(value, before, ::varint_size_32, ::prepend_long_varint_32, ::prepend_varint_32,
                  ::clipped_prepend_varint_32);
}

void agree_on_64(std::uint64_t value, std::size_t before) {
  agree_on_number(value, before, ::varint_size_64, ::prepend_long_varint_64, ::prepend_varint_64,
                  ::clipped_prepend_varint_64);
}

TEST(proved_reference, writes_small_numbers_as_the_core_does) {
  for (std::uint32_t value = 0; value < 1u << 16 && !HasFatalFailure(); ++value) {
    agree_on_32(value, value % 12);
    agree_on_64(value, (value + 5) % 12);
  }
}

TEST(proved_reference, writes_numbers_around_every_power_of_two_as_the_core_does) {
  for (unsigned bit = 0; bit < 64 && !HasFatalFailure(); ++bit) {
    for (std::uint64_t step = 0; step < 9; ++step) {
      const std::uint64_t value = (std::uint64_t{1} << bit) + step - 4;
      for (std::size_t before = 0; before <= 12; ++before) {
        agree_on_64(value, before);
        agree_on_64(value * 0x9e3779b97f4a7c15, before);
        agree_on_32(static_cast<std::uint32_t>(value), before);
        agree_on_32(static_cast<std::uint32_t>(value * 0x9e3779b97f4a7c15), before);
      }
    }
  }
}

// Notes what it is asked for.
void *note(std::size_t size, void *context) {
  *static_cast<std::size_t *>(context) = size;
  return context;
}

template <std::size_t Size>
void agree_on_array(std::size_t count) {
  struct element {
    unsigned char bytes[Size];
  };
  std::size_t asked = 0, proved = 0;
  const bool granted = core::memory{note, &asked}.array<element>(count) != nullptr;
  ASSERT_EQ(::array_fits(count, Size, &proved) != 0, granted) << count << " elements of " << Size;
  ASSERT_EQ(proved, asked) << count << " elements of " << Size;
}

TEST(proved_reference, refuses_the_same_arrays_and_texts_as_the_core) {
  for (const std::size_t base : {std::size_t{0}, std::size_t{UINT32_MAX}, SIZE_MAX / 4, SIZE_MAX / 40, SIZE_MAX / 1248,
                                 SIZE_MAX / (PTRDIFF_MAX / 4), SIZE_MAX}) {
    for (std::size_t step = 0; step < 7; ++step) {
      const std::size_t count = base + step - 3;
      agree_on_array<1>(count);
      agree_on_array<4>(count);
      agree_on_array<40>(count);
      agree_on_array<1248>(count);
      agree_on_array<PTRDIFF_MAX / 4>(count);
      std::size_t asked = 0, proved = 0;
      const bool granted = core::memory{note, &asked}.text(count) != nullptr;
      ASSERT_EQ(::text_fits(count, &proved) != 0, granted) << count;
      ASSERT_EQ(proved, asked) << count;
    }
  }
}

}  // namespace
