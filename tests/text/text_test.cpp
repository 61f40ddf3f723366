// Records in words: JSON and one line, in buffers of every size.
#include "pavo_zorv_text.hpp"

#include <arpa/inet.h>

#include <string>

#include "laws.hpp"
#include "messages/all.hpp"
#include "pavo_zorv.hpp"

namespace {

using namespace test;
using zorv::field;

// An envelope with every kind of member in it.
const zorv::owned<api_msg> &envelope() {
  static const auto made = zorv::try_make<api_msg>(
      field<&api_msg::field1> = 1u,
      field<&api_msg::p2p_auto_policy_request, &api_msg_p2p_auto_policy_request::policy,
            &api_msg_p2p_auto_policy::label_stack, &api_lbl_stack::labels> = {16, 24001},
      field<&api_msg::to_igp, &api_to_igp::aa_list, &api_aa_list::policies> =
          zorv::elements(zorv::fields(field<&api_policy::field1> = "a'\"\\\n\x01\x7f", field<&api_policy::field9> = -1),
                         zorv::fields()),
      field<&api_msg::to_zorv, &api_to_zorv::intf> =
          zorv::fields(field<&api_intf::field1> = 4294967295u, field<&api_intf::field2> = "eth\xff"),
      field<&api_msg::oam_req> =
          zorv::fields(field<&oam_req::field3> = "\xc3\xa4", field<&oam_req::field6> = std::string_view("\0\x02", 2)),
      field<&api_msg::field15> = false, field<&api_msg::policy_reg> = zorv::fields());
  return *made;
}

TEST(json, has_a_member_to_a_line) {
  EXPECT_EQ(zorv::to_json(*envelope()), R"({
  "field1": "1",
  "p2p_auto_policy_request": {
    "policy": {
      "label_stack": {
        "labels": [16, 24001]
      }
    }
  },
  "to_igp": {
    "aa_list": {
      "policies": [
        {
          "field1": "a'\"\\\n\u0001)"
                                        "\x7f"
                                        R"(",
          "field9": -1
        },
        {}
      ]
    }
  },
  "to_zorv": {
    "intf": {
      "field1": 4294967295,
      "field2": {
        "base64": "ZXRo/w=="
      }
    }
  },
  "oam_req": {
    "field3": ")"
                                        "\xc3\xa4"
                                        R"(",
    "field6": "AAI="
  },
  "field15": false,
  "policy_reg": {}
})");
}

TEST(json, may_be_on_one_line) {
  const zorv::json_options options{zorv::json_layout::one_line, zorv::json_bytes::hex};
  EXPECT_EQ(zorv::to_json(envelope()->to_zorv, options),
            R"({"intf": {"field1": 4294967295, "field2": {"hex": "657468ff"}}})");
  EXPECT_EQ(zorv::to_json(envelope()->to_igp.aa_list.policies[1], options), "{}");
  EXPECT_EQ(zorv::to_json(envelope()->p2p_auto_policy_request.policy.label_stack, options),
            R"({"labels": [16, 24001]})");
}

TEST(json, has_bytes_in_three_forms) {
  const auto &request = envelope()->oam_req;
  const auto json = [&](zorv::json_bytes bytes) {
    return zorv::to_json(request, {zorv::json_layout::one_line, bytes});
  };
  EXPECT_EQ(json(zorv::json_bytes::base64), "{\"field3\": \"\xc3\xa4\", \"field6\": \"AAI=\"}");
  EXPECT_EQ(json(zorv::json_bytes::hex), "{\"field3\": \"\xc3\xa4\", \"field6\": \"0002\"}");
  EXPECT_EQ(json(zorv::json_bytes::length), "{\"field3\": \"\xc3\xa4\", \"field6\": \"2 bytes\"}");
}

TEST(json, has_base64_of_every_length) {
  unsigned char block[] = {0xfb, 0xff, 0x00, 0x01};
  const char *const texts[] = {"", "+w==", "+/8=", "+/8A", "+/8AAQ=="};
  for (std::size_t length = 0; length <= 4; ++length) {
    srv6_prefix prefix{};
    prefix.field1 = block;
    prefix.field1_length = length;
    prefix.presence = SRV6_PREFIX_HAS_FIELD1;
    EXPECT_EQ(zorv::to_json(prefix, {zorv::json_layout::one_line}),
              std::string("{\"field1\": \"") + texts[length] + "\"}");
    const std::string bytes = length == 1 ? "1 byte" : std::to_string(length) + " bytes";
    EXPECT_EQ(zorv::to_json(prefix, {zorv::json_layout::one_line, zorv::json_bytes::length}),
              "{\"field1\": \"" + bytes + "\"}");
  }
}

