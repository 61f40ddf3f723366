// Counts, lengths and places of every power of two, of which every seventh is one of 128, one less and one more: where
// a varint gets longer, where a block, a window or a vector is full, where a number would not fit into fewer bits.
#include <algorithm>
#include <set>

#include "message_checks.hpp"

using namespace test;
using namespace test::checks;

namespace powers_test {

// Up to 2 MiB, from where on a length takes four bytes.
constexpr unsigned greatest_power = 21;

std::vector<std::size_t> powers(unsigned greatest = greatest_power) {
  std::set<std::size_t> result;
  for (unsigned power = 0; power <= greatest; ++power) {
    const std::size_t number = std::size_t{1} << power;
    result.insert({number - 1, number, number + 1});
  }
  return {result.begin(), result.end()};
}

template <class Record>
int compared(const Record &a, const Record &b) {
  return operations<Record>::compare(&a, &b);
}

// There and back: measured, written, read and copied. What was read is looked at by `look`.
template <class Record, class Look>
void goes_there_and_back(const Record &record, const byte_string &bytes, Look look) {
  SCOPED_TRACE(std::to_string(bytes.size()) + " bytes");
  ASSERT_EQ(operations<Record>::encode(&record, nullptr, 0, nullptr, nullptr), bytes.size());
  {
    const fenced_block buffer(bytes.size());
    ASSERT_EQ(operations<Record>::encode(&record, buffer.data(), bytes.size(), nullptr, nullptr), bytes.size());
    ASSERT_TRUE(buffer.content() == bytes);
  }
  decoded<Record> read(bytes);
  ASSERT_EQ(read.result, CODEC_OK);
  ASSERT_NO_FATAL_FAILURE(look(read.record));
  ASSERT_EQ(compared(record, read.record), 0);
  copied<Record> copy(record);
  ASSERT_EQ(copy.result, CODEC_OK);
  ASSERT_NO_FATAL_FAILURE(look(copy.record));
  ASSERT_EQ(compared(record, copy.record), 0);
}

// --- Lists of integers ---

// Elements that take turns, so that none is taken for its neighbour.
template <class Element>
struct alternating {
  explicit alternating(std::size_t count) : elements(count) {
    for (std::size_t i = 0; i < count; ++i) elements[i] = static_cast<Element>(i % 3 == 2 ? 200 : i % 3);
  }

  // Of three elements, each with its key.
  byte_string bytes(const byte_string &key) const {
    const byte_string three = key + hex("00") + key + hex("01") + key + hex("c8 01");
    byte_string result = (elements.size() / 3) * three;
    if (elements.size() % 3 > 0) result = result + key + hex("00");
    if (elements.size() % 3 > 1) result = result + key + hex("01");
    return result;
  }

