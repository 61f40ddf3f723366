// The fast loops over runs of integers against the plain ones: on every short input, at every distance to the ends
// of the buffer, for both sizes of key and of element.
#include <algorithm>
#include <random>

#include "core/kinds/integer_list.hpp"
#include "support.hpp"

namespace {

using namespace test;
using pavo_zorv::buffer;
using pavo_zorv::byte;

// Bytes that matter to a run of field `number`: its key, that key with another wire type and in an over-long form,
// another key, small and large values, and both kinds of byte inside a varint.
byte_string alphabet(unsigned number) {
  if (number < 16) {
    const auto key = static_cast<unsigned char>(number << 3);
    return {key, static_cast<unsigned char>(key | 2), static_cast<unsigned char>(key | 0x80), 0x00, 0x7e, 0x80, 0xff};
  }
  return {static_cast<unsigned char>((number << 3 & 0x7f) | 0x80),
          static_cast<unsigned char>(number >> 4),
          0x00,
          0x7e,
          0x82,
          0xff};
}

// Elements of a run in their usual form, key after value, to fill windows with.
byte_string filler(unsigned number, std::size_t elements) {
  byte_string result;
  for (std::size_t i = 0; i < elements; ++i) {
    if (i % 3 == 1) result.push_back(0xb1);
    if (i % 7 == 2) result.insert(result.end(), {0x80, 0x81});
    result.push_back(static_cast<unsigned char>(i % 2 == 0 ? 1 : number << 3 & 0x78));
    if (number >= 16) result.push_back(static_cast<unsigned char>((number << 3 & 0x7f) | 0x80));
    result.push_back(static_cast<unsigned char>(number < 16 ? number << 3 : number >> 4));
  }
  return result;
}

// The fast loops, for the size of the key that a field's number has.
template <class Element>
pavo_zorv::counted_run count_fast(unsigned number, const byte *at, const byte *end, const buffer &whole) {
  const std::uint32_t key = number << 3;
  return number < 16 ? pavo_zorv::count_integers<Element, 1>(key, at, end, whole)
                     : pavo_zorv::count_integers<Element, 2>(key, at, end, whole);
}

template <class Element>
const byte *read_fast(Element *elements, pavo_zorv::counted_run run, unsigned number, const byte *at, const byte *end,
                      const buffer &whole) {
  const std::uint32_t key = number << 3;
  return number < 16 ? pavo_zorv::read_integers<Element, 1>(elements, run, key, at, end, whole)
                     : pavo_zorv::read_integers<Element, 2>(elements, run, key, at, end, whole);
}

class both_readers : public ::testing::TestWithParam<unsigned> {
 protected:
  // The key in its shortest form.
  static byte_string key_of_run() { return test::key(GetParam(), 0); }

  // A message so many bytes after the start of the buffer, but at least after the last byte of a key, and before its
  // end; the buffer ends at an inaccessible page, or begins at one.
  template <class Element>
  void agree_on(const byte_string &message, std::size_t before, std::size_t after, bool at_start = false) {
    const unsigned number = GetParam();
    before = std::max<std::size_t>(before, 1);
    const byte_string all = byte_string(before, key_of_run().back()) + message + byte_string(after, 0xc7);
    const byte *const at = page_.holding(all, at_start) + before, *const end = at + message.size();
    const byte *const limit = end + after;
    const buffer whole{at - before, limit};
    const std::size_t expected = pavo_zorv::plain::count_integers(number, at, end);
    const pavo_zorv::counted_run run = count_fast<Element>(number, at, end, whole);
    const std::size_t count = run.count;
    ASSERT_EQ(count, expected) << describe(message, before, after);
    if (count == 0) return;
    std::vector<Element> plain(count), fast(count);
    const byte *const plain_end = pavo_zorv::plain::read_integers(plain.data(), count, at, end);
    const byte *const fast_end = read_fast(fast.data(), run, number, at, end, whole);
    ASSERT_EQ(fast_end - at, plain_end - at) << describe(message, before, after);
    ASSERT_EQ(fast, plain) << describe(message, before, after);
  }

  void agree(const byte_string &message, std::size_t before, std::size_t after) {
    agree_on<std::uint8_t>(message, before, after);
    agree_on<std::uint32_t>(message, before, after);
  }