TEST(json, has_empty_lists_strings_and_bytes_for_null_pointers) {
  api_exp_hop hop{};
  hop.presence = API_EXP_HOP_HAS_FIELD5;
  EXPECT_EQ(zorv::to_json(hop), "{\n  \"field5\": []\n}");
  api_aa_list list{};
  list.presence = API_AA_LIST_HAS_POLICIES;
  EXPECT_EQ(zorv::to_json(list), "{\n  \"policies\": []\n}");
  api_intf intf{};
  intf.presence = API_INTF_HAS_FIELD2;
  EXPECT_EQ(zorv::to_json(intf), "{\n  \"field2\": \"\"\n}");
  char line[20];
  EXPECT_EQ(zorv::write_line(intf, line, sizeof line).text, "field2: \"\"");
  EXPECT_EQ(zorv::write_line(list, line, sizeof line).text, "");
  EXPECT_EQ(zorv::write_line(hop, line, sizeof line).text, "field5: []");
}

TEST(json, has_numbers_of_64_bits_as_strings) {
  api_msg_p2p_auto_policy_notif notification{};
  notification.field27 = INT64_MIN;
  notification.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD27;
  EXPECT_EQ(zorv::to_json(notification, {zorv::json_layout::one_line}), "{\"field27\": \"-9223372036854775808\"}");
  api_msg message{};
  message.field1 = UINT64_MAX;
  message.field15 = 2;
  message.presence = API_MSG_HAS_FIELD1 | API_MSG_HAS_FIELD15;
  EXPECT_EQ(zorv::to_json(message, {zorv::json_layout::one_line}),
            "{\"field1\": \"18446744073709551615\", \"field15\": true}");
}

TEST(json, has_strings_that_are_not_utf8_as_objects) {
  const auto is_text = [](const char *content) {
    api_intf intf{};
    std::string owned = content;
    intf.field2 = owned.data();
    intf.presence = API_INTF_HAS_FIELD2;
    return zorv::to_json(intf).find("base64") == std::string::npos;
  };
  for (const char *const text : {"\x7f", "\xc2\x80", "\xdf\xbf", "\xe0\xa0\x80", "\xed\x9f\xbf", "\xee\x80\x80",
                                 "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbf"}) {
    EXPECT_TRUE(is_text(text)) << text;
  }
  for (const char *const text : {"\x80", "\xc2", "\xc1\xbf", "\xc2\x7f", "\xe0\x9f\xbf", "\xe1\x80", "\xed\xa0\x80",
                                 "\xf0\x8f\xbf\xbf", "\xf4\x90\x80\x80", "\xf5\x80\x80\x80", "\xff", "a\xe2\x82"}) {
    EXPECT_FALSE(is_text(text)) << text;
  }
}

TEST(json, is_cut_to_buffers_of_every_size_and_reports_its_length) {
  const std::string whole = zorv::to_json(*envelope());
  for (std::size_t size = 0; size <= whole.size() + 1; ++size) {
    const fenced_block block(size);
    char *const buffer = reinterpret_cast<char *>(block.data());
    if (size > whole.size()) buffer[whole.size()] = '!';
    ASSERT_EQ(zorv::write_json(*envelope(), buffer, size), whole.size());
    const std::size_t written = std::min(size, whole.size());
    ASSERT_EQ(std::string_view(buffer, written), whole.substr(0, written));
    if (size > whole.size()) {
      EXPECT_EQ(buffer[whole.size()], '!') << "no NUL";
    }
  }
  EXPECT_EQ(zorv::write_json(*envelope(), nullptr, 1000), whole.size());
}

