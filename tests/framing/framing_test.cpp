// Length prefixes and streams of messages: in every cut, whatever a peer sends.
#include "pavo_zorv_framing.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "random.hpp"
#include "support.hpp"

namespace {

using test::byte_string;
using test::operator+;
using test::fenced_block;

constexpr pavo_zorv_prefix forms[] = {PAVO_ZORV_PREFIX_VARINT, PAVO_ZORV_PREFIX_BE16, PAVO_ZORV_PREFIX_BE32,
                                      PAVO_ZORV_PREFIX_LE32};

// The prefix of a length, in a block of exactly its size.
byte_string prefix(pavo_zorv_prefix form, std::uint64_t length) {
  const fenced_block block(pavo_zorv_prefix_size(form, length));
  EXPECT_EQ(pavo_zorv_prefix_write(block.data(), form, length), block.size());
  return block.content();
}

TEST(prefixes, have_the_bytes_of_their_form) {
  EXPECT_EQ(prefix(PAVO_ZORV_PREFIX_VARINT, 0), (byte_string{0x00}));
  EXPECT_EQ(prefix(PAVO_ZORV_PREFIX_VARINT, 127), (byte_string{0x7f}));
  EXPECT_EQ(prefix(PAVO_ZORV_PREFIX_VARINT, 128), (byte_string{0x80, 0x01}));
  EXPECT_EQ(prefix(PAVO_ZORV_PREFIX_VARINT, 300), (byte_string{0xac, 0x02}));
  EXPECT_EQ(prefix(PAVO_ZORV_PREFIX_VARINT, 0xffffffff), (byte_string{0xff, 0xff, 0xff, 0xff, 0x0f}));
  EXPECT_EQ(prefix(PAVO_ZORV_PREFIX_VARINT, UINT64_MAX),
            (byte_string{0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x01}));
  EXPECT_EQ(prefix(PAVO_ZORV_PREFIX_BE16, 0), (byte_string{0x00, 0x00}));
  EXPECT_EQ(prefix(PAVO_ZORV_PREFIX_BE16, 300), (byte_string{0x01, 0x2c}));
  EXPECT_EQ(prefix(PAVO_ZORV_PREFIX_BE16, 65535), (byte_string{0xff, 0xff}));
  EXPECT_EQ(prefix(PAVO_ZORV_PREFIX_BE32, 0x01020304), (byte_string{0x01, 0x02, 0x03, 0x04}));
  EXPECT_EQ(prefix(PAVO_ZORV_PREFIX_BE32, 0xffffffff), (byte_string{0xff, 0xff, 0xff, 0xff}));
  EXPECT_EQ(prefix(PAVO_ZORV_PREFIX_LE32, 0x01020304), (byte_string{0x04, 0x03, 0x02, 0x01}));
  EXPECT_EQ(prefix(PAVO_ZORV_PREFIX_LE32, 300), (byte_string{0x2c, 0x01, 0x00, 0x00}));
}

TEST(prefixes, that_cannot_hold_a_length_are_not_written) {
  for (const auto &[form, length] : {std::pair{PAVO_ZORV_PREFIX_BE16, std::uint64_t{65536}},
                                     {PAVO_ZORV_PREFIX_BE32, std::uint64_t{1} << 32},
                                     {PAVO_ZORV_PREFIX_LE32, std::uint64_t{1} << 32}}) {
    unsigned char bytes[2] = {0x5a, 0x5a};
    EXPECT_EQ(pavo_zorv_prefix_size(form, length), 0u);
    EXPECT_EQ(pavo_zorv_prefix_write(bytes, form, length), 0u);
    EXPECT_EQ(pavo_zorv_prefix_before(bytes + 1, form, length), nullptr);
    EXPECT_EQ(bytes[0], 0x5a);
    EXPECT_EQ(bytes[1], 0x5a);
  }
}

TEST(prefixes, are_written_directly_before_a_message) {
  unsigned char bytes[4] = {0x5a, 0x5a, 0x5a, 0x08};
  EXPECT_EQ(pavo_zorv_prefix_before(bytes + 3, PAVO_ZORV_PREFIX_VARINT, 300), bytes + 1);
  EXPECT_EQ(byte_string(bytes, bytes + 4), (byte_string{0x5a, 0xac, 0x02, 0x08}));
}

// What the first bytes of a frame give, in a block of exactly their size.
struct outcome {
  int result;
  std::size_t prefix;
  std::uint64_t length;
  bool operator==(const outcome &) const = default;
};
void PrintTo(const outcome &each, std::ostream *out) {
  *out << each.result << ", prefix " << each.prefix << ", length " << each.length;
}
outcome first_frame(pavo_zorv_prefix form, const byte_string &bytes, std::uint64_t limit) {
  const fenced_block block(bytes);
  pavo_zorv_frame frame{77, 77};
  const int result = pavo_zorv_frame_read(&frame, form, block.data(), block.size(), limit);
  return {result, frame.prefix, frame.length};
}

TEST(frames, are_complete_with_their_last_byte) {
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, {}, 9), (outcome{PAVO_ZORV_FRAME_INCOMPLETE, 0, 0}));
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, {0x00}, 9), (outcome{PAVO_ZORV_FRAME_COMPLETE, 1, 0}));
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, {0x02}, 9), (outcome{PAVO_ZORV_FRAME_INCOMPLETE, 1, 2}));
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, {0x02, 0x08}, 9), (outcome{PAVO_ZORV_FRAME_INCOMPLETE, 1, 2}));
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, {0x02, 0x08, 0x01}, 9), (outcome{PAVO_ZORV_FRAME_COMPLETE, 1, 2}));
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, {0x02, 0x08, 0x01, 0xff}, 9),
            (outcome{PAVO_ZORV_FRAME_COMPLETE, 1, 2}));
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, {0x82}, 9), (outcome{PAVO_ZORV_FRAME_INCOMPLETE, 0, 0}));
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_BE16, {0x00}, 9), (outcome{PAVO_ZORV_FRAME_INCOMPLETE, 0, 0}));
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_BE16, {0x00, 0x01}, 9), (outcome{PAVO_ZORV_FRAME_INCOMPLETE, 2, 1}));
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_BE16, {0x00, 0x01, 0x08}, 9), (outcome{PAVO_ZORV_FRAME_COMPLETE, 2, 1}));
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_BE32, {0x00, 0x00, 0x00}, 9), (outcome{PAVO_ZORV_FRAME_INCOMPLETE, 0, 0}));
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_BE32, {0x00, 0x00, 0x00, 0x00}, 9), (outcome{PAVO_ZORV_FRAME_COMPLETE, 4, 0}));
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_LE32, {0x01, 0x00, 0x00, 0x00, 0x08}, 9),
            (outcome{PAVO_ZORV_FRAME_COMPLETE, 4, 1}));
}