  // A run that changes after it has been counted: its elements are those that are there by now, as many as were
  // counted; where there are fewer, or the run is cut off, it is refused. Nothing is written beside them.
  template <class Element>
  void agree_on_changed(const byte_string &counted, const byte_string &changed, std::size_t before, std::size_t after) {
    const unsigned number = GetParam();
    byte *const at = page_.last(before + counted.size() + after) + before, *const end = at + counted.size();
    const buffer whole{at - before, end + after};
    std::memcpy(at, counted.data(), counted.size());
    const pavo_zorv::counted_run run = count_fast<Element>(number, at, end, whole);
    const std::size_t count = run.count;
    if (count == 0) return;
    std::memcpy(at, changed.data(), changed.size());
    byte *const first = elements_.data() + elements_.size() - count * sizeof(Element);
    std::memset(elements_.data(), 0xc7, elements_.size());
    const byte *const next = read_fast(reinterpret_cast<Element *>(first), run, number, at, end, whole);
    const std::string what = describe(changed, before, after) + ", counted as " + show(counted);
    ASSERT_EQ(std::count(elements_.data(), first, 0xc7), first - elements_.data()) << what;
    if (run.next != nullptr) {
      // Its values are taken for where they were.
      ASSERT_EQ(next, run.next) << what;
      return;
    }
    // In a buffer that is shorter than one load, keys are where they were when they were counted, whichever they are.
    const bool is_short = whole.size() < pavo_zorv::short_piece::size;
    const bool is_gone = pavo_zorv::plain::count_integers(number, at, end) < count;
    ASSERT_TRUE(next == nullptr ? is_gone : is_short || !is_gone) << what;
    if (next == nullptr) return;
    ASSERT_TRUE(next > at && next <= end) << what;
    std::vector<Element> plain(count), fast(count);
    std::memcpy(fast.data(), first, count * sizeof(Element));
    pavo_zorv::plain::read_integers(plain.data(), count, at, end);
    ASSERT_EQ(fast, plain) << what;
  }

  static std::string describe(const byte_string &message, std::size_t before, std::size_t after) {
    return "field " + std::to_string(GetParam()) + ", " + std::to_string(before) + " bytes before, " +
           std::to_string(after) + " after: " + show(message);
  }

  // Every string over the alphabet up to a length.
  template <class Visit>
  void for_each_string(std::size_t longest, Visit visit) {
    const byte_string letters = alphabet(GetParam());
    for (std::size_t length = 0; length <= longest; ++length) {
      std::vector<std::size_t> digits(length, 0);
      for (bool more = true; more && !HasFatalFailure();) {
        byte_string string;
        for (const std::size_t digit : digits) string.push_back(letters[digit]);
        visit(string);
        more = false;
        for (auto &digit : digits) {
          if (++digit != letters.size()) {
            more = true;
            break;
          }
          digit = 0;
        }
      }
    }
  }

