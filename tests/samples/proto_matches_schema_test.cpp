// proto/zorv.proto defines the same messages as the schema: names, numbers, kinds, lists.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>

#include "messages/all.hpp"
#include "proto_file.hpp"

namespace {

using google::protobuf::FieldDescriptor;
using pavo_zorv::kind;

template <class Row>
FieldDescriptor::Type expected_type() {
  switch (Row::type) {
    case kind::flag:
      return FieldDescriptor::TYPE_BOOL;
    case kind::string:
      return FieldDescriptor::TYPE_STRING;
    case kind::bytes:
      return FieldDescriptor::TYPE_BYTES;
    case kind::nested:
    case kind::message_list:
      return FieldDescriptor::TYPE_MESSAGE;
    case kind::integer:
    case kind::integer_list:
      break;
  }
  if constexpr (requires { typename Row::element; }) {
    using element = typename Row::element;
    if (std::is_same_v<element, std::int32_t>) return FieldDescriptor::TYPE_INT32;
    if (std::is_same_v<element, std::int64_t>) return FieldDescriptor::TYPE_INT64;
    if (std::is_same_v<element, std::uint64_t>) return FieldDescriptor::TYPE_UINT64;
  }
  return FieldDescriptor::TYPE_UINT32;
}

template <class Row>
bool is_8_bit() {
  if constexpr (requires { typename Row::element; }) return sizeof(typename Row::element) == 1;
  return false;
}

template <class Row>
void expect_field(const Row &row, const google::protobuf::Descriptor &message) {
  const FieldDescriptor *const field = message.FindFieldByNumber(static_cast<int>(row.number));
  ASSERT_NE(field, nullptr) << "in proto/zorv.proto, " << message.name() << " lacks field " << row.number;
  SCOPED_TRACE("in proto/zorv.proto, " + field->full_name());
  constexpr bool is_list = Row::type == kind::integer_list || Row::type == kind::message_list;
  EXPECT_EQ(field->name(), row.name);
  EXPECT_EQ(field->type_name(), std::string(FieldDescriptor::TypeName(expected_type<Row>())));
  EXPECT_EQ(field->label(), is_list ? FieldDescriptor::LABEL_REPEATED : FieldDescriptor::LABEL_OPTIONAL);
  EXPECT_FALSE(field->is_packed());
  EXPECT_FALSE(field->has_default_value());
  if constexpr (requires { typename Row::message; }) {
    ASSERT_NE(field->message_type(), nullptr);
    EXPECT_EQ(field->message_type()->name(), pavo_zorv::message_name<typename Row::message>);
  }
  google::protobuf::SourceLocation location;
  ASSERT_TRUE(field->GetSourceLocation(&location));
  EXPECT_EQ(location.trailing_comments, is_8_bit<Row>() ? " 8-bit\n" : "");
}

class the_proto_file : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(file.content(), nullptr); }
  test::proto_file file;
};

TEST_F(the_proto_file, is_proto2_in_the_package_zorv) {
  EXPECT_EQ(file.content()->syntax(), google::protobuf::FileDescriptor::SYNTAX_PROTO2);
  EXPECT_EQ(file.content()->package(), "zorv");
}

TEST_F(the_proto_file, has_every_message_and_no_other) {
  std::size_t messages = 0;
  pavo_zorv::for_each_message([&](auto message) {
    ++messages;
    const char *const name = pavo_zorv::message_name<typename decltype(message)::type>;
    EXPECT_NE(file.message(name), nullptr) << "proto/zorv.proto lacks " << name;
  });
  EXPECT_EQ(file.content()->message_type_count(), static_cast<int>(messages));
  EXPECT_EQ(file.content()->enum_type_count() + file.content()->extension_count() + file.content()->service_count(), 0);
}

TEST_F(the_proto_file, has_the_fields_of_every_message) {
  std::size_t fields = 0;
  pavo_zorv::for_each_message([&](auto message) {
    using record = typename decltype(message)::type;
    const google::protobuf::Descriptor *const descriptor = file.message(pavo_zorv::message_name<record>);
    ASSERT_NE(descriptor, nullptr) << "proto/zorv.proto lacks " << pavo_zorv::message_name<record>;
    EXPECT_EQ(descriptor->field_count(), static_cast<int>(pavo_zorv::field_count<record>))
        << "proto/zorv.proto, " << descriptor->name();
    pavo_zorv::for_each_row<record>([&](auto index) {
      ++fields;
      expect_field(pavo_zorv::row_at<record, index>, *descriptor);
    });
  });
  EXPECT_GT(fields, 150u);
}

}  // namespace