TEST(frames, without_bytes_are_incomplete) {
  for (const pavo_zorv_prefix form : forms) {
    pavo_zorv_frame frame;
    EXPECT_EQ(pavo_zorv_frame_read(&frame, form, nullptr, 0, 0), PAVO_ZORV_FRAME_INCOMPLETE);
  }
}

TEST(frames, may_have_varints_that_are_longer_than_needed) {
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, {0x81, 0x00, 0x08}, 9), (outcome{PAVO_ZORV_FRAME_COMPLETE, 2, 1}));
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, {0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x00}, 0),
            (outcome{PAVO_ZORV_FRAME_COMPLETE, 10, 0}));
}

TEST(frames, with_varints_of_more_than_64_bits_or_10_bytes_are_refused) {
  const byte_string nine(9, 0x80);
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, nine + byte_string{0x80, 0x00}, UINT64_MAX).result,
            PAVO_ZORV_FRAME_BAD_PREFIX);
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, nine + byte_string{0x02}, UINT64_MAX).result,
            PAVO_ZORV_FRAME_BAD_PREFIX);
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, nine + byte_string{0x01}, UINT64_MAX),
            (outcome{PAVO_ZORV_FRAME_INCOMPLETE, 10, std::uint64_t{1} << 63}));
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, nine + byte_string{0x01}, UINT64_MAX / 2).result,
            PAVO_ZORV_FRAME_TOO_LONG);
}