 private:
  fence page_{2048};
  fenced_block elements_{4 * 2048};
};

TEST_P(both_readers, agree_on_every_short_message_at_the_end_of_the_buffer_and_before_it) {
  for_each_string(5, [&](const byte_string &string) {
    for (const std::size_t before : {0u, 64u}) {
      for (const std::size_t after : {0u, 1u, 7u, 64u}) agree(string, before, after);
    }
  });
}

TEST_P(both_readers, agree_on_every_short_string_after_a_part_of_a_window) {
  for (const std::size_t elements : {9u, 21u, 22u, 30u, 31u, 32u}) {
    const byte_string run = filler(GetParam(), elements);
    for_each_string(3, [&](const byte_string &string) {
      for (const std::size_t after : {0u, 3u, 40u}) agree(run + string, 0, after);
    });
  }
}

TEST_P(both_readers, agree_on_a_run_cut_at_every_place_at_every_distance_to_the_end) {
  const byte_string run = filler(GetParam(), 60);
  for (std::size_t length = 0; length <= run.size(); ++length) {
    for (std::size_t after = 0; after <= 70; after += length % 3 + 1) {
      agree(byte_string(run.begin(), run.begin() + static_cast<std::ptrdiff_t>(length)), 0, after);
      if (HasFatalFailure()) return;
    }
  }
}

TEST_P(both_readers, agree_on_values_that_are_longer_than_a_window) {
  for (std::size_t length = 1; length <= 140; ++length) {
    for (const std::size_t elements : {0u, 1u, 5u, 30u}) {
      const byte_string value = length * byte_string{0x93} + byte_string{0x05};
      const byte_string tail = filler(GetParam(), 2);
      agree(filler(GetParam(), elements) + value, 0, 0);
      agree(filler(GetParam(), elements) + value + byte_string(tail.begin(), tail.end()), 0, 5);
      agree(filler(GetParam(), elements) + length * byte_string{0x93}, 0, 5);
    }
  }
}

// Labels of twenty bits go a vector at a time: every number of them, with something else at every place.
TEST_P(both_readers, agree_on_blocks_of_labels_with_one_other_element) {
  const byte_string key = key_of_run();
  std::mt19937 random(5);
  for (std::size_t labels = 1; labels <= 36; ++labels) {
    for (std::size_t other = 0; other <= labels; ++other) {
      for (const byte_string &value : {hex("05"), hex("85 03"), hex("ff ff ff 01"), hex("ff ff ff ff 7f"),
                                       hex("80 80 80 80 80 00"), hex("81 82 00"), 9 * hex("80") + key}) {
        byte_string run;
        for (std::size_t i = 0; i < labels; ++i) {
          if (i != 0) run = run + key;
          run = run + (i == other ? value
                                  : byte_string{static_cast<unsigned char>(random() | 0x80),
                                                static_cast<unsigned char>(random() | 0x80),
                                                static_cast<unsigned char>(random() & 0x7f)});
        }
        agree(run, 0, 0);
        agree(run + hex("fa 01 00"), 0, 0);
        agree(run, 0, 33);
      }
    }
  }
}

// The same in runs that are counted by several windows at once.
TEST_P(both_readers, agree_on_long_runs_of_labels_with_one_other_element) {
  const byte_string key = key_of_run();
  constexpr std::size_t labels = 140;
  byte_string longer_key = key + 300 * hex("80") + hex("00");
  longer_key[key.size() - 1] |= 0x80;
  for (const byte_string &label : {hex("81 82 03"), hex("83 04")}) {
    for (std::size_t other = 0; other <= labels; ++other) {
      for (const byte_string &value : {hex("05"), hex("85 03"), hex("81 82 03"), hex("ff ff ff 01"), hex("81 82 00"),
                                       hex("05") + key + hex("06"), hex("85 03") + hex("ba 01")}) {
        for (const byte_string &first : {label, hex("05"), hex("05") + longer_key + hex("86 07")}) {
          byte_string run = first;
          for (std::size_t i = 1; i < labels; ++i) run = run + key + (i == other ? value : label);
          agree(run, 1, 0);
          agree(run + hex("fa 01 00"), 1, 70);
          run.resize(run.size() - 1);
          agree(run, 1, 0);
        }
      }
    }
  }
}

// What looks like keys and long values in turn, but has a value of one byte first, or another key after a value.
TEST_P(both_readers, agree_on_long_runs_that_only_look_like_long_values) {
  const byte_string key = key_of_run();
  byte_string longer_key = key + hex("00");
  longer_key[key.size() - 1] |= 0x80;
  agree(hex("7f") + longer_key + key + 100 * (hex("96 01") + key) + hex("96 01"), 1, 0);
  const byte_string element = hex("ff 00") + key;
  agree(30 * element + hex("ff 7f ff 00") + key + 100 * element + hex("ff 00"), 1, 0);
  // All begin with the same byte.
  const auto first = static_cast<unsigned char>(key.front() | 0x80);
  const byte_string value = {first, 0x05}, other_key = {first, 0x03};
  agree(30 * (value + key) + value + other_key + 100 * (value + key) + value, 1, 0);
}

// Elements of one byte or two before labels and after them: as many bytes as a label takes, or nearly.
TEST_P(both_readers, agree_on_labels_between_short_elements) {
  const byte_string key = key_of_run(), labels = 20 * (hex("81 82 03") + key), values[] = {hex("05"), hex("86 07"), {}};
  for (const std::size_t count : {7u, 8u, 9u, 15u, 16u}) {
    for (unsigned number = 0; number < 3 * 3 * 3 * 3; ++number) {
      byte_string before, after;
      for (const unsigned digit : {number % 3, number / 3 % 3}) {
        if (!values[digit].empty()) before = before + values[digit] + key;
      }
      for (const unsigned digit : {number / 9 % 3, number / 27}) {
        if (!values[digit].empty()) after = after + values[digit] + key;
      }
      const auto some = static_cast<std::ptrdiff_t>(count * (3 + key.size()));
      const byte_string run = before + byte_string(labels.begin(), labels.begin() + some) + after + hex("04");
      agree(run, 0, 0);
      agree(run, 64, 40);
    }
  }
}

// Words that are not blocks of labels, though they look like some: with other keys after the values, or none; where
// the run begins, and after as many labels as a window holds.
TEST_P(both_readers, agree_on_every_four_bytes_again_and_again) {
  const auto key = static_cast<unsigned char>(GetParam() << 3);
  const byte_string letters = {
      0x85, 0x05, 0x00, key, static_cast<unsigned char>(key << 1), static_cast<unsigned char>(key >> 1)};
  const byte_string label = byte_string{0x81, 0x82, 0x03} + key_of_run();
  const byte_string window = GetParam() < 16 ? 16 * label : 12 * label + hex("85 03") + key_of_run();
  for (std::size_t number = 0; number < 6 * 6 * 6 * 6 && !HasFatalFailure(); ++number) {
    const byte_string word = {letters[number % 6], letters[number / 6 % 6], letters[number / 36 % 6],
                              letters[number / 216]};
    agree(20 * word + byte_string{0x01}, 0, 0);
    agree(window + 20 * word + byte_string{0x01}, 0, 0);
    agree(window + word + 16 * byte_string{0x81, 0x82, 0x03, key} + byte_string{0x01}, 0, 0);
  }
}

// Lists of bytes are read at once where all second bytes are 1: first bytes, and keys, may be 1 as well.
TEST_P(both_readers, agree_on_lists_of_small_bytes) {
  const byte_string key = key_of_run();
  const byte_string values[] = {hex("01"), hex("00"), hex("02"), hex("81 01"), hex("ff 01"), hex("81 00")};
  for (std::size_t number = 0; number < 6 * 6 * 6 * 6 * 6 && !HasFatalFailure(); ++number) {
    byte_string run = values[number % 6];
    for (const std::size_t digit : {number / 6 % 6, number / 36 % 6, number / 216 % 6, number / 1296})
      run = run + key + values[digit];
    agree(run, 64, 0);
    agree(run, 0, 64);
  }
  // As many as a window holds, and more.
  for (std::size_t ones = 0; ones <= 40; ++ones) {
    for (const byte_string &value : values) agree(ones * (hex("01") + key) + value, 0, 64);
  }
}

// The buffer is as short as one load, or a little longer, so that loads are moved back to where it begins.
TEST_P(both_readers, agree_where_the_buffer_begins) {
  for (std::size_t length = 0; length <= 80; ++length) {
    for (const std::size_t after : {0u, 1u, 9u}) {
      const byte_string run = filler(GetParam(), 60),
                        message(run.begin(), run.begin() + static_cast<std::ptrdiff_t>(length));
      agree_on<std::uint8_t>(message, 1, after, true);
      agree_on<std::uint32_t>(message, 1, after, true);
    }
  }
}

TEST_P(both_readers, agree_on_random_bytes) {
  std::mt19937 random(GetParam());
  const byte_string letters = alphabet(GetParam());
  for (int round = 0; round < 20000 && !HasFatalFailure(); ++round) {
    byte_string message = filler(GetParam(), random() % 40);
    for (int change = 0; change < 3 && !message.empty(); ++change) {
      message[random() % message.size()] =
          random() % 2 == 0 ? letters[random() % letters.size()] : static_cast<unsigned char>(random());
    }
    agree(message, 0, random() % 70);
  }
}

// Runs in which values of one size, or of all, and over-long keys are rare or frequent.
byte_string any_run(unsigned number, std::size_t length, std::mt19937 &random) {
  const std::size_t sizes[] = {1, 2, 3, 5, 9, 40}, size = random() % 9;
  const unsigned distances[] = {1, 2, 5, 30, 1000}, distance = distances[random() % 5];  // between over-long keys
  byte_string run;
  while (run.size() < length) {
    const std::size_t value = sizes[size < 5 ? size : random() % (size < 8 ? 4 : 6)];
    for (std::size_t i = 1; i < value; ++i) run.push_back(static_cast<unsigned char>(random() | 0x80));
    run.push_back(static_cast<unsigned char>(random() & 0x7f));
    const unsigned key = number << 3, is_long = random() % distance == 0;
    run.push_back(static_cast<unsigned char>(key | (is_long || number >= 16 ? 0x80 : 0)));
    if (is_long || number >= 16) run.push_back(static_cast<unsigned char>(key >> 7 | (is_long ? 0x80 : 0)));
    if (is_long) run.push_back(0x00);
  }
  run.resize(length);
  // In most cases not cut off.
  if (length != 0 && random() % 5 != 0) run.back() &= 0x7f;
  return run;
}

TEST_P(both_readers, agree_on_random_runs) {
  std::mt19937 random(GetParam());
  for (int round = 0; round < 4000 && !HasFatalFailure(); ++round) {
    const byte_string run = any_run(GetParam(), random() % (round % 4 == 0 ? 1500 : 400), random);
    agree(run, 0, random() % 70);
    agree(run + hex("fa 01 00"), 0, random() % 70);
  }
}

TEST_P(both_readers, take_of_a_run_that_changes_no_more_than_was_counted) {
  std::mt19937 random(GetParam());
  for (int round = 0; round < 20000 && !HasFatalFailure(); ++round) {
    const std::size_t length = 1 + random() % (random() % 2 == 0 ? 64
                                               : round % 4 == 0  ? 1500
                                                                 : 400),
                      from = random() % length;
    const std::size_t to = random() % 2 == 0 ? length : from + random() % (length - from);
    byte_string counted = any_run(GetParam(), length, random), changed = counted;
    const byte_string other = any_run(GetParam(), length, random);
    for (std::size_t at = from; at < to; ++at) changed[at] = other[at];
    // What ends the run, in one of them or in both.
    if (length > 10 && random() % 3 == 0) std::fill(counted.end() - (random() % 2 == 0 ? 8 : 9), counted.end(), 0x01);
    if (length > 10 && random() % 3 == 0) std::fill(changed.end() - (random() % 2 == 0 ? 8 : 9), changed.end(), 0x01);
    const std::size_t before = random() % 40, after = random() % 2 == 0 ? 0 : random() % 70;
    agree_on_changed<std::uint8_t>(counted, changed, before, after);
    agree_on_changed<std::uint32_t>(counted, changed, before, after);
  }
}

INSTANTIATE_TEST_SUITE_P(fields, both_readers, ::testing::Values(1u, 2u, 15u, 16u, 22u, 32u));

// After a non-canonical key, elements are taken one by one until sixteen keys in a row have been canonical. The run
// begins with a value; the place is that of the next one.
template <unsigned KeySize>
void are_taken_one_by_one(const byte_string &run, std::size_t elements, std::size_t place) {
  const fenced_block input(run);
  const byte *const at = input.data(), *const end = at + input.size();
  const auto taken =
      pavo_zorv::take_one_by_one<KeySize>(KeySize == 1 ? 0x08 : 0x80, at, end, pavo_zorv::element_counter{});
  EXPECT_FALSE(taken.ended) << show(run);
  EXPECT_EQ(taken.visit.count, elements) << show(run);
  EXPECT_EQ(taken.at - at, static_cast<std::ptrdiff_t>(place)) << show(run);
}

TEST(elements, are_taken_one_by_one_until_sixteen_keys_in_a_row_are_in_their_shortest_form) {
  const byte_string shortest = 40 * hex("05 08"), end = hex("05");
  are_taken_one_by_one<1>(shortest + end, 16, 32);
  are_taken_one_by_one<1>(hex("05 88 00") + shortest + end, 1 + 16, 3 + 32);
  are_taken_one_by_one<1>(hex("05 0a") + shortest + end, 1 + 16, 2 + 32);  // another wire type
  are_taken_one_by_one<1>(15 * hex("05 08") + hex("05 88 00") + shortest + end, 15 + 1 + 16, 30 + 3 + 32);
  are_taken_one_by_one<1>(15 * hex("05 08") + hex("05 0a") + shortest + end, 15 + 1 + 16, 30 + 2 + 32);

  const byte_string longer = 40 * hex("05 80 01");
  are_taken_one_by_one<2>(longer + end, 16, 48);
  are_taken_one_by_one<2>(15 * hex("05 80 01") + hex("05 80 81 00") + longer + end, 15 + 1 + 16, 45 + 4 + 48);
  are_taken_one_by_one<2>(15 * hex("05 80 01") + hex("05 82 01") + longer + end, 15 + 1 + 16, 45 + 3 + 48);
}

// Three elements of field 1 were there when they were counted.
TEST(plain_reader, refuses_a_run_that_is_cut_off_by_now) {
  std::vector<std::uint8_t> elements;
  const auto refuses = [&](const char *text) {
    const fenced_block input(hex(text));
    elements.assign(3, 0xc7);
    return pavo_zorv::plain::read_integers(elements.data(), 3, input.data(), input.data() + input.size()) == nullptr;
  };
  EXPECT_FALSE(refuses("05 08 86 02 08 07")) << "cut to eight bits";
  EXPECT_EQ(elements, hex("05 06 07"));
  EXPECT_TRUE(refuses("85")) << "the first value";
  EXPECT_EQ(elements, hex("c7 c7 c7"));
  EXPECT_TRUE(refuses("05 88")) << "a key";
  EXPECT_TRUE(refuses("05 08 86")) << "a value";
  EXPECT_TRUE(refuses("05 08 06")) << "a key that is not there";
  EXPECT_TRUE(refuses("05 08 06 08")) << "a value that is not there";
  EXPECT_EQ(elements, hex("05 06 c7"));
}

// --- Windows ---

TEST(windows, are_the_same_with_every_size_of_load) {
  std::mt19937 random(3);
  fenced_block page(200);
  for (int round = 0; round < 3000; ++round) {
    for (std::size_t i = 0; i < page.size(); ++i) page.data()[i] = static_cast<unsigned char>(random() >> random() % 8);
    const auto key = static_cast<std::uint32_t>(random() % 27 + 1) << 3;
    const byte *const limit = page.data() + page.size();
    for (const std::size_t left :
         {std::size_t{0}, std::size_t{1}, random() % 64, std::size_t{63}, std::size_t{64}, random() % 200}) {
      std::uint64_t ends = 0, keys = 0, ones = 0;
      const byte *const at = limit - left;
      for (std::size_t i = 0; i < left && i < 64; ++i) {
        if (at[i] < 0x80) ends |= std::uint64_t{1} << i;
        if (at[i] == 1) ones |= std::uint64_t{1} << i;
        const bool one = key < 0x80 && at[i] == key;
        const bool two =
            key >= 0x80 && i + 1 < 64 && i + 1 < left && at[i] == (key & 0x7f) + 0x80 && at[i + 1] == key >> 7;
        if (one || two) keys |= std::uint64_t{1} << i;
      }
      const auto check = [&](pavo_zorv::window seen) {
        ASSERT_EQ(seen.ends, ends) << left;
        ASSERT_EQ(seen.keys, keys) << left;
      };
      ASSERT_EQ(pavo_zorv::look_for<pavo_zorv::portable_piece>(at, limit, 1), ones) << left;
      ASSERT_EQ(pavo_zorv::look_for<pavo_zorv::native_piece>(at, limit, 1), ones) << left;
      if (key < 0x80) {
        check(pavo_zorv::look<pavo_zorv::portable_piece>(at, limit, pavo_zorv::key_bytes<1>(key)));
        check(pavo_zorv::look<pavo_zorv::native_piece>(at, limit, pavo_zorv::key_bytes<1>(key)));
      } else {
        check(pavo_zorv::look<pavo_zorv::portable_piece>(at, limit, pavo_zorv::key_bytes<2>(key)));
        check(pavo_zorv::look<pavo_zorv::native_piece>(at, limit, pavo_zorv::key_bytes<2>(key)));
      }
      if (HasFatalFailure()) return;
    }
  }
}

TEST(windows, parity_is_that_of_the_bits_up_to_each) {
  EXPECT_EQ(pavo_zorv::parity_up_to(0), 0u);
  EXPECT_EQ(pavo_zorv::parity_up_to(0b1001), 0b0111u);
  EXPECT_EQ(pavo_zorv::parity_up_to(std::uint64_t{1} << 63), std::uint64_t{1} << 63);
  EXPECT_EQ(pavo_zorv::parity_up_to(1), ~std::uint64_t{0});
}

TEST(bits, are_counted) {
  EXPECT_EQ(pavo_zorv::count_bits(0), 0u);
  EXPECT_EQ(pavo_zorv::count_bits(~std::uint64_t{0}), 64u);
  for (unsigned bit = 0; bit < 64; ++bit) {
    EXPECT_EQ(pavo_zorv::count_bits(std::uint64_t{1} << bit), 1u);
    EXPECT_EQ(pavo_zorv::count_bits((std::uint64_t{1} << bit) - 1), bit);
  }
}

// --- Measuring and writing ---

template <class Element>
std::vector<Element> boundaries() {
  std::vector<Element> result = {0, 1, 127, 128, 255};
  if constexpr (sizeof(Element) == 4)
    result = {0, 127, 128, 0x3fff, 0x4000, 0x1fffff, 0x200000, 0xfffffff, 0x10000000, 0xffffffff};
  return result;
}

template <class Element>
class both_writers : public ::testing::Test {
 protected:
  // Into a buffer in which the run begins `before` bytes after the start; what is after it stays as it was. The
  // elements begin and end at an inaccessible page.
  void agree(const std::vector<Element> &elements, unsigned number, std::size_t before) {
    const std::size_t size = elements.size() * sizeof(Element);
    const fence large(size > page_.room() ? size : 0);
    const fence &room = size > page_.room() ? large : page_;
    for (const bool at_start : {false, true}) {
      const byte *const start = room.holding(reinterpret_cast<const byte *>(elements.data()), size, at_start);
      agree(elements, reinterpret_cast<const Element *>(start), number, before);
    }
  }

