// That the messages as they are stated by hand for the naive decoder are those of the library's schemas, and lie in
// memory where the compiler puts them.
#include "messages.hpp"

#include "laws.hpp"

namespace test {

class naive_statement : public law {};
INSTANTIATE_TEST_SUITE_P(every, naive_statement, testing::ValuesIn(subjects()), name_of_subject);

naive::sort sort_of(kind of) {
  switch (of) {
    case kind::flag:
      return naive::sort::flag;
    case kind::integer:
      return naive::sort::number;
    case kind::string:
      return naive::sort::text;
    case kind::bytes:
      return naive::sort::bytes;
    case kind::integer_list:
      return naive::sort::numbers;
    case kind::message_list:
      return naive::sort::messages;
    case kind::nested:
      break;
  }
  return naive::sort::message;
}

TEST_P(naive_statement, says_the_same_as_the_schema) {
  const message_type &type = *GetParam();
  const naive::message &stated = *naive::message_named(naive::messages(), type.name);
  EXPECT_EQ(stated.size, type.size);
  EXPECT_EQ(stated.presence_offset, type.presence_offset);
  EXPECT_EQ(stated.presence_width, type.presence_width);
  EXPECT_EQ(stated.functions->takes_options, type.takes_options);
  ASSERT_EQ(stated.members.size(), type.fields.size());
  for (const field &field : type.fields) {
    const naive::member &member = stated.members[field.number - 1];
    EXPECT_EQ(member.what, sort_of(field.kind)) << field.name;
    EXPECT_EQ(member.offset, field.offset) << field.name;
    EXPECT_EQ(member.count_offset, field.count_offset) << field.name;
    EXPECT_EQ(member.width, field.width) << field.name;
    EXPECT_EQ(member.is_signed, field.is_signed) << field.name;
    ASSERT_EQ(member.nested != nullptr, field.nested != nullptr) << field.name;
    if (field.nested == nullptr) continue;
    EXPECT_STREQ(member.nested->name, field.nested->name) << field.name;
  }
}

TEST(naive_statements, are_there_for_every_message) {
  EXPECT_EQ(naive::messages().size(), subjects().size()) << "tests/naive/messages.hpp states each message once";
}

}  // namespace test
