// Every sample with this library and another implementation: its text and its bytes agree, and the library decodes the
// bytes and encodes the same ones.
#include <google/protobuf/dynamic_message.h>
#include <google/protobuf/text_format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "proto_file.hpp"
#include "support.hpp"

namespace {

using google::protobuf::Message;
using google::protobuf::TextFormat;

// The names of the samples: <message>[.<variant>].
std::vector<std::string> names() {
  std::vector<std::string> result;
  for (const auto &entry : std::filesystem::directory_iterator(PAVO_ZORV_SAMPLES)) {
    if (entry.path().extension() == ".txt") result.push_back(entry.path().stem().string());
  }
  std::ranges::sort(result);
  return result;
}

std::string message_of(const std::string &name) { return name.substr(0, name.find('.')); }

std::string content_of(const std::string &file) {
  std::ifstream stream(std::string(PAVO_ZORV_SAMPLES) + "/" + file, std::ios::binary);
  EXPECT_TRUE(stream.is_open()) << file;
  return {std::istreambuf_iterator<char>(stream), {}};
}

// Whether a sample has a negative 32-bit number, which the library writes in five bytes fewer than others.
bool holds_negative(const std::string &name) { return name.ends_with(".negative"); }

// Bytes decoded by the library and encoded again.
std::string written_again(const std::string &message, const std::string &input) {
  const auto functions = std::ranges::find(test::all_calls, message, &test::calls::name);
  if (functions == std::end(test::all_calls)) {
    ADD_FAILURE() << message;
    return {};
  }
  test::owned_record content(*functions);
  EXPECT_EQ(content.decode(test::byte_string(input.begin(), input.end())), CODEC_OK);
  std::string output(functions->encode(content.data(), nullptr, 0, nullptr, nullptr, 0), '\0');
  auto *const buffer = reinterpret_cast<unsigned char *>(output.data());
  EXPECT_EQ(functions->encode(content.data(), buffer, output.size(), nullptr, nullptr, 0), output.size());
  return output;
}

class sample : public testing::TestWithParam<std::string> {
 protected:
  void SetUp() override {
    const auto *const descriptor = file_.message(message_of(GetParam()));
    ASSERT_NE(descriptor, nullptr);
    prototype_ = factory_.GetPrototype(descriptor);
  }

  std::unique_ptr<Message> from_text() const {
    std::unique_ptr<Message> message(prototype_->New());
    EXPECT_TRUE(TextFormat::ParseFromString(content_of(GetParam() + ".txt"), message.get()));
    return message;
  }

  std::string text_of(const std::string &bytes) const {
    const std::unique_ptr<Message> message(prototype_->New());
    EXPECT_TRUE(message->ParseFromString(bytes));
    return text_of(*message);
  }

  static std::string text_of(const Message &message) {
    std::string text;
    EXPECT_TRUE(TextFormat::PrintToString(message, &text));
    return text;
  }

 private:
  test::proto_file file_;
  google::protobuf::DynamicMessageFactory factory_;
  const Message *prototype_ = nullptr;
};

TEST_P(sample, has_the_bytes_that_its_text_encodes_to) {
  EXPECT_EQ(from_text()->SerializeAsString(), content_of(GetParam() + ".bin")) << "samples/regenerate writes them";
}

TEST_P(sample, is_written_by_the_library_with_the_same_text) {
  EXPECT_EQ(text_of(written_again(message_of(GetParam()), content_of(GetParam() + ".bin"))), text_of(*from_text()));
}

TEST_P(sample, is_written_by_the_library_with_the_same_bytes) {
  const std::string bytes = content_of(GetParam() + ".bin");
  const std::string again = written_again(message_of(GetParam()), bytes);
  if (holds_negative(GetParam())) {
    EXPECT_EQ(again.size() + 5, bytes.size());
    EXPECT_EQ(written_again(message_of(GetParam()), again), again);
  } else {
    EXPECT_EQ(again, bytes);
  }
}

INSTANTIATE_TEST_SUITE_P(samples, sample, testing::ValuesIn(names()), [](const auto &tested) {
  std::string name = tested.param;
  std::ranges::replace(name, '.', '_');
  return name;
});

TEST(samples, cover_every_message) {
  std::set<std::string> shown;
  for (const std::string &name : names()) shown.insert(message_of(name));
  for (const test::calls &message : test::all_calls) {
    const std::string name = message.name;
    EXPECT_TRUE(shown.contains(name)) << "there is no samples/" << name << ".txt, from which samples/regenerate writes "
                                      << name << ".bin";
  }
  EXPECT_EQ(shown.size(), std::size(test::all_calls));
}

TEST(samples, have_text_and_bytes_in_pairs) {
  std::set<std::string> texts, bytes;
  for (const auto &entry : std::filesystem::directory_iterator(PAVO_ZORV_SAMPLES)) {
    if (entry.path().extension() == ".txt") texts.insert(entry.path().stem().string());
    if (entry.path().extension() == ".bin") bytes.insert(entry.path().stem().string());
  }
  EXPECT_EQ(texts, bytes);
}

}  // namespace