  std::vector<Element> elements;
};

// Lists that differ in one element, at a power or next to one: that element decides. And a shorter list is smaller.
template <class Element, class Make>
void are_compared_at_every_power(Make make, unsigned greatest) {
  std::vector<Element> one((std::size_t{1} << greatest) + 2, 7), other = one;
  for (const std::size_t place : powers(greatest)) {
    SCOPED_TRACE("element " + std::to_string(place));
    other[place] = 8;
    for (const std::size_t count : {place + 1, one.size()}) {
      ASSERT_EQ(compared(make(one, count), make(other, count)), -1);
      ASSERT_EQ(compared(make(other, count), make(one, count)), 1);
    }
    ASSERT_EQ(compared(make(one, place), make(other, place)), 0);
    ASSERT_EQ(compared(make(one, place), make(one, place + 1)), -1);
    ASSERT_EQ(compared(make(one, place + 1), make(one, place)), 1);
    other[place] = 7;
  }
}

template <class Element>
std::uint32_t size32(const std::vector<Element> &elements) {
  return static_cast<std::uint32_t>(elements.size());
}

TEST(powers, of_elements_in_a_list_of_32_bits) {
  for (const std::size_t count : powers()) {
    alternating<std::uint32_t> list(count);
    const api_lbl_stack stack{list.elements.data(), size32(list.elements), API_LBL_STACK_HAS_LABELS};
    if (count == 0) continue;
    goes_there_and_back(stack, list.bytes(hex("08")), [&](const api_lbl_stack &seen) {
      ASSERT_EQ(seen.label_count, count);
      ASSERT_TRUE(std::equal(list.elements.begin(), list.elements.end(), seen.labels));
    });
    if (HasFatalFailure()) return;
  }
}

TEST(powers, of_labels_of_three_bytes) {
  for (const std::size_t count : powers(18)) {
    if (count == 0) continue;
    std::vector<std::uint32_t> labels(count, 24001);
    const api_lbl_stack stack{labels.data(), size32(labels), API_LBL_STACK_HAS_LABELS};
    goes_there_and_back(stack, count * hex("08 c1 bb 01"), [&](const api_lbl_stack &seen) {
      ASSERT_EQ(seen.label_count, count);
      ASSERT_TRUE(std::equal(labels.begin(), labels.end(), seen.labels));
    });
    if (HasFatalFailure()) return;
  }
}

TEST(powers, of_elements_in_a_list_of_8_bits) {
  for (const std::size_t count : powers()) {
    alternating<std::uint8_t> list(count);
    const prefix_sid_type sid{0, list.elements.data(), size32(list.elements), PREFIX_SID_TYPE_HAS_FIELD2};
    if (count == 0) continue;
    goes_there_and_back(sid, list.bytes(hex("10")), [&](const prefix_sid_type &seen) {
      ASSERT_EQ(seen.field2_count, count);
      ASSERT_TRUE(std::equal(list.elements.begin(), list.elements.end(), seen.field2));
    });
    if (HasFatalFailure()) return;
  }
}

TEST(powers, of_elements_in_a_list_with_a_key_of_two_bytes) {
  for (const std::size_t count : powers(18)) {
    alternating<std::uint8_t> list(count);
    api_msg_p2p_auto_policy_notif record{};
    record.field22 = list.elements.data();
    record.field22_count = size32(list.elements);
    record.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD22;
    if (count == 0) continue;
    goes_there_and_back(record, list.bytes(hex("b0 01")), [&](const api_msg_p2p_auto_policy_notif &seen) {
      ASSERT_EQ(seen.field22_count, count);
      ASSERT_TRUE(std::equal(list.elements.begin(), list.elements.end(), seen.field22));
    });
    if (HasFatalFailure()) return;
  }
}

TEST(powers, of_the_element_that_differs_in_lists_of_integers) {
  are_compared_at_every_power<std::uint32_t>(
      [](std::vector<std::uint32_t> &elements, std::size_t count) {
        return api_lbl_stack{elements.data(), static_cast<std::uint32_t>(count), API_LBL_STACK_HAS_LABELS};
      },
      greatest_power);
  are_compared_at_every_power<std::uint8_t>(
      [](std::vector<std::uint8_t> &elements, std::size_t count) {
        return prefix_sid_type{0, elements.data(), static_cast<std::uint32_t>(count), PREFIX_SID_TYPE_HAS_FIELD2};
      },
      greatest_power);
}

// --- Lists of messages ---

api_exp_path path_of(std::vector<api_exp_hop> &hops, std::size_t count) {
  return {hops.data(), static_cast<std::uint32_t>(count), 0, API_EXP_PATH_HAS_HOPS};
}

TEST(powers, of_messages_in_a_list) {
  std::vector<api_exp_hop> hops((std::size_t{1} << 17) + 1);
  for (std::size_t i = 0; i < hops.size(); i += 2) {
    hops[i].field1 = 5;
    hops[i].presence = API_EXP_HOP_HAS_FIELD1;
  }
  for (const std::size_t count : powers(17)) {
    if (count == 0) continue;
    byte_string bytes = (count / 2) * hex("0a 02 08 05 0a 00");
    if (count % 2 != 0) bytes = bytes + hex("0a 02 08 05");
    goes_there_and_back(path_of(hops, count), bytes, [&](const api_exp_path &seen) {
      ASSERT_EQ(seen.hop_count, count);
      for (std::size_t i = 0; i < count; ++i) ASSERT_EQ(seen.hops[i].field1, hops[i].field1) << i;
    });
    if (HasFatalFailure()) return;
  }
}

// Also at every place among the first, of which none is left out.
TEST(powers, of_the_message_that_differs_in_lists_of_messages) {
  std::vector<api_exp_hop> one((std::size_t{1} << 17) + 2), other;
  for (api_exp_hop &hop : one) hop = {7, 0, 0, 0, nullptr, 0, nullptr, 0, API_EXP_HOP_HAS_FIELD1};
  other = one;
  std::vector<std::size_t> places = powers(17);
  for (std::size_t place = 0; place < 100; ++place) places.push_back(place);
  for (const std::size_t place : places) {
    SCOPED_TRACE("message " + std::to_string(place));
    other[place].field1 = 8;
    for (const std::size_t count : {place + 1, place + 2}) {
      ASSERT_EQ(compared(path_of(one, count), path_of(other, count)), -1);
      ASSERT_EQ(compared(path_of(other, count), path_of(one, count)), 1);
    }
    ASSERT_EQ(compared(path_of(one, place), path_of(other, place)), 0);
    ASSERT_EQ(compared(path_of(one, place), path_of(one, place + 1)), -1);
    ASSERT_EQ(compared(path_of(one, place + 1), path_of(one, place)), 1);
    other[place].field1 = 7;
  }
}

// --- Lengths ---

TEST(powers, of_bytes_in_a_string) {
  for (const std::size_t length : powers()) {
    std::string text(length, 'x'), greater = text;
    api_msg_internal record{};
    record.field2 = text.data();
    record.presence = API_MSG_INTERNAL_HAS_FIELD2;
    goes_there_and_back(record, hex("12") + varint(length) + length * byte_string{'x'},
                        [&](const api_msg_internal &seen) { ASSERT_STREQ(seen.field2, text.c_str()); });
    if (HasFatalFailure()) return;
    if (length == 0) continue;
    greater.back() = 'y';
    api_msg_internal other = record;
    other.field2 = greater.data();
    ASSERT_LT(compared(record, other), 0);
    ASSERT_GT(compared(other, record), 0);
  }
}

TEST(powers, of_bytes_in_bytes) {
  for (const std::size_t length : powers()) {
    byte_string data(length, 0xdd), greater = data;
    oam_req record{};
    record.field6 = data.data();
    record.field6_length = length;
    record.presence = OAM_REQ_HAS_FIELD6;
    goes_there_and_back(record, hex("32") + varint(length) + data, [&](const oam_req &seen) {
      ASSERT_EQ(seen.field6_length, length);
      ASSERT_TRUE(std::equal(data.begin(), data.end(), seen.field6));
    });
    if (HasFatalFailure()) return;
    if (length == 0) continue;
    greater.back() = 0xde;
    oam_req other = record;
    other.field6 = greater.data();
    ASSERT_LT(compared(record, other), 0);
    ASSERT_GT(compared(other, record), 0);
    other.field6 = data.data();
    --other.field6_length;
    ASSERT_EQ(compared(record, other), 1);
    ASSERT_EQ(compared(other, record), -1);
  }
}

// Bytes of which there is only a length are measured, and so is the message around them: of both lengths, the low 32
// bits are written.
TEST(powers, of_bytes_that_are_not_there) {
  const auto prefix = [](std::uint64_t length) { return varint(static_cast<std::uint32_t>(length)).size(); };
  for (unsigned power = 0; power <= 62; ++power) {
    for (const std::uint64_t length :
         {(std::uint64_t{1} << power) - 1, std::uint64_t{1} << power, (std::uint64_t{1} << power) + 1}) {
      SCOPED_TRACE(length);
      const srv6_prefix inner{nullptr, length, 0, SRV6_PREFIX_HAS_FIELD1};
      const std::uint64_t size = 1 + prefix(length) + length;
      if (size + 11 > SIZE_MAX / 2) continue;
      ASSERT_EQ(operations<srv6_prefix>::encode(&inner, nullptr, 0, nullptr, nullptr), size);
      srv6_usid outer{};
      outer.prefix = inner;
      outer.presence = SRV6_USID_HAS_PREFIX;
      ASSERT_EQ(operations<srv6_usid>::encode(&outer, nullptr, 0, nullptr, nullptr), 1 + prefix(size) + size);
      // Referenced, the length alone is left.
      ASSERT_EQ(operations<srv6_prefix>::encode(&inner, nullptr, 0, nullptr, nullptr, PAVO_ZORV_REFERENCE),
                1 + prefix(length));
    }
  }
}

// A message of a length, in another one: a string makes it so long, with a number where that alone cannot.
TEST(powers, of_bytes_in_a_nested_message) {
  for (const std::size_t length : powers()) {
    api_msg_p2p_auto_policy_request record{};
    record.presence = API_MSG_P2P_AUTO_POLICY_REQUEST_HAS_POLICY;
    byte_string content;
    std::string text;
    const byte_string number = hex("18 05");
    if (length >= 4) {
      for (const std::size_t after : {std::size_t{0}, number.size()}) {
        std::size_t inner = length - after - 2;
        while (1 + varint(inner).size() + inner + after > length) --inner;
        if (1 + varint(inner).size() + inner + after != length) continue;
        text.assign(inner, 'x');
        content = hex("0a") + varint(inner) + inner * byte_string{'x'};
        record.policy.presence = API_MSG_P2P_AUTO_POLICY_HAS_FIELD1;
        if (after != 0) {
          content = content + number;
          record.policy.field3 = 5;
          record.policy.presence |= API_MSG_P2P_AUTO_POLICY_HAS_FIELD3;
        }
        break;
      }
      record.policy.field1 = text.data();
    } else if (length == 2) {
      content = number;
      record.policy.field3 = 5;
      record.policy.presence = API_MSG_P2P_AUTO_POLICY_HAS_FIELD3;
    } else if (length == 3) {
      content = hex("18 80 01");
      record.policy.field3 = 128;
      record.policy.presence = API_MSG_P2P_AUTO_POLICY_HAS_FIELD3;
    } else if (length == 1) {
      continue;  // there is none
    }
    ASSERT_EQ(content.size(), length);
    goes_there_and_back(record, hex("0a") + varint(length) + content, [&](const api_msg_p2p_auto_policy_request &seen) {
      ASSERT_EQ(seen.policy.presence & 0x3fffff, record.policy.presence);
      ASSERT_EQ(seen.policy.field3, record.policy.field3);
    });
    if (HasFatalFailure()) return;
  }
}

// --- Places ---

// A nested message and a piece after referenced bytes begin at a place; buffers end just before it, at it, and just
// after it. A message at the end of the buffer or after it has no start.
TEST(powers, of_bytes_before_a_message_and_before_a_piece) {
  unsigned char data[] = {1, 2, 3};
  for (const std::size_t place : powers()) {
    SCOPED_TRACE("place " + std::to_string(place));
    // A string, the key and the length of the nested message come before it; with a number where that is needed.
    std::size_t length = 0, number = 0;
    for (number = 0; number <= 2; number += 2) {
      if (place < 4 + number) continue;
      length = place - number - 4;
      while (number + 1 + varint(length).size() + length + 2 > place) --length;
      if (number + 1 + varint(length).size() + length + 2 == place) break;
    }
    if (number > 2) continue;  // too near the beginning
    std::string text(length, 'x');
    oam_req record{};
    record.field2 = 7;
    record.field3 = text.data();
    record.prefix_sid.field1 = 9;
    record.prefix_sid.presence = PREFIX_SID_TYPE_HAS_FIELD1;
    record.field6 = data;
    record.field6_length = 3;
    record.field7 = 5;
    record.presence = static_cast<std::uint8_t>(OAM_REQ_HAS_FIELD3 | OAM_REQ_HAS_PREFIX_SID | OAM_REQ_HAS_FIELD6 |
                                                OAM_REQ_HAS_FIELD7 | (number != 0 ? OAM_REQ_HAS_FIELD2 : 0));
    const byte_string before = (number != 0 ? hex("10 07") : byte_string{}) + hex("1a") + varint(length);
    const byte_string bytes = before + length * byte_string{'x'} + hex("22 02 08 09 32 03 38 05");
    ASSERT_EQ(bytes.size(), place + 6);
    for (const std::size_t size : {place - 1, place, place + 1, place + 3, place + 6}) {
      const encoding<oam_req> call(record, size, 4, PAVO_ZORV_REFERENCE);
      ASSERT_EQ(call.length, bytes.size());
      ASSERT_EQ(call.segments.count, 4u);
      const unsigned char *const start = size > place ? call.at(place) : nullptr;
      ASSERT_EQ(call.segments.pieces(),
                (std::vector<piece>{{start, 2}, {call.at(0), place + 4}, {data, 3}, {call.at(place + 4), 2}}));
      ASSERT_TRUE(call.buffer.content() ==
                  byte_string(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)));
    }
  }
}

