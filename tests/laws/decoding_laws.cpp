// Laws of decoding: whatever the bytes are.
#include "checks.hpp"
#include "random_bytes.hpp"

namespace test {

class decoding_laws : public law {
 protected:
  byte_string readable_bytes(random_numbers &random) {
    return naive::encoding(random_record(*GetParam(), random, shapes::readable)).bytes();
  }
  byte_string any_bytes(random_numbers &random) {
    byte_string bytes = random.percent(50) ? bytes_maker(random).message(*GetParam()) : readable_bytes(random);
    if (random.percent(50)) bytes_maker(random).damage(bytes);
    return bytes;
  }

  const fence room{1 << 17};
};
INSTANTIATE_TEST_SUITE_P(every, decoding_laws, testing::ValuesIn(subjects()), name_of_subject);

TEST_P(decoding_laws, bytes_put_together_from_fields_are_read_as_the_naive_decoder_says) {
  std::size_t good = 0;
  std::size_t all = 0;
  for_seeds(5000, [&](random_numbers &random) {
    const byte_string bytes = bytes_maker(random).message(*GetParam());
    for (const std::uint32_t options : GetParam()->modes()) {
      int result = 0;
      check_decoding(*GetParam(), room, bytes, random, options, result);
      good += result == CODEC_OK;
      ++all;
    }
  });
  // The law would say little if most of the bytes were refused at once.
  EXPECT_TRUE(good * 4 >= all || !is_tried_in_full()) << good << " of " << all;
}

TEST_P(decoding_laws, damaged_bytes_are_read_as_the_naive_decoder_says) {
  for_seeds(5000, [&](random_numbers &random) {
    byte_string bytes = readable_bytes(random);
    for (std::uint64_t times = random.from(1, 4); times-- != 0;) bytes_maker(random).damage(bytes);
    for (const std::uint32_t options : GetParam()->modes()) {
      int result = 0;
      check_decoding(*GetParam(), room, bytes, random, options, result);
    }
  });
}

TEST_P(decoding_laws, every_byte_and_many_pairs_are_read_as_the_naive_decoder_says) {
  static constexpr unsigned char seconds[] = {0x00, 0x01, 0x02, 0x08, 0x0a, 0x0d, 0x7f, 0x80, 0x81, 0xff};
  random_numbers random(1);
  int result = 0;
  for (const std::uint32_t options : GetParam()->modes()) {
    for (unsigned number = 0; number < 256; ++number) {
      const auto first = static_cast<unsigned char>(number);
      ASSERT_NO_FATAL_FAILURE(check_decoding(*GetParam(), room, {first}, random, options, result)) << number;
      for (const unsigned char second : seconds) {
        ASSERT_NO_FATAL_FAILURE(check_decoding(*GetParam(), room, {first, second}, random, options, result))
            << number << " " << int{second};
      }
    }
  }
}

TEST_P(decoding_laws, an_encoding_cut_off_anywhere_is_good_only_between_two_fields) {
  for_seeds(30, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::canonical);
    const naive::encoding expected(record, false);
    tried() = expected.bytes();
    std::set<std::size_t> ends{0};
    for (const byte_string &field : expected.fields()) ends.insert(*ends.rbegin() + field.size());
    for (const std::uint32_t options : GetParam()->modes()) {
      for (std::size_t length = 0; length <= expected.size(); ++length) {
        decoding seen(*GetParam(), random, options);
        const bool whole = ends.count(length) != 0;
        ASSERT_EQ(seen.decode(room.holding(tried().data(), length), length), whole ? CODEC_OK : CODEC_ERR_TRUNCATED)
            << length;
        ASSERT_EQ(wrong_blocks(seen.record, seen.memory, is_referenced(options)), 0u);
        ASSERT_EQ(seen.memory.live(), owned_blocks(seen.record, is_referenced(options)).size());
        if (!whole) continue;
        ASSERT_EQ(encoding_of(seen.record), first_bytes(tried(), length));
      }
    }
  });
}