TEST(frames, beyond_the_limit_are_refused_with_the_byte_that_tells) {
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, {0x7f}, 127).result, PAVO_ZORV_FRAME_INCOMPLETE);
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, {0x7f}, 126).result, PAVO_ZORV_FRAME_TOO_LONG);
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, {0x80}, 126).result, PAVO_ZORV_FRAME_INCOMPLETE);
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_VARINT, {0x80, 0x81}, 127).result, PAVO_ZORV_FRAME_TOO_LONG);
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_BE16, {0xff}, 1).result, PAVO_ZORV_FRAME_INCOMPLETE);
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_BE16, {0x00, 0x02}, 1).result, PAVO_ZORV_FRAME_TOO_LONG);
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_BE32, {0xff, 0xff, 0xff, 0xff}, 0xfffffffe).result, PAVO_ZORV_FRAME_TOO_LONG);
  EXPECT_EQ(first_frame(PAVO_ZORV_PREFIX_LE32, {0x02, 0x00, 0x00, 0x00}, 1), (outcome{PAVO_ZORV_FRAME_TOO_LONG, 0, 0}));
}

// What a stream gives out: its messages, and the result after the last of them.
struct received {
  std::vector<byte_string> messages;
  int result = 0;
  bool may_end = false;
  bool operator==(const received &) const = default;
};
void PrintTo(const received &each, std::ostream *out) {
  *out << each.messages.size() << " messages, then " << each.result << (each.may_end ? ", complete" : "");
}

// A reader in a buffer of exactly the size that its limit needs, unless another is given.
class reader {
 public:
  reader(pavo_zorv_prefix form, std::size_t limit, std::size_t extra = 0)
      : buffer_(PAVO_ZORV_STREAM_SIZE(limit) + extra) {
    pavo_zorv_stream_init(&stream_, form, buffer_.data(), buffer_.size(), limit);
  }

  // Bytes that arrive at once: stored in as many pieces as there is room for.
  void give(const unsigned char *bytes, std::size_t count) {
    while (count != 0) {
      std::size_t room = 77;
      unsigned char *const space = pavo_zorv_stream_space(&stream_, &room);
      if (room == 0) {
        EXPECT_LT(so_far.result, 0) << "no room for more of a message that is not complete";
        return;
      }
      const std::size_t stored = std::min(room, count);
      std::memcpy(space, bytes, stored);
      pavo_zorv_stream_filled(&stream_, stored);
      bytes += stored;
      count -= stored;
      take();
    }
  }

  received so_far;

 private:
  void take() {
    const unsigned char *message = nullptr;
    std::size_t length = 77;
    while ((so_far.result = pavo_zorv_stream_next(&stream_, &message, &length)) == PAVO_ZORV_FRAME_COMPLETE) {
      EXPECT_GE(message, buffer_.data());
      EXPECT_LE(message + length, buffer_.data() + buffer_.size());
      so_far.messages.emplace_back(message, message + length);
    }
    EXPECT_EQ(message, nullptr);
    EXPECT_EQ(length, 0u);
    so_far.may_end = pavo_zorv_stream_is_between_messages(&stream_) != 0;
  }

  fenced_block buffer_;
  pavo_zorv_stream stream_;
};

// A stream with messages of these lengths.
byte_string stream_of(pavo_zorv_prefix form, const std::vector<std::size_t> &lengths,
                      std::vector<byte_string> &messages) {
  byte_string stream;
  for (const std::size_t length : lengths) {
    byte_string message;
    for (std::size_t i = 0; i < length; ++i) message.push_back(static_cast<unsigned char>(0x80 + length + i));
    stream = stream + prefix(form, length) + message;
    messages.push_back(message);
  }
  return stream;
}

class streams : public testing::TestWithParam<pavo_zorv_prefix> {};
std::string name_of(const testing::TestParamInfo<pavo_zorv_prefix> &form) {
  static const char *const names[] = {"varint", "be16", "be32", "le32"};
  return names[form.param];
}
INSTANTIATE_TEST_SUITE_P(of, streams, testing::ValuesIn(forms), name_of);

