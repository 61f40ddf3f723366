// Laws of the options word: what reference mode changes, and that nothing else in the word does.
#include "checks.hpp"

namespace test {

std::vector<const naive::message *> subjects_with_options() {
  std::vector<const naive::message *> result;
  for (const naive::message *const type : subjects()) {
    if (type->functions->takes_options) result.push_back(type);
  }
  return result;
}

class reference_laws : public law {};
INSTANTIATE_TEST_SUITE_P(every, reference_laws, testing::ValuesIn(subjects_with_options()), name_of_subject);

// The blocks that bytes members of a record point to, at any depth, and their lengths.
void add_bytes(view record, std::vector<piece> &blocks) {
  for (const member &member : record.type().members) {
    if (member.kind == kind::nested) add_bytes(record.nested(member), blocks);
    for (std::uint64_t i = 0; member.kind == kind::message_list && i < record.count(member); ++i) {
      add_bytes(record.element(member, i), blocks);
    }
    if (member.kind == kind::bytes && record.pointer(member) != nullptr) {
      blocks.push_back({record.pointer(member), record.count(member)});
    }
  }
}

TEST_P(reference_laws, decoded_bytes_lie_in_the_input_and_no_memory_is_asked_for_them) {
  for_seeds(300, [&](random_numbers &random) {
    const byte_string bytes = naive::encoding(random_record(*GetParam(), random, shapes::canonical)).bytes();
    tried() = bytes;
    decoding copied(*GetParam(), random, 0);
    ASSERT_EQ(copied.decode(bytes), CODEC_OK);
    decoding borrowed(*GetParam(), random, PAVO_ZORV_REFERENCE);
    ASSERT_EQ(borrowed.decode(bytes), CODEC_OK);
    std::vector<piece> blocks;
    add_bytes(borrowed.record, blocks);
    for (const piece &block : blocks) {
      EXPECT_GE(block.start, borrowed.input().data());
      EXPECT_LE(block.start + block.length, borrowed.input().data() + borrowed.input().size());
    }
    EXPECT_EQ(borrowed.memory.requests() + blocks.size(), copied.memory.requests());
  });
}

TEST_P(reference_laws, a_record_decoded_by_reference_is_copied_whole) {
  for_seeds(200, [&](random_numbers &random) {
    const byte_string bytes = naive::encoding(random_record(*GetParam(), random, shapes::canonical)).bytes();
    tried() = bytes;
    decoding back(*GetParam(), random, PAVO_ZORV_REFERENCE);
    ASSERT_EQ(back.decode(bytes), CODEC_OK);
    std::size_t ignored = 0;
    check_copying(back.record, random, {}, ignored);
  });
}

// The pieces of the outermost message do not overlap. Sent one after another they are the encoding, unless nested
// messages reference bytes as well: these belong between bytes of the buffer.
TEST_P(reference_laws, the_pieces_of_the_outermost_message_together_are_the_whole_encoding) {
  std::size_t complete = 0;
  for_seeds(300, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::canonical);
    const naive::encoding expected(record, true);
    tried() = expected.bytes();
    const fenced_block buffer(expected.size());
    table seen(static_cast<std::uint32_t>(expected.entries()));
    GetParam()->functions->encode(record.data(), buffer.data(), buffer.size(), seen.entries(), &seen.count,
                                  PAVO_ZORV_REFERENCE);
    ASSERT_EQ(seen.count, expected.entries());
    byte_string together;
    for (std::size_t i = 0; i < expected.entries(); ++i) {
      const pavo_zorv_segment &entry = seen.entries()[i];
      const bool outermost = expected.is_outermost(i);
      if (outermost) together.insert(together.end(), entry.start, entry.start + entry.length);
      if (!outermost && expected.is_referenced(i)) return;
    }
    EXPECT_EQ(together, naive::encoding(record).bytes());
    ++complete;
  });
  EXPECT_TRUE(complete > 5 || !is_tried_in_full()) << complete;
}

TEST_P(reference_laws, option_bits_without_a_meaning_change_nothing) {
  for_seeds(200, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::canonical);
    for (const std::uint32_t options : GetParam()->modes()) {
      const auto more = static_cast<std::uint32_t>(random.any()) & ~std::uint32_t{PAVO_ZORV_REFERENCE};
      const byte_string bytes = naive::encoding(record).bytes();
      tried() = bytes;
      EXPECT_EQ(encoding_of(record, options | more), naive::encoding(record, is_referenced(options)).bytes());
      decoding plain(*GetParam(), random, options);
      decoding other(*GetParam(), random, options | more);
      EXPECT_EQ(plain.decode(bytes), CODEC_OK);
      EXPECT_EQ(other.decode(bytes), CODEC_OK);
      EXPECT_EQ(plain.memory.sizes, other.memory.sizes);
      EXPECT_EQ(compared(plain.record, other.record), 0);
    }
  });
}

}  // namespace test
