// Buffers around 8,192 bytes, or 3,072 in builds that use less stack, up to which an encoding is written by scratch:
// whatever it holds, and however much that is, the buffer gets what belongs in it and nothing else.
#include "core/encode.hpp"
#include "message_checks.hpp"
#include "messages/all.hpp"

using namespace test;

namespace short_buffers_test {

constexpr byte_string::value_type rubbish = 0xc7;

// A string or bytes in an encoding: written whole, or not at all.
struct block {
  std::size_t place = 0, length = 0;
};

// Encodes into buffers of lengths on both sides of the encoding's, of 3,072 and of 8,192.
template <class Record>
void is_written(const Record &record, const byte_string &encoding, const block &block = {}, std::uint32_t options = 0) {
  ASSERT_EQ(operations<Record>::encode(&record, nullptr, 0, nullptr, nullptr, options), encoding.size());
  const std::size_t size = encoding.size();
  for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{100}, std::size_t{3071},
                                   std::size_t{3072}, std::size_t{3073}, std::size_t{8191}, std::size_t{8192},
                                   std::size_t{8193}, size - 1, size, size + 1, block.place + block.length}) {
    const fenced_block buffer(length);
    byte_string expected(encoding.begin(), encoding.begin() + static_cast<std::ptrdiff_t>(std::min(length, size)));
    if (block.place + block.length > length)
      std::fill(expected.begin() + static_cast<std::ptrdiff_t>(std::min(block.place, length)), expected.end(), rubbish);
    expected.resize(length, rubbish);
    ASSERT_EQ(operations<Record>::encode(&record, buffer.data(), length, nullptr, nullptr, options), size);
    ASSERT_TRUE(buffer.content() == expected) << size << " bytes, a buffer of " << length;
  }
}

api_lbl_stack stack_of(std::vector<std::uint32_t> &labels) {
  return {labels.data(), static_cast<std::uint32_t>(labels.size()), API_LBL_STACK_HAS_LABELS};
}

TEST(short_buffers, get_labels_of_three_bytes) {
  for (const std::size_t count : {1000u, 2047u, 2048u, 2049u, 5000u, 200000u}) {
    std::vector<std::uint32_t> labels(count, 24001);
    is_written(stack_of(labels), count * hex("08 c1 bb 01"));
  }
}

TEST(short_buffers, get_labels_of_five_bytes) {
  for (const std::size_t count : {1000u, 1364u, 1365u, 1366u, 1367u, 5000u}) {
    std::vector<std::uint32_t> labels(count, 0xffffffff);
    is_written(stack_of(labels), count * hex("08 ff ff ff ff 0f"));
  }
}

TEST(short_buffers, get_bytes_of_a_list) {
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
    const byte_string prefix = hex("12") + varint(length);
    is_written(record, prefix + length * byte_string{'x'}, {3, length});
  }
}

TEST(short_buffers, get_bytes_whole_or_not_at_all) {
  for (const std::size_t length : {8186u, 8187u, 8188u, 8189u, 8190u, 8191u, 8192u, 8193u, 16000u}) {
    byte_string data(length, 0xdd);
    oam_req record{};
    record.field6 = data.data();
    record.field6_length = length;
    record.presence = OAM_REQ_HAS_FIELD6;
    const byte_string prefix = hex("32") + varint(length);
    is_written(record, prefix + data, {3, length});
    is_written(record, prefix, {}, PAVO_ZORV_REFERENCE);
  }
}

TEST(short_buffers, keep_what_is_in_the_place_of_null_bytes) {
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
  unsigned char byte = 0;
  oam_req record{};
  record.field6 = &byte;
  record.presence = OAM_REQ_HAS_FIELD6;
  const fenced_block buffer(100);
  for (const std::uint64_t length : {UINT64_MAX, UINT64_MAX - 4, UINT64_MAX - 5}) {
    record.field6_length = length;
    EXPECT_EQ(pavo_zorv_oam_req_encode_ext(&record, buffer.data(), 100, nullptr, nullptr, 0), SIZE_MAX);
  }
  EXPECT_EQ(buffer.content(), 100 * byte_string{rubbish});
}