TEST_P(streams, give_the_same_messages_in_every_cut_into_three) {
  std::vector<byte_string> messages;
  const byte_string stream = stream_of(GetParam(), {3, 0, 130, 1, 0, 2}, messages);
  for (std::size_t first = 0; first <= stream.size(); ++first) {
    for (std::size_t second = first; second <= stream.size(); ++second) {
      reader cut(GetParam(), 130);
      cut.give(stream.data(), first);
      cut.give(stream.data() + first, second - first);
      cut.give(stream.data() + second, stream.size() - second);
      ASSERT_EQ(cut.so_far, (received{messages, PAVO_ZORV_FRAME_INCOMPLETE, true})) << first << ", " << second;
    }
  }
}

TEST_P(streams, give_the_same_messages_in_pieces_of_every_size_and_buffers_of_every_size) {
  std::vector<byte_string> messages;
  const byte_string stream = stream_of(GetParam(), {3, 0, 40, 1, 39, 0, 40, 40, 2, 40}, messages);
  for (std::size_t piece = 1; piece <= stream.size(); ++piece) {
    for (const std::size_t extra : {0u, 1u, 2u, 3u, 7u, 39u, 40u, 41u, 500u}) {
      reader pieces(GetParam(), 40, extra);
      for (std::size_t at = 0; at < stream.size(); at += piece) {
        pieces.give(stream.data() + at, std::min(piece, stream.size() - at));
      }
      ASSERT_EQ(pieces.so_far, (received{messages, PAVO_ZORV_FRAME_INCOMPLETE, true})) << piece << ", " << extra;
    }
  }
}

TEST_P(streams, that_end_inside_a_message_say_so) {
  std::vector<byte_string> messages;
  const byte_string stream = stream_of(GetParam(), {3, 0, 5}, messages);
  std::size_t ends = 0;
  for (std::size_t end = 1; end <= stream.size(); ++end) {
    reader cut(GetParam(), 5);
    cut.give(stream.data(), end);
    EXPECT_EQ(cut.so_far.result, PAVO_ZORV_FRAME_INCOMPLETE);
    byte_string given;
    for (const byte_string &message : cut.so_far.messages) given = given + prefix(GetParam(), message.size()) + message;
    EXPECT_TRUE(given.size() <= end && std::equal(given.begin(), given.end(), stream.begin())) << end;
    EXPECT_EQ(cut.so_far.may_end, given.size() == end) << end;
    ends += cut.so_far.may_end;
  }
  EXPECT_EQ(ends, 3u);
}

TEST_P(streams, with_a_message_beyond_the_limit_fail_for_good_in_every_cut) {
  std::vector<byte_string> messages;
  const byte_string good = stream_of(GetParam(), {2, 6}, messages);
  std::vector<byte_string> rest;
  const byte_string stream = good + stream_of(GetParam(), {7, 1}, rest);
  for (std::size_t cut = 1; cut <= stream.size(); ++cut) {
    reader reads(GetParam(), 6);
    reads.give(stream.data(), cut);
    reads.give(stream.data() + cut, stream.size() - cut);
    reads.give(good.data(), good.size());
    ASSERT_EQ(reads.so_far, (received{messages, PAVO_ZORV_FRAME_TOO_LONG, false})) << cut;
  }
}

TEST(stream, with_a_bad_varint_fails_for_good_in_every_cut) {
  const byte_string stream = byte_string{0x01, 0x08} + byte_string(10, 0x80) + byte_string{0x00, 0x01, 0x08};
  for (std::size_t cut = 1; cut <= stream.size(); ++cut) {
    reader reads(PAVO_ZORV_PREFIX_VARINT, 100);
    reads.give(stream.data(), cut);
    reads.give(stream.data() + cut, stream.size() - cut);
    ASSERT_EQ(reads.so_far, (received{{{0x08}}, PAVO_ZORV_FRAME_BAD_PREFIX, false})) << cut;
  }
}

