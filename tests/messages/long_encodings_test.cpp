// Encodings about as long as size_t can say, on any machine: exact as long as it holds the total; beyond that SIZE_MAX,
// and neither buffer nor table is touched.
#include <cstdint>
#include <string>
#include <vector>

#include "support.hpp"

namespace long_encodings_test {

using namespace test;

// The buffer and the table after an attempt to encode into twelve bytes and two entries.
struct attempt {
  template <class Record>
  explicit attempt(const Record &record)
      : buffer(12),
        segments(2),
        length(operations<Record>::encode(&record, buffer.data(), 12, segments.entries(), &segments.count)) {}

  bool touched_nothing() const { return buffer.content() == 12 * hex("c7") && segments.untouched_from(0); }

  fenced_block buffer;
  table segments;
  std::size_t length;
};

TEST(long_encodings, of_bytes_are_exact_up_to_the_greatest_size) {
  srv6_prefix prefix{nullptr, 0, 0, SRV6_PREFIX_HAS_FIELD1};
  const auto total = [&](std::uint64_t length) {
    prefix.field1_length = length - 6;
    return attempt(prefix);
  };
  const attempt fits = total(SIZE_MAX - 1), just_fits = total(SIZE_MAX);
  EXPECT_EQ(fits.length, SIZE_MAX - 1);
  EXPECT_EQ(show(fits.buffer.content()), "0a f8 ff ff ff 0f c7 c7 c7 c7 c7 c7");
  EXPECT_EQ(just_fits.length, SIZE_MAX);
  EXPECT_EQ(show(just_fits.buffer.content()), "0a f9 ff ff ff 0f c7 c7 c7 c7 c7 c7");
  EXPECT_EQ(just_fits.segments.pieces(), (std::vector<piece>{{just_fits.buffer.data(), SIZE_MAX}}));
  // One more, in 64 bits: with those it is 0.
  prefix.field1_length = std::uint64_t{SIZE_MAX} - 5;
  const attempt too_long(prefix);
  EXPECT_EQ(too_long.length, SIZE_MAX);
  EXPECT_EQ(too_long.segments.count, 1u);
  EXPECT_TRUE(too_long.touched_nothing());
}

// 512 policies that share one string. No memory holds what they are on the wire, if addresses have 32 bits.
class long_encodings_of_shared_strings : public testing::Test {
 protected:
  static constexpr std::size_t greatest = std::size_t{8} << 20;

  long_encodings_of_shared_strings() : text_(greatest, 'x'), policies_(512) {
    for (api_policy &policy : policies_) {
      policy.field1 = text_.data();
      policy.presence = API_POLICY_HAS_FIELD1;
    }
    list_.policies = policies_.data();
    list_.policies_count = 512;
    list_.presence = API_AA_LIST_HAS_POLICIES;
  }

  // A policy with a string of 8 MiB takes 8,388,618 bytes: a key and a length of four bytes, twice, and the string. 511
  // of them take 4,286,583,798. The string of the last one is as long as it takes to come to a total.
  attempt with_total(std::uint64_t total) {
    policies_.back().field1 = text_.data() + greatest - static_cast<std::size_t>(total - 4286583798 - 10);
    return attempt(list_);
  }

 private:
  std::string text_;
  std::vector<api_policy> policies_;
  api_aa_list list_{};
};

TEST_F(long_encodings_of_shared_strings, are_exact_as_long_as_size_t_holds_the_total) {
  for (const std::uint64_t total : {std::uint64_t{UINT32_MAX} - 1, std::uint64_t{UINT32_MAX}}) {
    const attempt start = with_total(total);
    EXPECT_EQ(start.length, total);
    EXPECT_EQ(show(start.buffer.content()), "1a 85 80 80 04 0a 80 80 80 04 c7 c7");
    EXPECT_EQ(start.segments.count, 513u);
    EXPECT_EQ(start.segments.pieces(), (std::vector<piece>{{start.buffer.data() + 5, 8388613}, {nullptr, 8388613}}));
  }
}

TEST_F(long_encodings_of_shared_strings, with_a_total_of_2_to_the_32_touch_nothing_where_size_t_has_32_bits) {
  for (const std::uint64_t more : {1u, 2u, 400u}) {
    const attempt start = with_total(UINT32_MAX + more);
    EXPECT_EQ(start.segments.count, 513u);
    if (sizeof(std::size_t) < 8) {
      EXPECT_EQ(start.length, SIZE_MAX);
      EXPECT_TRUE(start.touched_nothing());
    } else {
      EXPECT_EQ(start.length, UINT32_MAX + more);
      EXPECT_EQ(show(start.buffer.content()), "1a 85 80 80 04 0a 80 80 80 04 c7 c7");
    }
  }
}

}  // namespace long_encodings_test
