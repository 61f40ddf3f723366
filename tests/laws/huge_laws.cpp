// Laws of encodings longer than memory: records with random bytes members of any 64-bit length, compared with the
// naive encoder, which keeps only where blocks lie.
#include <algorithm>

#include "laws.hpp"

namespace test {

namespace {

bool holds_bytes(const naive::message &type) {
  return std::any_of(type.members.begin(), type.members.end(), [](const member &member) {
    return member.kind == kind::bytes || (member.nested != nullptr && holds_bytes(*member.nested));
  });
}

std::vector<const naive::message *> subjects_with_bytes() {
  std::vector<const naive::message *> result;
  for (const naive::message *const type : subjects()) {
    if (holds_bytes(*type)) result.push_back(type);
  }
  return result;
}

// Lengths near those at which sums and casts wrap, with 32 bits and with 64.
std::uint64_t any_length(random_numbers &random) {
  constexpr std::uint64_t halves[] = {0, std::uint64_t{1} << 31, std::uint64_t{1} << 32, std::uint64_t{1} << 62,
                                      std::uint64_t{1} << 63};
  const std::uint64_t few = random.below(80);
  switch (random.below(5)) {
    case 0:
      return random.number();
    case 1:
      return halves[random.below(std::size(halves))] - few;
    case 2:
      return halves[random.below(std::size(halves))] + few;
    case 3:
      return SIZE_MAX - random.below(16);
    default:
      return few % 12;
  }
}

// Gives every bytes member a length, and a block as long only where memory may hold it.
void make_huge(view record, random_numbers &random, arena &arena) {
  for (const member &member : record.type().members) {
    if (member.kind == kind::bytes) {
      const std::uint64_t length = any_length(random);
      // What may fit into the scratch buffer is read, whatever becomes of it.
      const std::size_t size = length < 20000 ? static_cast<std::size_t>(length) : 1;
      auto *const block = arena.array<unsigned char>(size);
      for (std::size_t i = 0; i < size; ++i) block[i] = random.byte();
      record.set_has(member, random.percent(90));
      record.set_count(member, length);
      record.set_pointer(member, random.percent(40) ? nullptr : block);
    } else if (member.kind == kind::nested) {
      make_huge(record.nested(member), random, arena);
    } else if (member.kind == kind::message_list && record.pointer(member) != nullptr) {
      for (std::uint64_t i = 0; i < record.count(member); ++i) make_huge(record.element(member, i), random, arena);
    }
  }
}

}  // namespace

class huge_laws : public law {};
INSTANTIATE_TEST_SUITE_P(every, huge_laws, testing::ValuesIn(subjects_with_bytes()), name_of_subject);

TEST_P(huge_laws, totals_are_exact_or_nothing_is_touched) {
  std::uint64_t beyond = 0, large = 0;
  for_seeds(3000, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::encodable);
    arena blocks;
    make_huge(record, random, blocks);
    const std::size_t room = static_cast<std::size_t>(random.below(80));
    for (const std::uint32_t options : GetParam()->modes()) {
      const naive::encoding encoding(record, is_referenced(options));
      const std::size_t length = encoding.has_size() ? encoding.size() : SIZE_MAX;
      beyond += !encoding.has_size();
      large += encoding.has_size() && encoding.size() > SIZE_MAX / 2;
      ASSERT_EQ(measured(record, options), length);

      const byte_string untouched(room, fenced_block::untouched);
      const byte_string expected = encoding.has_size() ? encoding.in_buffer(untouched) : untouched;
      const fenced_block plain(room), listed(room);
      ASSERT_EQ(GetParam()->functions->encode(record.data(), plain.data(), room, nullptr, nullptr, options), length);
      EXPECT_EQ(plain.content(), expected);

      const auto capacity = static_cast<std::uint32_t>(random.below(encoding.entries() + 2));
      table segments(capacity);
      ASSERT_EQ(GetParam()->functions->encode(record.data(), listed.data(), room, segments.entries(), &segments.count,
                                              options),
                length);
      EXPECT_EQ(listed.content(), expected);
      EXPECT_EQ(segments.count, encoding.entries());
      const std::size_t filled = encoding.has_size() ? std::min<std::size_t>(capacity, encoding.entries()) : 0;
      for (std::size_t i = 0; i < filled; ++i) {
        const pavo_zorv_segment right = encoding.in_table(i, listed.data(), room);
        EXPECT_EQ(segments.pieces()[i], (piece{right.start, right.length})) << "entry " << i;
      }
      EXPECT_TRUE(segments.untouched_from(static_cast<std::uint32_t>(filled)));
    }
  });
  if (is_tried_in_full()) {
    EXPECT_GT(beyond, 20u) << "totals that size_t cannot hold";
    EXPECT_GT(large, 20u) << "totals of more than half of what it holds";
  }
}

}  // namespace test