TEST(stream, has_a_limit_of_what_its_buffer_holds) {
  unsigned char buffer[PAVO_ZORV_STREAM_SIZE(5)];
  pavo_zorv_stream stream;
  pavo_zorv_stream_init(&stream, PAVO_ZORV_PREFIX_BE32, buffer, sizeof buffer, 1000);
  EXPECT_EQ(stream.limit, 5u);
  pavo_zorv_stream_init(&stream, PAVO_ZORV_PREFIX_BE32, buffer, sizeof buffer, 4);
  EXPECT_EQ(stream.limit, 4u);
  pavo_zorv_stream_init(&stream, PAVO_ZORV_PREFIX_BE32, buffer, PAVO_ZORV_PREFIX_SIZE - 1, 4);
  EXPECT_EQ(stream.limit, 0u);
}

TEST(stream, has_no_room_after_a_failure) {
  unsigned char buffer[PAVO_ZORV_STREAM_SIZE(5)];
  pavo_zorv_stream stream;
  pavo_zorv_stream_init(&stream, PAVO_ZORV_PREFIX_VARINT, buffer, sizeof buffer, 5);
  std::size_t room = 0;
  *pavo_zorv_stream_space(&stream, &room) = 0x06;
  EXPECT_EQ(room, sizeof buffer);
  pavo_zorv_stream_filled(&stream, 1);
  const unsigned char *message;
  std::size_t length;
  EXPECT_EQ(pavo_zorv_stream_next(&stream, &message, &length), PAVO_ZORV_FRAME_TOO_LONG);
  EXPECT_NE(pavo_zorv_stream_space(&stream, &room), nullptr);
  EXPECT_EQ(room, 0u);
  EXPECT_EQ(pavo_zorv_stream_is_between_messages(&stream), 0);
}

TEST(stream, moves_each_byte_at_most_once) {
  // Messages of 4 bytes with their prefixes, in a buffer of 20: all of them arrive one byte at a time.
  unsigned char buffer[20];
  pavo_zorv_stream stream;
  pavo_zorv_stream_init(&stream, PAVO_ZORV_PREFIX_VARINT, buffer, sizeof buffer, 10);
  std::size_t moved = 0, given = 0;
  for (; given < 1000; ++given) {
    const std::size_t before = stream.first, unread = stream.last - stream.first;
    std::size_t room = 0;
    unsigned char *const space = pavo_zorv_stream_space(&stream, &room);
    if (stream.first != before) moved += unread;
    *space = given % 7 == 0 ? 0x06 : 0x08;
    pavo_zorv_stream_filled(&stream, 1);
    const unsigned char *message;
    std::size_t length;
    while (pavo_zorv_stream_next(&stream, &message, &length) == PAVO_ZORV_FRAME_COMPLETE) EXPECT_EQ(length, 6u);
  }
  EXPECT_LE(moved, given);
}

TEST(stream, moves_each_byte_at_most_once_also_if_one_message_is_taken_at_a_time) {
  // Messages of one byte with their prefixes, which fill the buffer each time there is room.
  unsigned char buffer[100];
  pavo_zorv_stream stream;
  pavo_zorv_stream_init(&stream, PAVO_ZORV_PREFIX_VARINT, buffer, sizeof buffer, 10);
  std::size_t moved = 0, given = 0, taken = 0;
  for (unsigned round = 0; round < 1000; ++round) {
    const std::size_t before = stream.first, unread = stream.last - stream.first;
    std::size_t room = 0;
    unsigned char *const space = pavo_zorv_stream_space(&stream, &room);
    if (stream.first != before) moved += unread;
    for (std::size_t index = 0; index < room; ++index) space[index] = (given + index) % 2 == 0 ? 0x01 : 0x08;
    pavo_zorv_stream_filled(&stream, room);
    given += room;
    const unsigned char *message;
    std::size_t length;
    ASSERT_EQ(pavo_zorv_stream_next(&stream, &message, &length), PAVO_ZORV_FRAME_COMPLETE);
    ASSERT_EQ(length, 1u);
    ASSERT_EQ(*message, 0x08);
    ++taken;
  }
  EXPECT_GE(given, 2 * taken);
  EXPECT_LE(moved, given);
}

