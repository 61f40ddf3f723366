// The segment table, nested messages, bytes members and reference mode: which bytes are written, and which entries
// tell where they are.
#include <algorithm>
#include <type_traits>

#include "support.hpp"

namespace segment_table_test {

using namespace test;

constexpr std::uint32_t reference = PAVO_ZORV_REFERENCE;

// An encoding in a buffer of its own size, or of another, with a table of a capacity.
template <class Record>
struct encoding {
  encoding(const Record &record, std::uint32_t capacity, std::uint32_t options = 0)
      : encoding(record, capacity, options,
                 operations<Record>::encode(&record, nullptr, 0, nullptr, nullptr, options)) {}

  encoding(const Record &record, std::uint32_t capacity, std::uint32_t options, std::size_t buffer_length)
      : buffer(buffer_length),
        segments(capacity),
        length(operations<Record>::encode(&record, buffer.data(), buffer_length, segments.entries(), &segments.count,
                                          options)) {}

  std::vector<piece> pieces() const { return segments.pieces(); }
  std::uint32_t count() const { return segments.count; }
  // An entry within the buffer.
  piece at(std::size_t position, std::uint64_t size) const { return {buffer.data() + position, size}; }

  fenced_block buffer;
  table segments;
  std::size_t length;
};

// With every capacity from 0 to more than is needed: the same entries as far as they go, the same count, and nothing
// after them.
template <class Record>
void fill_every_capacity(const Record &record, const std::vector<piece> &expected_from_0, std::uint32_t options = 0) {
  const std::size_t length = operations<Record>::encode(&record, nullptr, 0, nullptr, nullptr, options);
  const fenced_block buffer(length);
  const auto needed = static_cast<std::uint32_t>(expected_from_0.size());
  for (std::uint32_t capacity = 0; capacity <= needed + 2; ++capacity) {
    table segments(capacity);
    EXPECT_EQ(operations<Record>::encode(&record, buffer.data(), length, segments.entries(), &segments.count, options),
              length);
    EXPECT_EQ(segments.count, needed) << "capacity " << capacity;
    const std::uint32_t written = std::min(capacity, needed);
    for (std::uint32_t i = 0; i < written; ++i) {
      // Positions in the buffer are given as offsets from null; other pointers are the members' own.
      const piece &expected = expected_from_0[i];
      const auto number = reinterpret_cast<std::uintptr_t>(expected.start);
      const unsigned char *const start = number <= length ? buffer.data() + number : expected.start;
      EXPECT_EQ(segments.entries()[i].start, start) << "entry " << i << ", capacity " << capacity;
      EXPECT_EQ(segments.entries()[i].length, expected.length) << "entry " << i << ", capacity " << capacity;
    }
    EXPECT_TRUE(segments.untouched_from(written)) << "capacity " << capacity;
  }
  std::uint32_t count = 77;
  EXPECT_EQ(operations<Record>::encode(&record, buffer.data(), length, nullptr, &count, options), length);
  EXPECT_EQ(count, needed) << "without a table";
}

// A position in the buffer.
piece part(std::size_t position, std::uint64_t length) {
  return {reinterpret_cast<const unsigned char *>(std::uintptr_t{position}), length};
}

// A record decoded from bytes, for messages that are easier said that way. Its members may be borrowed from the input.
template <class Record>
const Record &filled(decoded<Record> &source) {
  EXPECT_EQ(source.result, CODEC_OK);
  return source.record;
}

// --- The table ---

TEST(segment_table, a_message_alone_takes_one_entry) {
  const api_addr addr{300, API_ADDR_HAS_ADDRESS};
  const encoding<api_addr> whole(addr, 1);
  EXPECT_EQ(show(whole.buffer.content()), "08 ac 02");
  EXPECT_EQ(whole.count(), 1u);
  EXPECT_EQ(whole.pieces(), (std::vector<piece>{whole.at(0, 3)}));
  fill_every_capacity(addr, {part(0, 3)});
}

TEST(segment_table, an_empty_message_takes_none_and_the_count_is_written_back_as_0) {
  for (const std::uint32_t capacity : {0u, 1u, 5u}) {
    const encoding<api_addr> nothing(api_addr{300, 0}, capacity);
    EXPECT_EQ(nothing.length, 0u);
    EXPECT_EQ(nothing.count(), 0u);
    EXPECT_TRUE(nothing.segments.untouched_from(0));
  }
  fill_every_capacity(api_msg{}, {});
  fill_every_capacity(srv6_prefix{}, {}, reference);
}

TEST(segment_table, of_capacity_0_stays_empty_and_the_count_tells_the_entries_needed) {
  const encoding<api_addr> one(api_addr{300, API_ADDR_HAS_ADDRESS}, 0);
  EXPECT_EQ(one.length, 3u);
  EXPECT_EQ(one.count(), 1u);

  pavo_zorv_segment entry{nullptr, 99};
  std::uint32_t count = 0;
  const policy_binding_sid_t binding{{3, nullptr, 0, PREFIX_SID_TYPE_HAS_FIELD1}, 5, POLICY_BINDING_SID_T_HAS_FIELD2};
  unsigned char buffer[6];
  EXPECT_EQ(operations<policy_binding_sid_t>::encode(&binding, buffer, 6, &entry, &count), 6u);
  EXPECT_EQ(count, 2u);
  EXPECT_EQ(entry.start, nullptr);
  EXPECT_EQ(entry.length, 99u);
}

TEST(segment_table, without_a_count_there_is_no_table_work) {
  unsigned char data[] = {1, 2, 3};
  const srv6_prefix prefix{data, 3, 5, 3};
  const fenced_block buffer(7);
  for (const std::uint32_t options : {0u, reference}) {
    const table segments(4);
    operations<srv6_prefix>::encode(&prefix, buffer.data(), 7, segments.entries(), nullptr, options);
    EXPECT_TRUE(segments.untouched_from(0));
  }
  const table segments(4);
  const api_addr addr{300, API_ADDR_HAS_ADDRESS};
  EXPECT_EQ(operations<api_addr>::encode(&addr, buffer.data(), 7, segments.entries(), nullptr), 3u);
  EXPECT_TRUE(segments.untouched_from(0));
}

TEST(segment_table, that_is_null_counts_as_capacity_0_at_every_depth) {
  decoded<api_msg> source(hex("42 0e 0a 0c 3a 02 08 10 72 06 0a 02 08 01 0a 00 5a 06 12 04 1a 02 0a 00"));
  for (const std::uint32_t given : {0u, 1u, 3u, 100u, UINT32_MAX}) {
    std::uint32_t count = given;
    const std::size_t length = encoded(filled(source)).size();
    const fenced_block buffer(length);
    EXPECT_EQ(operations<api_msg>::encode(&source.record, buffer.data(), length, nullptr, &count), length);
    EXPECT_EQ(count, 9u);
  }
}

TEST(segment_table, a_nested_message_comes_before_the_one_that_contains_it) {
  std::uint8_t elements[] = {1, 200};
  policy_binding_sid_t binding{};
  binding.sid = {3, elements, 2, PREFIX_SID_TYPE_HAS_FIELD1 | PREFIX_SID_TYPE_HAS_FIELD2};
  binding.field2 = 5;
  binding.presence = POLICY_BINDING_SID_T_HAS_SID | POLICY_BINDING_SID_T_HAS_FIELD2;
  fill_every_capacity(binding, {part(2, 7), part(0, 11)});
}

TEST(segment_table, elements_come_in_order_and_empty_ones_take_no_entry) {
  decoded<api_exp_path> path(hex("0a 02 08 01 0a 00 0a 04 08 02 28 07 10 05"));
  fill_every_capacity(filled(path), {part(2, 2), part(8, 4), part(0, 14)});
}

TEST(segment_table, entries_are_in_post_order_at_every_depth) {
  // A request in an envelope: a label stack, two paths of which the first has two hops, and a segment identifier.
  decoded<api_msg> source(
      hex("42 1b 0a 19 3a 02 08 10 72 08 0a 02 08 01 0a 02 08 02 72 04 0a 02 08 03 aa 01 02 08 09 2a 04 0a 02 61 62"));
  const api_msg &message = filled(source);
  EXPECT_EQ(show(encoded(message)),
            "2a 04 0a 02 61 62 42 1b 0a 19 3a 02 08 10 72 08 0a 02 08 01 0a 02 08 02 72 04 0a 02 08 03 aa 01 02 08 09");
  fill_every_capacity(message, {part(2, 4), part(12, 2), part(18, 2), part(22, 2), part(16, 8), part(28, 2),
                                part(26, 4), part(33, 2), part(10, 25), part(8, 27), part(0, 35)});
}

TEST(segment_table, an_empty_nested_message_with_its_bit_set_takes_no_entry) {
  policy_binding_sid_t binding{};
  binding.presence = POLICY_BINDING_SID_T_HAS_SID;
  const encoding<policy_binding_sid_t> empty(binding, 3);
  EXPECT_EQ(show(empty.buffer.content()), "0a 00");
  EXPECT_EQ(empty.pieces(), (std::vector<piece>{empty.at(0, 2)}));
  fill_every_capacity(binding, {part(0, 2)});
}

TEST(segment_table, lengths_and_the_count_do_not_depend_on_the_buffer) {
  decoded<api_exp_path> source(hex("0a 02 08 01 0a 02 08 02 10 05"));
  const api_exp_path &path = filled(source);
  for (std::size_t length = 0; length <= 12; ++length) {
    const encoding<api_exp_path> part_of_it(path, 4, 0, length);
    const unsigned char *const start = part_of_it.buffer.data();
    EXPECT_EQ(part_of_it.length, 10u);
    EXPECT_EQ(
        part_of_it.pieces(),
        (std::vector<piece>{{length > 2 ? start + 2 : nullptr, 2}, {length > 6 ? start + 6 : nullptr, 2}, {start, 10}}))
        << "a buffer of " << length;
  }
}

TEST(segment_table, nested_messages_after_the_end_of_the_buffer_have_no_start_at_any_depth) {
  decoded<api_msg_p2p_auto_policy_request> source(hex("0a 08 72 06 0a 02 08 01 10 05 10 07"));
  const api_msg_p2p_auto_policy_request &request = filled(source);
  for (std::size_t length = 0; length <= 13; ++length) {
    const encoding<api_msg_p2p_auto_policy_request> part_of_it(request, 4, 0, length);
    const unsigned char *const start = part_of_it.buffer.data();
    EXPECT_EQ(part_of_it.length, 12u);
    EXPECT_EQ(part_of_it.pieces(), (std::vector<piece>{{length > 6 ? start + 6 : nullptr, 2},
                                                       {length > 4 ? start + 4 : nullptr, 6},
                                                       {length > 2 ? start + 2 : nullptr, 8},
                                                       {start, 12}}))
        << "a buffer of " << length;
  }
}

TEST(segment_table, a_measuring_call_gives_entries_without_starts) {
  decoded<api_exp_path> source(hex("0a 02 08 01 0a 02 08 02 10 05"));
  const api_exp_path &path = filled(source);
  for (const std::size_t length : {0u, 5u, 100u}) {
    table segments(4);
    EXPECT_EQ(operations<api_exp_path>::encode(&path, nullptr, length, segments.entries(), &segments.count), 10u);
    EXPECT_EQ(segments.count, 3u);
    EXPECT_EQ(segments.pieces(), (std::vector<piece>{{nullptr, 2}, {nullptr, 2}, {nullptr, 10}}));
    EXPECT_TRUE(segments.untouched_from(3));
  }
}

// Only the piece after the bytes has a start: how much of its own message comes before it.
TEST(segment_table, a_measuring_call_by_reference_gives_the_places_of_last_pieces_within_their_messages) {
  unsigned char data[] = {1, 2, 3};
  srv6_usid usids[2]{};
  usids[0].field1 = 5;
  usids[0].prefix = {data, 3, 300, 3};
  usids[0].presence = SRV6_USID_HAS_FIELD1 | SRV6_USID_HAS_PREFIX;
  usids[1] = usids[0];
  const out_srv6_usid_list_info list{usids, 2, OUT_SRV6_USID_LIST_INFO_HAS_USIDS};
  EXPECT_EQ(show(encoded(list, reference)), "0a 09 08 05 1a 05 0a 03 10 ac 02 0a 09 08 05 1a 05 0a 03 10 ac 02");
  for (const std::size_t length : {0u, 5u, 100u}) {
    table segments(9);
    EXPECT_EQ(operations<out_srv6_usid_list_info>::encode(&list, nullptr, length, segments.entries(), &segments.count,
                                                          reference),
              22u);
    EXPECT_EQ(segments.pieces(), (std::vector<piece>{{nullptr, 2},
                                                     {data, 3},
                                                     part(2, 3),
                                                     {nullptr, 9},
                                                     {nullptr, 2},
                                                     {data, 3},
                                                     part(2, 3),
                                                     {nullptr, 9},
                                                     {nullptr, 22}}));
  }
}

TEST(segment_table, the_count_is_written_back_by_every_message_also_when_it_is_0) {
  const auto count_of = [](const auto &record) {
    using Record = std::remove_cvref_t<decltype(record)>;
    std::uint32_t count = 9;
    operations<Record>::encode(&record, nullptr, 0, nullptr, &count);
    return count;
  };
  EXPECT_EQ(count_of(api_addr{}), 0u);
  EXPECT_EQ(count_of(api_lbl_stack{}), 0u);
  EXPECT_EQ(count_of(policy_binding_sid_t{}), 0u);
  EXPECT_EQ(count_of(api_exp_path{}), 0u);
  EXPECT_EQ(count_of(api_msg_internal{}), 0u);
  EXPECT_EQ(count_of(oam_res{}), 0u);
  EXPECT_EQ(count_of(api_msg{}), 0u);
  EXPECT_EQ(count_of(api_addr{1, API_ADDR_HAS_ADDRESS}), 1u);
}

// --- Nested messages ---

TEST(nested, content_is_written_without_the_outer_bit_and_an_empty_record_with_it) {
  policy_binding_sid_t binding{};
  binding.sid = {3, nullptr, 0, PREFIX_SID_TYPE_HAS_FIELD1};
  EXPECT_EQ(show(encoded(binding)), "0a 02 08 03");
  binding.sid.presence = 0;
  binding.presence = POLICY_BINDING_SID_T_HAS_SID;
  EXPECT_EQ(show(encoded(binding)), "0a 00");
}

TEST(nested, an_empty_record_without_the_outer_bit_is_not_written_and_takes_no_entry) {
  policy_binding_sid_t binding{};
  binding.field2 = 5;
  binding.presence = POLICY_BINDING_SID_T_HAS_FIELD2;
  const encoding<policy_binding_sid_t> whole(binding, 2);
  EXPECT_EQ(show(whole.buffer.content()), "10 05");
  EXPECT_EQ(whole.count(), 1u);
  EXPECT_EQ(whole.pieces(), (std::vector<piece>{whole.at(0, 2)}));
}

// Nobody set a member of the node or of the interface, but their memory is not zero.
TEST(nested, what_a_record_that_was_not_zeroed_holds_inside_is_written) {
  api_to_zorv message;
  std::memset(&message, 0xa5, sizeof message);
  message.field3 = 1;
  message.presence = API_TO_ZORV_HAS_FIELD3;
  EXPECT_EQ(show(encoded(message)), "0a 06 08 a5 cb 96 ad 0a 12 06 08 a5 cb 96 ad 0a 18 01");
  message = {};
  message.field3 = 1;
  message.presence = API_TO_ZORV_HAS_FIELD3;
  EXPECT_EQ(show(encoded(message)), "18 01");
}

TEST(nested, content_is_written_without_any_outer_bit_at_every_depth) {
  api_msg message{};
  message.to_igp.aa_list.field2 = 5;
  message.to_igp.aa_list.presence = API_AA_LIST_HAS_FIELD2;
  message.p2p_auto_policy_request.policy.prefix_sid = {3, nullptr, 0, PREFIX_SID_TYPE_HAS_FIELD1};
  EXPECT_EQ(show(encoded(message)), "42 07 0a 05 aa 01 02 08 03 5a 04 12 02 10 05");
  decoded<api_msg> back(encoded(message));
  EXPECT_EQ(back->presence, API_MSG_HAS_P2P_AUTO_POLICY_REQUEST | API_MSG_HAS_TO_IGP) << "now the bits are set";
}

TEST(nested, a_record_that_holds_only_an_empty_record_with_its_bit_set_has_content) {
  api_msg message{};
  message.internal.presence = API_MSG_INTERNAL_HAS_SERVICE;
  EXPECT_EQ(show(encoded(message)), "12 02 2a 00");
  message.internal.presence = 0;
  EXPECT_EQ(show(encoded(message)), "");
}

TEST(nested, members_without_their_bit_are_no_content) {
  std::uint8_t elements[] = {1};
  policy_binding_sid_t binding{};
  binding.sid = {3, elements, 1, 0};
  EXPECT_EQ(show(encoded(binding)), "");
  binding.sid = {3, elements, 0, PREFIX_SID_TYPE_HAS_FIELD2};
  EXPECT_EQ(show(encoded(binding)), "") << "a list without elements neither";
}

TEST(nested, an_empty_message_is_read_as_present) {
  decoded<policy_binding_sid_t> binding(hex("0a 00"));
  EXPECT_EQ(binding.result, CODEC_OK);
  EXPECT_EQ(binding->presence & 3, POLICY_BINDING_SID_T_HAS_SID);
  EXPECT_EQ(binding->sid.presence & 3, 0);
  EXPECT_EQ(show(encoded(binding.record)), "0a 00");
}

TEST(nested, elements_are_written_also_when_they_are_empty) {
  api_exp_hop hops[3]{};
  hops[1].field1 = 1;
  hops[1].presence = API_EXP_HOP_HAS_FIELD1;
  EXPECT_EQ(show(encoded(api_exp_path{hops, 3, 0, API_EXP_PATH_HAS_HOPS})), "0a 00 0a 02 08 01 0a 00");
}

// --- Bytes ---

TEST(bytes, are_written_with_their_bytes) {
  unsigned char data[] = {1, 2, 3, 4, 5};
  const srv6_prefix prefix{data, 5, 64, 3};
  EXPECT_EQ(show(encoded(prefix)), "0a 05 01 02 03 04 05 10 40");
  fill_every_capacity(prefix, {part(0, 9)});
}

TEST(bytes, that_are_null_keep_their_place) {
  srv6_prefix prefix{nullptr, 3, 64, 3};
  const fenced_block buffer(8);
  EXPECT_EQ(operations<srv6_prefix>::encode(&prefix, buffer.data(), 8, nullptr, nullptr), 7u);
  EXPECT_EQ(show(buffer.content()), "0a 03 c7 c7 c7 10 40 c7");
  const fenced_block short_buffer(6);
  EXPECT_EQ(operations<srv6_prefix>::encode(&prefix, short_buffer.data(), 6, nullptr, nullptr), 7u);
  EXPECT_EQ(show(short_buffer.content()), "0a 03 c7 c7 c7 10");
}

TEST(bytes, that_are_null_are_referenced_as_null) {
  const srv6_prefix prefix{nullptr, 3, 64, 3};
  const encoding<srv6_prefix> pieces(prefix, 3, reference);
  EXPECT_EQ(show(pieces.buffer.content()), "0a 03 10 40");
  EXPECT_EQ(pieces.pieces(), (std::vector<piece>{pieces.at(0, 2), {nullptr, 3}, pieces.at(2, 2)}));
}

// Lengths that no memory holds: measured without a buffer, and written as far as a short one goes.
class huge_bytes : public testing::Test {
 protected:
  void SetUp() override {
    if (sizeof(std::size_t) < 8) GTEST_SKIP() << "sizes are of 64 bits only where addresses are";
  }
};

TEST_F(huge_bytes, are_measured_in_full_and_their_length_is_written_from_its_low_32_bits) {
  const srv6_prefix prefix{nullptr, (std::uint64_t{1} << 33) + 5, 64, 3};
  EXPECT_EQ(operations<srv6_prefix>::encode(&prefix, nullptr, 0, nullptr, nullptr), (std::uint64_t{1} << 33) + 9);
  const encoding<srv6_prefix> start(prefix, 1, 0, 4);
  EXPECT_EQ(start.length, (std::uint64_t{1} << 33) + 9);
  EXPECT_EQ(show(start.buffer.content()), "0a 05 c7 c7");
  EXPECT_EQ(start.pieces(), (std::vector<piece>{start.at(0, (std::uint64_t{1} << 33) + 9)}));
}

TEST_F(huge_bytes, of_a_length_without_low_32_bits_are_not_empty) {
  const srv6_prefix prefix{nullptr, std::uint64_t{1} << 32, 64, 3};
  const encoding<srv6_prefix> start(prefix, 1, 0, 4);
  EXPECT_EQ(start.length, (std::uint64_t{1} << 32) + 4);
  EXPECT_EQ(show(start.buffer.content()), "0a 00 c7 c7");
}

TEST_F(huge_bytes, are_referenced_by_their_64_bit_length) {
  unsigned char anywhere[1] = {};
  const srv6_prefix prefix{anywhere, std::uint64_t{1} << 32, 64, 3};
  const encoding<srv6_prefix> pieces(prefix, 3, reference);
  EXPECT_EQ(show(pieces.buffer.content()), "0a 00 10 40");
  EXPECT_EQ(pieces.pieces(),
            (std::vector<piece>{pieces.at(0, 2), {anywhere, std::uint64_t{1} << 32}, pieces.at(2, 2)}));
}

TEST_F(huge_bytes, make_a_nested_message_not_empty_by_its_64_bit_size) {
  // The nested message takes 2^32 bytes: one of the key, five of the length, and the rest.
  srv6_usid usid{};
  usid.prefix = {nullptr, (std::uint64_t{1} << 32) - 6, 0, SRV6_PREFIX_HAS_FIELD1};
  const encoding<srv6_usid> start(usid, 2, 0, 10);
  EXPECT_EQ(start.length, (std::uint64_t{1} << 32) + 2);
  EXPECT_EQ(show(start.buffer.content()), "1a 00 0a fa ff ff ff 0f c7 c7");
  EXPECT_EQ(start.pieces(),
            (std::vector<piece>{start.at(2, std::uint64_t{1} << 32), start.at(0, (std::uint64_t{1} << 32) + 2)}));
}

TEST_F(huge_bytes, put_what_follows_after_the_end_of_the_buffer) {
  srv6_usid usids[2]{};
  usids[0].prefix = {nullptr, (std::uint64_t{1} << 32) - 6, 0, SRV6_PREFIX_HAS_FIELD1};
  usids[1].field1 = 7;
  usids[1].presence = SRV6_USID_HAS_FIELD1;
  const out_srv6_usid_list_info list{usids, 2, OUT_SRV6_USID_LIST_INFO_HAS_USIDS};
  const encoding<out_srv6_usid_list_info> start(list, 4, 0, 12);
  const std::uint64_t much = std::uint64_t{1} << 32;
  EXPECT_EQ(start.length, much + 8);
  EXPECT_EQ(show(start.buffer.content()), "0a 02 1a 00 0a fa ff ff ff 0f c7 c7");
  EXPECT_EQ(start.pieces(),
            (std::vector<piece>{start.at(4, much), start.at(2, much + 2), {nullptr, 2}, start.at(0, much + 8)}));
}

// A sum that wrapped would look like an encoding that fits.
TEST_F(huge_bytes, beyond_all_sizes_measure_as_the_greatest_and_touch_nothing_but_the_buffer) {
  unsigned char data[16] = {};
  for (const std::uint64_t less : {0u, 1u, 5u, 6u, 7u}) {
    srv6_usid usids[2]{};
    usids[0].prefix = usids[1].prefix = {data, UINT64_MAX - less, 64, 3};
    const out_srv6_usid_list_info list{usids, 2, OUT_SRV6_USID_LIST_INFO_HAS_USIDS};
    ASSERT_EQ(operations<srv6_prefix>::encode(&usids[0].prefix, nullptr, 0, nullptr, nullptr), SIZE_MAX);
    ASSERT_EQ(operations<srv6_usid>::encode(&usids[0], nullptr, 0, nullptr, nullptr), SIZE_MAX);
    ASSERT_EQ(operations<out_srv6_usid_list_info>::encode(&list, nullptr, 0, nullptr, nullptr), SIZE_MAX);

    const fenced_block around(40);
    EXPECT_EQ(operations<srv6_usid>::encode(&usids[0], around.data() + 16, 16, nullptr, nullptr), SIZE_MAX);
    const byte_string content = around.content();
    EXPECT_EQ(byte_string(content.begin(), content.begin() + 16), 16 * hex("c7")) << "before the buffer";
    EXPECT_EQ(byte_string(content.begin() + 24, content.end()), 16 * hex("c7")) << "after the keys and lengths";
  }
}

TEST_F(huge_bytes, beyond_all_sizes_are_counted_but_not_written_nor_listed) {
  unsigned char data[16] = {};
  const srv6_prefix prefix{data, UINT64_MAX, 64, 3};
  unsigned char buffer[8] = {};
  pavo_zorv_segment pieces[2] = {{data, 7}, {data, 7}};
  std::uint32_t count = 2;
  EXPECT_EQ(operations<srv6_prefix>::encode(&prefix, buffer, sizeof buffer, pieces, &count), SIZE_MAX);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(byte_string(buffer, buffer + sizeof buffer), 8 * hex("00"));
  for (const pavo_zorv_segment &piece : pieces) {
    EXPECT_EQ(piece.start, data);
    EXPECT_EQ(piece.length, 7u);
  }
}

// A key, a length of five bytes, and the bytes.
TEST_F(huge_bytes, are_measured_and_written_exactly_up_to_the_greatest_size) {
  constexpr std::uint64_t bit_62 = std::uint64_t{1} << 62;
  struct total {
    std::uint64_t length;
    const char *written;
  };
  for (const auto &[length, written] : {
           total{2 * bit_62, "0a fa ff ff ff 0f c7 c7"},
           total{3 * bit_62, "0a fa ff ff ff 0f c7 c7"},
           total{UINT64_MAX - 7, "0a f2 ff ff ff 0f c7 c7"},
           total{UINT64_MAX - 1, "0a f8 ff ff ff 0f c7 c7"},
           total{UINT64_MAX, "0a f9 ff ff ff 0f c7 c7"},
       }) {
    const srv6_prefix prefix{nullptr, length - 6, 0, SRV6_PREFIX_HAS_FIELD1};
    EXPECT_EQ(operations<srv6_prefix>::encode(&prefix, nullptr, 0, nullptr, nullptr), length);
    const encoding<srv6_prefix> start(prefix, 1, 0, 8);
    EXPECT_EQ(start.length, length);
    EXPECT_EQ(show(start.buffer.content()), written);
    EXPECT_EQ(start.pieces(), (std::vector<piece>{start.at(0, length)}));
  }
}

TEST_F(huge_bytes, before_other_fields_leave_room_for_what_fits_and_an_exact_total) {
  oam_req record{};
  record.field1 = 1;
  record.field6_length = (std::uint64_t{1} << 63) + 5;
  record.field7 = 7;
  record.presence = OAM_REQ_HAS_FIELD1 | OAM_REQ_HAS_FIELD6 | OAM_REQ_HAS_FIELD7;
  const encoding<oam_req> start(record, 1, 0, 6);
  EXPECT_EQ(start.length, (std::uint64_t{1} << 63) + 11);
  EXPECT_EQ(show(start.buffer.content()), "08 01 32 05 c7 c7");
  EXPECT_EQ(start.pieces(), (std::vector<piece>{start.at(0, (std::uint64_t{1} << 63) + 11)}));
}

TEST_F(huge_bytes, in_nested_messages_add_up_to_an_exact_total) {
  constexpr std::uint64_t first = std::uint64_t{1} << 62, second = std::uint64_t{3} << 61;
  srv6_usid usids[2]{};
  usids[0].prefix = {nullptr, first, 0, SRV6_PREFIX_HAS_FIELD1};
  usids[1].prefix = {nullptr, second, 0, SRV6_PREFIX_HAS_FIELD1};
  const out_srv6_usid_list_info list{usids, 2, OUT_SRV6_USID_LIST_INFO_HAS_USIDS};
  const std::uint64_t total = first + 6 + second + 6;
  EXPECT_EQ(operations<out_srv6_usid_list_info>::encode(&list, nullptr, 0, nullptr, nullptr), total);
  const encoding<out_srv6_usid_list_info> start(list, 5, 0, 8);
  EXPECT_EQ(start.length, total);
  EXPECT_EQ(show(start.buffer.content()), "0a 04 1a 02 0a 00 c7 c7");
  EXPECT_EQ(start.pieces(), (std::vector<piece>{start.at(4, first + 2),
                                                start.at(2, first + 4),
                                                {nullptr, second + 2},
                                                {nullptr, second + 4},
                                                start.at(0, total)}));
}

// Sums of 64 bits that wrap to 0, in the outermost message or in one inside it: neither is taken for an empty message.
TEST_F(huge_bytes, that_add_up_to_2_to_the_64_are_counted_but_not_written_nor_listed) {
  srv6_usid usids[2]{};
  usids[0].prefix = {nullptr, UINT64_MAX - 5, 0, SRV6_PREFIX_HAS_FIELD1};
  usids[1].prefix = {nullptr, 1, 0, SRV6_PREFIX_HAS_FIELD1};
  const out_srv6_usid_list_info list{usids, 2, OUT_SRV6_USID_LIST_INFO_HAS_USIDS};
  const auto touches_nothing = [](const auto &record, std::uint32_t needed) {
    const encoding<std::remove_cvref_t<decltype(record)>> whole(record, 5, 0, 8);
    EXPECT_EQ(whole.length, SIZE_MAX);
    EXPECT_EQ(whole.count(), needed);
    EXPECT_EQ(show(whole.buffer.content()), "c7 c7 c7 c7 c7 c7 c7 c7");
    EXPECT_TRUE(whole.segments.untouched_from(0));
  };
  touches_nothing(usids[0].prefix, 1);
  touches_nothing(usids[0], 2);
  touches_nothing(list, 5);
  usids[0].prefix.field1_length = std::uint64_t{1} << 63;
  usids[1].prefix.field1_length = (std::uint64_t{1} << 63) - 12;
  touches_nothing(list, 5);
}

// --- Reference mode: decoding, releasing, copying ---

TEST(referenced, bytes_point_into_the_input_are_not_released_and_are_copied_as_owned) {
  const fenced_block input(hex("0a 05 01 02 03 04 05"));
  srv6_prefix prefix;
  EXPECT_EQ(operations<srv6_prefix>::decode(&prefix, input.data(), input.size(), nullptr, nullptr, reference),
            CODEC_OK);
  EXPECT_EQ(prefix.field1, input.data() + 2);
  EXPECT_EQ(prefix.field1_length, 5u);

  accountant memory;
  srv6_prefix copy;
  EXPECT_EQ(operations<srv6_prefix>::duplicate(&copy, &prefix, accountant::allocate, &memory), CODEC_OK);
  EXPECT_TRUE(memory.owns(copy.field1));
  EXPECT_EQ(memory.sizes, (std::vector<std::size_t>{5}));
  EXPECT_EQ(byte_string(copy.field1, copy.field1 + 5), hex("01 02 03 04 05"));

  operations<srv6_prefix>::free(&prefix, accountant::release, &memory, reference);
  EXPECT_TRUE(memory.released.empty());
  EXPECT_EQ(prefix.field1, input.data() + 2);
  EXPECT_EQ(prefix.field1_length, 5u);
  operations<srv6_prefix>::free(&copy, accountant::release, &memory);
  EXPECT_EQ(memory.live(), 0u);
}

TEST(referenced, releasing_leaves_bytes_as_they_are_also_without_a_callback) {
  unsigned char data[] = {1};
  srv6_prefix prefix{data, 1, 0, 1};
  operations<srv6_prefix>::free(&prefix, nullptr, nullptr, reference);
  EXPECT_EQ(prefix.field1, data);
  operations<srv6_prefix>::free(&prefix, nullptr, nullptr, 0);
  EXPECT_EQ(prefix.field1, nullptr);
}

TEST(referenced, empty_bytes_point_after_their_length) {
  const fenced_block input(hex("0a 00 10 05"));
  srv6_prefix prefix;
  EXPECT_EQ(operations<srv6_prefix>::decode(&prefix, input.data(), 4, nullptr, nullptr, reference), CODEC_OK);
  EXPECT_EQ(prefix.field1, input.data() + 2);
  EXPECT_EQ(prefix.field1_length, 0u);
  EXPECT_EQ(operations<srv6_prefix>::decode(&prefix, input.data(), 2, nullptr, nullptr, reference), CODEC_OK);
  EXPECT_EQ(prefix.field1, input.data() + 2) << "the end of the input";
}

TEST(referenced, bytes_are_borrowed_at_every_depth) {
  decoded<srv6_usid> usid(hex("1a 04 0a 02 61 62"), reference);
  EXPECT_EQ(usid->prefix.field1, usid.input().data() + 4);
  EXPECT_EQ(usid.memory.requests(), 0u);

  decoded<out_srv6_usid_list_info> list(hex("0a 00 0a 06 1a 04 0a 02 61 62"), reference);
  ASSERT_EQ(list->usids_count, 2u);
  EXPECT_EQ(list->usids[1].prefix.field1, list.input().data() + 8);
  EXPECT_EQ(list.memory.sizes, (std::vector<std::size_t>{2 * sizeof(srv6_usid)}));

  decoded<api_msg> message(
      hex("72 16 2a 04 22 02 61 62 32 02 63 64 3a 0a 0a 00 0a 06 1a 04 0a 02 65 66 6a 03 32 01 67"), reference);
  ASSERT_EQ(message.result, CODEC_OK);
  EXPECT_EQ(message->oam_res.sid_lists[0].field4, message.input().data() + 6);
  EXPECT_EQ(message->oam_res.field6, message.input().data() + 10);
  EXPECT_EQ(message->oam_res.usid_lists[0].usids[1].prefix.field1, message.input().data() + 22);
  EXPECT_EQ(message->oam_req.field6, message.input().data() + 28);
  EXPECT_EQ(message.memory.sizes, (std::vector<std::size_t>{sizeof(out_sid_list_info), sizeof(out_srv6_usid_list_info),
                                                            2 * sizeof(srv6_usid)}));
}

TEST(referenced, only_bytes_are_borrowed) {
  decoded<oam_req> request(hex("1a 02 61 62 22 02 10 05 32 01 63"), reference);
  EXPECT_EQ(request.result, CODEC_OK);
  EXPECT_TRUE(request.memory.owns(request->field3));
  EXPECT_TRUE(request.memory.owns(request->prefix_sid.field2));
  EXPECT_EQ(request->field6, request.input().data() + 10);
  EXPECT_EQ(decode_without_memory<oam_req>(hex("1a 02 61 62"), reference), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<oam_req>(hex("22 02 10 05"), reference), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<oam_res>(hex("2a 00"), reference), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<oam_req>(hex("32 01 63"), reference), CODEC_OK);
}

TEST(referenced, releasing_takes_back_all_but_the_bytes) {
  decoded<oam_res> res(hex("2a 08 0a 02 10 05 22 02 61 62 32 02 63 64 3a 06 0a 04 1a 02 0a 00"), reference);
  ASSERT_EQ(res.result, CODEC_OK);
  const std::vector<void *> expected = {res->sid_lists[0].prefix_sid.field2, res->sid_lists, res->usid_lists[0].usids,
                                        res->usid_lists};
  unsigned char *const bytes = res->field6;
  operations<oam_res>::free(&res.record, accountant::release, &res.memory, reference);
  EXPECT_EQ(res.memory.released, expected);
  EXPECT_EQ(res->field6, bytes);
}

TEST(referenced, a_copy_owns_bytes_at_every_depth) {
  decoded<out_srv6_usid_list_info> list(hex("0a 06 1a 04 0a 02 61 62"), reference);
  out_srv6_usid_list_info copy;
  accountant memory;
  EXPECT_EQ(operations<out_srv6_usid_list_info>::duplicate(&copy, &list.record, accountant::allocate, &memory),
            CODEC_OK);
  EXPECT_TRUE(memory.owns(copy.usids[0].prefix.field1));
  EXPECT_EQ(operations<out_srv6_usid_list_info>::compare(&copy, &list.record), 0);
  operations<out_srv6_usid_list_info>::free(&copy, accountant::release, &memory);
  EXPECT_EQ(memory.live(), 0u);
}

// --- Reference mode: encoding ---

TEST(referenced, bytes_of_length_5_alone_take_two_bytes_and_two_entries) {
  unsigned char data[] = {1, 2, 3, 4, 5};
  const srv6_prefix prefix{data, 5, 0, SRV6_PREFIX_HAS_FIELD1};
  const encoding<srv6_prefix> pieces(prefix, 2, reference);
  EXPECT_EQ(pieces.length, 2u);
  EXPECT_EQ(show(pieces.buffer.content()), "0a 05");
  EXPECT_EQ(pieces.count(), 2u);
  EXPECT_EQ(pieces.pieces(), (std::vector<piece>{pieces.at(0, 2), {data, 5}}));
  fill_every_capacity(prefix, {part(0, 2), {data, 5}}, reference);
}

TEST(referenced, what_follows_the_bytes_is_a_third_entry) {
  unsigned char data[] = {1, 2, 3, 4, 5};
  const srv6_prefix prefix{data, 5, 300, 3};
  const encoding<srv6_prefix> pieces(prefix, 3, reference);
  EXPECT_EQ(pieces.length, 5u);
  EXPECT_EQ(show(pieces.buffer.content()), "0a 05 10 ac 02");
  EXPECT_EQ(pieces.pieces(), (std::vector<piece>{pieces.at(0, 2), {data, 5}, pieces.at(2, 3)}));
  fill_every_capacity(prefix, {part(0, 2), {data, 5}, part(2, 3)}, reference);
}

TEST(referenced, empty_bytes_take_no_entries_of_their_own) {
  unsigned char data[] = {1};
  fill_every_capacity(srv6_prefix{data, 0, 0, 1}, {part(0, 2)}, reference);
  fill_every_capacity(srv6_prefix{nullptr, 0, 5, 3}, {part(0, 4)}, reference);
  EXPECT_EQ(show(encoded(srv6_prefix{data, 0, 5, 3}, reference)), "0a 00 10 05");
}

TEST(referenced, absent_bytes_take_no_entries) {
  unsigned char data[] = {1};
  fill_every_capacity(srv6_prefix{data, 1, 0, 0}, {}, reference);
  fill_every_capacity(srv6_prefix{data, 1, 5, 2}, {part(0, 2)}, reference);
}

TEST(referenced, without_a_count_the_bytes_are_written_nowhere) {
  unsigned char data[] = {1, 2, 3};
  const srv6_prefix prefix{data, 3, 5, 3};
  EXPECT_EQ(show(encoded(prefix, reference)), "0a 03 10 05");
  const fenced_block buffer(10);
  const table segments(4);
  EXPECT_EQ(operations<srv6_prefix>::encode(&prefix, buffer.data(), 10, segments.entries(), nullptr, reference), 4u);
  EXPECT_EQ(show(buffer.content()), "0a 03 10 05 c7 c7 c7 c7 c7 c7");
  EXPECT_TRUE(segments.untouched_from(0));
}

TEST(referenced, the_length_of_the_bytes_may_take_several_bytes) {
  std::vector<unsigned char> data(1000, 7);
  const srv6_prefix prefix{data.data(), 1000, 5, 3};
  EXPECT_EQ(show(encoded(prefix, reference)), "0a e8 07 10 05");
  const encoding<srv6_prefix> pieces(prefix, 3, reference);
  EXPECT_EQ(pieces.pieces(), (std::vector<piece>{pieces.at(0, 3), {data.data(), 1000}, pieces.at(3, 2)}));
}

TEST(referenced, the_piece_before_the_bytes_begins_with_the_message) {
  char text[] = "ab";
  unsigned char data[] = {1, 2, 3};
  oam_req request{};
  request.field1 = 5;
  request.field3 = text;
  request.field6 = data;
  request.field6_length = 3;
  request.field8 = 6;
  request.presence = OAM_REQ_HAS_FIELD1 | OAM_REQ_HAS_FIELD3 | OAM_REQ_HAS_FIELD6 | OAM_REQ_HAS_FIELD8;
  EXPECT_EQ(show(encoded(request, reference)), "08 05 1a 02 61 62 32 03 40 06");
  fill_every_capacity(request, {part(0, 8), {data, 3}, part(8, 2)}, reference);
}

TEST(referenced, entries_of_nested_messages_before_the_bytes_stay) {
  unsigned char data[] = {1, 2, 3};
  oam_req request{};
  request.prefix_sid = {9, nullptr, 0, PREFIX_SID_TYPE_HAS_FIELD1};
  request.field6 = data;
  request.field6_length = 3;
  request.field7 = 6;
  request.presence = OAM_REQ_HAS_FIELD6 | OAM_REQ_HAS_FIELD7;
  EXPECT_EQ(show(encoded(request, reference)), "22 02 08 09 32 03 38 06");
  fill_every_capacity(request, {part(2, 2), part(0, 6), {data, 3}, part(6, 2)}, reference);

  out_sid_list_info list{};
  list.prefix_sid = {9, nullptr, 0, PREFIX_SID_TYPE_HAS_FIELD1};
  list.field2 = 1;
  list.field4 = data;
  list.field4_length = 3;
  list.presence = OUT_SID_LIST_INFO_HAS_PREFIX_SID | OUT_SID_LIST_INFO_HAS_FIELD2 | OUT_SID_LIST_INFO_HAS_FIELD4;
  EXPECT_EQ(show(encoded(list, reference)), "0a 02 08 09 10 01 22 03");
  fill_every_capacity(list, {part(2, 2), part(0, 8), {data, 3}}, reference);
}

TEST(referenced, the_rest_after_the_bytes_comes_after_the_elements_within_it) {
  unsigned char first[] = {1, 2}, middle[] = {3, 4, 5}, second[] = {6}, third[] = {7, 8, 9, 10};
  out_sid_list_info sid_lists[1]{};
  sid_lists[0].field4 = first;
  sid_lists[0].field4_length = 2;
  sid_lists[0].presence = OUT_SID_LIST_INFO_HAS_FIELD4;
  srv6_usid usids[2]{};
  usids[0].prefix = {second, 1, 5, 3};
  usids[1].field1 = 7;
  usids[1].prefix = {third, 4, 0, 1};
  usids[1].presence = SRV6_USID_HAS_FIELD1;
  out_srv6_usid_list_info usid_lists[1]{};
  usid_lists[0] = {usids, 2, OUT_SRV6_USID_LIST_INFO_HAS_USIDS};
  oam_res res{};
  res.field1 = 1;
  res.sid_lists = sid_lists;
  res.sid_lists_count = 1;
  res.field6 = middle;
  res.field6_length = 3;
  res.usid_lists = usid_lists;
  res.usid_lists_count = 1;
  res.presence = OAM_RES_HAS_FIELD1 | OAM_RES_HAS_SID_LISTS | OAM_RES_HAS_FIELD6 | OAM_RES_HAS_USID_LISTS;
  //                                             0  1  2  3  4  5  6  7  8  9 10 11 12 13 14 15 16 17 18 19 20 21 22 23
  //                                             24 25
  EXPECT_EQ(show(encoded(res, reference)),
            "08 01 2a 02 22 02 32 03 3a 10 0a 06 1a 04 0a 01 10 05 0a 06 08 07 1a 02 0a 04");
  fill_every_capacity(res,
                      {part(4, 2),
                       {first, 2},  // the outgoing segment list
                       part(0, 8),
                       {middle, 3},  // the result up to its own bytes
                       part(14, 2),
                       {second, 1},
                       part(16, 2),
                       part(12, 6),  // a prefix in three pieces, its micro-SID
                       part(24, 2),
                       {third, 4},
                       part(20, 6),  // a prefix in two pieces, its micro-SID
                       part(10, 16),
                       part(8, 18)},  // the list of both, the rest of the result
                      reference);
}

TEST(referenced, the_length_of_a_containing_message_leaves_the_bytes_out) {
  unsigned char data[16] = {};
  srv6_usid usid{};
  usid.prefix = {data, 16, 64, 3};
  usid.presence = SRV6_USID_HAS_PREFIX;
  EXPECT_EQ(show(encoded(usid, reference)), "1a 04 0a 10 10 40");
  fill_every_capacity(usid, {part(2, 2), {data, 16}, part(4, 2), part(0, 6)}, reference);
  EXPECT_EQ(show(encoded(usid)), "1a 14 0a 10 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 10 40");
  fill_every_capacity(usid, {part(2, 20), part(0, 22)});
}

TEST(referenced, the_options_reach_every_depth) {
  unsigned char data[] = {1, 2, 3};
  api_msg message{};
  message.oam_req.field6 = data;
  message.oam_req.field6_length = 3;
  message.oam_req.presence = OAM_REQ_HAS_FIELD6;
  message.oam_res.field6 = data;
  message.oam_res.field6_length = 2;
  message.oam_res.presence = OAM_RES_HAS_FIELD6;
  EXPECT_EQ(show(encoded(message, reference)), "6a 02 32 03 72 02 32 02");
  fill_every_capacity(message, {part(2, 2), {data, 3}, part(6, 2), {data, 2}, part(0, 8)}, reference);
  EXPECT_EQ(show(encoded(message)), "6a 05 32 03 01 02 03 72 04 32 02 01 02");
}

TEST(referenced, bytes_reached_after_the_capacity_is_used_up_are_counted_all_the_same) {
  unsigned char data[] = {1, 2, 3};
  srv6_usid usids[3]{};
  for (srv6_usid &usid : usids) {
    usid.prefix = {data, 3, 5, 3};
    usid.presence = SRV6_USID_HAS_PREFIX;
  }
  const out_srv6_usid_list_info list{usids, 3, OUT_SRV6_USID_LIST_INFO_HAS_USIDS};
  for (std::uint32_t capacity = 0; capacity <= 14; ++capacity) {
    EXPECT_EQ(encoding<out_srv6_usid_list_info>(list, capacity, reference).count(), 13u) << capacity;
  }
  fill_every_capacity(list,
                      {part(4, 2),
                       {data, 3},
                       part(6, 2),
                       part(2, 6),
                       part(12, 2),
                       {data, 3},
                       part(14, 2),
                       part(10, 6),
                       part(20, 2),
                       {data, 3},
                       part(22, 2),
                       part(18, 6),
                       part(0, 24)},
                      reference);
}

TEST(referenced, entries_do_not_depend_on_the_buffer_and_the_rest_keeps_its_place) {
  unsigned char data[] = {1, 2, 3};
  const srv6_prefix prefix{data, 3, 300, 3};
  for (std::size_t length = 0; length <= 7; ++length) {
    const encoding<srv6_prefix> pieces(prefix, 3, reference, length);
    const auto start = reinterpret_cast<std::uintptr_t>(pieces.buffer.data());
    EXPECT_EQ(pieces.length, 5u);
    EXPECT_EQ(pieces.pieces(), (std::vector<piece>{pieces.at(0, 2), {data, 3}, part(start + 2, 3)}))
        << "a buffer of " << length;
    byte_string expected = hex("0a 03 10 ac 02 c7 c7");
    expected.resize(length);
    EXPECT_EQ(show(pieces.buffer.content()), show(expected));
  }
  table segments(3);
  EXPECT_EQ(operations<srv6_prefix>::encode(&prefix, nullptr, 0, segments.entries(), &segments.count, reference), 5u);
  EXPECT_EQ(segments.pieces(), (std::vector<piece>{{nullptr, 2}, {data, 3}, part(2, 3)}));
}

TEST(referenced, a_nested_message_after_the_end_of_the_buffer_counts_from_null) {
  unsigned char data[] = {1, 2, 3};
  srv6_usid usid{};
  usid.field1 = 5;
  usid.prefix = {data, 3, 6, 3};
  usid.presence = SRV6_USID_HAS_FIELD1 | SRV6_USID_HAS_PREFIX;
  EXPECT_EQ(show(encoded(usid, reference)), "08 05 1a 04 0a 03 10 06");
  for (std::size_t length = 0; length <= 9; ++length) {
    const encoding<srv6_usid> pieces(usid, 4, reference, length);
    const auto start = length > 4 ? reinterpret_cast<std::uintptr_t>(pieces.buffer.data()) + 4 : 0;
    EXPECT_EQ(pieces.length, 8u);
    EXPECT_EQ(pieces.pieces(), (std::vector<piece>{part(start, 2), {data, 3}, part(start + 2, 2), pieces.at(0, 8)}))
        << "a buffer of " << length;
  }
}

TEST(referenced, the_pieces_of_an_outermost_message_in_order_are_its_plain_encoding) {
  char text[] = "abc";
  unsigned char data[] = {1, 2, 3, 4, 5, 6, 7};
  std::uint8_t elements[] = {1, 200};
  const oam_req request{1, 2, text, {3, elements, 2, 3}, 4, data, 7, 5, 6, 0xff};
  const encoding<oam_req> pieces(request, 4, reference);
  byte_string joined;
  for (const auto &[start, length] : pieces.pieces()) {
    if (start == pieces.buffer.data() + 11) continue;  // the segment identifier, which the next piece covers
    joined.insert(joined.end(), start, start + length);
  }
  EXPECT_EQ(show(joined),
            "08 01 10 02 1a 03 61 62 63 22 07 08 03 10 01 10 c8 01 28 04 32 07 01 02 03 04 05 06 07 38 05 40 06");
  EXPECT_EQ(joined, encoded(request));
}

// --- The options word ---

TEST(options, other_bits_than_the_first_have_no_meaning) {
  unsigned char data[] = {1, 2, 3};
  const srv6_prefix prefix{data, 3, 5, 3};
  EXPECT_EQ(encoded(prefix, 0xfffffffe), encoded(prefix));
  EXPECT_EQ(encoded(prefix, 0xffffffff), encoded(prefix, reference));
  EXPECT_EQ(encoding<srv6_prefix>(prefix, 4, 0xfffffffe).count(), 1u);
  EXPECT_EQ(encoding<srv6_prefix>(prefix, 4, 0xffffffff).count(), 3u);
  EXPECT_EQ(decode_without_memory<srv6_prefix>(hex("0a 01 61"), 0xfffffffe), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<srv6_prefix>(hex("0a 01 61"), 0xffffffff), CODEC_OK);
  decoded<srv6_prefix> owned(hex("0a 01 61"), 0xfffffffe);
  operations<srv6_prefix>::free(&owned.record, accountant::release, &owned.memory, 0xffffffff);
  EXPECT_TRUE(owned.memory.released.empty());
  operations<srv6_prefix>::free(&owned.record, accountant::release, &owned.memory, 0xfffffffe);
  EXPECT_EQ(owned.memory.released.size(), 1u);
}

TEST(options, have_no_effect_on_automatic_policies_and_their_requests) {
  const byte_string bytes = hex("0a 01 61 3a 04 08 10 08 11 58 05 72 04 0a 02 28 07 aa 01 02 10 09");
  decoded<api_msg_p2p_auto_policy> plain(bytes), referenced(bytes, reference);
  EXPECT_EQ(referenced.result, CODEC_OK);
  EXPECT_EQ(referenced.memory.sizes, plain.memory.sizes);
  EXPECT_EQ(operations<api_msg_p2p_auto_policy>::compare(&plain.record, &referenced.record), 0);
  EXPECT_EQ(encoded(referenced.record, reference), bytes);
  fill_every_capacity(referenced.record, {part(5, 4), part(15, 2), part(13, 4), part(20, 2), part(0, 22)}, reference);
  EXPECT_EQ(decode_without_memory<api_msg_p2p_auto_policy>(bytes, reference), CODEC_ERR_NO_MEMORY);

  decoded<api_msg_p2p_auto_policy_request> request(hex("0a 16") + bytes, reference);
  EXPECT_EQ(request.memory.sizes, plain.memory.sizes);
  EXPECT_EQ(encoded(request.record, reference), hex("0a 16") + bytes);
  operations<api_msg_p2p_auto_policy_request>::free(&request.record, accountant::release, &request.memory, reference);
  EXPECT_EQ(request.memory.live(), 0u);
}

}  // namespace segment_table_test
