// Laws of the options word: what reference mode changes, and that nothing else in the word does.
#include "checks.hpp"

namespace test {

std::vector<const message_type *> subjects_with_options() {
  std::vector<const message_type *> result;
  for (const message_type *const type : subjects()) {
    if (type->takes_options) result.push_back(type);
  }
  return result;
}

class reference_laws : public law {};
INSTANTIATE_TEST_SUITE_P(every, reference_laws, testing::ValuesIn(subjects_with_options()), name_of_subject);

// The blocks that bytes members of a record point to, at any depth, and their lengths.
void add_bytes(view record, std::vector<piece> &blocks) {
  for (const field &field : record.type().fields) {
    if (field.kind == kind::nested) add_bytes(record.nested(field), blocks);
    for (std::uint64_t i = 0; field.kind == kind::message_list && i < record.count(field); ++i) {
      add_bytes(record.element(field, i), blocks);
    }
    if (field.kind == kind::bytes && record.pointer(field) != nullptr) {
      blocks.push_back({record.pointer(field), record.count(field)});
    }
  }
}

TEST_P(reference_laws, decoded_bytes_lie_in_the_input_and_no_memory_is_asked_for_them) {
  for_seeds(300, [&](dice &dice) {
    const byte_string bytes = model_encode(random_record(*GetParam(), dice, recipes::canonical), false).bytes;
    on_trial() = bytes;
    decoding copied(*GetParam(), dice, 0);
    ASSERT_EQ(copied.decode(bytes), CODEC_OK);
    decoding borrowed(*GetParam(), dice, PAVO_ZORV_REFERENCE);
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
  for_seeds(200, [&](dice &dice) {
    const byte_string bytes = model_encode(random_record(*GetParam(), dice, recipes::canonical), false).bytes;
    on_trial() = bytes;
    decoding back(*GetParam(), dice, PAVO_ZORV_REFERENCE);
    ASSERT_EQ(back.decode(bytes), CODEC_OK);
    std::size_t ignored = 0;
    check_copying(back.record, dice, {}, ignored);
  });
}

// The pieces of the outermost message do not overlap. Sent one after another they are the encoding, unless nested
// messages reference bytes as well: these belong between bytes of the buffer.
TEST_P(reference_laws, the_pieces_of_the_outermost_message_together_are_the_whole_encoding) {
  std::size_t complete = 0;
  for_seeds(300, [&](dice &dice) {
    const random_record record(*GetParam(), dice, recipes::canonical);
    const encoding_model model = model_encode(record, true);
    on_trial() = model.bytes;
    const fenced_block buffer(model.bytes.size());
    table seen(static_cast<std::uint32_t>(model.entries.size()));
    GetParam()->encode(record.data(), buffer.data(), buffer.size(), seen.entries(), &seen.count, PAVO_ZORV_REFERENCE);
    ASSERT_EQ(seen.count, model.entries.size());
    byte_string together;
    for (std::size_t i = 0; i < model.entries.size(); ++i) {
      const pavo_zorv_segment &entry = seen.entries()[i];
      const bool outermost = model.entries[i].message_start == 0;
      if (outermost) together.insert(together.end(), entry.start, entry.start + entry.length);
      if (!outermost && model.entries[i].what == encoding_model::entry::referenced) return;
    }
    EXPECT_EQ(together, model_encode(record, false).bytes);
    ++complete;
  });
  EXPECT_TRUE(complete > 5 || !is_tried_in_full()) << complete;
}

TEST_P(reference_laws, option_bits_without_a_meaning_change_nothing) {
  for_seeds(200, [&](dice &dice) {
    const random_record record(*GetParam(), dice, recipes::canonical);
    for (const std::uint32_t options : GetParam()->modes()) {
      const auto more = static_cast<std::uint32_t>(dice.any()) & ~std::uint32_t{PAVO_ZORV_REFERENCE};
      const byte_string bytes = model_encode(record, false).bytes;
      on_trial() = bytes;
      EXPECT_EQ(encoding_of(record, options | more), model_encode(record, is_referenced(options)).bytes);
      decoding plain(*GetParam(), dice, options);
      decoding other(*GetParam(), dice, options | more);
      EXPECT_EQ(plain.decode(bytes), CODEC_OK);
      EXPECT_EQ(other.decode(bytes), CODEC_OK);
      EXPECT_EQ(plain.memory.sizes, other.memory.sizes);
      EXPECT_EQ(compared(plain.record, other.record), 0);
    }
  });
}

}  // namespace test