// The simplest way to read a stream that is there as a whole.
received plainly(pavo_zorv_prefix form, const byte_string &stream, std::uint64_t limit) {
  received result;
  std::size_t at = 0;
  while (true) {
    result.may_end = at == stream.size();
    std::uint64_t length = 0;
    std::size_t prefix = 0;
    if (form == PAVO_ZORV_PREFIX_VARINT) {
      unsigned char byte = 0x80;
      while (byte >= 0x80) {
        if (at + prefix == stream.size()) return result;
        byte = stream[at + prefix];
        if (prefix == 9 && byte > 1) {
          result.result = PAVO_ZORV_FRAME_BAD_PREFIX;
          return result;
        }
        length += std::uint64_t{byte & 0x7fu} << 7 * prefix++;
        if (length > limit) break;
      }
    } else {
      prefix = form == PAVO_ZORV_PREFIX_BE16 ? 2 : 4;
      if (stream.size() - at < prefix) return result;
      for (std::size_t i = 0; i < prefix; ++i) {
        length = 256 * length + stream[at + (form == PAVO_ZORV_PREFIX_LE32 ? prefix - 1 - i : i)];
      }
    }
    if (length > limit) {
      result.result = PAVO_ZORV_FRAME_TOO_LONG;
      result.may_end = false;
      return result;
    }
    if (stream.size() - at - prefix < length) return result;
    const auto message = stream.begin() + static_cast<std::ptrdiff_t>(at + prefix);
    result.messages.emplace_back(message, message + static_cast<std::ptrdiff_t>(length));
    at += prefix + static_cast<std::size_t>(length);
  }
}

TEST_P(streams, of_any_bytes_in_any_pieces_give_what_reading_them_plainly_gives) {
  test::random_numbers random(4711);
  std::size_t failures = 0, messages = 0;
  for (int round = 0; round < 5000; ++round) {
    const std::uint64_t limit = random.below(20);
    // Frames of all lengths, and bytes of which anything may be made.
    byte_string stream;
    for (auto parts = random.below(8); parts != 0; --parts) {
      const bool is_frame = random.percent(80);
      const std::size_t length = static_cast<std::size_t>(random.below(is_frame ? limit + 2 : 6));
      if (is_frame) stream = stream + prefix(GetParam(), length);
      for (std::size_t i = 0; i < length; ++i) stream.push_back(random.percent(50) ? 0x80 : random.byte());
    }
    reader pieces(GetParam(), static_cast<std::size_t>(limit), static_cast<std::size_t>(random.below(3)));
    for (std::size_t at = 0; at < stream.size();) {
      const std::size_t piece = std::min<std::size_t>(static_cast<std::size_t>(random.from(1, 9)), stream.size() - at);
      pieces.give(stream.data() + at, piece);
      at += piece;
    }
    received expected = plainly(GetParam(), stream, limit);
    if (stream.empty()) expected.may_end = false;  // nothing was asked for
    ASSERT_EQ(pieces.so_far, expected) << round;
    failures += expected.result < 0;
    messages += expected.messages.size();
  }
  EXPECT_GT(failures, 500u);
  EXPECT_GT(messages, 5000u);
}

TEST(frame_results, have_texts) {
  EXPECT_STREQ(pavo_zorv_frame_text(PAVO_ZORV_FRAME_COMPLETE), "a message");
  EXPECT_STREQ(pavo_zorv_frame_text(PAVO_ZORV_FRAME_INCOMPLETE), "a part of a message");
  EXPECT_STREQ(pavo_zorv_frame_text(PAVO_ZORV_FRAME_TOO_LONG), "a message that is longer than the limit");
  EXPECT_STREQ(pavo_zorv_frame_text(PAVO_ZORV_FRAME_BAD_PREFIX), "a length prefix that is not a 64-bit varint");
  EXPECT_STREQ(pavo_zorv_frame_text(2), "not a result of reading a frame");
}

}  // namespace
