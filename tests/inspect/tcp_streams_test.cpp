// TCP streams, segment by segment: in any order, sent again, with gaps, and more than is kept.
#include "tcp_streams.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "support.hpp"

namespace inspect {
namespace {

class tcp : public testing::Test {
 protected:
  // What follows the prefix of each message, and the problems.
  std::vector<byte_string> messages;
  std::vector<std::string> problems;

  tcp_streams streams_with(tcp_streams::limits limits) {
    return tcp_streams(
        prefix_form::varint,
        [this](const packet &, byte_view message) { messages.emplace_back(message.begin(), message.end()); },
        [this](const std::string &problem) { problems.push_back(problem); }, limits);
  }
  tcp_streams streams = streams_with({});

  static endpoint end(std::uint16_t port) {
    endpoint result;
    result.address = {192, 0, 2, 1};
    result.port = port;
    return result;
  }

  // `flags` has S, F and R.
  void add(tcp_streams &to, std::uint32_t sequence, const std::string &bytes, const std::string &flags = "",
           std::uint16_t port = 1) {
    const byte_string content = test::hex(bytes);
    packet segment;
    segment.what = packet::content::segment;
    segment.from = end(port);
    segment.to = end(4711);
    segment.bytes = content;
    segment.sequence = sequence;
    segment.begins_stream = flags.find('S') != flags.npos;
    segment.ends_stream = flags.find('F') != flags.npos;
    segment.resets_stream = flags.find('R') != flags.npos;
    to.add(segment);
  }
  void add(std::uint32_t sequence, const std::string &bytes, const std::string &flags = "", std::uint16_t port = 1) {
    add(streams, sequence, bytes, flags, port);
  }

