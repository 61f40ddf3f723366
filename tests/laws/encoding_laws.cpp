// Laws of encoding: lengths, round trips, short buffers, tables.
#include "checks.hpp"

namespace test {

class encoding_laws : public law {};
INSTANTIATE_TEST_SUITE_P(every, encoding_laws, testing::ValuesIn(subjects()), name_of_subject);

TEST_P(encoding_laws, what_is_measured_is_written_byte_by_byte) {
  for_seeds(1000, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::encodable);
    const shallow_copy before(record);
    for (const std::uint32_t options : GetParam()->modes()) {
      const naive::encoding expected(record, is_referenced(options));
      tried() = expected.bytes();
      ASSERT_EQ(measured(record, options), expected.size());
      // Without a buffer the length given with it means nothing.
      for (const std::size_t length : {std::size_t{1}, expected.size() / 2, SIZE_MAX}) {
        ASSERT_EQ(GetParam()->functions->encode(record.data(), nullptr, length, nullptr, nullptr, options),
                  expected.size());
      }
      check_written(record, expected, fence(expected.size() + 16), expected.size(), options);
    }
    EXPECT_TRUE(same_content(before.record.data(), record.data(), GetParam()->size)) << "the record was changed";
  });
}

TEST_P(encoding_laws, a_canonical_record_comes_back_equal_and_is_written_the_same) {
  for_seeds(1000, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::canonical);
    const byte_string bytes = naive::encoding(record).bytes();
    tried() = bytes;
    ASSERT_EQ(encoding_of(record), bytes);
    for (const std::uint32_t options : GetParam()->modes()) {
      decoding back(*GetParam(), random, options);
      ASSERT_EQ(back.decode(bytes), CODEC_OK);
      EXPECT_EQ(compared(record, back.record), 0);
      EXPECT_EQ(encoding_of(back.record), bytes);
      // References made by decoding are as good as blocks of one's own.
      EXPECT_EQ(encoding_of(back.record, options), naive::encoding(record, is_referenced(options)).bytes());
    }
  });
}

TEST_P(encoding_laws, any_readable_record_is_as_long_when_written_again) {
  for_seeds(1000, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::readable);
    const byte_string bytes = encoding_of(record);
    tried() = bytes;
    decoding back(*GetParam(), random, 0);
    ASSERT_EQ(back.decode(bytes), CODEC_OK);
    const byte_string again = encoding_of(back.record);
    EXPECT_EQ(again.size(), bytes.size());
    decoding last(*GetParam(), random, 0);
    ASSERT_EQ(last.decode(again), CODEC_OK);
    EXPECT_EQ(compared(back.record, last.record), 0);
    EXPECT_EQ(encoding_of(last.record), again);
  });
}

TEST_P(encoding_laws, a_buffer_of_any_length_gets_what_fits_and_nothing_else_is_touched) {
  for_seeds(30, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::encodable);
    for (const std::uint32_t options : GetParam()->modes()) {
      const naive::encoding expected(record, is_referenced(options));
      tried() = expected.bytes();
      const fence room(expected.size() + 32);
      for (std::size_t length = 0; length <= expected.size() + 8; ++length) {
        ASSERT_NO_FATAL_FAILURE(check_written(record, expected, room, length, options));
      }
    }
  });
}

TEST_P(encoding_laws, a_table_of_any_capacity_gets_the_first_entries_and_the_count_is_what_all_need) {
  for_seeds(30, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::encodable);
    for (const std::uint32_t options : GetParam()->modes()) {
      const naive::encoding expected(record, is_referenced(options));
      tried() = expected.bytes();
      const std::size_t size = expected.size();
      const auto needed = static_cast<std::uint32_t>(expected.entries());
      const fence buffer(size);
      const fence room((needed + 2) * sizeof(pavo_zorv_segment));
      for (std::uint32_t capacity = 0; capacity <= needed + 2; ++capacity) {
        const std::size_t some = static_cast<std::size_t>(random.from(0, size));
        ASSERT_NO_FATAL_FAILURE(check_table(record, expected, room, capacity, nullptr, 0, options));
        ASSERT_NO_FATAL_FAILURE(check_table(record, expected, room, capacity, nullptr, some, options));
        ASSERT_NO_FATAL_FAILURE(check_table(record, expected, room, capacity, buffer.last(size), size, options));
        ASSERT_NO_FATAL_FAILURE(check_table(record, expected, room, capacity, buffer.last(some), some, options));
      }
    }
  });
}

TEST_P(encoding_laws, the_entries_do_not_depend_on_how_much_of_the_encoding_fits) {
  for_seeds(15, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::encodable);
    for (const std::uint32_t options : GetParam()->modes()) {
      const naive::encoding expected(record, is_referenced(options));
      tried() = expected.bytes();
      const fence buffer(expected.size() + 8);
      const auto needed = static_cast<std::uint32_t>(expected.entries());
      const fence room(needed * sizeof(pavo_zorv_segment));
      for (std::size_t length = 0; length <= expected.size() + 8; ++length) {
        ASSERT_NO_FATAL_FAILURE(check_table(record, expected, room, needed, buffer.last(length), length, options));
      }
    }
  });
}

TEST_P(encoding_laws, without_a_table_the_count_is_the_same_and_without_a_count_the_table_is_untouched) {
  for_seeds(100, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::encodable);
    for (const std::uint32_t options : GetParam()->modes()) {
      const naive::encoding expected(record, is_referenced(options));
      tried() = expected.bytes();
      const fenced_block buffer(expected.size());
      auto count = static_cast<std::uint32_t>(random.any());
      GetParam()->functions->encode(record.data(), buffer.data(), buffer.size(), nullptr, &count, options);
      ASSERT_EQ(count, expected.entries());
      const table untouched(8);
      GetParam()->functions->encode(record.data(), buffer.data(), buffer.size(), untouched.entries(), nullptr, options);
      EXPECT_TRUE(untouched.untouched_from(0));
    }
  });
}

}  // namespace test