 private:
  void agree(const std::vector<Element> &elements, const Element *data, unsigned number, std::size_t before) {
    const std::size_t key_size = number < 16 ? 1 : 2;
    const std::size_t values = static_cast<std::size_t>(pavo_zorv::plain::measure_integers(data, elements.size()));
    ASSERT_EQ(pavo_zorv::measure_integers(data, elements.size()), values) << ::testing::PrintToString(elements);
    const std::size_t length = elements.size() * key_size + values;
    byte_string plain(before + length + 16, 0xc7);
    byte *const fast = written_.holding(plain, true);  // no store reaches before the buffer
    const auto start_of = [&](byte *into, auto write) {
      auto to = pavo_zorv::writer::exact(into, nullptr, false);
      return write(to, into + before + length) - into;
    };
    ASSERT_EQ(start_of(plain.data(),
                       [&](auto &to, byte *at) {
                         return pavo_zorv::plain::write_integers(to, at, number, data, elements.size());
                       }),
              static_cast<std::ptrdiff_t>(before));
    ASSERT_EQ(
        start_of(fast,
                 [&](auto &to, byte *at) { return pavo_zorv::write_integers(to, at, number, data, elements.size()); }),
        static_cast<std::ptrdiff_t>(before));
    // What lies before is not yet written when the run is, and may be overwritten; what lies after is not.
    ASSERT_EQ(byte_string(fast + before, fast + plain.size()),
              byte_string(plain.begin() + static_cast<std::ptrdiff_t>(before), plain.end()))
        << ::testing::PrintToString(elements);
  }

