// Sizes that cannot be asked for: more elements than a count holds, and blocks that no address space holds. The inputs
// that lead to them are of gigabytes, so these tests ask the caller's memory directly.
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

}  // namespace
