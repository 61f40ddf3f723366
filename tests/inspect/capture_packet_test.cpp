// The headers of packets, written out.
#include "capture_packet.hpp"

#include <gtest/gtest.h>

#include <string>

#include "fence.hpp"
#include "support.hpp"

namespace inspect {
namespace {

using carries = packet::content;

// From 192.0.2.1:40000 to 192.0.2.2:4711.
const std::string ip_4 = "45 00 00 1f 00 00 00 00 40 11 00 00 c0 00 02 01 c0 00 02 02 ";
const std::string udp = "9c 40 12 67 00 0b 00 00 ";
const std::string small_message = "08 31 00";

packet parsed(link_layer link, const std::string &text, std::size_t more_on_the_wire = 0) {
  const byte_string bytes = test::hex(text);
  const test::fenced_block fenced(bytes);
  packet found = parse_packet(link, {fenced.data(), fenced.size()}, bytes.size() + more_on_the_wire);
  static byte_string kept;
  kept.assign(found.bytes.begin(), found.bytes.end());
  found.bytes = kept;
  return found;
}

void expect_message(const packet &found) {
  EXPECT_EQ(found.what, carries::datagram);
  EXPECT_EQ(byte_string(found.bytes.begin(), found.bytes.end()), test::hex(small_message));
  EXPECT_EQ(found.missing, 0u);
  EXPECT_EQ(to_string(found.from), "192.0.2.1:40000");
  EXPECT_EQ(to_string(found.to), "192.0.2.2:4711");
}

TEST(a_datagram, is_found_in_each_link_layer) {
  const std::string datagram = ip_4 + udp + small_message, addresses = "02 00 00 00 00 01 02 00 00 00 00 02 ";
  expect_message(parsed(link_layer::ip, datagram));
  expect_message(parsed(link_layer::ethernet, addresses + "08 00 " + datagram));
  expect_message(parsed(link_layer::cooked, "00 00 03 04 00 06 00 00 00 00 00 00 00 00 08 00 " + datagram));
  expect_message(
      parsed(link_layer::cooked_2, "08 00 00 00 00 00 00 01 03 04 00 06 00 00 00 00 00 00 00 00 " + datagram));
  expect_message(parsed(link_layer::loopback, "02 00 00 00 " + datagram));
  expect_message(parsed(link_layer::loopback, "00 00 00 02 " + datagram));
}

TEST(a_datagram, is_found_after_vlan_tags) {
  const std::string addresses = "02 00 00 00 00 01 02 00 00 00 00 02 ";
  expect_message(parsed(link_layer::ethernet, addresses + "81 00 00 07 08 00 " + ip_4 + udp + small_message));
  expect_message(
      parsed(link_layer::ethernet, addresses + "88 a8 00 07 81 00 00 08 08 00 " + ip_4 + udp + small_message));
  EXPECT_EQ(parsed(link_layer::ethernet, addresses + "81 00 00 07").what, carries::damaged);
  EXPECT_EQ(parsed(link_layer::ethernet, addresses + "08 06 00 01").what, carries::other) << "ARP";
}

TEST(a_datagram, ends_before_the_padding_of_its_frame) {
  expect_message(parsed(link_layer::ip, ip_4 + udp + small_message + " ff ff ff ff"));
}

TEST(a_datagram, may_have_been_captured_in_part) {
  const packet found = parsed(link_layer::ip, ip_4 + udp + "08", 2);
  EXPECT_EQ(found.what, carries::datagram);
  EXPECT_EQ(found.bytes.size(), 1u);
  EXPECT_EQ(found.missing, 2u);
  EXPECT_EQ(parsed(link_layer::ip, ip_4 + "9c 40 12 67", 7).what, carries::other) << "no header";
}

TEST(a_datagram, has_a_header_with_options) {
  expect_message(parsed(link_layer::ip, "46 00 00 23 00 00 40 00 40 11 00 00 c0 00 02 01 c0 00 02 02 01 01 01 00 " +
                                            udp + small_message));
}

TEST(lengths, that_contradict_each_other_are_damage) {
  for (const std::string &text : {
           std::string("44 00 00 1f 00 00 00 00 40 11 00 00 c0 00 02 01 c0 00 02 02 ") + udp +
               small_message,  // 16 bytes
           std::string("45 00 00 13 00 00 00 00 40 11 00 00 c0 00 02 01 c0 00 02 02 ") + udp +
               small_message,  // without itself
           std::string("45 00 00 20 00 00 00 00 40 11 00 00 c0 00 02 01 c0 00 02 02 ") + udp +
               small_message,  // one more
           std::string("4f 00 00 1f 00 00 00 00 40 11 00 00 c0 00 02 01 c0 00 02 02 ") + udp +
               small_message,  // 60 bytes
           ip_4 + "9c 40 12 67 00 07 00 00 " + small_message,
           ip_4 + "9c 40 12 67 00 0c 00 00 " + small_message,
           std::string("45 00 00 1f"),
           std::string("60 00 00 00 00 0b 11 40"),
       }) {
    EXPECT_EQ(parsed(link_layer::ip, text).what, carries::damaged) << text;
  }
  EXPECT_EQ(parsed(link_layer::ethernet, "02 00 00").what, carries::damaged);
  EXPECT_EQ(parsed(link_layer::ip, "").what, carries::other);
}

TEST(a_fragment, is_not_a_datagram) {
  const std::string more = "45 00 00 1f 00 07 20 00 40 11 00 00 c0 00 02 01 c0 00 02 02 ";
  const std::string last = "45 00 00 1f 00 07 00 01 40 11 00 00 c0 00 02 01 c0 00 02 02 ";
  EXPECT_EQ(parsed(link_layer::ip, more + udp + small_message).what, carries::fragment);
  EXPECT_EQ(parsed(link_layer::ip, last + udp + small_message).what, carries::fragment);
}

// From 2001:db8::1 to 2001:db8::2.
std::string ip_6(const std::string &length, const std::string &next) {
  return "60 00 00 00 " + length + next +
         "40 20 01 0d b8 00 00 00 00 00 00 00 00 00 00 00 01 20 01 0d b8 00 00 00 00 00 00 00 00 00 00 00 02 ";
}

TEST(version_6, may_have_headers_before_the_datagram) {
  const packet plain = parsed(link_layer::ip, ip_6("00 0b ", "11 ") + udp + small_message);
  EXPECT_EQ(plain.what, carries::datagram);
  EXPECT_EQ(to_string(plain.from), "[2001:db8::1]:40000");
  EXPECT_EQ(to_string(plain.to), "[2001:db8::2]:4711");
  // Hop-by-hop options, routing, a whole packet as a fragment, authentication.
  const packet found =
      parsed(link_layer::ip, ip_6("00 33 ", "00 ") + "2b 00 01 04 00 00 00 00 " + "2c 00 04 00 00 00 00 00 " +
                                 "33 00 00 00 00 00 00 07 " + "11 02 00 00 00 00 00 01 00 00 00 01 00 00 00 00 " + udp +
                                 small_message);
  EXPECT_EQ(found.what, carries::datagram);
  EXPECT_EQ(byte_string(found.bytes.begin(), found.bytes.end()), test::hex(small_message));
  EXPECT_EQ(parsed(link_layer::ip, ip_6("00 13 ", "2c ") + "11 00 00 01 00 00 00 07 " + udp + small_message).what,
            carries::fragment);
  EXPECT_EQ(parsed(link_layer::ip, ip_6("00 0b ", "3a ") + udp + small_message).what, carries::other) << "ICMP";
  EXPECT_EQ(parsed(link_layer::ip, ip_6("00 0c ", "11 ") + udp + small_message).what, carries::damaged);
  EXPECT_EQ(parsed(link_layer::ip, ip_6("00 08 ", "00 ") + "11 09 00 00 00 00 00 00").what, carries::damaged);
}

TEST(a_segment, has_its_place_in_the_stream) {
  const std::string header =
      "45 00 00 2e 00 00 00 00 40 06 00 00 c0 00 02 01 c0 00 02 02 9c 40 12 67 01 02 03 04 00 00 00 00 ";
  const packet found = parsed(link_layer::ip, header + "60 13 00 00 00 00 00 00 01 01 01 00 08 31");
  EXPECT_EQ(found.what, carries::segment);
  EXPECT_EQ(found.sequence, 0x01020304u);
  EXPECT_EQ(byte_string(found.bytes.begin(), found.bytes.end()), test::hex("08 31"));
  EXPECT_TRUE(found.begins_stream);
  EXPECT_TRUE(found.ends_stream);
  EXPECT_FALSE(found.resets_stream);
  const packet reset = parsed(link_layer::ip, header + "60 14 00 00 00 00 00 00 01 01 01 00 08 31");
  EXPECT_TRUE(reset.resets_stream);
  EXPECT_FALSE(reset.begins_stream);
  EXPECT_FALSE(reset.ends_stream);
  EXPECT_EQ(parsed(link_layer::ip, header + "40 10 00 00 00 00 00 00 01 01 01 00 08 31").what, carries::damaged);
  EXPECT_EQ(parsed(link_layer::ip, header + "f0 10 00 00 00 00 00 00 01 01 01 00 08 31").what, carries::damaged);
}

TEST(a_payload, is_the_whole_packet) {
  const packet found = parsed(link_layer::payload, "08 31", 3);
  EXPECT_EQ(found.what, carries::payload);
  EXPECT_EQ(found.bytes.size(), 2u);
  EXPECT_EQ(found.missing, 3u);
}

// Every packet, cut off anywhere and with any byte changed, is read within its bytes: the block is fenced.
TEST(headers, are_read_within_what_was_captured) {
  const std::string packets[] = {
      "02 00 00 00 00 01 02 00 00 00 00 02 08 00 46 00 00 23 00 00 40 00 40 11 00 00 c0 00 02 01 c0 00 02 02 01 01 01 "
      "00 " +
          udp + small_message,
      "02 00 00 00 00 01 02 00 00 00 00 02 81 00 00 07 08 00 " + ip_4 + udp + small_message,
      "02 00 00 00 00 01 02 00 00 00 00 02 86 dd " + ip_6("00 33 ", "00 ") +
          "2b 00 01 04 00 00 00 00 2c 00 04 00 00 00 00 00 " +
          "33 00 00 00 00 00 00 07 11 02 00 00 00 00 00 01 00 00 00 01 00 00 00 00 " + udp + small_message,
      "02 00 00 00 00 01 02 00 00 00 00 02 08 00 45 00 00 2e 00 00 00 00 40 06 00 00 c0 00 "
      "02 01 c0 00 02 02 9c 40 12 67 01 02 03 "
      "04 00 00 00 00 60 13 00 00 00 00 00 00 01 01 01 00 08 31"};
  std::size_t contents = 0;
  for (const std::string &text : packets) {
    const byte_string whole = test::hex(text);
    for (std::size_t size = 0; size <= whole.size(); ++size) {
      const test::fenced_block fenced(byte_string(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
      for (const link_layer link : {link_layer::ethernet, link_layer::cooked, link_layer::cooked_2,
                                    link_layer::loopback, link_layer::ip, link_layer::payload}) {
        for (const std::size_t length : {size, whole.size()}) {
          const packet found = parse_packet(link, {fenced.data(), fenced.size()}, length);
          EXPECT_LE(found.bytes.size(), size);
          EXPECT_LE(found.bytes.size() + found.missing, whole.size());
          contents += found.what != carries::other && found.what != carries::damaged;
        }
      }
      link_layer_of({fenced.data(), fenced.size()});
    }
    for (std::size_t at = 0; at < whole.size(); ++at) {
      for (const unsigned value : {0x00u, 0x01u, 0x0fu, 0x80u, 0xffu}) {
        byte_string changed = whole;
        changed[at] = static_cast<unsigned char>(value);
        const test::fenced_block fenced(changed);
        const packet found = parse_packet(link_layer::ethernet, {fenced.data(), fenced.size()}, changed.size());
        EXPECT_LE(found.bytes.size(), whole.size());
        EXPECT_EQ(found.missing, 0u);
        contents += found.what == carries::datagram || found.what == carries::segment;
      }
    }
  }
  EXPECT_GT(contents, 500u);
}

TEST(the_link_layer, is_guessed_from_ip_headers_that_fit) {
  const std::string ip = "45 00 00 1f 00 00 00 00 40 11 f6 ca c0 00 02 01 c0 00 02 02 " + udp + small_message;
  EXPECT_EQ(link_layer_of(test::hex(ip)), link_layer::ip);
  EXPECT_EQ(link_layer_of(test::hex("02 00 00 00 00 01 02 00 00 00 00 02 08 00 " + ip)), link_layer::ethernet);
  EXPECT_EQ(link_layer_of(test::hex("02 00 00 00 00 01 02 00 00 00 00 02 81 00 00 07 08 00 " + ip)),
            link_layer::ethernet);
  EXPECT_EQ(link_layer_of(test::hex("00 00 03 04 00 06 00 00 00 00 00 00 00 00 08 00 " + ip)), link_layer::cooked);
  EXPECT_EQ(link_layer_of(test::hex("08 00 00 00 00 00 00 01 03 04 00 06 00 00 00 00 00 00 00 00 " + ip)),
            link_layer::cooked_2);
  EXPECT_EQ(link_layer_of(test::hex("02 00 00 00 " + ip)), link_layer::loopback);
  EXPECT_EQ(link_layer_of(test::hex(ip_6("00 0b ", "11 ") + udp + small_message)), link_layer::ip);
  EXPECT_EQ(link_layer_of(test::hex(ip_4 + udp + small_message)), std::nullopt) << "the checksum does not fit";
  EXPECT_EQ(link_layer_of(test::hex(ip.substr(0, 3 * 30))), std::nullopt) << "shorter than its length";
  EXPECT_EQ(link_layer_of(byte_string(100)), std::nullopt);
  EXPECT_EQ(link_layer_of({}), std::nullopt);
}

}  // namespace
}  // namespace inspect