  fence page_{512};
  fence written_{1 << 20};
};

using elements = ::testing::Types<std::uint8_t, std::uint32_t>;
TYPED_TEST_SUITE(both_writers, elements);

TYPED_TEST(both_writers, agree_on_every_short_array_of_boundary_values) {
  const auto values = boundaries<TypeParam>();
  for (const auto a : values) {
    this->agree({a}, 1, 0);
    for (const auto b : values) {
      for (const auto c : values) {
        for (const auto d : values) this->agree({a, b, c, d}, 1, 0);
        this->agree({a, b, c}, 22, 1);
      }
      this->agree({a, b}, 15, 2);
    }
  }
}

TYPED_TEST(both_writers, agree_on_every_length_and_distance_to_the_start) {
  std::mt19937 random(7);
  for (std::size_t length = 0; length <= 70; ++length) {
    for (std::size_t before = 0; before <= 40; ++before) {
      std::vector<TypeParam> some(length);
      for (auto &element : some) element = static_cast<TypeParam>(random() >> random() % 32);
      for (const unsigned number : {1u, 15u, 16u, 32u}) this->agree(some, number, before);
      // Most are labels of twenty bits, which go a vector at a time.
      for (auto &element : some)
        element = static_cast<TypeParam>(random() % 40 == 0 ? random() : 0x4000 + random() % 0x1fc000);
      this->agree(some, 3, before);
      // Labels of every size, and at times another number among them.
      for (auto &element : some) element = static_cast<TypeParam>((random() & 0x1fffff) >> random() % 21);
      this->agree(some, 3, before);
      if (length != 0) some[random() % length] = static_cast<TypeParam>(0x200000);
      this->agree(some, 3, before);
    }
  }
}

// Of the groups of seven bits in each, all but one are zero, and often many between it and the first.
TYPED_TEST(both_writers, agree_on_numbers_of_one_bit) {
  for (unsigned bit = 0; bit < 8 * sizeof(TypeParam); ++bit) {
    for (const std::size_t length : {1u, 4u, 8u, 12u, 40u}) {
      const std::vector<TypeParam> some(length, static_cast<TypeParam>(TypeParam{1} << bit));
      for (const unsigned number : {1u, 16u}) this->agree(some, number, 0);
    }
  }
}

TYPED_TEST(both_writers, agree_on_long_arrays) {
  std::vector<TypeParam> some(100003);
  for (std::size_t i = 0; i < some.size(); ++i) some[i] = static_cast<TypeParam>(~std::uint32_t{0} >> i % 32);
  this->agree(some, 1, 3);
  some.assign(some.size(), static_cast<TypeParam>(~std::uint32_t{0}));
  this->agree(some, 16, 0);
}

// A list of integers is reserved before it is written: below the limit nothing is touched but by the stores of a
// vector, and where it does not fit, nothing is written.
template <class Element>
void is_reserved(unsigned number, Element value, std::size_t bytes_of_value) {
  const std::size_t each = (number < 16 ? 1 : 2) + bytes_of_value;
  const std::vector<Element> values(700, value);
  for (const std::size_t count : {1u, 3u, 4u, 5u, 8u, 9u, 33u, 100u, 699u, 700u}) {
    for (std::size_t above = 0; above <= 1200; above += 1 + above / 100) {
      constexpr std::size_t slop = 8192, of_stores = pavo_zorv::vector_size;
      byte_string space(slop + above, 0xc7);
      byte *const first = space.data(), *const limit = first + slop, *const end = limit + above;
      auto to = pavo_zorv::writer::scratch(first, slop, false);
      const auto *const start = pavo_zorv::write_integers(to, end, number, values.data(), count);
      const std::size_t written = each * count <= above ? each * count : 0;
      ASSERT_EQ(static_cast<std::size_t>(end - start), written) << count << " elements, " << above << " bytes";
      ASSERT_EQ(to.overflowed(), each * count > above) << count << " elements, " << above << " bytes";
      ASSERT_EQ(std::count(first, limit - of_stores, 0xc7), static_cast<std::ptrdiff_t>(slop - of_stores))
          << count << " elements, " << above << " bytes";
    }
  }
}

TEST(writing_by_scratch, a_list_of_integers_is_reserved) {
  for (const unsigned number : {1u, 15u, 16u, 27u}) {
    is_reserved<std::uint32_t>(number, 0, 1);
    is_reserved<std::uint32_t>(number, 0x3fff, 2);
    is_reserved<std::uint32_t>(number, 0x1fffff, 3);
    is_reserved<std::uint32_t>(number, 0xffffffff, 5);
    is_reserved<std::uint8_t>(number, 0x7f, 1);
    is_reserved<std::uint8_t>(number, 0xff, 2);
  }
}

}  // namespace
