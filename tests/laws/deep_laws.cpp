// The laws on large records: an envelope with all of its sixteen members, and a list of a thousand policies.
#include "checks.hpp"
#include "core/encode.hpp"
#include "messages/all.hpp"

namespace test {

class full_envelope : public testing::Test {
 protected:
  full_envelope() : random(2024), record(naive::message_of<api_msg>(), random, shapes::full) {}
  void SetUp() override { ASSERT_EQ(record.presence(), 0xffffu); }

  static constexpr std::uint32_t modes[] = {0, PAVO_ZORV_REFERENCE};
  random_numbers random;
  random_record record;
};

TEST_F(full_envelope, comes_back_equal_and_is_written_the_same) {
  const byte_string bytes = naive::encoding(record).bytes();
  EXPECT_GT(bytes.size(), 1000u);
  ASSERT_EQ(encoding_of(record), bytes);
  for (const std::uint32_t options : modes) {
    decoding back(naive::message_of<api_msg>(), random, options);
    ASSERT_EQ(back.decode(bytes), CODEC_OK);
    EXPECT_EQ(back.record.presence(), 0xffffu);
    EXPECT_EQ(compared(record, back.record), 0);
    EXPECT_EQ(encoding_of(back.record), bytes);
  }
}

TEST_F(full_envelope, is_written_into_a_buffer_of_any_length) {
  for (const std::uint32_t options : modes) {
    const naive::encoding expected(record, is_referenced(options));
    const fence room(expected.size() + 32);
    for (std::size_t length = 0; length <= expected.size() + 8; ++length) {
      ASSERT_NO_FATAL_FAILURE(check_written(record, expected, room, length, options));
    }
  }
}

TEST_F(full_envelope, fills_a_table_of_any_capacity_whatever_the_buffer) {
  for (const std::uint32_t options : modes) {
    const naive::encoding expected(record, is_referenced(options));
    const std::size_t size = expected.size();
    const auto needed = static_cast<std::uint32_t>(expected.entries());
    EXPECT_GT(needed, 50u);
    const fence buffer(size);
    const fence room((needed + 2) * sizeof(pavo_zorv_segment));
    for (std::uint32_t capacity = 0; capacity <= needed + 2; ++capacity) {
      ASSERT_NO_FATAL_FAILURE(check_table(record, expected, room, capacity, nullptr, 0, options));
      for (const std::size_t length : {std::size_t{0}, std::size_t{1}, size / 3, size - 1, size}) {
        ASSERT_NO_FATAL_FAILURE(check_table(record, expected, room, capacity, buffer.last(length), length, options));
      }
    }
  }
}

TEST_F(full_envelope, keeps_what_it_has_read_whichever_request_fails) {
  for (const std::uint32_t options : modes) {
    ASSERT_NO_FATAL_FAILURE(
        check_every_failing_decode(naive::message_of<api_msg>(), naive::encoding(record).bytes(), random, options));
  }
}

TEST_F(full_envelope, is_copied_as_far_as_memory_goes_whichever_request_fails) {
  std::size_t requests = 0;
  check_copying(record, random, {}, requests);
  EXPECT_GT(requests, 60u);
  check_every_failing_copy(record, random);
}

// A thousand policies of four prefixes, each with something in it.
class thousand_policies : public testing::Test {
 protected:
  static constexpr std::uint32_t policies = 1000;
  static constexpr std::uint32_t prefixes = 4;
  static constexpr std::uint32_t entries = policies * (prefixes + 1) + 1;

  thousand_policies() {
    list.policies = memory.array<api_policy>(policies);
    list.policies_count = policies;
    list.presence = API_AA_LIST_HAS_POLICIES;
    random_numbers random(7);
    record_maker maker(random, memory, shapes::full);
    for (std::uint32_t i = 0; i < policies; ++i) {
      api_policy &policy = list.policies[i];
      maker.fill(view_of(policy));
      policy.prefixes = memory.array<api_prefix>(prefixes);
      policy.prefixes_count = prefixes;
      for (std::uint32_t k = 0; k < prefixes; ++k) maker.fill(view_of(policy.prefixes[k]));
    }
  }

