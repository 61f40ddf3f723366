// Laws of memory: what is asked for, what becomes of requests that fail, what a copy is, what comes back and in which
// order.
#include "checks.hpp"

namespace test {

class memory_laws : public law {};
INSTANTIATE_TEST_SUITE_P(every, memory_laws, testing::ValuesIn(subjects()), name_of_subject);

// Every pointer null that is released, nothing else changed but the counts of lists of messages.
void forget(view record, bool referenced) {
  for (const field &field : record.type().fields) {
    if (field.is_number()) continue;
    if (field.kind == kind::message) {
      forget(record.nested(field), referenced);
    } else if (field.kind != kind::bytes || !referenced) {
      if (field.kind == kind::messages && record.pointer(field) != nullptr) record.set_count(field, 0);
      record.set_pointer(field, nullptr);
    }
  }
}

// The elements of all lists of messages under a record.
void add_elements(view record, std::vector<view> &elements) {
  for (const field &field : record.type().fields) {
    if (field.kind == kind::message) add_elements(record.nested(field), elements);
    if (field.kind != kind::messages || record.pointer(field) == nullptr) continue;
    for (std::uint64_t i = 0; i < record.count(field); ++i) {
      add_elements(record.element(field, i), elements);
      elements.push_back(record.element(field, i));
    }
  }
}

TEST_P(memory_laws, a_decoding_that_gets_no_memory_keeps_what_it_has_read) {
  for_seeds(40, [&](dice &dice) {
    const random_record record(*GetParam(), dice, recipes::readable);
    for (const std::uint32_t options : GetParam()->modes()) {
      check_every_failing_decode(*GetParam(), model_encode(record, false).bytes, dice, options);
    }
  });
}

TEST_P(memory_laws, a_copy_holds_all_that_there_is_memory_for) {
  for_seeds(40, [&](dice &dice) {
    const random_record record(*GetParam(), dice, recipes::copyable);
    const twin before(record);
    check_every_failing_copy(record, dice);
    EXPECT_TRUE(same_octets(before.record.data(), record.data(), GetParam()->size)) << "the source was changed";
  });
}

TEST_P(memory_laws, a_copy_without_an_allocator_holds_what_needs_no_memory) {
  for_seeds(200, [&](dice &dice) {
    const random_record record(*GetParam(), dice, recipes::copyable);
    const twin copy(record);
    litter(copy.record, dice);
    const std::vector<std::uint32_t> bits = unowned_bits(copy.record);
    const int result = GetParam()->duplicate(copy.record.data(), record.data(), nullptr, nullptr);
    copying_model model;
    model.fail_from = 0;
    ASSERT_EQ(model.check(record, copy.record), "");
    ASSERT_EQ(result, model.complete ? CODEC_OK : CODEC_ERR_NO_MEMORY);
    ASSERT_EQ(unowned_bits(copy.record), bits);
  });
}

TEST_P(memory_laws, a_copy_equals_its_source_and_is_written_the_same) {
  for_seeds(200, [&](dice &dice) {
    const random_record record(*GetParam(), dice, dice.percent(50) ? recipes::canonical : recipes::comparable);
    accountant memory;
    const twin copy(record);
    litter(copy.record, dice);
    ASSERT_EQ(GetParam()->duplicate(copy.record.data(), record.data(), accountant::allocate, &memory), CODEC_OK);
    on_trial() = encoding_of(record);
    EXPECT_EQ(compared(record, copy.record), 0);
    EXPECT_EQ(encoding_of(copy.record), on_trial());
    GetParam()->free(copy.record.data(), accountant::release, &memory, 0);
    EXPECT_EQ(memory.live(), 0u);
  });
}

TEST_P(memory_laws, blocks_come_back_in_field_order_once_and_nothing_else_changes) {
  for_seeds(200, [&](dice &dice) {
    const random_record record(*GetParam(), dice, recipes::readable);
    const octets bytes = model_encode(record, false).bytes;
    on_trial() = bytes;
    for (const std::uint32_t options : GetParam()->modes()) {
      decoding back(*GetParam(), dice, options);
      ASSERT_EQ(back.decode(bytes), CODEC_OK);
      const std::vector<void *> blocks = owned_blocks(back.record, is_referenced(options));
      const twin expected(back.record);
      forget(expected.record, is_referenced(options));
      GetParam()->free(back.record.data(), accountant::release, &back.memory, options);
      EXPECT_EQ(back.memory.released, blocks);
      EXPECT_EQ(back.memory.live(), 0u);
      EXPECT_EQ(difference(back.record, expected.record, true), "");
      GetParam()->free(back.record.data(), accountant::release, &back.memory, options);
      EXPECT_EQ(back.memory.released.size(), blocks.size()) << "something came back twice";
      EXPECT_EQ(back.input().content(), bytes);
    }
  });
}

TEST_P(memory_laws, without_a_release_callback_pointers_become_null_at_every_depth) {
  for_seeds(200, [&](dice &dice) {
    const random_record record(*GetParam(), dice, recipes::readable);
    const octets bytes = model_encode(record, false).bytes;
    on_trial() = bytes;
    for (const std::uint32_t options : GetParam()->modes()) {
      decoding back(*GetParam(), dice, options);
      ASSERT_EQ(back.decode(bytes), CODEC_OK);
      std::vector<view> elements;
      add_elements(back.record, elements);
      const twin expected(back.record);
      forget(expected.record, is_referenced(options));
      back.dropped = back.memory.live();
      GetParam()->free(back.record.data(), nullptr, &back.memory, options);
      EXPECT_EQ(back.memory.live(), back.dropped);
      EXPECT_EQ(difference(back.record, expected.record, true), "");
      // The arrays are still there: what their elements pointed to is forgotten too.
      for (const view &element : elements) EXPECT_TRUE(owned_blocks(element, is_referenced(options)).empty());
    }
  });
}

}  // namespace test
