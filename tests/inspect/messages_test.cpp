// Round trips of every message through every form: the result is the bytes that the library wrote.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "annotate.hpp"
#include "byte_forms.hpp"
#include "colour.hpp"
#include "difference.hpp"
#include "examine.hpp"
#include "hex_text.hpp"
#include "json_parse.hpp"
#include "laws.hpp"
#include "segment_table.hpp"
#include "text_format.hpp"
#include "types.hpp"
#include "walk.hpp"

namespace inspect {
namespace {

class every_message : public test::law {
 protected:
  const message_type &type() const { return *find_type(GetParam()->name); }

  // Bytes as the library writes them.
  void for_canonical(const std::function<void(byte_view)> &trial) {
    test::for_seeds(60, [&](test::random_numbers &random) {
      const test::random_record record(*GetParam(), random, test::shapes::canonical);
      byte_string input(type().encode(record.data(), nullptr, 0, nullptr, nullptr, 0));
      type().encode(record.data(), input.data(), input.size(), nullptr, nullptr, 0);
      test::tried() = input;
      trial(input);
    });
  }

  byte_string from_node(const node &read, json_bytes bytes = json_bytes::base64) const {
    record content(type());
    content.read(read, bytes);
    return content.encode();
  }

  byte_string through_json(byte_view input, json_bytes bytes, json_byte_lists octets = json_byte_lists::numbers) const {
    record content(type());
    EXPECT_EQ(content.decode(input), CODEC_OK);
    const std::string text = content.to_text({.bytes = bytes, .byte_lists = octets});
    return from_node(parse_json(view_of(text)), bytes);
  }

  static byte_view view_of(const std::string &text) {
    return {reinterpret_cast<const unsigned char *>(text.data()), text.size()};
  }

  static byte_string owned(byte_view view) { return byte_string(view.begin(), view.end()); }
};

TEST_P(every_message, survives_a_round_trip_through_json) {
  for_canonical([&](byte_view input) { ASSERT_EQ(through_json(input, json_bytes::base64), owned(input)); });
}

TEST_P(every_message, survives_a_round_trip_through_json_with_hexadecimal_bytes) {
  for_canonical([&](byte_view input) { ASSERT_EQ(through_json(input, json_bytes::hex), owned(input)); });
}

TEST_P(every_message, survives_a_round_trip_through_json_with_lists_of_bytes_as_strings) {
  for_canonical([&](byte_view input) {
    ASSERT_EQ(through_json(input, json_bytes::base64, json_byte_lists::hex), owned(input));
    ASSERT_EQ(through_json(input, json_bytes::base64, json_byte_lists::address), owned(input));
  });
}

TEST_P(every_message, survives_a_round_trip_through_the_text_form) {
  for_canonical([&](byte_view input) {
    const std::string text = to_text_format(type(), input);
    ASSERT_EQ(from_node(parse_text_format(type(), view_of(text))), owned(input)) << text;
  });
}

TEST_P(every_message, survives_a_round_trip_through_its_annotated_bytes) {
  for_canonical([&](byte_view input) {
    if (input.empty()) return;
    const std::string text = hex_text(input, annotate(input, walk_message(type(), input)), painter(false));
    ASSERT_EQ(parse_bytes(owned(view_of(text)), byte_form::dump), owned(input)) << text;
  });
}

TEST_P(every_message, is_canonical_if_the_library_wrote_it) {
  examiner examiner;
  for_canonical([&](byte_view input) {
    const findings found = examiner.examine(type(), input);
    ASSERT_EQ(found.result, CODEC_OK);
    ASSERT_TRUE(found.is_canonical);
    ASSERT_EQ(found.dropped.blocks, 0u);
  });
}

TEST_P(every_message, has_a_segment_table_with_the_expected_entries) {
  for_canonical([&](byte_view input) {
    for (const bool referenced : {false, true}) {
      const segment_table table = segments_of(type(), input, referenced);
      ASSERT_TRUE(table.as_expected);
      for (const segment &each : table.entries) {
        ASSERT_LE(each.start + each.length, each.is_referenced ? input.size() : table.length) << each.name;
      }
    }
  });
}

// `diff` finds differences exactly where `compare` does.
TEST_P(every_message, has_differences_exactly_if_compare_says_so) {
  std::size_t equal = 0, different = 0;
  test::for_seeds(200, [&](test::random_numbers &random) {
    test::random_record changed(*GetParam(), random, test::shapes::alike);
    record a(type()), b(type());
    const auto bytes_of_record = [&] {
      byte_string result(type().encode(changed.data(), nullptr, 0, nullptr, nullptr, 0));
      type().encode(changed.data(), result.data(), result.size(), nullptr, nullptr, 0);
      return result;
    };
    const byte_string first = bytes_of_record();
    if (random.percent(70)) changed.change(random, test::shapes::alike);
    const byte_string second = bytes_of_record();
    ASSERT_EQ(a.decode(first), CODEC_OK);
    ASSERT_EQ(b.decode(second), CODEC_OK);
    const auto found = differences(type(), a.to_json(), b.to_json());
    ASSERT_EQ(found.empty(), a.compare(b) == 0);
    ++(found.empty() ? equal : different);
  });
  EXPECT_GT(equal, 0u);
  EXPECT_GT(different, 0u);
}

INSTANTIATE_TEST_SUITE_P(messages, every_message, testing::ValuesIn(test::subjects()), test::name_of_subject);

TEST(names, are_accepted_in_both_spellings) {
  EXPECT_TRUE(is_name_of("p2p_auto_policy_sweep", "p2p_auto_policy_sweep"));
  EXPECT_TRUE(is_name_of("p2p_auto_policy_sweep", "p2pAutoPolicySweep"));
  EXPECT_TRUE(is_name_of("field1", "field1"));
  for (const char *other : {"p2pAutoPolicySwee", "p2pAutoPolicySweeps", "p2p_autoPolicySweep", "P2pAutoPolicySweep",
                            "p2pautopolicysweep", ""}) {
    EXPECT_FALSE(is_name_of("p2p_auto_policy_sweep", other)) << other;
  }
}

TEST(the_nearest_name, differs_in_few_letters) {
  EXPECT_STREQ(nearest_type("api_adr")->name, "api_addr");
  EXPECT_STREQ(nearest_type("apimsg")->name, "api_msg");
  EXPECT_STREQ(nearest_type("oam_request")->name, "oam_req");
  EXPECT_EQ(nearest_type("nothing_like_that_at_all"), nullptr);
}

}  // namespace
}  // namespace inspect