TEST(json, has_lists_of_8_bit_numbers_in_three_forms) {
  unsigned char octets[] = {192, 0, 2, 1, 0};
  api_prefix prefix{};
  prefix.octets = octets;
  prefix.presence = API_PREFIX_HAS_OCTETS;
  const auto json = [&](std::uint32_t count, zorv::json_byte_lists form) {
    prefix.octets_count = count;
    return zorv::to_json(prefix, {zorv::json_layout::one_line, zorv::json_bytes::base64, form});
  };
  EXPECT_EQ(json(4, zorv::json_byte_lists::numbers), "{\"octets\": [192, 0, 2, 1]}");
  EXPECT_EQ(json(4, zorv::json_byte_lists::hex), "{\"octets\": \"c0000201\"}");
  EXPECT_EQ(json(4, zorv::json_byte_lists::address), "{\"octets\": \"192.0.2.1\"}");
  EXPECT_EQ(json(5, zorv::json_byte_lists::hex), "{\"octets\": \"c000020100\"}");
  EXPECT_EQ(json(5, zorv::json_byte_lists::address), "{\"octets\": [192, 0, 2, 1, 0]}");
  EXPECT_EQ(json(0, zorv::json_byte_lists::hex), "{\"octets\": \"\"}");
  EXPECT_EQ(json(0, zorv::json_byte_lists::address), "{\"octets\": []}");
  EXPECT_EQ(zorv::to_json(envelope()->p2p_auto_policy_request.policy.label_stack,
                          {zorv::json_layout::one_line, zorv::json_bytes::base64, zorv::json_byte_lists::hex}),
            "{\"labels\": [16, 24001]}")
      << "of 32 bits each";
}

std::string address_in_json(const unsigned char *octets, std::uint32_t count) {
  std::vector<unsigned char> copy(octets, octets + count);
  api_prefix prefix{};
  prefix.octets = copy.data();
  prefix.octets_count = count;
  prefix.presence = API_PREFIX_HAS_OCTETS;
  const std::string text =
      zorv::to_json(prefix, {zorv::json_layout::one_line, zorv::json_bytes::base64, zorv::json_byte_lists::address});
  constexpr std::string_view before = "{\"octets\": \"", after = "\"}";
  EXPECT_TRUE(text.starts_with(before) && text.ends_with(after)) << text;
  return text.substr(before.size(), text.size() - before.size() - after.size());
}

TEST(json, has_addresses_with_the_longest_run_of_zeros_left_out) {
  const struct {
    const char *digits, *address;
  } cases[] = {{"00000000 00000000 00000000 00000000", "::"},
               {"00000000 00000000 00000000 00000001", "::1"},
               {"00010000 00000000 00000000 00000000", "1::"},
               {"20010db8 00050000 00000000 00000051", "2001:db8:5::51"},
               {"20010db8 00000000 00010000 00000001", "2001:db8::1:0:0:1"},
               {"20010000 00000001 00000000 00000001", "2001:0:0:1::1"},
               {"20010db8 00000001 00010001 00010001", "2001:db8:0:1:1:1:1:1"},
               {"00000001 00020003 00040005 00060000", "0:1:2:3:4:5:6:0"},
               {"ffffffff ffffffff ffffffff ffffffff", "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"},
               {"00000000 00000000 0000ffff c0000201", "::ffff:192.0.2.1"},
               {"00000000 00000000 0000fffe c0000201", "::fffe:c000:201"},
               {"00000000 00000000 00000000 c0000201", "::192.0.2.1"}};
  for (const auto &[digits, address] : cases) {
    EXPECT_EQ(address_in_json(hex(digits).data(), 16), address);
  }
}

TEST(json, has_addresses_as_the_c_library_writes_them) {
  for_seeds(20000, [](random_numbers &random) {
    unsigned char octets[16];
    for (unsigned char &each : octets) each = static_cast<unsigned char>(random.below(256));
    for (std::size_t group = 0; group < 16; group += 2) {
      if (random.percent(60)) octets[group] = octets[group + 1] = 0;
    }
    if (random.percent(20)) octets[10] = octets[11] = 0xff;
    char text[INET6_ADDRSTRLEN];
    ASSERT_EQ(address_in_json(octets, 16), inet_ntop(AF_INET6, octets, text, sizeof text));
    ASSERT_EQ(address_in_json(octets, 4), inet_ntop(AF_INET, octets, text, sizeof text));
  });
}

