// Laws of memory: what is asked for, what becomes of requests that fail, what a copy is, what comes back and in which
// order.
#include "checks.hpp"

namespace test {

class memory_laws : public law {
 protected:
  // Decodes readable records, in every mode.
  template <class Work>
  void for_decoded(Work work) {
    for_seeds(200, [&](random_numbers &random) {
      tried() = naive::encoding(random_record(*GetParam(), random, shapes::readable)).bytes();
      for (const std::uint32_t options : GetParam()->modes()) {
        decoding back(*GetParam(), random, options);
        ASSERT_EQ(back.decode(tried()), CODEC_OK);
        work(back, options);
      }
    });
  }
};
INSTANTIATE_TEST_SUITE_P(every, memory_laws, testing::ValuesIn(subjects()), name_of_subject);

// Every pointer null that is released, nothing else changed but the counts of lists of messages.
void forget(view record, bool referenced) {
  for (const member &member : record.type().members) {
    if (member.is_scalar()) continue;
    if (member.kind == kind::nested) {
      forget(record.nested(member), referenced);
    } else if (member.kind != kind::bytes || !referenced) {
      if (member.kind == kind::message_list && record.pointer(member) != nullptr) record.set_count(member, 0);
      record.set_pointer(member, nullptr);
    }
  }
}

// The elements of all lists of messages under a record.
void add_elements(view record, std::vector<view> &elements) {
  for (const member &member : record.type().members) {
    if (member.kind == kind::nested) add_elements(record.nested(member), elements);
    if (member.kind != kind::message_list || record.pointer(member) == nullptr) continue;
    for (std::uint64_t i = 0; i < record.count(member); ++i) {
      add_elements(record.element(member, i), elements);
      elements.push_back(record.element(member, i));
    }
  }
}

TEST_P(memory_laws, a_decoding_that_gets_no_memory_keeps_what_it_has_read) {
  for_seeds(40, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::readable);
    for (const std::uint32_t options : GetParam()->modes()) {
      check_every_failing_decode(*GetParam(), naive::encoding(record).bytes(), random, options);
    }
  });
}

TEST_P(memory_laws, a_copy_holds_all_that_there_is_memory_for) {
  for_seeds(40, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::copyable);
    const shallow_copy before(record);
    check_every_failing_copy(record, random);
    EXPECT_TRUE(same_content(before.record.data(), record.data(), GetParam()->size)) << "the source was changed";
  });
}

TEST_P(memory_laws, a_copy_without_an_allocator_holds_what_needs_no_memory) {
  for_seeds(200, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::copyable);
    const shallow_copy copy(record);
    fill_with_rubbish(copy.record, random);
    const std::vector<std::uint32_t> bits = spare_bits(copy.record);
    const int result = GetParam()->functions->duplicate(copy.record.data(), record.data(), nullptr, nullptr);
    naive::copying reference;
    reference.failing.fail_from = 0;
    ASSERT_EQ(reference.check(record, copy.record), "");
    ASSERT_EQ(result, reference.complete ? CODEC_OK : CODEC_ERR_NO_MEMORY);
    ASSERT_EQ(spare_bits(copy.record), bits);
  });
}

TEST_P(memory_laws, a_copy_equals_its_source_and_is_written_the_same) {
  for_seeds(200, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, random.percent(50) ? shapes::canonical : shapes::comparable);
    accountant memory;
    const shallow_copy copy(record);
    fill_with_rubbish(copy.record, random);
    ASSERT_EQ(GetParam()->functions->duplicate(copy.record.data(), record.data(), accountant::allocate, &memory),
              CODEC_OK);
    tried() = encoding_of(record);
    EXPECT_EQ(compared(record, copy.record), 0);
    EXPECT_EQ(encoding_of(copy.record), tried());
    GetParam()->functions->free(copy.record.data(), accountant::release, &memory, 0);
    EXPECT_EQ(memory.live(), 0u);
  });
}

// A record and all records held in it.
void add_records(view record, std::vector<view> &records) {
  records.push_back(record);
  for (const member &member : record.type().members) {
    if (member.kind == kind::nested) add_records(record.nested(member), records);
  }
}

