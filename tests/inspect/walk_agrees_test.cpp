// The tool's walk agrees with the library on every input, complete, cut off or damaged; and reads nothing past the end.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

#include "annotate.hpp"
#include "hex_text.hpp"
#include "input.hpp"
#include "results.hpp"
#include "support.hpp"
#include "types.hpp"
#include "walk.hpp"

namespace inspect {
namespace {

struct sample {
  const message_type *type;
  byte_string content;
};

std::vector<sample> samples() {
  std::vector<std::filesystem::path> files;
  for (const auto &entry : std::filesystem::directory_iterator(PAVO_ZORV_SAMPLES)) {
    if (entry.path().extension() == ".bin") files.push_back(entry.path());
  }
  std::ranges::sort(files);
  std::vector<sample> result;
  for (const auto &file : files) {
    const std::string stem = file.stem().string();
    result.push_back({find_type(stem.substr(0, stem.find('.'))), read_file(file.string())});
    EXPECT_NE(result.back().type, nullptr) << file;
  }
  return result;
}

// How often each result has occurred.
struct tally {
  std::size_t ok = 0, truncated = 0, bad_wire_type = 0, wrong_wire_type = 0;

  void add(int result) {
    ok += result == CODEC_OK;
    truncated += result == CODEC_ERR_TRUNCATED;
    bad_wire_type += result == CODEC_ERR_BAD_WIRE_TYPE;
    wrong_wire_type += result == CODEC_ERR_WRONG_WIRE_TYPE;
  }
};

// Whether the fields of a walk, and the rest after a failure, cover the input without overlap.
bool covers(const byte_string &input, const walk &walked) {
  std::size_t at = 0;
  for (const walked_field &field : walked.fields) {
    if (field.start != at) return false;
    at = field.field != nullptr && field.field->nested != nullptr ? field.content : field.end;
  }
  return walked.failure ? at <= walked.failure->offset && walked.failure->offset <= input.size() : at == input.size();
}

// Whether the rows of the annotation cover the input without overlap.
bool covers(const byte_string &input, const std::vector<annotation> &rows) {
  std::size_t at = 0;
  for (const annotation &row : rows) {
    if (row.start != at || row.roles.size() != row.end - row.start || row.field_end < row.end) return false;
    at = row.end;
  }
  return at == input.size();
}

void expect_agreement(const message_type &type, const byte_string &input, tally &seen) {
  const test::fenced_block fenced(input);
  const byte_view view(fenced.data(), fenced.size());
  const int result = record(type).decode(view);
  const walk walked = walk_message(type, view);
  seen.add(result);
  ASSERT_EQ(walked.result(), result) << type.name << ": " << test::show(input);
  ASSERT_TRUE(covers(input, annotate(view, walked))) << type.name << ": " << test::show(input);
  ASSERT_TRUE(covers(input, walked)) << type.name << ": " << test::show(input) << "\n"
                                     << hex_text(view, annotate(view, walked), painter(false));
}

TEST(the_walk, agrees_on_every_sample_and_every_beginning_of_one) {
  tally seen;
  for (const sample &each : samples()) {
    for (std::size_t length = 0; length <= each.content.size(); ++length) {
      const byte_string beginning(each.content.begin(), each.content.begin() + static_cast<std::ptrdiff_t>(length));
      ASSERT_NO_FATAL_FAILURE(expect_agreement(*each.type, beginning, seen));
    }
  }
  EXPECT_GT(seen.ok, 300u);
  EXPECT_GT(seen.truncated, 1000u);
}

TEST(the_walk, agrees_on_every_sample_read_as_every_message) {
  tally seen;
  for (const sample &each : samples()) {
    for (const message_type *type : all_types()) {
      ASSERT_NO_FATAL_FAILURE(expect_agreement(*type, each.content, seen));
    }
  }
  EXPECT_GT(seen.wrong_wire_type, 500u);
}

TEST(the_walk, agrees_on_damaged_samples) {
  tally seen;
  std::mt19937 random(20240610);
  const auto below = [&](std::size_t bound) { return random() % bound; };
  for (const sample &each : samples()) {
    for (int round = 0; round < 500; ++round) {
      byte_string damaged = each.content;
      for (std::size_t changes = 1 + below(3); changes != 0 && !damaged.empty(); --changes) {
        const auto place = damaged.begin() + static_cast<std::ptrdiff_t>(below(damaged.size()));
        switch (below(4)) {
          case 0:
            *place = static_cast<unsigned char>(random());
            break;
          case 1:
            *place ^= static_cast<unsigned char>(1u << below(8));
            break;
          case 2:
            damaged.erase(place);
            break;
          default:
            damaged.insert(place, static_cast<unsigned char>(random()));
        }
      }
      ASSERT_NO_FATAL_FAILURE(expect_agreement(*each.type, damaged, seen)) << "round " << round;
    }
  }
  EXPECT_GT(seen.ok, 500u);
  EXPECT_GT(seen.truncated, 500u);
  EXPECT_GT(seen.bad_wire_type, 100u);
  EXPECT_GT(seen.wrong_wire_type, 500u);
}

// Random bytes, most of them likely keys and small values, so that lists and nested messages occur.
TEST(the_walk, agrees_on_random_bytes) {
  tally seen;
  std::mt19937 random(7);
  static constexpr unsigned char likely[] = {0x00, 0x01, 0x02, 0x03, 0x05, 0x08, 0x0a, 0x0b, 0x0d,
                                             0x10, 0x12, 0x18, 0x1a, 0x20, 0x22, 0x28, 0x2a, 0x30,
                                             0x32, 0x3a, 0x40, 0x52, 0x72, 0x78, 0x80, 0x81};
  for (const message_type *type : all_types()) {
    for (int round = 0; round < 3000; ++round) {
      byte_string input(random() % 24);
      for (unsigned char &byte : input) {
        byte = random() % 16 == 0 ? static_cast<unsigned char>(random()) : likely[random() % std::size(likely)];
      }
      ASSERT_NO_FATAL_FAILURE(expect_agreement(*type, input, seen)) << "round " << round;
    }
  }
  EXPECT_GT(seen.ok, 1000u);
  EXPECT_GT(seen.truncated, 1000u);
  EXPECT_GT(seen.bad_wire_type, 1000u);
  EXPECT_GT(seen.wrong_wire_type, 1000u);
}

TEST(a_disagreement, is_called_a_defect_with_both_results) {
  const message_type &type = *find_type("api_addr");
  const walk cut_off = walk_message(type, test::hex("08"));
  EXPECT_FALSE(agree(CODEC_OK, cut_off));
  EXPECT_EQ(explain(type, CODEC_OK, cut_off),
            "*** DEFECT: the library and this tool's own walk disagree about this input ***\n"
            "  pavo_zorv_api_addr_decode_ext: CODEC_OK (0)\n"
            "  the walk: CODEC_ERR_TRUNCATED (-1), offset 1 (0x1), address: field 1 of api_addr: the value is cut off "
            "by the end of the input\n"
            "One of them is wrong: please report this together with the input.\n");

  const walk whole = walk_message(type, test::hex("08 01"));
  EXPECT_FALSE(agree(CODEC_ERR_WRONG_WIRE_TYPE, whole));
  EXPECT_NE(explain(type, CODEC_ERR_WRONG_WIRE_TYPE, whole).find("the walk: CODEC_OK (0)\n"), std::string::npos);
}

TEST(running_out_of_memory, is_not_a_disagreement) {
  const message_type &type = *find_type("api_lbl_stack");
  const walk whole = walk_message(type, test::hex("08 01"));
  EXPECT_TRUE(agree(CODEC_ERR_NO_MEMORY, whole));
  EXPECT_EQ(explain(type, CODEC_ERR_NO_MEMORY, whole), "CODEC_ERR_NO_MEMORY (-4): not enough memory to decode it\n");
}

}  // namespace
}  // namespace inspect