TEST(json_writer, writes_records_among_other_values) {
  std::string text;
  zorv::json_writer to([&](std::string_view piece) { text += piece; });
  to.begin_object();
  to.name("peer \"a\"");
  to.string("192.0.2.1\n");
  to.name("number");
  to.number(std::int64_t{INT64_MIN});
  to.name("is_new");
  to.flag(true);
  to.name("labels");
  to.begin_short_list();
  to.number(16u);
  to.number(24001u);
  to.end_list();
  to.name("none");
  to.begin_list();
  to.end_list();
  to.name("messages");
  to.begin_list();
  to.record(envelope()->p2p_auto_policy_request.policy.label_stack);
  to.record(api_addr{});
  to.begin_list();
  to.flag(false);
  to.end_list();
  to.end_list();
  to.end_object();
  EXPECT_EQ(text, R"({
  "peer \"a\"": "192.0.2.1\n",
  "number": -9223372036854775808,
  "is_new": true,
  "labels": [16, 24001],
  "none": [],
  "messages": [
    {
      "labels": [16, 24001]
    },
    {},
    [
      false
    ]
  ]
})");
}

TEST(json_writer, writes_one_value_after_the_other) {
  std::string text;
  zorv::json_writer to([&](std::string_view piece) { text += piece; }, {zorv::json_layout::one_line});
  to.record(envelope()->to_zorv);
  to.record(envelope()->to_igp);
  to.begin_list();
  to.string("a");
  to.begin_object();
  to.end_object();
  to.end_list();
  EXPECT_EQ(text, R"({"intf": {"field1": 4294967295, "field2": {"base64": "ZXRo/w=="}}})"
                  R"({"aa_list": {"policies": [{"field1": "a'\"\\\n\u0001)"
                  "\x7f"
                  R"(", "field9": -1}, {}]}}["a", {}])");
}

TEST(json_writer, indents_at_every_depth) {
  std::string text, expected;
  zorv::json_writer to([&](std::string_view piece) { text += piece; });
  for (std::size_t depth = 0; depth < 100; ++depth) {
    to.begin_list();
    expected += "[\n" + std::string(2 * depth + 2, ' ');
  }
  to.flag(true);
  expected += "true";
  for (std::size_t depth = 100; depth-- != 0;) {
    to.end_list();
    expected += '\n' + std::string(2 * depth, ' ') + ']';
  }
  EXPECT_EQ(text, expected);
}

// Without field1 in any message, and with two elements of a list of integers and one of a list of messages.
struct members_of_a_log {
  template <class Field, class Record>
  bool has(Field field, const Record &record) const {
    return field.is_in(record) && Field::number != 1;
  }
  template <class Field>
  std::size_t count(Field, std::size_t size) const {
    return std::min<std::size_t>(size, Field::kind == zorv::kind::message_list ? 1 : 2);
  }
  template <class Field>
  members_of_a_log inside(Field, std::size_t) const {
    return {};
  }
};

TEST(json_writer, leaves_out_what_a_program_does_not_choose) {
  std::string text;
  zorv::json_writer to([&](std::string_view piece) { text += piece; }, {zorv::json_layout::one_line});
  to.record(envelope()->to_igp, members_of_a_log());
  EXPECT_EQ(text, R"({"aa_list": {"policies": [{"field9": -1}]}})");
  text.clear();
  unsigned char octets[] = {192, 0, 2, 1};
  api_exp_hop hop{};
  hop.field5 = octets;
  hop.field5_count = 4;
  hop.presence = API_EXP_HOP_HAS_FIELD1 | API_EXP_HOP_HAS_FIELD5;
  to.record(hop, members_of_a_log());
  EXPECT_EQ(text, R"({"field5": [192, 0]})");
}

constexpr std::string_view whole_line =
    "field1: 1 p2p_auto_policy_request { policy { label_stack { labels: [16, 24001] } } } to_igp { aa_list { "
    "policies { field1: \"a\\'\\\"\\\\\\012\\001\\177\" field9: -1 } policies { } } } to_zorv { intf { field1: "
    "4294967295 "
    "field2: \"eth\\377\" } } oam_req { field3: \"\\303\\244\" field6: \"\\000\\002\" } field15: false policy_reg { }";

