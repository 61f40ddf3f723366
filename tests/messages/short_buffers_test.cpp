// Buffers around 8,192 octets, or 3,072 in builds that use less stack, up to which an encoding is written aside: whatever
// it holds, and however much that is, the buffer gets what belongs in it and nothing else.
#include "message_checks.hpp"

using namespace test;

namespace {

constexpr octets::value_type rubbish = 0xc7;

// A string or bytes in an encoding: written whole, or not at all.
struct block {
  std::size_t place = 0, length = 0;
};

// Encodes into buffers of lengths on both sides of the encoding's, of 3,072 and of 8,192.
template <class Record>
void is_written(const Record &record, const octets &encoding, const block &block = {}, std::uint32_t options = 0) {
  ASSERT_EQ(operations<Record>::encode(&record, nullptr, 0, nullptr, nullptr, options), encoding.size());
  const std::size_t size = encoding.size();
  for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{100}, std::size_t{3071},
                                   std::size_t{3072}, std::size_t{3073}, std::size_t{8191}, std::size_t{8192},
                                   std::size_t{8193}, size - 1, size, size + 1, block.place + block.length}) {
    const fenced_block buffer(length);
    octets expected(encoding.begin(), encoding.begin() + static_cast<std::ptrdiff_t>(std::min(length, size)));
    if (block.place + block.length > length)
      std::fill(expected.begin() + static_cast<std::ptrdiff_t>(std::min(block.place, length)), expected.end(), rubbish);
    expected.resize(length, rubbish);
    ASSERT_EQ(operations<Record>::encode(&record, buffer.data(), length, nullptr, nullptr, options), size);
    ASSERT_TRUE(buffer.content() == expected) << size << " octets, a buffer of " << length;
  }
}

api_lbl_stack stack_of(std::vector<std::uint32_t> &labels) {
  return {labels.data(), static_cast<std::uint32_t>(labels.size()), API_LBL_STACK_HAS_LABELS};
}

TEST(short_buffers, get_labels_of_three_octets) {
  for (const std::size_t count : {1000u, 2047u, 2048u, 2049u, 5000u, 200000u}) {
    std::vector<std::uint32_t> labels(count, 24001);
    is_written(stack_of(labels), count * hex("08 c1 bb 01"));
  }
}

TEST(short_buffers, get_labels_of_five_octets) {
  for (const std::size_t count : {1000u, 1364u, 1365u, 1366u, 1367u, 5000u}) {
    std::vector<std::uint32_t> labels(count, 0xffffffff);
    is_written(stack_of(labels), count * hex("08 ff ff ff ff 0f"));
  }
}

TEST(short_buffers, get_octets_of_a_list) {
  for (const std::size_t count : {2000u, 2730u, 2731u, 4095u, 4096u, 4097u, 100000u}) {
    std::vector<std::uint8_t> elements(count, 5);
    const prefix_sid_type short_ones{0, elements.data(), static_cast<std::uint32_t>(count), PREFIX_SID_TYPE_HAS_FIELD2};
    is_written(short_ones, count * hex("10 05"));
    std::fill(elements.begin(), elements.end(), 200);
    is_written(short_ones, count * hex("10 c8 01"));
  }
}

TEST(short_buffers, get_a_string_whole_or_not_at_all) {
  for (const std::size_t length : {8186u, 8187u, 8188u, 8189u, 8190u, 8191u, 8192u, 8193u, 16000u}) {
    std::string text(length, 'x');
    api_msg_internal record{};
    record.field2 = text.data();
    record.presence = API_MSG_INTERNAL_HAS_FIELD2;
    const octets prefix = {0x12, static_cast<unsigned char>(length | 0x80), static_cast<unsigned char>(length >> 7)};
    is_written(record, prefix + length * octets{'x'}, {3, length});
  }
}

TEST(short_buffers, get_bytes_whole_or_not_at_all) {
  for (const std::size_t length : {8186u, 8187u, 8188u, 8189u, 8190u, 8191u, 8192u, 8193u, 16000u}) {
    octets data(length, 0xdd);
    oam_req record{};
    record.field6 = data.data();
    record.field6_length = length;
    record.presence = OAM_REQ_HAS_FIELD6;
    const octets prefix = {0x32, static_cast<unsigned char>(length | 0x80), static_cast<unsigned char>(length >> 7)};
    is_written(record, prefix + data, {3, length});
    is_written(record, prefix, {}, PAVO_ZORV_REFERENCE);
  }
}

