// The envelope: a number, a flag, and a whole record for each kind of payload, any number of them present.
#include "cleared_members.hpp"
#include "message_checks.hpp"

using namespace test;
using namespace test::checks;

namespace api_msg_test {

constexpr std::uint32_t by_reference = PAVO_ZORV_REFERENCE;
// All sixteen members.
struct whole_envelope {
  char name[3] = "ab", policy_name[2] = "c", notification_name[2] = "d", interface_name[2] = "e", request_name[2] = "f",
       registration_name[2] = "g";
  std::uint32_t labels[1] = {16}, numbers[1] = {7};
  std::uint8_t node_bytes[1] = {8}, registration_bytes[1] = {9};
  unsigned char request_data[2] = {0xaa, 0xbb}, result_data[1] = {0xcc};
  api_msg record{};

  whole_envelope(const whole_envelope &) = delete;
  whole_envelope() {
    record.field1 = UINT64_MAX;
    record.internal.field2 = name;
    record.internal.service.field1 = 1;
    record.internal.service.presence = API_MSG_SERVICE_HAS_FIELD1;
    record.internal.presence = API_MSG_INTERNAL_HAS_FIELD2 | API_MSG_INTERNAL_HAS_SERVICE;
    record.field3.field1 = policy_name;
    record.field3.field3 = 3;
    record.field3.presence = API_MSG_P2P_AUTO_POLICY_HAS_FIELD1 | API_MSG_P2P_AUTO_POLICY_HAS_FIELD3;
    record.field4.label_stack = {labels, 1, API_LBL_STACK_HAS_LABELS};
    record.field4.presence = API_MSG_P2P_AUTO_POLICY_HAS_LABEL_STACK;
    record.p2p_auto_policy_notif.field27 = -1;
    record.p2p_auto_policy_notif.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD27;
    record.field6 = {300, API_MSG_ON_DEMAND_COLOR_NOTIF_HAS_COLOR};
    record.field7 = {0, API_MSG_ON_DEMAND_COLOR_NOTIF_HAS_COLOR};
    record.p2p_auto_policy_request.policy.field22 = 22;
    record.p2p_auto_policy_request.policy.presence = API_MSG_P2P_AUTO_POLICY_HAS_FIELD22;
    record.p2p_auto_policy_request.field2 = 2;
    record.p2p_auto_policy_request.presence = 3;
    record.p2p_auto_policy_response.notification.field1 = notification_name;
    record.p2p_auto_policy_response.notification.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD1;
    record.p2p_auto_policy_response.field3 = 3;
    record.p2p_auto_policy_response.presence = 5;
    record.p2p_auto_policy_sweep = {1, 2, 3};
    record.to_igp.link_update.field5 = numbers;
    record.to_igp.link_update.field5_count = 1;
    record.to_igp.link_update.presence = API_LINK_UPDATE_HAS_FIELD5;
    record.to_igp.field3 = 1;
    record.to_igp.presence = API_TO_IGP_HAS_LINK_UPDATE | API_TO_IGP_HAS_FIELD3;
    record.to_zorv.nodeid = {0, node_bytes, 1, API_NODEID_HAS_OCTETS};
    record.to_zorv.intf = {0, interface_name, API_INTF_HAS_FIELD2};
    record.to_zorv.presence = API_TO_ZORV_HAS_NODEID | API_TO_ZORV_HAS_INTF;
    record.oam_req.field3 = request_name;
    record.oam_req.field6 = request_data;
    record.oam_req.field6_length = 2;
    record.oam_req.field7 = 7;
    record.oam_req.presence = OAM_REQ_HAS_FIELD3 | OAM_REQ_HAS_FIELD6 | OAM_REQ_HAS_FIELD7;
    record.oam_res.field3 = -2;
    record.oam_res.field6 = result_data;
    record.oam_res.field6_length = 1;
    record.oam_res.presence = OAM_RES_HAS_FIELD3 | OAM_RES_HAS_FIELD6;
    record.field15 = 1;
    record.policy_reg.octets = registration_bytes;
    record.policy_reg.octets_count = 1;
    record.policy_reg.field4 = registration_name;
    record.policy_reg.presence = API_MSG_POLICY_REG_HAS_OCTETS | API_MSG_POLICY_REG_HAS_FIELD4;
    record.presence = 0xffff;
  }
};

const fields<api_msg> all_fields = {
    {take(&api_msg::field1), hex("08 ff ff ff ff ff ff ff ff ff 01")},
    {take(&api_msg::internal), hex("12 08 12 02 61 62 2a 02 08 01")},
    {take(&api_msg::field3), hex("1a 05 0a 01 63 18 03")},
    {take(&api_msg::field4), hex("22 04 3a 02 08 10")},
    {take(&api_msg::p2p_auto_policy_notif), hex("2a 0c d8 01 ff ff ff ff ff ff ff ff ff 01")},
    {take(&api_msg::field6), hex("32 03 08 ac 02")},
    {take(&api_msg::field7), hex("3a 02 08 00")},
    {take(&api_msg::p2p_auto_policy_request), hex("42 07 0a 03 b0 01 16 10 02")},
    {take(&api_msg::p2p_auto_policy_response), hex("4a 07 0a 03 0a 01 64 18 03")},
    {take(&api_msg::p2p_auto_policy_sweep), hex("52 04 08 01 10 02")},
    {take(&api_msg::to_igp), hex("5a 06 0a 02 28 07 18 01")},
    {take(&api_msg::to_zorv), hex("62 09 0a 02 10 08 12 03 12 01 65")},
    {take(&api_msg::oam_req), hex("6a 09 1a 01 66 32 02 aa bb 38 07")},
    {take(&api_msg::oam_res), hex("72 09 18 fe ff ff ff 0f 32 01 cc")},
    {take(&api_msg::field15), hex("78 01")},
    {take(&api_msg::policy_reg), hex("82 01 05 10 09 22 01 67")},
};

byte_string written_by_reference() {
  byte_string result;
  for (std::size_t i = 0; i < 12; ++i) result = result + all_fields[i].bytes;
  return result + hex("6a 07 1a 01 66 32 02 38 07 72 08 18 fe ff ff ff 0f 32 01 78 01 82 01 05 10 09 22 01 67");
}

// --- On the wire ---

TEST(api_msg, its_fields_are_of_their_kinds) { fields_are_of_kinds<api_msg>(); }

TEST(api_msg, every_field_goes_to_the_wire_and_back) { goes_to_the_wire_and_back(whole_envelope().record, all_fields); }

TEST(api_msg, nothing_is_no_bytes_and_no_entry_and_comes_back_as_nothing) {
  takes_entries(api_msg{}, {});
  EXPECT_EQ(show(encoded(api_msg{})), "");
  decoded<api_msg> read(hex(""));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(bits(read.record), 0u);
  EXPECT_EQ(left_in(read.record), "");
  // Without spare presence bits, and with all of them.
  EXPECT_EQ(left_in(cleared_from<api_msg>(0x00)), "");
  EXPECT_EQ(left_in(cleared_from<api_msg>(0xff)), "");
  EXPECT_EQ(show(encoded(read.record)), "");
  const api_msg nothing{};
  EXPECT_EQ(operations<api_msg>::compare(&read.record, &nothing), 0);
}

TEST(api_msg, an_empty_sweep_with_its_bit_is_a_key_and_a_zero_length) {
  api_msg record{};
  record.presence = 1u << 9;
  EXPECT_EQ(show(encoded(record)), "52 00");
  takes_entries(record, {{"api_msg", 0, 2}});
  decoded<api_msg> read(hex("52 00"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(bits(read.record), 1u << 9);
  EXPECT_EQ(bits(read->p2p_auto_policy_sweep), 0u);
}

TEST(api_msg, the_greatest_field_1_takes_ten_bytes_and_comes_back) {
  api_msg record{};
  record.field1 = UINT64_MAX;
  record.presence = API_MSG_HAS_FIELD1;
  EXPECT_EQ(show(encoded(record)), "08 ff ff ff ff ff ff ff ff ff 01");
  decoded<api_msg> read(hex("08 ff ff ff ff ff ff ff ff ff 01"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->field1, UINT64_MAX);
  for (const char *bytes : {"08 ff ff ff ff ff ff ff ff ff", "08 80", "08"}) {
    SCOPED_TRACE(bytes);
    EXPECT_EQ(decoded<api_msg>(hex(bytes)).result, CODEC_ERR_TRUNCATED);
  }
  decoded<api_msg> above_32_bits(hex("08 80 80 80 80 80 20"));
  EXPECT_EQ(above_32_bits->field1, 0x10000000000u);
}

TEST(api_msg, field_15_is_the_low_32_bits_as_yes_or_no_and_written_as_stored) {
  decoded<api_msg> read(hex("78 80 80 80 80 10"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->field15, 0);
  EXPECT_EQ(bits(read.record), std::uint32_t{API_MSG_HAS_FIELD15});
  decoded<api_msg> two(hex("78 02"));
  EXPECT_EQ(two->field15, 1);
  api_msg record{};
  record.field15 = 0x81;
  record.presence = API_MSG_HAS_FIELD15;
  EXPECT_EQ(show(encoded(record)), "78 81");
}

TEST(api_msg, field_16_has_a_key_of_two_bytes) {
  api_msg record{};
  record.policy_reg.field3 = 5;
  record.policy_reg.presence = API_MSG_POLICY_REG_HAS_FIELD3;
  record.presence = API_MSG_HAS_POLICY_REG;
  EXPECT_EQ(show(encoded(record)), "82 01 02 18 05");
  decoded<api_msg> read(hex("82 01 02 18 05"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(bits(read.record), std::uint32_t{API_MSG_HAS_POLICY_REG});
  EXPECT_EQ(read->policy_reg.field3, 5u);
}

TEST(api_msg, a_second_request_replaces_the_first_and_drops_its_memory) {
  decoded<api_msg> read(hex("6a 0b 08 01 1a 01 61 22 00 32 02 aa bb 6a 05 10 02 1a 01 62"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->oam_req.field1, 0u);
  EXPECT_EQ(read->oam_req.field2, 2u);
  EXPECT_STREQ(read->oam_req.field3, "b");
  EXPECT_EQ(read->oam_req.field6, nullptr);
  EXPECT_EQ(read->oam_req.field6_length, 0u);
  EXPECT_EQ(bits(read->oam_req), std::uint32_t{OAM_REQ_HAS_FIELD2 | OAM_REQ_HAS_FIELD3});
  EXPECT_EQ(bits(read.record), std::uint32_t{API_MSG_HAS_OAM_REQ});
  EXPECT_EQ(read.memory.sizes, (std::vector<std::size_t>{2, 2, 2}));
  EXPECT_TRUE(read.memory.released.empty());
  read.dropped = 2;
}

TEST(api_msg, all_sixteen_members_come_back_equal) {
  const whole_envelope whole;
  decoded<api_msg> read(encoded(whole.record));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(bits(read.record), 0xffffu);
  EXPECT_EQ(operations<api_msg>::compare(&read.record, &whole.record), 0);
  EXPECT_EQ(operations<api_msg>::compare(&whole.record, &read.record), 0);
  EXPECT_EQ(show(encoded(read.record)), show(together(all_fields)));
}

TEST(api_msg, every_empty_payload_with_its_bit_is_a_key_and_a_zero_length) {
  api_msg record{};
  record.presence = 0xbffe;
  EXPECT_EQ(show(encoded(record)),
            "12 00 1a 00 22 00 2a 00 32 00 3a 00 42 00 4a 00 52 00 5a 00 62 00 6a 00 72 00 82 01 00");
  takes_entries(record, {{"api_msg", 0, 29}});
  decoded<api_msg> read(encoded(record));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(bits(read.record), 0xbffeu);
}

TEST(api_msg, content_at_any_depth_is_written_without_any_bit_above_it) {
  std::uint32_t labels[1] = {16};
  std::uint8_t bytes[1] = {5};
  api_msg record{};
  record.internal.service.field2 = 1;
  record.internal.service.presence = API_MSG_SERVICE_HAS_FIELD2;
  record.p2p_auto_policy_request.policy.label_stack = {labels, 1, API_LBL_STACK_HAS_LABELS};
  record.p2p_auto_policy_response.notification.label_stack = {labels, 1, API_LBL_STACK_HAS_LABELS};
  record.to_igp.aa_list.field2 = 7;
  record.to_igp.aa_list.presence = API_AA_LIST_HAS_FIELD2;
  record.to_zorv.intf.field1 = 8;
  record.to_zorv.intf.presence = API_INTF_HAS_FIELD1;
  record.oam_req.prefix_sid = {0, bytes, 1, PREFIX_SID_TYPE_HAS_FIELD2};
  EXPECT_EQ(show(encoded(record)),
            "12 04 2a 02 10 01 42 06 0a 04 3a 02 08 10 4a 06 0a 04 52 02 08 10 5a 04 12 02 10 07 62 04 12 02 08 08 "
            "6a 04 22 02 10 05");
  // A present field without a value, and bits of no field, are no content.
  api_msg nothing{};
  nothing.internal.presence = API_MSG_INTERNAL_HAS_FIELD2 | 0x80;
  nothing.field3.presence = API_MSG_P2P_AUTO_POLICY_HAS_FIELD11 | 0xffc00000;
  nothing.to_igp.aa_list.presence = API_AA_LIST_HAS_POLICIES | 0xf8;
  nothing.oam_res.presence = OAM_RES_HAS_SID_LISTS | 0x80;
  EXPECT_EQ(show(encoded(nothing)), "");
  takes_entries(nothing, {});
}

TEST(api_msg, the_members_of_a_pair_are_independent) {
  decoded<api_msg> read(hex("22 02 18 04 3a 02 08 07"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(bits(read.record), std::uint32_t{API_MSG_HAS_FIELD4 | API_MSG_HAS_FIELD7});
  EXPECT_EQ(bits(read->field3), 0u);
  EXPECT_EQ(read->field4.field3, 4u);
  EXPECT_EQ(bits(read->field6), 0u);
  EXPECT_EQ(read->field7.color, 7u);
  EXPECT_EQ(show(encoded(read.record)), "22 02 18 04 3a 02 08 07");
}

TEST(api_msg, unknown_fields_are_skipped_field_0_among_them) {
  decoded<api_msg> read(hex("00 05 88 01 07 78 01 8a 01 02 ff ff"));
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(bits(read.record), std::uint32_t{API_MSG_HAS_FIELD15});
}

// --- Payloads that fail ---

TEST(api_msg, a_payload_that_runs_past_the_end_is_refused) {
  for (const unsigned number : {2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 11u, 12u, 13u, 14u, 16u}) {
    SCOPED_TRACE(number);
    for (const char *rest : {"01", "05 08 01", "ff ff ff ff 0f 08", "80"}) {
      decoded<api_msg> read(hex("78 01") + key(number, 2) + hex(rest));
      EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
      EXPECT_EQ(bits(read.record), std::uint32_t{API_MSG_HAS_FIELD15});
    }
  }
}

TEST(api_msg, what_a_payload_fails_with_is_handed_on_and_its_content_stays_without_its_bit) {
  for (const unsigned number : {2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 11u, 12u, 13u, 14u, 16u}) {
    SCOPED_TRACE(number);
    decoded<api_msg> bad(hex("78 01") + key(number, 2) + hex("02 ff 01"));  // field 31
    EXPECT_EQ(bad.result, CODEC_ERR_BAD_WIRE_TYPE);
    EXPECT_EQ(bits(bad.record), std::uint32_t{API_MSG_HAS_FIELD15});
    EXPECT_EQ(decoded<api_msg>(key(number, 2) + hex("01 0d")).result, CODEC_ERR_WRONG_WIRE_TYPE);
    EXPECT_EQ(decoded<api_msg>(key(number, 2) + hex("01 80")).result, CODEC_ERR_TRUNCATED);
  }
  decoded<api_msg> request(hex("08 05 6a 05 1a 01 61 08 80 78 01"));
  EXPECT_EQ(request.result, CODEC_ERR_TRUNCATED);
  EXPECT_STREQ(request->oam_req.field3, "a");
  EXPECT_EQ(bits(request->oam_req), std::uint32_t{OAM_REQ_HAS_FIELD3});
  EXPECT_EQ(bits(request.record), std::uint32_t{API_MSG_HAS_FIELD1});
  EXPECT_EQ(decode_without_memory<api_msg>(hex("12 02 12 00")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<api_msg>(hex("32 02 08 05 52 02 08 05")), CODEC_OK);
}

TEST(api_msg, a_second_payload_that_fails_leaves_the_bit_of_the_first) {
  decoded<api_msg> read(hex("12 04 12 02 61 62 12 03 08 01 18"));
  EXPECT_EQ(read.result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(bits(read.record), std::uint32_t{API_MSG_HAS_INTERNAL});
  EXPECT_EQ(read->internal.field2, nullptr);
  EXPECT_EQ(bits(read->internal), std::uint32_t{API_MSG_INTERNAL_HAS_FIELD1});
  read.dropped = 1;
}

TEST(api_msg, every_repeated_payload_replaces_the_first) {
  for (std::size_t i = 1; i < 16; ++i) {
    if (i == 14) continue;
    SCOPED_TRACE("field " + std::to_string(i + 1));
    decoded<api_msg> read(all_fields[i].bytes + key(static_cast<unsigned>(i) + 1, 2) + hex("00"));
    EXPECT_EQ(read.result, CODEC_OK);
    EXPECT_EQ(bits(read.record), 1u << i);
    EXPECT_EQ(show(encoded(read.record)), show(key(static_cast<unsigned>(i) + 1, 2) + hex("00")));
    EXPECT_TRUE(read.memory.released.empty());
    // All that was asked for was for the first payload.
    read.dropped = read.memory.requests();
  }
}

// --- Buffers and tables ---

TEST(api_msg, short_buffers_take_what_fits) {
  fills_short_buffers(whole_envelope().record, together(all_fields),
                      {
                          {"internal.field2", 15, 2},
                          {"field3.field1", 25, 1},
                          {"p2p_auto_policy_response.notification.field1", 72, 1},
                          {"to_zorv.intf.field2", 99, 1},
                          {"oam_req.field3", 104, 1},
                          {"oam_req.field6", 107, 2},
                          {"oam_res.field6", 121, 1},
                          {"policy_reg.field4", 131, 1},
                      });
}

// The entries of the payloads before the request for OAM, and these after them.
std::vector<entry> with_the_first_payloads(const std::vector<entry> &others) {
  std::vector<entry> result = {
      {"internal.service", 19, 2},
      {"internal", 13, 8},
      {"field3", 23, 5},
      {"field4.label_stack", 32, 2},
      {"field4", 30, 4},
      {"p2p_auto_policy_notif", 36, 12},
      {"field6", 50, 3},
      {"field7", 55, 2},
      {"p2p_auto_policy_request.policy", 61, 3},
      {"p2p_auto_policy_request", 59, 7},
      {"p2p_auto_policy_response.notification", 70, 3},
      {"p2p_auto_policy_response", 68, 7},
      {"p2p_auto_policy_sweep", 77, 4},
      {"to_igp.link_update", 85, 2},
      {"to_igp", 83, 6},
      {"to_zorv.nodeid", 93, 2},
      {"to_zorv.intf", 97, 3},
      {"to_zorv", 91, 9},
  };
  result.insert(result.end(), others.begin(), others.end());
  return result;
}

TEST(api_msg, its_own_entry_comes_after_those_of_all_payloads) {
  const whole_envelope whole;
  takes_entries(whole.record, with_the_first_payloads({
                                  {"oam_req", 102, 9},
                                  {"oam_res", 113, 9},
                                  {"policy_reg", 127, 5},
                                  {"api_msg", 0, 132},
                              }));
}

TEST(api_msg, by_reference_payloads_split_and_their_lengths_leave_the_bytes_out) {
  const whole_envelope whole;
  EXPECT_EQ(show(encoded(whole.record, by_reference)), show(written_by_reference()));
  takes_entries(whole.record,
                with_the_first_payloads({
                    {"oam_req", 102, 5},
                    referenced("oam_req.field6", whole.request_data, 2),
                    rest("oam_req", 107, 2, 5),
                    {"oam_res", 111, 8},
                    referenced("oam_res.field6", whole.result_data, 1),
                    {"policy_reg", 124, 5},
                    {"api_msg", 0, 129},
                }),
                by_reference);
}

TEST(api_msg, options_go_to_request_and_result) {
  decoded<api_msg> read(together(all_fields), by_reference);
  EXPECT_EQ(read.result, CODEC_OK);
  EXPECT_EQ(read->oam_req.field6, read.input().data() + 107);
  EXPECT_EQ(read->oam_res.field6, read.input().data() + 121);
  EXPECT_EQ(read.memory.requests(), 10u);
  copied<api_msg> copy(read.record);
  EXPECT_TRUE(copy.memory.owns(copy->oam_req.field6));
  EXPECT_TRUE(copy.memory.owns(copy->oam_res.field6));
  EXPECT_EQ(copy.memory.requests(), 12u);
  operations<api_msg>::free(&read.record, accountant::release, &read.memory, by_reference);
  EXPECT_EQ(read.memory.live(), 0u);
  EXPECT_EQ(read->oam_req.field6, read.input().data() + 107);
  EXPECT_EQ(read->oam_res.field6, read.input().data() + 121);
  EXPECT_EQ(decode_without_memory<api_msg>(hex("6a 03 32 01 aa 72 03 32 01 bb"), by_reference), CODEC_OK);
  EXPECT_EQ(decode_without_memory<api_msg>(hex("6a 03 32 01 aa")), CODEC_ERR_NO_MEMORY);
}

// --- Memory ---

TEST(api_msg, memory_is_asked_for_in_field_order_and_its_lack_costs_one_member) {
  asks_for_memory(whole_envelope().record, all_fields,
                  {
                      {3, 2, hex("12 04 2a 02 08 01"), hex("")},
                      {2, 3, hex("1a 02 18 03"), hex("")},
                      {4, 4, hex("22 02 3a 00"), hex("")},
                      {2, 9, hex("4a 04 0a 00 18 03"), hex("")},
                      {4, 11, hex("5a 04 0a 00 18 01"), hex("")},
                      {1, 12, hex("62 07 0a 00 12 03 12 01 65"), hex("")},
                      {2, 12, hex("62 06 0a 02 10 08 12 00"), hex("62 04 0a 02 10 08")},
                      {2, 13, hex("6a 06 32 02 aa bb 38 07"), hex("")},
                      {2, 13, hex("6a 05 1a 01 66 38 07"), hex("6a 03 1a 01 66")},
                      {1, 14, hex("72 06 18 fe ff ff ff 0f"), hex("72 06 18 fe ff ff ff 0f")},
                      {1, 16, hex("82 01 03 22 01 67"), hex("")},
                      {2, 16, hex("82 01 02 10 09"), hex("82 01 02 10 09")},
                  },
                  hex("08 ff ff ff ff ff ff ff ff ff 01 12 04 2a 02 08 01 1a 02 18 03 22 02 3a 00"
                      "2a 0c d8 01 ff ff ff ff ff ff ff ff ff 01 32 03 08 ac 02 3a 02 08 00"
                      "42 07 0a 03 b0 01 16 10 02 4a 04 0a 00 18 03 52 04 08 01 10 02 5a 04 0a 00 18 01"
                      "62 04 0a 00 12 00 6a 02 38 07 72 06 18 fe ff ff ff 0f 78 01 82 01 00"));
}

TEST(api_msg, a_copy_keeps_all_bits_whatever_fails) {
  const whole_envelope whole;
  for (std::size_t failing = 0; failing < 12; ++failing) {
    copied<api_msg> copy(whole.record, {.fail_at = failing});
    EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY);
    EXPECT_EQ(bits(copy.record), 0xffffu);
    EXPECT_EQ(copy.memory.requests(), 12u);
  }
}

TEST(api_msg, payloads_are_copied_whatever_their_bits) {
  const whole_envelope whole;
  api_msg source = whole.record;
  source.presence = 0;
  copied<api_msg> copy(source);
  EXPECT_EQ(copy.result, CODEC_OK);
  EXPECT_EQ(bits(copy.record), 0u);
  EXPECT_EQ(copy.memory.requests(), 12u);
  EXPECT_STREQ(copy->internal.field2, "ab");
  EXPECT_EQ(copy->field1, UINT64_MAX);
  EXPECT_EQ(copy->field15, 1);
  set_bits(copy.record, 0xffff);
  EXPECT_EQ(operations<api_msg>::compare(&copy.record, &whole.record), 0);
}

// Every presence bit of every payload, inner ones included, cleared.
void clear_bits(api_msg &record) {
  record.presence = 0;
  record.internal.presence = record.internal.service.presence = 0;
  record.field3.presence = record.field4.presence = 0;
  record.field4.label_stack.presence = 0;
  record.p2p_auto_policy_notif.presence = 0;
  record.field6.presence = record.field7.presence = 0;
  record.p2p_auto_policy_request.presence = 0;
  record.p2p_auto_policy_request.policy.presence = 0;
  record.p2p_auto_policy_response.presence = 0;
  record.p2p_auto_policy_response.notification.presence = 0;
  record.p2p_auto_policy_sweep.presence = 0;
  record.to_igp.presence = record.to_igp.link_update.presence = 0;
  record.to_zorv.presence = record.to_zorv.nodeid.presence = record.to_zorv.intf.presence = 0;
  record.oam_req.presence = record.oam_res.presence = record.policy_reg.presence = 0;
}

TEST(api_msg, memory_is_copied_and_released_without_any_bit_at_any_depth) {
  const whole_envelope whole;
  api_msg source = whole.record;
  clear_bits(source);
  EXPECT_EQ(show(encoded(source)), "");
  {
    copied<api_msg> copy(source);
    EXPECT_EQ(copy.result, CODEC_OK);
    EXPECT_EQ(copy.memory.sizes, (std::vector<std::size_t>{3, 2, 4, 2, 4, 1, 2, 2, 2, 1, 1, 2}));
    EXPECT_STREQ(copy->field3.field1, "c");
    EXPECT_EQ(copy->field4.label_stack.labels[0], 16u);
    EXPECT_STREQ(copy->policy_reg.field4, "g");
    EXPECT_EQ(bits(copy.record), 0u);
  }
  copied<api_msg> without(source, {.fail_from = 0});
  EXPECT_EQ(without.result, CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(without->oam_req.field6, nullptr);
  EXPECT_EQ(without->oam_req.field6_length, 0u);

  notebook notes;
  operations<api_msg>::free(&source, notebook::note, &notes);
  EXPECT_EQ(notes.released.size(), 12u);
  EXPECT_EQ(source.to_zorv.intf.field2, nullptr);
  EXPECT_EQ(source.oam_res.field6, nullptr);
}

TEST(api_msg, blocks_are_released_in_their_order) {
  decoded<api_msg> read(together(all_fields));
  ASSERT_EQ(read.result, CODEC_OK);
  const std::vector<void *> blocks = {read->internal.field2,
                                      read->field3.field1,
                                      read->field4.label_stack.labels,
                                      read->p2p_auto_policy_response.notification.field1,
                                      read->to_igp.link_update.field5,
                                      read->to_zorv.nodeid.octets,
                                      read->to_zorv.intf.field2,
                                      read->oam_req.field3,
                                      read->oam_req.field6,
                                      read->oam_res.field6,
                                      read->policy_reg.octets,
                                      read->policy_reg.field4};
  operations<api_msg>::free(&read.record, accountant::release, &read.memory);
  EXPECT_EQ(read.memory.released, blocks);
  EXPECT_EQ(read->internal.field2, nullptr);
  EXPECT_EQ(read->field3.field1, nullptr);
  EXPECT_EQ(read->field4.label_stack.labels, nullptr);
  EXPECT_EQ(read->p2p_auto_policy_response.notification.field1, nullptr);
  EXPECT_EQ(read->to_igp.link_update.field5, nullptr);
  EXPECT_EQ(read->to_zorv.nodeid.octets, nullptr);
  EXPECT_EQ(read->to_zorv.intf.field2, nullptr);
  EXPECT_EQ(read->oam_req.field3, nullptr);
  EXPECT_EQ(read->oam_req.field6, nullptr);
  EXPECT_EQ(read->oam_res.field6, nullptr);
  EXPECT_EQ(read->policy_reg.octets, nullptr);
  EXPECT_EQ(read->policy_reg.field4, nullptr);
  EXPECT_EQ(bits(read.record), 0xffffu);
  EXPECT_EQ(read->field1, UINT64_MAX);
  EXPECT_EQ(read->field15, 1);
  EXPECT_EQ(read->field6.color, 300u);
  EXPECT_EQ(read->p2p_auto_policy_sweep.field2, 2u);
}

// --- Order ---

TEST(api_msg, fields_are_compared_in_order) {
  const whole_envelope higher;
  whole_envelope lower;
  lower.record.field1 = 1;
  lower.record.internal.service.field1 = 0;
  lower.record.field3.field3 = 2;
  lower.labels[0] = 15;
  lower.record.p2p_auto_policy_notif.field27 = INT64_MIN;
  lower.record.field6.color = 299;
  lower.record.field7.color = 0;
  lower.record.p2p_auto_policy_request.field2 = 1;
  lower.notification_name[0] = 'c';
  lower.record.p2p_auto_policy_sweep.field2 = 1;
  lower.numbers[0] = 6;
  lower.interface_name[0] = 'd';
  lower.request_data[1] = 0x0b;
  lower.record.oam_res.field3 = -3;
  lower.registration_name[0] = 'f';
  api_msg high = higher.record;
  high.field7.color = 0x80000000;
  high.field15 = 0x80;
  orders_field_by_field(lower.record, high, all_fields);
}

TEST(api_msg, field_1_is_compared_unsigned) {
  api_msg low{}, high{};
  low.presence = high.presence = API_MSG_HAS_FIELD1;
  low.field1 = 0x7fffffffffffffff;
  high.field1 = 0x8000000000000000;
  EXPECT_EQ(operations<api_msg>::compare(&low, &high), -1);
  EXPECT_EQ(operations<api_msg>::compare(&high, &low), 1);
  low.field1 = 0x00000000ffffffff;
  high.field1 = 0x0000000100000000;
  EXPECT_EQ(operations<api_msg>::compare(&low, &high), -1);
}

TEST(api_msg, a_payload_without_its_bit_is_sent_but_not_compared) {
  const whole_envelope whole;
  api_msg unmarked = whole.record;
  unmarked.presence = 0;
  const api_msg nothing{};
  EXPECT_EQ(operations<api_msg>::compare(&unmarked, &nothing), 0);
  byte_string payloads;
  for (std::size_t i = 1; i < 16; ++i) {
    if (i != 14) payloads = payloads + all_fields[i].bytes;
  }
  EXPECT_EQ(show(encoded(unmarked)), show(payloads));
}

TEST(api_msg, what_a_payload_is_compared_as_is_handed_on) {
  whole_envelope low, high;
  high.name[0] = 'z';
  EXPECT_EQ(operations<api_msg>::compare(&low.record, &high.record), string_order(low.name, high.name));
  EXPECT_EQ(operations<api_msg>::compare(&high.record, &low.record), string_order(high.name, low.name));
  high.name[0] = 'a';
  high.result_data[0] = 1;
  EXPECT_EQ(operations<api_msg>::compare(&low.record, &high.record), byte_order(low.result_data, high.result_data, 1));
  high.result_data[0] = 0xcc;
  high.registration_name[0] = 'z';
  EXPECT_EQ(operations<api_msg>::compare(&low.record, &high.record),
            string_order(low.registration_name, high.registration_name));
}

// --- Presence bits of no field ---

void expect_bits_of_no_field(const api_msg &record, std::uint32_t pattern) {
  const auto only = [pattern](std::uint32_t unowned) { return pattern & unowned; };
  EXPECT_EQ(record.presence, 0u);
  EXPECT_EQ(record.internal.presence, only(0x80));
  EXPECT_EQ(record.internal.service.presence, only(0xf8));
  for (const api_msg_p2p_auto_policy *policy :
       {&record.field3, &record.field4, &record.p2p_auto_policy_request.policy}) {
    EXPECT_EQ(policy->presence, only(0xffc00000));
    EXPECT_EQ(policy->label_stack.presence, only(0xfe));
    EXPECT_EQ(policy->prefix_sid.presence, only(0xfc));
  }
  for (const api_msg_p2p_auto_policy_notif *notification :
       {&record.p2p_auto_policy_notif, &record.p2p_auto_policy_response.notification}) {
    EXPECT_EQ(notification->presence, only(0xf8000000));
    EXPECT_EQ(notification->label_stack.presence, only(0xfe));
  }
  EXPECT_EQ(record.field6.presence, only(0xfe));
  EXPECT_EQ(record.field7.presence, only(0xfe));
  EXPECT_EQ(record.p2p_auto_policy_request.presence, only(0xf8));
  EXPECT_EQ(record.p2p_auto_policy_response.presence, only(0xf8));
  EXPECT_EQ(record.p2p_auto_policy_sweep.presence, only(0xfc));
  EXPECT_EQ(record.to_igp.presence, only(0xf0));
  EXPECT_EQ(record.to_igp.link_update.presence, only(0xe0));
  EXPECT_EQ(record.to_igp.aa_list.presence, only(0xf8));
  EXPECT_EQ(record.to_zorv.presence, only(0xf8));
  EXPECT_EQ(record.to_zorv.nodeid.presence, only(0xfc));
  EXPECT_EQ(record.to_zorv.intf.presence, only(0xfc));
  EXPECT_EQ(record.oam_req.presence, 0);
  EXPECT_EQ(record.oam_req.prefix_sid.presence, only(0xfc));
  EXPECT_EQ(record.oam_res.presence, only(0x80));
  EXPECT_EQ(record.policy_reg.presence, only(0xf0));
}

TEST(api_msg, decoding_leaves_presence_bits_of_no_field_alone_at_every_depth) {
  for (const std::uint32_t pattern : {0u, 0xffffffffu, 0x5a5a5a5au}) {
    expect_bits_of_no_field(cleared_from<api_msg>(static_cast<unsigned char>(pattern)), pattern);
  }
  decoded<api_msg> read(together(all_fields));
  EXPECT_EQ(read->presence, 0xffffu);
  EXPECT_EQ(read->field6.presence, 0x5b);  // 5a before
  EXPECT_EQ(read->to_zorv.nodeid.presence, 0x5a);
  EXPECT_EQ(read->p2p_auto_policy_notif.presence, 0x5c000000u);
}

TEST(api_msg, copying_leaves_presence_bits_of_no_field_alone_at_every_depth) {
  for (const std::uint32_t pattern : {0u, 0xffffffffu, 0x5a5a5a5au}) {
    // The source has the other bits set: they must not come across.
    const api_msg source = cleared_from<api_msg>(static_cast<unsigned char>(~pattern));
    expect_bits_of_no_field(overwritten(static_cast<unsigned char>(pattern), source), pattern);
  }
}

}  // namespace api_msg_test
