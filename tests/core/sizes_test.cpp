// Sizes that cannot be asked for: more elements than a count holds, blocks that no address space holds, and encodings
// that are longer. The messages that lead to them are of gigabytes, so these tests call what decides it directly.
#include "core/measure.hpp"
#include "core/memory.hpp"
#include "support.hpp"

namespace {

using sizes = std::vector<std::size_t>;

// Notes what it is asked for, and gives nothing.
void *note_size(std::size_t size, void *context) {
  static_cast<sizes *>(context)->push_back(size);
  return nullptr;
}

TEST(callers_memory, more_elements_than_a_count_holds_are_refused_without_asking) {
  if (sizeof(std::size_t) < 8) GTEST_SKIP() << "no such number";
  sizes asked;
  const pavo_zorv::memory memory{note_size, &asked};
  constexpr std::size_t too_many = std::size_t{UINT32_MAX} + 1;
  EXPECT_EQ(memory.array<std::uint8_t>(too_many), nullptr);
  EXPECT_EQ(memory.array<std::uint32_t>(too_many), nullptr);
  EXPECT_EQ(memory.array<api_policy>(too_many), nullptr);
  EXPECT_EQ(memory.array<std::uint8_t>(SIZE_MAX), nullptr);
  EXPECT_TRUE(asked.empty());
  EXPECT_EQ(memory.array<std::uint8_t>(UINT32_MAX), nullptr);
  EXPECT_EQ(memory.array<std::uint32_t>(UINT32_MAX), nullptr);
  EXPECT_EQ(asked, (sizes{UINT32_MAX, 4 * std::size_t{UINT32_MAX}})) << "as many as a count holds are asked for";
}

TEST(callers_memory, arrays_that_no_address_space_holds_are_refused_without_asking) {
  struct giant {
    unsigned char bytes[std::size_t{PTRDIFF_MAX} / 4];
  };
  sizes asked;
  const pavo_zorv::memory memory{note_size, &asked};
  EXPECT_EQ(memory.array<giant>(9), nullptr);
  EXPECT_EQ(memory.array<giant>(1000), nullptr);
  EXPECT_TRUE(asked.empty());
  EXPECT_EQ(memory.array<giant>(8), nullptr);
  EXPECT_EQ(asked, (sizes{8 * sizeof(giant)}));
}

TEST(callers_memory, a_text_whose_nul_has_no_place_is_refused_without_asking) {
  sizes asked;
  const pavo_zorv::memory memory{note_size, &asked};
  EXPECT_EQ(memory.text(SIZE_MAX), nullptr);
  EXPECT_TRUE(asked.empty());
  EXPECT_EQ(memory.text(SIZE_MAX - 1), nullptr);
  EXPECT_EQ(asked, (sizes{SIZE_MAX}));
}

TEST(measured_sizes, that_memory_cannot_have_are_the_largest_number_and_overflowed) {
  constexpr std::uint64_t more = std::uint64_t{UINT32_MAX} + 6;
  pavo_zorv::measurement found{false};
  EXPECT_EQ(pavo_zorv::size_in_memory(5, found), 5u);
  EXPECT_FALSE(found.overflowed);
  const std::size_t size = pavo_zorv::size_in_memory(more, found);
  if (sizeof(std::size_t) == 8) {
    EXPECT_EQ(size, more);
    EXPECT_FALSE(found.overflowed);
  } else {
    EXPECT_EQ(size, SIZE_MAX);
    EXPECT_TRUE(found.overflowed);
    EXPECT_EQ(pavo_zorv::size_in_memory(5, found), SIZE_MAX) << "a part has overflowed before";
  }
}

}  // namespace
