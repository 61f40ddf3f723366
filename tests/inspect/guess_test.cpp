// Whether the most likely message is the right one, on the samples: as they are, broken, and cut off anywhere.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "byte_forms.hpp"
#include "guess.hpp"
#include "input.hpp"

namespace inspect {
namespace {

namespace fs = std::filesystem;

struct guessed_sample {
  std::string name;
  std::string type;  // the name up to the first point
  byte_string content;
};

std::vector<guessed_sample> samples_in(const fs::path &folder, const std::string &extension) {
  std::vector<guessed_sample> found;
  for (const auto &each : fs::directory_iterator(folder)) {
    if (each.path().extension() != extension) continue;
    const std::string name = each.path().filename().string();
    found.push_back(
        {name, name.substr(0, name.find('.')),
         parse_bytes(read_file(each.path().string()), extension == ".bin" ? byte_form::raw : byte_form::hex)});
  }
  std::ranges::sort(found, {}, &guessed_sample::name);
  return found;
}

std::vector<guessed_sample> whole_samples() { return samples_in(PAVO_ZORV_SAMPLES, ".bin"); }

struct placing {
  bool is_first;        // before all others
  bool is_most_likely;  // no other is more likely
  std::size_t tied;     // how many are as likely as the first, which is one of them
};

placing place(const std::string &type, byte_view input) {
  const std::vector<candidate> candidates = guess(input);
  const auto right = std::ranges::find_if(candidates, [&](const candidate &each) { return each.type->name == type; });
  const auto is_tied = [&](const candidate &each) { return is_as_likely(each, candidates.front()); };
  return {right == candidates.begin(), is_tied(*right),
          static_cast<std::size_t>(std::ranges::count_if(candidates, is_tied))};
}

TEST(guess, puts_the_right_message_first_for_every_broken_sample) {
  const std::vector<guessed_sample> broken = samples_in(fs::path(PAVO_ZORV_SAMPLES) / "broken", ".hex");
  EXPECT_EQ(broken.size(), 9u);
  for (const guessed_sample &each : broken) {
    EXPECT_EQ(guess(each.content).front().type->name, each.type) << "samples/broken/" << each.name;
  }
}

// Without its last byte a colour is the key 08 alone, with which most messages begin; and the fields of an api_nodeid
// are those of a prefix_sid_type.
TEST(guess, puts_the_right_message_first_for_samples_without_their_last_byte) {
  std::size_t tried = 0;
  for (const guessed_sample &each : whole_samples()) {
    if (each.name != each.type + ".bin") continue;
    ++tried;
    const placing found = place(each.type, byte_view(each.content).first(each.content.size() - 1));
    EXPECT_TRUE(found.is_most_likely) << "samples/" << each.name;
    const bool has_double = each.type == "api_msg_on_demand_color_notif" || each.type == "api_nodeid";
    EXPECT_EQ(found.is_first, !has_double) << "samples/" << each.name;
  }
  EXPECT_EQ(tried, all_types().size());
}

TEST(guess, puts_the_right_message_first_for_19_of_20_samples_cut_off_anywhere) {
  std::size_t cuts = 0, first = 0, most_likely = 0, tied = 0;
  for (const guessed_sample &each : whole_samples()) {
    for (std::size_t size = 1; size < each.content.size(); ++size) {
      const placing found = place(each.type, byte_view(each.content).first(size));
      ++cuts;
      first += found.is_first;
      most_likely += found.is_most_likely;
      tied += found.tied;
    }
  }
  const auto share = [&](std::size_t count) { return static_cast<double>(count) / static_cast<double>(cuts); };
  RecordProperty("cuts", static_cast<int>(cuts));
  std::cout << "of " << cuts << " cuts, no other message is more likely in " << 100 * share(most_likely)
            << " %, and it is listed first in " << 100 * share(first) << " %; " << share(tied)
            << " messages share the first place\n";
  EXPECT_GE(share(most_likely), 0.95);
  EXPECT_GE(share(first), 0.88);
  EXPECT_LE(share(tied), 2);
}

TEST(guess, knows_the_bytes_in_known_fields_after_a_failure) {
  const byte_string second_string = {0x08, 0x25, 0x12, 0x01, 'a', 0x18, 0x0a, 0x12, 0x01, 'b', 0x50, 0x01};
  const std::vector<candidate> candidates = guess(second_string);
  EXPECT_STREQ(candidates.front().type->name, "api_link_update");
  EXPECT_EQ(candidates.front().fit, fit::none);
  EXPECT_EQ(candidates.front().reached, 7u);
  EXPECT_EQ(candidates.front().surprise.known, 10u);  // field 10 is unknown
}

TEST(guess, finds_nested_messages_that_are_cut_off) {
  // Field 5 of api_msg has 100 bytes; its field 10, a label stack, has 20; two labels follow.
  const byte_string cut = {0x08, 0x05, 0x2a, 0x64, 0x52, 0x14, 0x08, 0xc1, 0xbb, 0x01, 0x08, 0x8b, 0x7d};
  const candidate first = guess(cut).front();
  EXPECT_STREQ(first.type->name, "api_msg");
  EXPECT_EQ(first.surprise.known, cut.size());
}

TEST(guess, prefers_plausible_values) {
  // 2001:db8::1/48, as bytes; not four labels, and not an address of another size.
  byte_string prefix = {0x0a, 0x10, 0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0x10, 48};
  EXPECT_STREQ(guess(prefix).front().type->name, "srv6_prefix");
  // The labels 24001 and 16011: a list of bytes would truncate them.
  const byte_string labels = {0x08, 0xc1, 0xbb, 0x01, 0x08, 0x8b, 0x7d};
  EXPECT_STREQ(guess(labels).front().type->name, "api_lbl_stack");
}

}  // namespace
}  // namespace inspect