TEST_P(decoding_laws, any_bytes_cut_off_anywhere_are_read_as_the_naive_decoder_says) {
  for_seeds(10, [&](random_numbers &random) {
    byte_string bytes = bytes_maker(random).message(*GetParam(), 4);
    if (bytes.size() > 300) bytes.resize(300);
    for (const std::uint32_t options : GetParam()->modes()) {
      for (std::size_t length = 0; length <= bytes.size(); ++length) {
        int result = 0;
        ASSERT_NO_FATAL_FAILURE(check_decoding(*GetParam(), room, first_bytes(bytes, length), random, options, result));
      }
    }
  });
}

// The same fields with keys that are longer than they need be.
byte_string with_longer_keys(const naive::encoding &encoding, random_numbers &random) {
  byte_string result;
  for (const byte_string &field : encoding.fields()) {
    std::size_t after_key = 0;
    std::uint32_t key = 0;
    naive::decoder::read_32(field.data(), field.size(), after_key, key);
    bytes_maker(random).varint(result, key, 32, 60);
    result.insert(result.end(), field.begin() + static_cast<std::ptrdiff_t>(after_key), field.end());
  }
  return result;
}

TEST_P(decoding_laws, keys_with_more_bytes_than_they_need_are_the_same_keys) {
  for_seeds(500, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::canonical);
    const naive::encoding expected(record, false);
    tried() = with_longer_keys(expected, random);
    for (const std::uint32_t options : GetParam()->modes()) {
      decoding back(*GetParam(), random, options);
      ASSERT_EQ(back.decode(tried()), CODEC_OK);
      EXPECT_EQ(compared(record, back.record), 0);
      EXPECT_EQ(encoding_of(back.record), expected.bytes());
    }
  });
}

TEST_P(decoding_laws, what_could_be_read_is_written_so_that_it_reads_and_writes_the_same) {
  for_seeds(1000, [&](random_numbers &random) {
    const byte_string bytes = any_bytes(random);
    tried() = bytes;
    for (const std::uint32_t options : GetParam()->modes()) {
      decoding first(*GetParam(), random, options);
      if (first.decode(room.holding(bytes), bytes.size()) == CODEC_OK) {
        const byte_string again = encoding_of(first.record);
        decoding second(*GetParam(), random, 0);
        ASSERT_EQ(second.decode(again), CODEC_OK);
        EXPECT_EQ(compared(first.record, second.record), 0);
        EXPECT_EQ(encoding_of(second.record), again);
      }
      first.dropped = first.memory.live() - owned_blocks(first.record, is_referenced(options)).size();
    }
  });
}

TEST_P(decoding_laws, presence_bits_of_no_field_stay_whatever_comes) {
  for_seeds(200, [&](random_numbers &random) {
    const byte_string bytes = any_bytes(random);
    tried() = bytes;
    decoding seen(*GetParam(), random, 0);
    const std::vector<std::uint32_t> before = spare_bits(seen.record);
    seen.decode(room.holding(bytes), bytes.size());
    EXPECT_EQ(spare_bits(seen.record), before);
    seen.dropped = seen.memory.live() - owned_blocks(seen.record).size();
  });
}

TEST_P(decoding_laws, without_an_allocator_all_but_the_fields_that_need_memory_are_read) {
  for_seeds(500, [&](random_numbers &random) {
    const byte_string bytes = any_bytes(random);
    tried() = bytes;
    const unsigned char *const input = room.holding(bytes);
    for (const std::uint32_t options : GetParam()->modes()) {
      const random_record seen(*GetParam(), random, shapes::readable);
      const shallow_copy expected(seen);
      naive::decoder reference(naive_memory());
      reference.has_allocator = false;
      reference.referenced = is_referenced(options);
      const int result = GetParam()->functions->decode(seen.data(), input, bytes.size(), nullptr, nullptr, options);
      ASSERT_EQ(result, reference.decode(expected.record, input, bytes.size()));
      ASSERT_EQ(difference(seen, expected.record, accountant(), reference.referenced), "");
      ASSERT_TRUE(owned_blocks(seen, reference.referenced).empty());
    }
  });
}

}  // namespace test
