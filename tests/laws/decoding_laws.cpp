// Laws of decoding: whatever the bytes are.
#include "checks.hpp"
#include "random_bytes.hpp"

namespace test {

class decoding_laws : public law {
 protected:
  byte_string readable_bytes(dice &dice) {
    return model_encode(random_record(*GetParam(), dice, recipes::readable), false).bytes;
  }
  byte_string any_bytes(dice &dice) {
    byte_string bytes = dice.percent(50) ? bytes_maker(dice).message(*GetParam()) : readable_bytes(dice);
    if (dice.percent(50)) bytes_maker(dice).damage(bytes);
    return bytes;
  }

  const fence room{1 << 17};
};
INSTANTIATE_TEST_SUITE_P(every, decoding_laws, testing::ValuesIn(subjects()), name_of_subject);

TEST_P(decoding_laws, bytes_put_together_from_fields_are_read_as_the_model_says) {
  std::size_t good = 0;
  std::size_t all = 0;
  for_seeds(5000, [&](dice &dice) {
    const byte_string bytes = bytes_maker(dice).message(*GetParam());
    for (const std::uint32_t options : GetParam()->modes()) {
      int result = 0;
      check_decoding(*GetParam(), room, bytes, dice, options, result);
      good += result == CODEC_OK;
      ++all;
    }
  });
  // The law would say little if most of the bytes were refused at once.
  EXPECT_TRUE(good * 4 >= all || !is_tried_in_full()) << good << " of " << all;
}

TEST_P(decoding_laws, damaged_bytes_are_read_as_the_model_says) {
  for_seeds(5000, [&](dice &dice) {
    byte_string bytes = readable_bytes(dice);
    for (std::uint64_t times = dice.from(1, 4); times-- != 0;) bytes_maker(dice).damage(bytes);
    for (const std::uint32_t options : GetParam()->modes()) {
      int result = 0;
      check_decoding(*GetParam(), room, bytes, dice, options, result);
    }
  });
}

TEST_P(decoding_laws, every_byte_and_many_pairs_are_read_as_the_model_says) {
  static constexpr unsigned char seconds[] = {0x00, 0x01, 0x02, 0x08, 0x0a, 0x0d, 0x7f, 0x80, 0x81, 0xff};
  dice dice(1);
  int result = 0;
  for (const std::uint32_t options : GetParam()->modes()) {
    for (unsigned number = 0; number < 256; ++number) {
      const auto first = static_cast<unsigned char>(number);
      ASSERT_NO_FATAL_FAILURE(check_decoding(*GetParam(), room, {first}, dice, options, result)) << number;
      for (const unsigned char second : seconds) {
        ASSERT_NO_FATAL_FAILURE(check_decoding(*GetParam(), room, {first, second}, dice, options, result))
            << number << " " << int{second};
      }
    }
  }
}

TEST_P(decoding_laws, an_encoding_cut_off_anywhere_is_good_only_between_two_fields) {
  for_seeds(30, [&](dice &dice) {
    const random_record record(*GetParam(), dice, recipes::canonical);
    const encoding_model model = model_encode(record, false);
    on_trial() = model.bytes;
    const std::set<std::size_t> ends(model.field_ends.begin(), model.field_ends.end());
    for (const std::uint32_t options : GetParam()->modes()) {
      for (std::size_t length = 0; length <= model.bytes.size(); ++length) {
        decoding seen(*GetParam(), dice, options);
        const bool whole = length == 0 || ends.count(length) != 0;
        ASSERT_EQ(seen.decode(room.holding(model.bytes, length), length), whole ? CODEC_OK : CODEC_ERR_TRUNCATED)
            << length;
        ASSERT_EQ(wrong_blocks(seen.record, seen.memory, is_referenced(options)), 0u);
        ASSERT_EQ(seen.memory.live(), owned_blocks(seen.record, is_referenced(options)).size());
        if (!whole) continue;
        ASSERT_EQ(encoding_of(seen.record), first_bytes(model.bytes, length));
      }
    }
  });
}

TEST_P(decoding_laws, any_bytes_cut_off_anywhere_are_read_as_the_model_says) {
  for_seeds(10, [&](dice &dice) {
    byte_string bytes = bytes_maker(dice).message(*GetParam(), 4);
    if (bytes.size() > 300) bytes.resize(300);
    for (const std::uint32_t options : GetParam()->modes()) {
      for (std::size_t length = 0; length <= bytes.size(); ++length) {
        int result = 0;
        ASSERT_NO_FATAL_FAILURE(check_decoding(*GetParam(), room, first_bytes(bytes, length), dice, options, result));
      }
    }
  });
}

// The same fields with keys that are longer than they need be.
byte_string with_longer_keys(const encoding_model &model, dice &dice) {
  byte_string result;
  std::size_t start = 0;
  for (const std::size_t end : model.field_ends) {
    std::size_t behind_key = start;
    while (model.bytes[behind_key++] >= 0x80) continue;
    std::uint64_t key = 0;
    for (std::size_t i = behind_key; i-- != start;) key = key << 7 | (model.bytes[i] & 0x7fu);
    bytes_maker(dice).varint(result, key, 32, 60);
    result.insert(result.end(), model.bytes.data() + behind_key, model.bytes.data() + end);
    start = end;
  }
  return result;
}

TEST_P(decoding_laws, keys_with_more_bytes_than_they_need_are_the_same_keys) {
  for_seeds(500, [&](dice &dice) {
    const random_record record(*GetParam(), dice, recipes::canonical);
    const encoding_model model = model_encode(record, false);
    on_trial() = with_longer_keys(model, dice);
    for (const std::uint32_t options : GetParam()->modes()) {
      decoding back(*GetParam(), dice, options);
      ASSERT_EQ(back.decode(on_trial()), CODEC_OK);
      EXPECT_EQ(compared(record, back.record), 0);
      EXPECT_EQ(encoding_of(back.record), model.bytes);
    }
  });
}

TEST_P(decoding_laws, what_could_be_read_is_written_so_that_it_reads_and_writes_the_same) {
  for_seeds(1000, [&](dice &dice) {
    const byte_string bytes = any_bytes(dice);
    on_trial() = bytes;
    for (const std::uint32_t options : GetParam()->modes()) {
      decoding first(*GetParam(), dice, options);
      if (first.decode(room.holding(bytes), bytes.size()) == CODEC_OK) {
        const byte_string again = encoding_of(first.record);
        decoding second(*GetParam(), dice, 0);
        ASSERT_EQ(second.decode(again), CODEC_OK);
        EXPECT_EQ(compared(first.record, second.record), 0);
        EXPECT_EQ(encoding_of(second.record), again);
      }
      first.dropped = first.memory.live() - owned_blocks(first.record, is_referenced(options)).size();
    }
  });
}

TEST_P(decoding_laws, presence_bits_of_no_field_stay_whatever_comes) {
  for_seeds(200, [&](dice &dice) {
    const byte_string bytes = any_bytes(dice);
    on_trial() = bytes;
    decoding seen(*GetParam(), dice, 0);
    const std::vector<std::uint32_t> before = unowned_bits(seen.record);
    seen.decode(room.holding(bytes), bytes.size());
    EXPECT_EQ(unowned_bits(seen.record), before);
    seen.dropped = seen.memory.live() - owned_blocks(seen.record).size();
  });
}

TEST_P(decoding_laws, without_an_allocator_all_but_the_fields_that_need_memory_are_read) {
  for_seeds(500, [&](dice &dice) {
    const byte_string bytes = any_bytes(dice);
    on_trial() = bytes;
    const unsigned char *const input = room.holding(bytes);
    for (const std::uint32_t options : GetParam()->modes()) {
      const random_record seen(*GetParam(), dice, recipes::readable);
      const twin expected(seen);
      decoding_model model;
      model.has_allocator = false;
      model.referenced = is_referenced(options);
      const int result = GetParam()->decode(seen.data(), input, bytes.size(), nullptr, nullptr, options);
      ASSERT_EQ(result, model.decode(expected.record, input, bytes.size()));
      ASSERT_EQ(difference(seen, expected.record, model.referenced), "");
      ASSERT_TRUE(owned_blocks(seen, model.referenced).empty());
    }
  });
}

}  // namespace test
