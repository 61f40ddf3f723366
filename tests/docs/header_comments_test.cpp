// The comments in the public header agree with the schema: the comment at a member describes its field.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>

#include "describe.hpp"
#include "messages/all.hpp"

namespace {

std::string read_header() {
  std::ifstream file(PAVO_ZORV_HEADER);
  std::string text{std::istreambuf_iterator<char>(file), {}};
  EXPECT_FALSE(text.empty()) << "cannot read " PAVO_ZORV_HEADER;
  // Comments may be wrapped anywhere.
  return std::regex_replace(text, std::regex("\\s+"), " ");
}

// The text between the braces of a record.
std::string record_text(const std::string &header, const std::string &name) {
  const std::string first = "typedef struct " + name + " {";
  const auto begin = header.find(first);
  const auto end = header.find("} " + name + ";", begin);
  if (begin == std::string::npos || end == std::string::npos) return {};
  return header.substr(begin + first.size(), end - begin - first.size());
}

// The comment at a member.
std::string comment_of(const std::string &record, const std::string &member) {
  std::smatch found;
  std::regex_search(record, found, std::regex("[ *]" + member + "; /\\*\\*< (.*?) \\*/"));
  return found.empty() ? "" : found[1].str();
}

void check_message(const std::string &header, const pavo_zorv::message_info &message) {
  const std::string name = message.name;
  const std::string record = record_text(header, name);
  ASSERT_NE(record, "") << name;
  for (const pavo_zorv::field_info &each : message.fields) {
    const std::string comment = comment_of(record, each.name);
    const std::string field = "Field " + std::to_string(each.number) + ", " + docs::kind_text(each);
    EXPECT_TRUE(std::regex_search(comment, std::regex("(^|\\. )" + field + "[.:,]")))
        << "include/pavo_zorv.h: " << name << "." << each.name << " does not say \"" << field << "\": " << comment;
    const std::string presence = "Presence: `" + docs::presence_text(message, each) + "`.";
    EXPECT_NE(comment.find(presence), std::string::npos)
        << "include/pavo_zorv.h: " << name << "." << each.name << " does not say \"" << presence << "\": " << comment;
  }
}

TEST(header_comments, describe_every_member_as_the_schema_does) {
  const std::string header = read_header();
  for (const pavo_zorv::message_info *const message : pavo_zorv::message_table()) check_message(header, *message);
}

TEST(header_comments, say_which_functions_never_call_the_allocator) {
  const std::string header = read_header();
  pavo_zorv::for_each_message([&]<class Record>(std::type_identity<Record>) {
    const std::string name = pavo_zorv::message_name<Record>;
    const std::regex claim("/\\*\\* Decodes an? `" + name + "`[^/]* Never calls @p allocate\\. \\*/");
    EXPECT_EQ(std::regex_search(header, claim), !pavo_zorv::owns_memory<Record>)
        << "include/pavo_zorv.h, where it declares what decodes " << name;
  });
}

TEST(header_comments, keep_to_120_columns) {
  for (const char *const name : {"pavo_zorv.h", "pavo_zorv_memory.h", "pavo_zorv.hpp"}) {
    std::ifstream file(std::string(PAVO_ZORV_INCLUDE) + "/" + name);
    int number = 0;
    for (std::string line; std::getline(file, line);) {
      ++number;
      EXPECT_LE(line.size(), 120u) << name << ":" << number;
    }
    EXPECT_GT(number, 100) << name << " cannot be read";
  }
}

}  // namespace