  static std::vector<byte_string> expected(std::initializer_list<const char *> texts) {
    std::vector<byte_string> result;
    for (const char *text : texts) result.push_back(test::hex(text));
    return result;
  }
};

TEST_F(tcp, messages_end_where_their_prefixes_say_and_not_with_segments) {
  add(99, "", "S");
  add(100, "02 08");
  EXPECT_EQ(messages, expected({}));
  add(102, "31 00 01");
  EXPECT_EQ(messages, expected({"08 31", ""})) << "at once, with the segment that completes them";
  add(105, "08", "F");
  streams.finish();
  EXPECT_EQ(messages, expected({"08 31", "", "08"}));
  EXPECT_EQ(problems, std::vector<std::string>{});
}

TEST_F(tcp, segments_are_put_in_order) {
  add(99, "", "S");
  add(104, "02 08 33", "F");
  add(102, "31 00");
  add(100, "02 08");
  streams.finish();
  EXPECT_EQ(messages, expected({"08 31", "", "08 33"}));
  EXPECT_EQ(problems, std::vector<std::string>{});
}

TEST_F(tcp, bytes_that_are_sent_again_are_read_once) {
  add(99, "", "S");
  add(99, "", "S");
  add(100, "02 08 31");
  add(100, "02 08 31");
  add(101, "08 31 02 08");
  add(106, "00");
  add(104, "08 32 00 00");
  add(99, "", "S");
  add(103, "02 08 32 00 00", "F");
  add(103, "02 08 32 00 00", "F");
  streams.finish();
  EXPECT_EQ(messages, expected({"08 31", "08 32", "", ""}));
  EXPECT_EQ(problems, std::vector<std::string>{});
}

TEST_F(tcp, sequence_numbers_go_on_after_the_greatest) {
  add(0xfffffffd, "", "S");
  add(2, "08 32");
  add(0xfffffffe, "02 08 31");
  add(1, "02");
  streams.finish();
  EXPECT_EQ(messages, expected({"08 31", "08 32"}));
  EXPECT_EQ(problems, std::vector<std::string>{});
}

TEST_F(tcp, a_gap_leaves_out_the_rest_of_its_stream_only) {
  add(99, "", "S");
  add(99, "", "S", 2);
  add(100, "02 08 31 02");
  add(105, "32 02 08 33", "F");
  add(100, "02 08 34", "F", 2);
  streams.finish();
  EXPECT_EQ(messages, expected({"08 31", "08 34"}));
  EXPECT_EQ(problems,
            std::vector<std::string>{"TCP 192.0.2.1:1 > 192.0.2.1:4711: 1 byte missing at offset 4 of the stream"});
}

TEST_F(tcp, a_message_that_does_not_end_is_a_problem) {
  add(99, "", "S");
  add(100, "00 05 08 31", "F");
  add(99, "", "S", 2);
  add(100, "05 08", "R", 2);
  streams.finish();
  EXPECT_EQ(messages, expected({""}));
  EXPECT_EQ(problems, (std::vector<std::string>{"TCP 192.0.2.1:1 > 192.0.2.1:4711: it ends within a message, 3 bytes "
                                                "after its beginning at offset 1 of the stream",
                                                "TCP 192.0.2.1:2 > 192.0.2.1:4711: it ends within a message, 2 bytes "
                                                "after its beginning at offset 0 of the stream"}));
}

TEST_F(tcp, an_end_that_comes_before_the_last_bytes_waits_for_them) {
  add(99, "", "S");
  add(103, "", "F");
  add(100, "02 08 31");
  streams.finish();
  EXPECT_EQ(messages, expected({"08 31"}));
  EXPECT_EQ(problems, std::vector<std::string>{});
}

TEST_F(tcp, an_end_without_the_last_bytes_is_a_problem) {
  add(99, "", "S");
  add(103, "", "F");
  streams.finish();
  EXPECT_EQ(problems,
            std::vector<std::string>{"TCP 192.0.2.1:1 > 192.0.2.1:4711: 3 bytes missing at offset 0 of the stream"});
}

TEST_F(tcp, a_stream_whose_beginning_is_missing_begins_with_its_first_bytes) {
  add(100, "02 08 31 05");
  streams.finish();
  EXPECT_EQ(messages, expected({"08 31"}));
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_TRUE(problems[0].ends_with("at offset 3 of the stream (whose beginning was not captured)")) << problems[0];
}

TEST_F(tcp, ports_may_be_used_again) {
  add(99, "", "S");
  add(100, "02 08 31", "F");
  add(100, "02 08 31", "F");
  add(5000, "", "S");
  add(5001, "02 08 32", "F");
  streams.finish();
  EXPECT_EQ(messages, expected({"08 31", "08 32"}));
  EXPECT_EQ(problems, std::vector<std::string>{});
}

TEST_F(tcp, data_may_come_with_the_first_segment) {
  add(99, "02 08", "S");
  add(102, "31", "F");
  streams.finish();
  EXPECT_EQ(messages, expected({"08 31"}));
  EXPECT_EQ(problems, std::vector<std::string>{});
}

TEST_F(tcp, bytes_that_were_not_captured_are_a_problem) {
  packet segment;
  segment.what = packet::content::segment;
  segment.from = end(1);
  segment.to = end(4711);
  const byte_string content = test::hex("02 08 31 02");
  segment.bytes = content;
  segment.missing = 7;
  streams.add(segment);
  streams.finish();
  EXPECT_EQ(messages, expected({"08 31"}));
  EXPECT_EQ(problems, std::vector<std::string>{"TCP 192.0.2.1:1 > 192.0.2.1:4711: 7 bytes not captured at offset 4 "
                                               "of the stream (whose beginning was not captured)"});
}

TEST_F(tcp, what_is_no_prefix_is_a_problem) {
  add(99, "", "S");
  add(100, "00 ff ff ff ff ff ff ff ff ff ff 01 00");
  add(113, "02 08 31");
  streams.finish();
  EXPECT_EQ(messages, expected({""}));
  EXPECT_EQ(problems,
            std::vector<std::string>{"TCP 192.0.2.1:1 > 192.0.2.1:4711: no length prefix at offset 1 of the stream"});
}

TEST_F(tcp, what_is_kept_is_bounded) {
  tcp_streams bounded = streams_with({.streams = 2, .waiting = 300, .message = 10, .total = 1000});
  add(bounded, 99, "", "S");
  add(bounded, 100, "0b");
  EXPECT_EQ(problems.back(),
            "TCP 192.0.2.1:1 > 192.0.2.1:4711: a length of 11 at offset 0 of the stream, which is too great");
  add(bounded, 99, "", "S", 2);
  for (const std::uint32_t at : {110u, 120u, 130u}) add(bounded, at, "00", "", 2);
  EXPECT_EQ(problems.size(), 1u);
  add(bounded, 140, "00", "", 2);
  EXPECT_EQ(problems.back(), "TCP 192.0.2.1:2 > 192.0.2.1:4711: 10 bytes missing at offset 0 of the stream");
  for (const std::uint16_t port : {std::uint16_t{3}, std::uint16_t{4}}) {
    add(bounded, 99, "", "S", port);
    add(bounded, 100, "05 08", "", port);
  }
  add(bounded, 102, "08", "", 3);
  add(bounded, 99, "", "S", 5);
  EXPECT_EQ(problems.size(), 3u) << "the stream that was used least recently is forgotten";
  EXPECT_TRUE(problems.back().starts_with("TCP 192.0.2.1:4 ")) << problems.back();
}

// A stream cut into random pieces, shuffled, sent again and overlapping, gives its messages.
TEST_F(tcp, random_pieces_give_the_messages_of_the_stream) {
  std::mt19937 random(20260611);
  const auto below = [&](std::size_t bound) { return random() % bound; };
  for (int round = 0; round < 200; ++round) {
    messages.clear();
    tcp_streams tried = streams_with({});
    byte_string whole;
    std::vector<byte_string> sent;
    for (std::size_t count = 1 + below(20); count != 0; --count) {
      byte_string message(random() % 300);
      for (unsigned char &byte : message) byte = static_cast<unsigned char>(random());
      append_prefix(whole, message.size(), prefix_form::varint);
      whole.insert(whole.end(), message.begin(), message.end());
      sent.push_back(message);
    }
    const auto first = static_cast<std::uint32_t>(random());
    std::vector<std::pair<std::size_t, std::size_t>> pieces;
    for (std::size_t at = 0; at < whole.size();) {
      const std::size_t size = std::min<std::size_t>(1 + random() % 200, whole.size() - at);
      pieces.emplace_back(at, size);
      if (random() % 4 == 0) {
        const std::size_t from = at - std::min<std::size_t>(at, random() % 50);
        pieces.emplace_back(from, std::min<std::size_t>(whole.size() - from, random() % 300));
      }
      at += size;
    }
    for (std::size_t index = 0; index + 5 < pieces.size(); ++index) {
      if (random() % 3 == 0) std::swap(pieces[index], pieces[index + random() % 5]);
    }
    packet segment;
    segment.what = packet::content::segment;
    segment.from = end(1);
    segment.to = end(2);
    segment.sequence = first - 1;
    segment.begins_stream = true;
    tried.add(segment);
    segment.begins_stream = false;
    for (const auto &[at, size] : pieces) {
      segment.sequence = first + static_cast<std::uint32_t>(at);
      segment.bytes = byte_view(whole).subspan(at, size);
      tried.add(segment);
    }
    tried.finish();
    ASSERT_EQ(messages, sent) << "round " << round;
    ASSERT_EQ(problems, std::vector<std::string>{}) << "round " << round;
  }
}

}  // namespace
}  // namespace inspect