  arena memory;
  api_aa_list list = {};
};

TEST_F(thousand_policies, come_back_equal_and_are_written_the_same) {
  const byte_string bytes = naive::encoding(view_of(list)).bytes();
  ASSERT_EQ(encoding_of(view_of(list)), bytes);
  decoded<api_aa_list> back(bytes);
  ASSERT_EQ(back.result, CODEC_OK);
  EXPECT_EQ(back->policies_count, policies);
  EXPECT_EQ(pavo_zorv_api_aa_list_compare(&list, &back.record), 0);
  EXPECT_EQ(encoded(back.record), bytes);
}

TEST_F(thousand_policies, need_5001_entries_of_which_a_smaller_table_gets_the_first) {
  const naive::encoding expected(view_of(list), false);
  ASSERT_EQ(expected.entries(), entries);
  const std::size_t size = expected.size();
  const fence buffer(size);
  const fence room((entries + 2) * sizeof(pavo_zorv_segment));
  for (const std::uint32_t capacity : {0u, 1u, 4u, 5u, 6u, 2500u, entries - 1, entries, entries + 2}) {
    for (const std::size_t length : {std::size_t{0}, size / 2, size}) {
      ASSERT_NO_FATAL_FAILURE(check_table(view_of(list), expected, room, capacity, buffer.last(length), length, 0));
    }
    ASSERT_NO_FATAL_FAILURE(check_table(view_of(list), expected, room, capacity, nullptr, 0, 0));
  }
}

TEST_F(thousand_policies, are_written_as_far_as_they_fit) {
  const naive::encoding expected(view_of(list), false);
  const fence room(expected.size() + 32);
  for (std::size_t length = 0; length <= expected.size() + 8; length += 997) {
    ASSERT_NO_FATAL_FAILURE(check_written(view_of(list), expected, room, length, 0));
  }
}

TEST_F(thousand_policies, are_copied_and_released_in_order) {
  random_numbers random(1);
  std::size_t requests = 0;
  check_copying(view_of(list), random, {}, requests);
  // The list itself, then for each policy its name, its prefixes, the bytes of each, and two more names.
  EXPECT_EQ(requests, 1 + policies * (1 + 1 + prefixes + 2));
}

// No input asks for more than 36 bytes of memory for each of its own where pointers have 64 bits: a policy without
// content takes two.
TEST(memory_asked_for, is_36_times_the_input_for_a_list_of_empty_policies) {
  if (sizeof(void *) != 8) GTEST_SKIP() << "records are smaller here";
  decoded<api_aa_list> list(1000 * hex("1a 00"));
  ASSERT_EQ(list.result, CODEC_OK);
  EXPECT_EQ(list->policies_count, 1000u);
  EXPECT_EQ(list.memory.sizes, std::vector<std::size_t>{36 * 2000});
  for (const naive::message *const type : subjects()) EXPECT_LE(memory_per_byte(*type), 36u) << type->name;
}

// What is written by scratch without being reserved, the numbers of a message and of those in it, after something that
// is reserved: that is written first, and may leave room for the numbers, for some of them or for none.
class numbers_before_a_block : public law {
 protected:
  // Numbers as large as they get, and nothing else; notes what could be there besides.
  void fill(view record) {
    std::memset(record.data(), 0, record.type().size);
    for (const member &member : record.type().members) {
      if (member.is_scalar()) {
        record.set_number(member, member.kind == kind::flag ? 1 : UINT64_MAX);
      } else if (member.kind == kind::nested) {
        fill(record.nested(member));
      } else {
        blocks.push_back({record, &member});
        continue;
      }
      record.set_has(member, true);
    }
  }

  std::vector<std::pair<view, const member *>> blocks;
};
INSTANTIATE_TEST_SUITE_P(every, numbers_before_a_block, testing::ValuesIn(subjects()), name_of_subject);

TEST_P(numbers_before_a_block, are_written_whether_there_is_room_for_them_or_not) {
  const naive::message &type = *GetParam();
  arena storage;
  const view record(type, storage.block(type.size));
  fill(record);
  const std::size_t numbers = measured(record), scratch = pavo_zorv::scratch_size;
  const std::vector<unsigned char> text(scratch + 1000, 'x');
  const std::vector<std::uint32_t> labels(scratch, 24001);
  const fence room(scratch + 2000);
  for (const auto &[holder, block] : blocks) {
    SCOPED_TRACE("field " + std::to_string(block->number));
    holder.set_has(*block, true);
    // From where all of it just finds room to where only the block does.
    std::size_t each = 1;
    std::vector<unsigned char> elements;
    if (block->kind == kind::integer_list) {
      each = (block->number < 16 ? 1 : 2) + (block->width == 4 ? 3u : 1u);
    } else if (block->kind == kind::message_list) {
      each = (block->number < 16 ? 2 : 3);
      elements.resize((scratch / each + 1000) * block->nested->size);
    }
    // Some fifty places in between.
    const std::size_t step = std::max(each, (numbers + 32) / 48) / each;
    for (std::size_t count = (scratch - numbers - 16) / each; count <= scratch / each + 16; count += step) {
      std::vector<char> string;
      if (block->kind == kind::string) {
        string.assign(count + 1, 'x');
        string.back() = '\0';
        holder.set_pointer(*block, string.data());
      } else {
        holder.set_pointer(*block, block->kind == kind::message_list ? elements.data()
                                   : block->width == 4               ? const_cast<std::uint32_t *>(labels.data())
                                                       : static_cast<void *>(const_cast<unsigned char *>(text.data())));
        holder.set_count(*block, count);
      }
      const naive::encoding expected(record, false);
      for (const std::size_t length : {expected.size(), scratch}) {
        ASSERT_NO_FATAL_FAILURE(check_written(record, expected, room, length, 0)) << count;
      }
    }
    holder.set_has(*block, false);
    holder.set_pointer(*block, nullptr);
    if (block->kind != kind::string) holder.set_count(*block, 0);
  }
}

}  // namespace test