TEST(lines, have_the_text_form_of_printable_characters) {
  char buffer[1000];
  const zorv::line line = zorv::write_line(*envelope(), buffer, sizeof buffer);
  EXPECT_EQ(line.text, whole_line);
  EXPECT_FALSE(line.is_cut);
  EXPECT_EQ(line.text.data(), buffer);
}

TEST(lines, are_cut_to_buffers_of_every_size_and_say_so) {
  for (std::size_t size = 0; size <= whole_line.size() + 1; ++size) {
    const fenced_block block(size);
    const zorv::line line = zorv::write_line(*envelope(), reinterpret_cast<char *>(block.data()), size);
    if (size >= whole_line.size()) {
      ASSERT_EQ(line.text, whole_line);
      ASSERT_FALSE(line.is_cut);
    } else {
      const std::size_t dots = std::min<std::size_t>(size, 3);
      ASSERT_EQ(line.text, std::string(whole_line.substr(0, size - dots)) + std::string(dots, '.'));
      ASSERT_TRUE(line.is_cut);
    }
  }
  EXPECT_TRUE(zorv::write_line(*envelope(), nullptr, 1000).is_cut);
  EXPECT_EQ(zorv::write_line(*envelope(), nullptr, 1000).text, "");
  EXPECT_FALSE(zorv::write_line(api_addr{}, nullptr, 0).is_cut) << "nothing is missing";
}

// Lists and blocks whose counts go far beyond what is there: reading on would end the program.
TEST(lines, do_not_look_at_what_does_not_fit) {
  const fenced_block elements(64 * sizeof(std::uint32_t));
  std::memset(elements.data(), 0, elements.size());
  char buffer[40];
  api_lbl_stack stack{};
  stack.labels = reinterpret_cast<std::uint32_t *>(elements.data());
  stack.label_count = UINT32_MAX;
  stack.presence = API_LBL_STACK_HAS_LABELS;
  EXPECT_EQ(zorv::write_line(stack, buffer, sizeof buffer).text, "labels: [0, 0, 0, 0, 0, 0, 0, 0, 0, 0...");
  srv6_prefix prefix{};
  prefix.field1 = elements.data();
  prefix.field1_length = SIZE_MAX / 4;
  prefix.presence = SRV6_PREFIX_HAS_FIELD1;
  EXPECT_EQ(zorv::write_line(prefix, buffer, sizeof buffer).text, "field1: \"\\000\\000\\000\\000\\000\\000\\000...");
  const fenced_block policies(20 * sizeof(api_policy));
  std::memset(policies.data(), 0, policies.size());
  api_aa_list list{};
  list.policies = reinterpret_cast<api_policy *>(policies.data());
  list.policies_count = UINT32_MAX;
  list.presence = API_AA_LIST_HAS_POLICIES;
  EXPECT_EQ(zorv::write_line(list, buffer, sizeof buffer).text, "policies { } policies { } policies { ...");
}

static_assert(noexcept(zorv::write_json(api_msg{}, nullptr, 0)) &&noexcept(zorv::write_line(api_msg{}, nullptr, 0)));

// For every message, in exact buffers, whatever its records hold: JSON that fits is that of all sizes.
TEST(every_message_in_words, is_the_same_in_a_buffer_of_its_length) {
  pavo_zorv::for_each_message([&](auto message) {
    using record_type = typename decltype(message)::type;
    random_numbers random(4711);
    for (int round = 0; round < 10; ++round) {
      const random_record made(naive::message_of<record_type>(), random, shapes::canonical);
      const auto &record = made.as<record_type>();
      const std::size_t length = zorv::write_json(record, nullptr, 0);
      const fenced_block block(length);
      EXPECT_EQ(zorv::write_json(record, reinterpret_cast<char *>(block.data()), length), length);
      EXPECT_EQ(std::string(reinterpret_cast<const char *>(block.data()), length), zorv::to_json(record));
      std::string line(100000, '\0');
      const zorv::line all = zorv::write_line(record, line.data(), line.size());
      EXPECT_FALSE(all.is_cut);
      for (const char each : all.text) EXPECT_TRUE(each >= ' ' && each <= '~');
    }
  });
}

}  // namespace