TEST(short_buffers, keep_what_stands_where_bytes_that_are_not_there_belong) {
  oam_req record{};
  record.field1 = 1;
  record.field6_length = 3;
  record.field7 = 7;
  record.presence = OAM_REQ_HAS_FIELD1 | OAM_REQ_HAS_FIELD6 | OAM_REQ_HAS_FIELD7;
  const fenced_block buffer(9);
  ASSERT_EQ(pavo_zorv_oam_req_encode_ext(&record, buffer.data(), 9, nullptr, nullptr, 0), 9u);
  EXPECT_EQ(buffer.content(), hex("08 01 32 03 c7 c7 c7 38 07"));
}

TEST(short_buffers, measure_bytes_that_no_memory_holds) {
  unsigned char octet = 0;
  oam_req record{};
  record.field6 = &octet;
  record.presence = OAM_REQ_HAS_FIELD6;
  const fenced_block buffer(100);
  for (const std::uint64_t length : {UINT64_MAX, UINT64_MAX - 4, UINT64_MAX - 5}) {
    record.field6_length = length;
    EXPECT_EQ(pavo_zorv_oam_req_encode_ext(&record, buffer.data(), 100, nullptr, nullptr, 0), SIZE_MAX);
  }
  EXPECT_EQ(buffer.content(), 100 * octets{rubbish});
}

// Also where the length given is the one that is measured.
TEST(short_buffers, measure_a_small_message_with_bytes_that_no_memory_holds) {
  unsigned char octet = 0;
  const srv6_prefix record{&octet, UINT64_MAX, 0, SRV6_PREFIX_HAS_FIELD1};
  const fenced_block buffer(100);
  for (const std::size_t length : {std::size_t{100}, SIZE_MAX}) {
    EXPECT_EQ(pavo_zorv_srv6_prefix_encode_ext(&record, buffer.data(), length, nullptr, nullptr, 0), SIZE_MAX);
  }
  EXPECT_EQ(buffer.content(), 100 * octets{rubbish});
}

TEST(short_buffers, get_messages_of_a_list_that_are_empty) {
  for (const std::size_t count : {4094u, 4095u, 4096u, 4097u, 100000u}) {
    std::vector<api_exp_hop> hops(count);
    const api_exp_path path{hops.data(), static_cast<std::uint32_t>(count), 5,
                            API_EXP_PATH_HAS_HOPS | API_EXP_PATH_HAS_FIELD2};
    is_written(path, count * hex("0a 00") + hex("10 05"));
  }
}

TEST(short_buffers, get_messages_of_a_list_with_lists_inside) {
  std::uint8_t elements[] = {1, 200};
  api_exp_hop hop{};
  hop.field1 = 0xffffffff;
  hop.field5 = elements;
  hop.field5_count = 2;
  hop.presence = API_EXP_HOP_HAS_FIELD1 | API_EXP_HOP_HAS_FIELD5;
  for (const std::size_t count : {629u, 630u, 631u, 20000u}) {
    std::vector<api_exp_hop> hops(count, hop);
    const api_exp_path path{hops.data(), static_cast<std::uint32_t>(count), 0, API_EXP_PATH_HAS_HOPS};
    is_written(path, count * hex("0a 0b 08 ff ff ff ff 0f 28 01 28 c8 01"));
  }
}

// Behind the list, in a payload of its own, stands a string: the two are written in the other order.
TEST(short_buffers, get_payloads_of_an_envelope) {
  char text[] = "behind";
  for (const std::size_t count : {1000u, 2041u, 2042u, 2043u, 2044u, 2045u, 100000u}) {
    std::vector<std::uint32_t> labels(count, 24001);
    api_msg_p2p_auto_policy_notif notification{};
    notification.label_stack = stack_of(labels);
    api_msg record{};
    record.field1 = 1;
    record.presence = API_MSG_HAS_FIELD1;
    record.p2p_auto_policy_notif = notification;
    record.oam_req.field3 = text;
    record.oam_req.presence = OAM_REQ_HAS_FIELD3;
    const auto varint = [](std::size_t value) {
      octets result;
      for (; value >= 0x80; value >>= 7) result.push_back(static_cast<unsigned char>(value | 0x80));
      result.push_back(static_cast<unsigned char>(value));
      return result;
    };
    const octets list = count * hex("08 c1 bb 01"), stack = hex("52") + varint(list.size()) + list;
    const octets front = hex("08 01 2a") + varint(stack.size()) + stack + hex("6a 08 1a 06");
    is_written(record, front + hex("62 65 68 69 6e 64"), {front.size(), 6});
  }
}

}  // namespace
