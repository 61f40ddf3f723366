// That the messages as they are stated by hand for the naive decoder are those of the library's schemas, and lie in
// memory where the compiler puts them.
#include "laws.hpp"
#include "message_table.hpp"
#include "messages/all.hpp"

namespace test {

class naive_statement : public law {};
INSTANTIATE_TEST_SUITE_P(every, naive_statement, testing::ValuesIn(subjects()), name_of_subject);

naive::kind stated(pavo_zorv::kind of) {
  switch (of) {
    case pavo_zorv::kind::flag:
      return naive::kind::flag;
    case pavo_zorv::kind::integer:
      return naive::kind::integer;
    case pavo_zorv::kind::string:
      return naive::kind::string;
    case pavo_zorv::kind::bytes:
      return naive::kind::bytes;
    case pavo_zorv::kind::integer_list:
      return naive::kind::integer_list;
    case pavo_zorv::kind::message_list:
      return naive::kind::message_list;
    case pavo_zorv::kind::nested:
      break;
  }
  return naive::kind::nested;
}

TEST_P(naive_statement, says_the_same_as_the_schema) {
  SCOPED_TRACE("tests/naive/messages.hpp, and the message's table in src/messages/");
  const naive::message &message = *GetParam();
  const pavo_zorv::message_info *const schema = pavo_zorv::find_message(message.name);
  ASSERT_NE(schema, nullptr);
  EXPECT_EQ(message.size, schema->size);
  EXPECT_EQ(message.presence_offset, schema->presence_offset);
  EXPECT_EQ(message.presence_width, schema->presence_width);
  ASSERT_EQ(message.members.size(), schema->fields.size());
  for (const pavo_zorv::field_info &field : schema->fields) {
    const naive::member &member = message.members[field.number - 1];
    EXPECT_EQ(member.number, field.number) << field.name;
    EXPECT_EQ(member.kind, stated(field.kind)) << field.name;
    EXPECT_EQ(member.wire_type(), static_cast<unsigned>(field.wire)) << field.name;
    EXPECT_EQ(member.offset, field.offset) << field.name;
    EXPECT_EQ(member.count_offset, field.count_offset) << field.name;
    EXPECT_EQ(member.width, field.width) << field.name;
    EXPECT_EQ(member.is_signed, field.is_signed) << field.name;
    EXPECT_EQ(member.is_list(), field.is_list()) << field.name;
    EXPECT_EQ(member.presence_bit(), field.presence_bit()) << field.name;
    ASSERT_EQ(member.nested != nullptr, field.nested != nullptr) << field.name;
    if (field.nested == nullptr) continue;
    EXPECT_STREQ(member.nested->name, field.nested->name) << field.name;
  }
}

TEST(message_table, finds_no_message_by_the_beginning_of_its_name) {
  EXPECT_EQ(pavo_zorv::find_message("api_ms"), nullptr);
}

TEST(message_table, says_where_the_compiler_puts_members) {
  pavo_zorv::for_each_message([]<class Record>(std::type_identity<Record>) {
    const pavo_zorv::message_info &message = *pavo_zorv::find_message(pavo_zorv::message_name<Record>);
    static const Record record{};
    const auto offset_of = [](const auto &member) {
      return static_cast<std::size_t>(reinterpret_cast<const unsigned char *>(&member) -
                                      reinterpret_cast<const unsigned char *>(&record));
    };
    pavo_zorv::for_each_row<Record>([&](auto index) {
      const auto members = pavo_zorv::row_at<Record, index>.members();
      EXPECT_EQ(message.fields[index].offset, offset_of(record.*std::get<0>(members))) << message.name;
      if constexpr (std::tuple_size_v<decltype(members)> == 2) {
        EXPECT_EQ(message.fields[index].count_offset, offset_of(record.*std::get<1>(members))) << message.name;
      }
    });
    EXPECT_EQ(message.presence_offset, offset_of(record.presence)) << message.name;
    EXPECT_EQ(message.size, sizeof record) << message.name;
  });
}

TEST(naive_statements, are_there_for_every_message) {
  EXPECT_EQ(naive::messages().size(), pavo_zorv::message_table().size())
      << "tests/naive/messages.hpp states each message once";
}

}  // namespace test
