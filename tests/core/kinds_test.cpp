// What each kind of member is on the wire and in a record, byte by byte: once with keys of one byte, once with keys
// of two, and all kinds together.
#include <cstring>

#include "test_messages.hpp"

namespace test {

// An empty record with the presence bits of these fields.
everything with_fields(std::initializer_list<unsigned> numbers) {
  everything record;
  std::memset(static_cast<void *>(&record), 0, sizeof record);
  for (const unsigned number : numbers) record.presence |= 1u << (number - 1);
  return record;
}

// The presence bits that belong to fields: the others are as the record had them before.
template <class Record>
std::uint32_t fields_of(const Record &record) {
  return record.presence & pavo_zorv::presence_mask<Record>;
}

// What is read from bytes must be written as the same bytes.
void expect_the_same_again(const byte_string &bytes) {
  decoded<everything> back(bytes);
  ASSERT_EQ(back.result, CODEC_OK) << show(bytes);
  EXPECT_EQ(encoded(back.record), bytes);
}

TEST(presence_flags, of_no_field_stay_in_a_record_and_in_those_inside) {
  const byte_string bytes = hex("52 00 6a 00 ca 01 00 da 01 00");  // fields 10, 13, 25 and 27, all empty
  const fenced_block input(bytes);
  everything record;
  std::memset(static_cast<void *>(&record), 0xff, sizeof record);
  ASSERT_EQ(pavo_zorv::decode(record, input.data(), input.size(), nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(record.presence, 0xe0000000u | 1u << 9 | 1u << 12 | 1u << 24 | 1u << 26);
  EXPECT_EQ(record.nested.presence, 0xf8);
  EXPECT_EQ(record.nested_13.presence, 0xfe00);
  EXPECT_EQ(record.nested_13.first.presence, 0xf8);
  EXPECT_EQ(record.nested_27.inner.presence, 0xfe);
  EXPECT_EQ(record.nested_27.label.presence, 0xf8);

  everything copy;
  std::memset(static_cast<void *>(&copy), 0, sizeof copy);
  ASSERT_EQ(pavo_zorv::duplicate(copy, record, nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(copy.presence, 1u << 9 | 1u << 12 | 1u << 24 | 1u << 26);
  EXPECT_EQ(copy.nested.presence, 0);
  EXPECT_EQ(copy.nested_13.presence, 0);
  EXPECT_EQ(copy.nested_27.inner.presence, 0);
}

TEST(presence_flags, may_all_belong_to_fields) {
  const byte_string bytes = hex("08 01 80 01 02 f0 01 01 fa 01 01 61 82 02 00");  // fields 1, 16, 30, 31 and 32
  decoded<widest> record(bytes);
  ASSERT_EQ(record.result, CODEC_OK);
  EXPECT_EQ(record->presence, 1u | 1u << 15 | 1u << 29 | 1u << 30 | 1u << 31);
  EXPECT_EQ(encoded(record.record), bytes);
}

// After field 15 the key of field 16 is tried first: 80 01.
TEST(key, that_is_almost_that_of_the_next_field_is_not_taken_for_it) {
  struct outcome {
    const char *bytes;
    int result;
  };
  for (const auto &[bytes, result] : {
           outcome{"78 05 80 02 06", CODEC_OK},  // field 32, which is unknown
           outcome{"78 05 80 05 01", CODEC_OK},  // field 80, with 01 after the key
           outcome{"78 05 80 00 06", CODEC_OK},  // number 0
           outcome{"78 05 00 01", CODEC_OK}, outcome{"78 05 7f 01 06", CODEC_ERR_WRONG_WIRE_TYPE},  // field 15
           outcome{"78 05 81 01 06", CODEC_ERR_WRONG_WIRE_TYPE},
           outcome{"78 05 82 01 01 06", CODEC_ERR_WRONG_WIRE_TYPE},
           outcome{"78 05 ff 01 06", CODEC_ERR_BAD_WIRE_TYPE},  // field 31, which is unknown
       }) {
    decoded<everything> record(hex(bytes));
    EXPECT_EQ(record.result, result) << bytes;
    EXPECT_EQ(fields_of(record.record), 1u << 14) << bytes;
    EXPECT_EQ(record->word_15, 5u) << bytes;
  }
}

TEST(flag_member, is_one_byte_as_it_is_stored) {
  everything record = with_fields({1, 17});
  record.flag = 1;
  record.flag_17 = 2;
  EXPECT_EQ(encoded(record), hex("08 01 88 01 02"));
  record.flag = 0;
  record.flag_17 = 0x80;
  EXPECT_EQ(encoded(record), hex("08 00 88 01 80"));
}

TEST(flag_member, is_read_as_0_or_1) {
  decoded<everything> record(hex("08 ff 01 88 01 80 80 80 80 10"));
  ASSERT_EQ(record.result, CODEC_OK);
  EXPECT_EQ(record->flag, 1);
  EXPECT_EQ(record->flag_17, 0) << "the low 32 bits are zero";
  EXPECT_EQ(fields_of(record.record), 1u | 1u << 16);
}

TEST(integer_member, of_8_bits_takes_one_or_two_bytes_and_is_cut_when_read) {
  everything record = with_fields({2, 18});
  record.byte = 127;
  record.byte_18 = 200;
  EXPECT_EQ(encoded(record), hex("10 7f 90 01 c8 01"));
  decoded<everything> cut(hex("10 ac 02 90 01 ff ff ff ff 0f"));
  ASSERT_EQ(cut.result, CODEC_OK);
  EXPECT_EQ(cut->byte, 44);
  EXPECT_EQ(cut->byte_18, 255);
}

TEST(integer_member, of_32_bits_takes_one_to_five_bytes) {
  everything record = with_fields({3, 15, 16, 29});
  record.word = 0;
  record.word_15 = 300;
  record.word_16 = 0x0fffffff;
  record.word_29 = 0xffffffff;
  const byte_string bytes = hex("18 00 78 ac 02 80 01 ff ff ff 7f e8 01 ff ff ff ff 0f");
  EXPECT_EQ(encoded(record), bytes);
  expect_the_same_again(bytes);
}

TEST(integer_member, with_a_sign_takes_five_bytes_when_negative_and_ten_with_64_bits) {
  everything record = with_fields({4, 6, 19, 21});
  record.signed_word = -1;
  record.signed_long_word = -1;
  record.signed_word_19 = INT32_MIN;
  record.signed_long_word_21 = INT64_MIN;
  const byte_string bytes =
      hex("20 ff ff ff ff 0f 30 ff ff ff ff ff ff ff ff ff 01"
          "98 01 80 80 80 80 08 a8 01 80 80 80 80 80 80 80 80 80 01");
  EXPECT_EQ(encoded(record), bytes);
  decoded<everything> back(bytes);
  EXPECT_EQ(back->signed_word, -1);
  EXPECT_EQ(back->signed_long_word, -1);
  EXPECT_EQ(back->signed_word_19, INT32_MIN);
  EXPECT_EQ(back->signed_long_word_21, INT64_MIN);
}

TEST(integer_member, with_a_sign_is_read_from_ten_bytes_too) {
  decoded<everything> record(hex("20 fe ff ff ff ff ff ff ff ff 01 98 01 fe ff ff ff ff ff ff ff ff 01"));
  ASSERT_EQ(record.result, CODEC_OK);
  EXPECT_EQ(record->signed_word, -2);
  EXPECT_EQ(record->signed_word_19, -2);
}

TEST(integer_member, of_64_bits_takes_one_to_ten_bytes) {
  everything record = with_fields({5, 20});
  record.long_word = UINT64_MAX;
  record.long_word_20 = std::uint64_t{1} << 35;
  const byte_string bytes = hex("28 ff ff ff ff ff ff ff ff ff 01 a0 01 80 80 80 80 80 01");
  EXPECT_EQ(encoded(record), bytes);
  expect_the_same_again(bytes);
}

TEST(integer_member, without_a_sign_orders_above_what_has_one) {
  everything a = with_fields({3, 4, 5, 6});
  everything b = a;
  a.word = 0x80000000;
  EXPECT_EQ(pavo_zorv::compare_messages(a, b), 1);
  a.word = 0;
  a.signed_word = -1;
  EXPECT_EQ(pavo_zorv::compare_messages(a, b), -1);
  a.signed_word = 0;
  a.long_word = std::uint64_t{1} << 63;
  EXPECT_EQ(pavo_zorv::compare_messages(a, b), 1);
  a.long_word = 0;
  a.signed_long_word = INT64_MIN;
  EXPECT_EQ(pavo_zorv::compare_messages(a, b), -1);
}

TEST(string_member, is_its_characters_without_the_nul) {
  char empty[] = "";
  char text[] = "zorv";
  everything record = with_fields({7, 22});
  record.text = empty;
  record.text_22 = text;
  const byte_string bytes = hex("3a 00 b2 01 04 7a 6f 72 76");
  EXPECT_EQ(encoded(record), bytes);
  decoded<everything> back(bytes);
  EXPECT_STREQ(back->text, "");
  EXPECT_STREQ(back->text_22, "zorv");
  EXPECT_EQ(back.memory.sizes, (std::vector<std::size_t>{1, 5}));
}

TEST(string_member, that_is_null_is_not_written) { EXPECT_EQ(encoded(with_fields({7, 22})), byte_string{}); }

TEST(integer_list, has_a_key_for_every_element) {
  std::uint8_t small[] = {0, 127, 128, 255};
  std::uint32_t large[] = {24001, 0xffffffff};
  everything record = with_fields({8, 9, 23, 24});
  record.octets = record.octets_23 = small;
  record.octets_count = record.octets_23_count = 4;
  record.words = record.words_24 = large;
  record.words_count = record.words_24_count = 2;
  const byte_string bytes =
      hex("40 00 40 7f 40 80 01 40 ff 01"
          "48 c1 bb 01 48 ff ff ff ff 0f"
          "b8 01 00 b8 01 7f b8 01 80 01 b8 01 ff 01"
          "c0 01 c1 bb 01 c0 01 ff ff ff ff 0f");
  EXPECT_EQ(encoded(record), bytes);
  decoded<everything> back(bytes);
  ASSERT_EQ(back.result, CODEC_OK);
  EXPECT_EQ(back.memory.sizes, (std::vector<std::size_t>{4, 8, 4, 8}));
  EXPECT_EQ(pavo_zorv::compare_messages(record, back.record), 0);
}

TEST(integer_list, of_another_width_than_32_bits_is_cut_when_read) {
  decoded<everything> record(hex("40 ac 02 40 01 b8 01 80 02"));
  ASSERT_EQ(record.result, CODEC_OK);
  ASSERT_EQ(record->octets_count, 2u);
  EXPECT_EQ(record->octets[0], 44);
  EXPECT_EQ(record->octets[1], 1);
  EXPECT_EQ(record->octets_23[0], 0);
}

TEST(integer_list, in_two_runs_is_refused_and_the_first_run_kept) {
  decoded<everything> record(hex("b8 01 07 b8 01 08 e8 01 00 b8 01 09"));
  EXPECT_EQ(record.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(record->octets_23_count, 2u);
  EXPECT_EQ(fields_of(record.record), 1u << 22 | 1u << 28);
}

TEST(integer_list, takes_any_wire_type_inside_a_run_but_not_at_its_start) {
  decoded<everything> inside(hex("c0 01 05 c2 01 06"));
  ASSERT_EQ(inside.result, CODEC_OK);
  ASSERT_EQ(inside->words_24_count, 2u);
  EXPECT_EQ(inside->words_24[1], 6u);
  decoded<everything> start(hex("c2 01 01 05"));
  EXPECT_EQ(start.result, CODEC_ERR_WRONG_WIRE_TYPE);
}

// An input that becomes another one of the same length when memory is asked for, so after a list has been counted.
struct input_changed_on_allocation {
  input_changed_on_allocation(const byte_string &before, const byte_string &after) : input(before), later(after) {
    std::memset(static_cast<void *>(&record), 0, sizeof record);
    result = pavo_zorv::decode(record, input.data(), input.size(), allocate, this);
  }
  ~input_changed_on_allocation() { pavo_zorv::release(record, accountant::release, &memory); }

  static void *allocate(std::size_t size, void *context) {
    auto &self = *static_cast<input_changed_on_allocation *>(context);
    std::memcpy(self.input.data(), self.later.data(), self.input.size());
    return accountant::allocate(size, &self.memory);
  }

  fenced_block input;
  byte_string later;
  accountant memory;
  everything record;
  int result;
};

// So short that it is read plainly, or so long that it is walked along: what one look shows is not looked at again.
TEST(integer_list, that_is_cut_off_after_it_was_counted_is_refused_and_holds_zeros) {
  for (const std::size_t more : {0u, 60u}) {
    const byte_string elements = more * hex("40 05");
    const input_changed_on_allocation byte_list(elements + hex("40 06 40 07"), elements + hex("40 06 40 87"));
    EXPECT_EQ(byte_list.result, CODEC_ERR_TRUNCATED);
    ASSERT_EQ(byte_list.record.octets_count, more + 2);
    EXPECT_EQ(byte_string(byte_list.record.octets, byte_list.record.octets + more + 2), byte_string(more + 2, 0x00));
    EXPECT_EQ(fields_of(byte_list.record), 0u);

    const byte_string words = more * hex("48 c1 bb 01");
    const input_changed_on_allocation word_list(words + hex("48 06 48 07"), words + hex("48 06 c8 87"));
    EXPECT_EQ(word_list.result, CODEC_ERR_TRUNCATED);
    ASSERT_EQ(word_list.record.words_count, more + 2);
    for (std::size_t i = 0; i < more + 2; ++i) EXPECT_EQ(word_list.record.words[i], 0u) << i;
    EXPECT_EQ(fields_of(word_list.record), 0u);
  }
}

TEST(integer_list, that_ends_earlier_than_it_was_counted_is_refused_and_holds_zeros) {
  const input_changed_on_allocation list(70 * hex("48 05"), 69 * hex("48 05") + hex("18 05"));
  EXPECT_EQ(list.result, CODEC_ERR_TRUNCATED);
  ASSERT_EQ(list.record.words_count, 70u);
  for (std::size_t i = 0; i < 70; ++i) EXPECT_EQ(list.record.words[i], 0u) << i;
  EXPECT_EQ(fields_of(list.record), 0u);
}

TEST(nested_message, is_written_for_its_bit_or_for_its_content) {
  everything record = with_fields({10, 25});
  EXPECT_EQ(encoded(record), hex("52 00 ca 01 00"));
  record.presence = 0;
  EXPECT_EQ(encoded(record), byte_string{});
  record.nested_25.presence = 1;
  record.nested_25.number = 5;
  EXPECT_EQ(encoded(record), hex("ca 01 02 08 05"));
}

TEST(nested_message, that_is_repeated_replaces_the_first) {
  decoded<everything> record(hex("ca 01 03 12 01 61 ca 01 02 08 07"));
  ASSERT_EQ(record.result, CODEC_OK);
  record.dropped = 1;
  EXPECT_EQ(record->nested_25.text, nullptr);
  EXPECT_EQ(record->nested_25.number, 7u);
  EXPECT_EQ(fields_of(record->nested_25), 1u);
}

TEST(message_list, has_a_key_and_a_length_for_every_element) {
  leaf leaves[2];
  std::memset(static_cast<void *>(leaves), 0, sizeof leaves);
  leaves[1].number = 300;
  leaves[1].presence = 1;
  everything record = with_fields({11, 26});
  record.list = record.list_26 = leaves;
  record.list_count = record.list_26_count = 2;
  const byte_string bytes = hex("5a 00 5a 03 08 ac 02 d2 01 00 d2 01 03 08 ac 02");
  EXPECT_EQ(encoded(record), bytes);
  decoded<everything> back(bytes);
  ASSERT_EQ(back.result, CODEC_OK);
  EXPECT_EQ(back.memory.sizes, (std::vector<std::size_t>{2 * sizeof(leaf), 2 * sizeof(leaf)}));
  EXPECT_EQ(pavo_zorv::compare_messages(record, back.record), 0);
}

TEST(message_list, whose_last_element_is_cut_off_is_refused_before_memory_is_asked_for) {
  decoded<everything> record(hex("d2 01 02 08 01 d2 01 03 08 01"));
  EXPECT_EQ(record.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(record.memory.requests(), 0u);
  EXPECT_EQ(record->list_26, nullptr);
}

// The bytes after the fifth add nothing to the length, but one of them must be the last.
TEST(message_list, with_a_length_cut_off_after_its_fifth_byte_is_refused_before_memory_is_asked_for) {
  for (const byte_string &bytes :
       {hex("5a ff ff ff ff ff ff"), hex("5a 00 5a ff ff ff ff ff"), hex("d2 01 81 80 80 80 80")}) {
    decoded<everything> record(bytes);
    EXPECT_EQ(record.result, CODEC_ERR_TRUNCATED) << show(bytes);
    EXPECT_EQ(record.memory.requests(), 0u) << show(bytes);
  }
}

TEST(message_list, that_is_cut_off_after_it_was_counted_is_refused_and_holds_what_was_read) {
  for (const byte_string &after : {hex("5a 02 08 05 5a 01 08"), hex("5a 02 08 05 5a 02 08"),
                                   hex("5a 02 08 05 5a 80 80"), hex("5a 02 08 05 da 80 80")}) {
    const input_changed_on_allocation list(hex("5a 02 08 05 5a 01 08"), after);
    EXPECT_EQ(list.result, CODEC_ERR_TRUNCATED) << show(after);
    ASSERT_EQ(list.record.list_count, 2u);
    EXPECT_EQ(list.record.list[0].number, 5u);
    EXPECT_EQ(fields_of(list.record.list[0]), 1u);
    EXPECT_EQ(fields_of(list.record.list[1]), 0u);
    EXPECT_EQ(fields_of(list.record), 0u);
  }
}

TEST(message_list, that_is_null_is_released_as_it_is_whatever_its_count) {
  everything record = with_fields({11, 26, 28});
  record.list_count = record.list_26_count = record.list_28_count = 3;
  accountant memory;
  pavo_zorv::release(record, accountant::release, &memory);
  EXPECT_TRUE(memory.released.empty());
  EXPECT_EQ(record.list_count, 3u);
  EXPECT_EQ(record.list_28_count, 3u);
}

TEST(message_list, with_an_element_that_fails_stays_with_its_count_and_without_its_bit) {
  decoded<everything> record(hex("d2 01 03 12 01 61 d2 01 01 0a d2 01 00"));
  EXPECT_EQ(record.result, CODEC_ERR_WRONG_WIRE_TYPE);
  ASSERT_EQ(record->list_26_count, 3u);
  EXPECT_STREQ(record->list_26[0].text, "a");
  EXPECT_EQ(record->list_26[2].presence, 0);
  EXPECT_EQ(fields_of(record.record), 0u);
}

TEST(bytes_member, is_a_block_of_any_bytes) {
  unsigned char block[] = {0, 1, 0};
  everything record = with_fields({12});
  record.content = block;
  record.content_length = 3;
  EXPECT_EQ(encoded(record), hex("62 03 00 01 00"));
  record.content_length = 0;
  EXPECT_EQ(encoded(record), hex("62 00"));
  decoded<everything> back(hex("62 03 00 01 00"));
  EXPECT_EQ(back->content_length, 3u);
  EXPECT_EQ(back.memory.sizes, std::vector<std::size_t>{3});
}

TEST(bytes_member, with_a_key_of_two_bytes_is_the_same) {
  unsigned char block[] = {9};
  widest record;
  std::memset(static_cast<void *>(&record), 0, sizeof record);
  record.content_32 = block;
  record.content_32_length = 1;
  record.presence = 1u << 31;
  EXPECT_EQ(encoded(record), hex("82 02 01 09"));
  table entries(3);
  const fenced_block buffer(3);
  EXPECT_EQ(pavo_zorv::encode(record, buffer.data(), 3, entries.entries(), &entries.count, PAVO_ZORV_REFERENCE), 3u);
  EXPECT_EQ(buffer.content(), hex("82 02 01"));
  ASSERT_EQ(entries.count, 2u);
  EXPECT_EQ(entries.pieces(), (std::vector<piece>{{buffer.data(), 3}, {block, 1}}));
}

// Its bytes lie elsewhere, but a copy would have to hold them.
TEST(bytes_member, with_a_length_and_no_bytes_inside_a_message_is_not_copied_without_memory) {
  for (const std::uint64_t length : {1u, 2u, 100u}) {
    everything record = with_fields({27});
    record.nested_27.content_length = length;
    record.nested_27.presence = 2;
    everything copy = with_fields({});
    EXPECT_EQ(pavo_zorv::duplicate(copy, record, nullptr, nullptr), CODEC_ERR_NO_MEMORY);
    EXPECT_EQ(copy.nested_27.content_length, 0u);
    EXPECT_EQ(copy.nested_27.presence, 0);
    EXPECT_EQ(copy.presence, 1u << 26);
  }
}

// What comes after the bytes has an entry, also if it is one scalar, with a key of one byte or of two.
TEST(bytes_member, has_the_entry_of_a_scalar_after_it) {
  unsigned char block[] = {1, 2, 3};
  for (const unsigned field : {15u, 16u}) {
    everything record = with_fields({12, field});
    record.content = block;
    record.content_length = 3;
    record.word_15 = record.word_16 = 5;
    const byte_string in_buffer = field == 15 ? hex("62 03  78 05") : hex("62 03  80 01 05");
    table entries(3);
    const fenced_block buffer(in_buffer.size());
    const unsigned char *const start = buffer.data();
    EXPECT_EQ(
        pavo_zorv::encode(record, buffer.data(), buffer.size(), entries.entries(), &entries.count, PAVO_ZORV_REFERENCE),
        in_buffer.size());
    EXPECT_EQ(buffer.content(), in_buffer);
    EXPECT_EQ(entries.count, 3u) << "field " << field;
    EXPECT_EQ(entries.pieces(), (std::vector<piece>{{start, 2}, {block, 3}, {start + 2, in_buffer.size() - 2}}));
  }
}

// A message with bytes between nested messages and lists, which have bytes themselves: the bytes in the buffer, and
// the entries from the innermost outwards.
TEST(bytes_member, has_its_entries_between_those_of_what_is_before_and_after_it) {
  unsigned char outer[] = {1, 2, 3, 4};
  unsigned char inner[] = {5, 6};
  leaf leaves[1];
  std::memset(static_cast<void *>(leaves), 0, sizeof leaves);
  leaves[0].number = 1;
  leaves[0].presence = 1;
  everything record = with_fields({10, 11, 12, 26, 27, 29});
  record.nested.number = 2;
  record.nested.presence = 1;
  record.list = record.list_26 = leaves;
  record.list_count = record.list_26_count = 1;
  record.content = outer;
  record.content_length = 4;
  record.nested_27.content = inner;
  record.nested_27.content_length = 2;
  record.nested_27.presence = 2;
  record.word_29 = 3;

  EXPECT_EQ(encoded(record),
            hex("52 02 08 02  5a 02 08 01  62 04 01 02 03 04  d2 01 02 08 01  da 01 04 12 02 05 06  e8 01 03"));

  const byte_string in_buffer = hex("52 02 08 02  5a 02 08 01  62 04  d2 01 02 08 01  da 01 02 12 02  e8 01 03");
  table entries(8);
  const fenced_block buffer(in_buffer.size());
  ASSERT_EQ(
      pavo_zorv::encode(record, buffer.data(), buffer.size(), entries.entries(), &entries.count, PAVO_ZORV_REFERENCE),
      23u);
  EXPECT_EQ(buffer.content(), in_buffer);
  ASSERT_EQ(entries.count, 8u);
  const unsigned char *const start = buffer.data();
  EXPECT_EQ(entries.pieces(), (std::vector<piece>{
                                  {start + 2, 2},    // nested
                                  {start + 6, 2},    // the element of list
                                  {start, 10},       // up to the length of content
                                  {outer, 4},        // content
                                  {start + 13, 2},   // the element of list_26
                                  {start + 18, 2},   // nested_27 up to the length of its content
                                  {inner, 2},        // that content, nothing after it
                                  {start + 10, 13},  // the rest
                              }));
}

TEST(comparing_integers, reads_nothing_after_them) {
  for (std::size_t length = 0; length <= 40; ++length) {
    const fenced_block left(4 * length), right(4 * length);
    const auto compare = [&](auto element) {
      using element_type = decltype(element);
      const auto *const a = reinterpret_cast<const element_type *>(left.data() + left.size()) - length;
      const auto *const b = reinterpret_cast<const element_type *>(right.data() + right.size()) - length;
      return pavo_zorv::compare_integers(a, b, length);
    };
    EXPECT_EQ(compare(std::uint32_t{}), 0) << length;
    EXPECT_EQ(compare(std::uint8_t{}), 0) << length;
  }
}

// Before each list is what the other one has in the second half.
TEST(comparing_integers, takes_nothing_before_them_for_what_is_in_them) {
  const std::vector<std::uint32_t> a = {9, 9, 9, 9, 9, 9, 9, 9, 5, 5, 5, 5, 5, 5, 5, 5, 6, 6, 6, 6, 6, 6, 6, 6};
  const std::vector<std::uint32_t> b = {6, 6, 6, 6, 6, 6, 6, 6, 5, 5, 5, 5, 5, 5, 5, 5, 9, 9, 9, 9, 9, 9, 9, 9};
  EXPECT_EQ(pavo_zorv::compare_integers(a.data() + 8, b.data() + 8, 16), -1);
  EXPECT_EQ(pavo_zorv::compare_integers(b.data() + 8, a.data() + 8, 16), 1);
}

TEST(comparing_integers, finds_the_first_difference_at_every_place) {
  for (std::size_t length = 0; length <= 40; ++length) {
    std::vector<std::uint32_t> a(length, 0x80000001), b = a;
    std::vector<std::uint8_t> c(length, 200), d = c;
    EXPECT_EQ(pavo_zorv::compare_integers(a.data(), b.data(), length), 0);
    EXPECT_EQ(pavo_zorv::compare_integers(c.data(), d.data(), length), 0);
    for (std::size_t place = 0; place < length; ++place) {
      b = a;
      b[place] = 2;
      if (place + 1 < length) b[place + 1] = 0xffffffff;
      EXPECT_EQ(pavo_zorv::compare_integers(a.data(), b.data(), length), 1) << length << " " << place;
      EXPECT_EQ(pavo_zorv::compare_integers(b.data(), a.data(), length), -1) << length << " " << place;
      d = c;
      d[place] = 3;
      if (place + 1 < length) d[place + 1] = 255;
      EXPECT_EQ(pavo_zorv::compare_integers(c.data(), d.data(), length), 1) << length << " " << place;
      EXPECT_EQ(pavo_zorv::compare_integers(d.data(), c.data(), length), -1) << length << " " << place;
    }
  }
}

// One message with every field, in the order of the fields.
TEST(all_kinds, are_together_in_field_order) {
  const byte_string bytes = hex(
      "08 01  10 02  18 03  20 04  28 05  30 06  3a 01 37  40 08 40 09  48 09  52 02 08 0a  5a 03 12 01 62  62 01 0c"
      "6a 0c 08 01 12 02 08 01 1a 00 20 02 28 03  72 02 08 01  78 0f"
      "80 01 10  88 01 01  90 01 12  98 01 13  a0 01 14  a8 01 15  b2 01 01 56  b8 01 17  c0 01 18"
      "ca 01 04 18 19 18 1a  d2 01 00  da 01 05 0a 03 0a 01 1b  e2 01 04 12 02 1c 1c  e8 01 1d");
  decoded<everything> record(bytes);
  ASSERT_EQ(record.result, CODEC_OK);
  EXPECT_EQ(fields_of(record.record), 0x1fffffffu);
  EXPECT_EQ(encoded(record.record), bytes);
}

}  // namespace test
