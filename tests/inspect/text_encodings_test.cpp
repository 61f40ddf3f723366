// Base64, hexadecimal digits and UTF-8, as JSON needs them.
#include "text_encodings.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "bytes_of_text.hpp"
#include "support.hpp"

namespace inspect {
namespace {

// The examples of RFC 4648.
TEST(base64, ends_with_padding_to_groups_of_four) {
  const std::pair<std::string_view, std::string_view> pairs[] = {{"", ""},
                                                                 {"f", "Zg=="},
                                                                 {"fo", "Zm8="},
                                                                 {"foo", "Zm9v"},
                                                                 {"foob", "Zm9vYg=="},
                                                                 {"fooba", "Zm9vYmE="},
                                                                 {"foobar", "Zm9vYmFy"}};
  for (const auto &[plain, encoded] : pairs) {
    EXPECT_EQ(to_base64(of(plain)), encoded);
    EXPECT_EQ(from_base64(encoded), of(plain));
  }
}

TEST(base64, has_plus_and_slash_as_its_last_digits) {
  EXPECT_EQ(to_base64(test::hex("fb ef ff")), "++//");
  EXPECT_EQ(from_base64("++//"), test::hex("fb ef ff"));
}

TEST(base64, is_read_without_padding_and_in_the_alphabet_for_urls) {
  EXPECT_EQ(from_base64("Zg"), of("f"));
  EXPECT_EQ(from_base64("Zm8"), of("fo"));
  EXPECT_EQ(from_base64("--__"), test::hex("fb ef ff"));
}

TEST(base64, is_refused_with_other_characters_or_unused_bits) {
  for (const std::string_view text :
       {"Z", "Zg=", "Z===", "====", "=", "Zg==Zg==", "Zm9v ", "Zh==", "Zh", "Zm9=", "Z=m8", "Zm9vZg=", "Zg\n"}) {
    EXPECT_EQ(from_base64(text), std::nullopt) << text;
  }
}

TEST(hexadecimal, is_pairs_of_digits) {
  EXPECT_EQ(from_hex("00fFA9"), test::hex("00 ff a9"));
  EXPECT_EQ(from_hex(""), byte_string{});
  for (const std::string_view text : {"0", "0g", "00 ", " 00", "0x00"}) EXPECT_EQ(from_hex(text), std::nullopt) << text;
}

TEST(utf8, has_characters_of_one_to_four_bytes) {
  for (const std::string_view text : {"", "plain", "\xc2\x80", "\xdf\xbf", "\xe0\xa0\x80", "\xed\x9f\xbf",
                                      "\xef\xbf\xbf", "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbf",
                                      "a\xc3\xbc"
                                      "b"}) {
    EXPECT_TRUE(is_utf8(text)) << test::show(of(text));
  }
}

TEST(utf8, has_no_over_long_forms_surrogates_or_incomplete_characters) {
  for (const std::string_view text :
       {"\x80", "\xc0\x80", "\xc1\xbf", "\xe0\x9f\xbf", "\xed\xa0\x80", "\xf0\x8f\xbf\xbf", "\xf4\x90\x80\x80",
        "\xf5\x80\x80\x80", "\xff", "\xc3", "\xe2\x82", "\xf0\x9f\x98", "\xc3(", "\xe2\x82("}) {
    EXPECT_FALSE(is_utf8(text)) << test::show(of(text));
  }
}

}  // namespace
}  // namespace inspect