// Also where the length given is the one that is measured.
TEST(short_buffers, measure_a_small_message_with_bytes_that_no_memory_holds) {
  unsigned char byte = 0;
  const srv6_prefix record{&byte, UINT64_MAX, 0, SRV6_PREFIX_HAS_FIELD1};
  const fenced_block buffer(100);
  for (const std::size_t length : {std::size_t{100}, SIZE_MAX}) {
    EXPECT_EQ(pavo_zorv_srv6_prefix_encode_ext(&record, buffer.data(), length, nullptr, nullptr, 0), SIZE_MAX);
  }
  EXPECT_EQ(buffer.content(), 100 * byte_string{rubbish});
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

// --- Every length from just below what is written by scratch to well above: where it still fits is a sum. ---

// Below the limit lies the slop, for what is not reserved, of at most an envelope's: the lengths end beyond that.
constexpr std::size_t first_length = pavo_zorv::scratch_size - 12,
                      last_length = pavo_zorv::scratch_size + pavo_zorv::slop_of<api_msg>() + 72;

// Encodes into a buffer of exactly the size, and into the longest for which an encoding is written by scratch.
template <class Record>
void is_written_near(const Record &record, const byte_string &encoding, const block &block = {}) {
  for (const std::size_t length : {encoding.size(), pavo_zorv::scratch_size}) {
    const fenced_block buffer(length);
    const std::size_t written = std::min(length, encoding.size());
    byte_string expected(encoding.begin(), encoding.begin() + static_cast<std::ptrdiff_t>(written));
    expected.resize(length, rubbish);
    if (block.length != 0 && block.place + block.length > length)
      std::fill(expected.begin() + static_cast<std::ptrdiff_t>(std::min(block.place, length)), expected.end(), rubbish);
    ASSERT_EQ(operations<Record>::encode(&record, buffer.data(), length, nullptr, nullptr, 0), encoding.size());
    ASSERT_TRUE(buffer.content() == expected) << encoding.size() << " bytes, a buffer of " << length;
  }
}

// Labels of three bytes, and one of another size, first or last: so that every length comes up.
TEST(lengths_near_the_scratch_size, of_labels) {
  static constexpr std::uint32_t others[] = {0x0fffffff, 0xffffffff, 300, 24002};
  const byte_string other_bytes[] = {hex("08 ff ff ff 7f"), hex("08 ff ff ff ff 0f"), hex("08 ac 02"),
                                     hex("08 c2 bb 01")};
  for (std::size_t length = first_length; length <= last_length; ++length) {
    // 5, 6, 3 or 4 bytes, and the rest in fours.
    std::size_t which = 0;
    while ((length - other_bytes[which].size()) % 4 != 0) ++which;
    const std::size_t count = (length - other_bytes[which].size()) / 4;
    std::vector<std::uint32_t> labels(count + 1, 24001);
    const byte_string most = count * hex("08 c1 bb 01");
    labels.front() = others[which];
    ASSERT_NO_FATAL_FAILURE(is_written_near(stack_of(labels), other_bytes[which] + most));
    labels.front() = 24001;
    labels.back() = others[which];
    ASSERT_NO_FATAL_FAILURE(is_written_near(stack_of(labels), most + other_bytes[which]));
  }
}

TEST(lengths_near_the_scratch_size, of_a_list_of_bytes) {
  for (std::size_t length = first_length; length <= last_length; ++length) {
    // One of three bytes where the length is an odd number.
    std::vector<std::uint8_t> elements(length / 2, 5);
    byte_string expected = (length / 2) * hex("10 05");
    if (length % 2 != 0) {
      elements.front() = 200;
      expected = hex("10 c8 01") + (length / 2 - 1) * hex("10 05");
    }
    const prefix_sid_type short_ones{0, elements.data(), static_cast<std::uint32_t>(elements.size()),
                                     PREFIX_SID_TYPE_HAS_FIELD2};
    ASSERT_NO_FATAL_FAILURE(is_written_near(short_ones, expected));
    // All but one or two of three.
    const std::size_t others = length % 3 == 0 ? 0 : length % 3 == 2 ? 1 : 2;
    const std::size_t longer = (length - 2 * others) / 3;
    std::vector<std::uint8_t> greater(longer + others, 255);
    std::fill(greater.begin() + static_cast<std::ptrdiff_t>(longer), greater.end(), 127);
    const prefix_sid_type long_ones{0, greater.data(), static_cast<std::uint32_t>(greater.size()),
                                    PREFIX_SID_TYPE_HAS_FIELD2};
    ASSERT_NO_FATAL_FAILURE(is_written_near(long_ones, longer * hex("10 ff 01") + others * hex("10 7f")));
  }
}

// A key of two bytes, and numbers of ten after the list, which are written before it.
TEST(lengths_near_the_scratch_size, of_a_list_with_a_long_key) {
  for (std::size_t length = first_length; length <= last_length; ++length) {
    api_msg_p2p_auto_policy_notif record{};
    const byte_string number = hex("d8 01 ff ff ff ff ff ff ff ff ff 01");  // field 27
    record.field27 = -1;
    const std::size_t list = length - number.size(), longer = list % 3, shorter = (list - 4 * longer) / 3;
    std::vector<std::uint8_t> elements(shorter + longer, 1);
    std::fill(elements.begin() + static_cast<std::ptrdiff_t>(shorter), elements.end(), 128);
    record.field22 = elements.data();
    record.field22_count = static_cast<std::uint32_t>(elements.size());
    record.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD22 | API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD27;
    ASSERT_NO_FATAL_FAILURE(is_written_near(record, shorter * hex("b0 01 01") + longer * hex("b0 01 80 01") + number));
  }
}

TEST(lengths_near_the_scratch_size, of_strings_and_bytes) {
  for (std::size_t length = first_length; length <= last_length; ++length) {
    const std::size_t inner = length - 3;  // a key, and a length of two bytes
    std::string text(inner, 'x');
    api_msg_internal record{};
    record.field2 = text.data();
    record.presence = API_MSG_INTERNAL_HAS_FIELD2;
    ASSERT_NO_FATAL_FAILURE(is_written_near(record, hex("12") + varint(inner) + inner * byte_string{'x'}, {3, inner}));
    byte_string data(inner, 0xdd);
    oam_req request{};
    request.field6 = data.data();
    request.field6_length = inner;
    request.presence = OAM_REQ_HAS_FIELD6;
    ASSERT_NO_FATAL_FAILURE(is_written_near(request, hex("32") + varint(inner) + data, {3, inner}));
  }
}

// After the list comes a string, in a payload of its own: the two are written in the other order.
TEST(short_buffers, get_payloads_of_an_envelope) {
  char text[] = "second";
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
    const byte_string list = count * hex("08 c1 bb 01"), stack = hex("52") + varint(list.size()) + list;
    const byte_string front = hex("08 01 2a") + varint(stack.size()) + stack + hex("6a 08 1a 06");
    is_written(record, front + hex("73 65 63 6f 6e 64"), {front.size(), 6});
  }
}

}  // namespace short_buffers_test