TEST_P(memory_laws, a_presence_bit_of_no_field_that_is_set_alone_stays_and_does_not_go_over_to_a_copy) {
  const naive::message &type = *GetParam();
  std::vector<unsigned char> mine(type.size), others(type.size);
  const view record(type, mine.data()), other(type, others.data());
  std::vector<view> places, other_places;
  add_records(record, places);
  add_records(other, other_places);
  const auto expect_only = [](const std::vector<view> &seen, std::size_t place, std::uint32_t bit) {
    for (std::size_t i = 0; i < seen.size(); ++i) ASSERT_EQ(seen[i].presence(), i == place ? bit : 0u) << i;
  };
  for (std::size_t place = 0; place < places.size(); ++place) {
    const naive::message &holder = places[place].type();
    for (std::uint32_t bit = 1; (bit & holder.all_bits()) != 0; bit <<= 1) {
      if ((bit & holder.mask()) != 0) continue;
      std::ranges::fill(mine, 0);
      places[place].set_presence(bit);
      ASSERT_EQ(type.functions->decode(record.data(), nullptr, 0, nullptr, nullptr, 0), CODEC_OK);
      ASSERT_NO_FATAL_FAILURE(expect_only(places, place, bit));
      std::ranges::fill(others, 0);
      ASSERT_EQ(type.functions->duplicate(other.data(), record.data(), nullptr, nullptr), CODEC_OK);
      ASSERT_NO_FATAL_FAILURE(expect_only(other_places, place, 0));
      ASSERT_EQ(type.functions->duplicate(record.data(), other.data(), nullptr, nullptr), CODEC_OK);
      ASSERT_NO_FATAL_FAILURE(expect_only(places, place, bit));
    }
  }
}

TEST_P(memory_laws, blocks_come_back_in_field_order_once_and_nothing_else_changes) {
  for_decoded([&](decoding &back, std::uint32_t options) {
    const std::vector<void *> blocks = owned_blocks(back.record, is_referenced(options));
    const shallow_copy expected(back.record);
    forget(expected.record, is_referenced(options));
    GetParam()->functions->free(back.record.data(), accountant::release, &back.memory, options);
    EXPECT_EQ(back.memory.released, blocks);
    EXPECT_EQ(back.memory.live(), 0u);
    EXPECT_EQ(difference(back.record, expected.record, back.memory, true), "");
    GetParam()->functions->free(back.record.data(), accountant::release, &back.memory, options);
    EXPECT_EQ(back.memory.released.size(), blocks.size()) << "something came back twice";
    EXPECT_EQ(back.input().content(), tried());
  });
}

TEST_P(memory_laws, without_a_release_callback_pointers_become_null_at_every_depth) {
  for_decoded([&](decoding &back, std::uint32_t options) {
    std::vector<view> elements;
    add_elements(back.record, elements);
    const shallow_copy expected(back.record);
    forget(expected.record, is_referenced(options));
    back.dropped = back.memory.live();
    GetParam()->functions->free(back.record.data(), nullptr, &back.memory, options);
    EXPECT_EQ(back.memory.live(), back.dropped);
    EXPECT_EQ(difference(back.record, expected.record, back.memory, true), "");
    // The arrays are still there: what their elements pointed to is forgotten too.
    for (const view &element : elements) EXPECT_TRUE(owned_blocks(element, is_referenced(options)).empty());
  });
}

// Records of exactly their size before an inaccessible page, or after one.
TEST_P(memory_laws, nothing_before_a_record_or_after_it_is_looked_at) {
  const naive::message &type = *GetParam();
  const fence room(type.size), other_room(type.size);
  for_seeds(20, [&](random_numbers &random) {
    const byte_string bytes = naive::encoding(random_record(type, random, shapes::readable)).bytes();
    tried() = bytes;
    for (const bool at_end : {true, false}) {
      const view record(type, at_end ? room.last(type.size) : room.first());
      const view copy(type, at_end ? other_room.last(type.size) : other_room.first());
      const fenced_block input(bytes);
      accountant memory;
      fill_with_rubbish(record, random);
      ASSERT_EQ(type.functions->decode(record.data(), nullptr, 0, nullptr, nullptr, 0), CODEC_OK);
      ASSERT_EQ(encoding_of(record), byte_string{});
      ASSERT_EQ(type.functions->decode(record.data(), input.data(), input.size(), accountant::allocate, &memory, 0),
                CODEC_OK);
      fill_with_rubbish(copy, random);
      ASSERT_EQ(type.functions->duplicate(copy.data(), record.data(), accountant::allocate, &memory), CODEC_OK);
      ASSERT_EQ(compared(record, copy), 0);
      ASSERT_EQ(encoding_of(record), encoding_of(copy));
      type.functions->free(record.data(), accountant::release, &memory, 0);
      type.functions->free(copy.data(), accountant::release, &memory, 0);
      ASSERT_EQ(memory.live(), 0u);
    }
  });
}

}  // namespace test