// Into a buffer of a length goes as much of a list as fits.
TEST(powers, of_bytes_in_a_buffer_that_is_too_short) {
  std::vector<std::uint32_t> labels((std::size_t{1} << 17), 24001);
  const api_lbl_stack stack{labels.data(), size32(labels), API_LBL_STACK_HAS_LABELS};
  const byte_string bytes = labels.size() * hex("08 c1 bb 01");
  for (const std::size_t length : powers(19)) {
    SCOPED_TRACE("a buffer of " + std::to_string(length));
    const fenced_block buffer(length);
    byte_string expected(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(std::min(length, bytes.size())));
    expected.resize(length, 0xc7);
    ASSERT_EQ(operations<api_lbl_stack>::encode(&stack, buffer.data(), length, nullptr, nullptr), bytes.size());
    ASSERT_TRUE(buffer.content() == expected);
  }
}

// A list after another field that begins at a place: the first element, and all others, are read from there.
TEST(powers, of_bytes_before_a_list) {
  for (const std::size_t place : powers()) {
    if (place < 2) continue;
    SCOPED_TRACE("place " + std::to_string(place));
    // An unknown field takes all bytes before it.
    std::size_t length = place - 2;
    while (1 + varint(length).size() + length > place) --length;
    byte_string before = hex("7a") + varint(length) + length * byte_string{0x08};
    // Where no length does, the prefix takes one byte more.
    if (before.size() < place) {
      before[varint(length).size()] |= 0x80;
      before.insert(before.begin() + static_cast<std::ptrdiff_t>(varint(length).size()) + 1, 0x00);
    }
    ASSERT_EQ(before.size(), place);
    for (const std::size_t count : {std::size_t{1}, std::size_t{70}}) {
      decoded<api_lbl_stack> read(before + count * hex("08 c1 bb 01"));
      ASSERT_EQ(read.result, CODEC_OK);
      ASSERT_EQ(read->label_count, count);
      for (std::size_t i = 0; i < count; ++i) ASSERT_EQ(read->labels[i], 24001u);
    }
  }
}

}  // namespace powers_test
