// proto/zorv.proto defines the same messages as the schema: names, numbers, kinds, lists.
#include <gtest/gtest.h>

#include <string>

#include "message_table.hpp"
#include "proto_file.hpp"

namespace {

using google::protobuf::FieldDescriptor;
using pavo_zorv::kind;

FieldDescriptor::Type integer_type(const pavo_zorv::field_info &field) {
  if (field.width == 8) return field.is_signed ? FieldDescriptor::TYPE_INT64 : FieldDescriptor::TYPE_UINT64;
  return field.is_signed ? FieldDescriptor::TYPE_INT32 : FieldDescriptor::TYPE_UINT32;
}

FieldDescriptor::Type expected_type(const pavo_zorv::field_info &field) {
  switch (field.kind) {
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
  return integer_type(field);
}

bool is_8_bit(const pavo_zorv::field_info &field) {
  return (field.kind == kind::integer || field.kind == kind::integer_list) && field.width == 1;
}

void expect_field(const pavo_zorv::field_info &row, const google::protobuf::Descriptor &message) {
  const FieldDescriptor *const field = message.FindFieldByNumber(static_cast<int>(row.number));
  ASSERT_NE(field, nullptr) << "in proto/zorv.proto, " << message.name() << " lacks field " << row.number;
  SCOPED_TRACE("in proto/zorv.proto, " + field->full_name());
  EXPECT_EQ(field->name(), row.name);
  EXPECT_EQ(field->type_name(), std::string(FieldDescriptor::TypeName(expected_type(row))));
  EXPECT_EQ(field->label(), row.is_list() ? FieldDescriptor::LABEL_REPEATED : FieldDescriptor::LABEL_OPTIONAL);
  EXPECT_FALSE(field->is_packed());
  EXPECT_FALSE(field->has_default_value());
  if (row.nested != nullptr) {
    ASSERT_NE(field->message_type(), nullptr);
    EXPECT_EQ(field->message_type()->name(), row.nested->name);
  }
  google::protobuf::SourceLocation location;
  ASSERT_TRUE(field->GetSourceLocation(&location));
  EXPECT_EQ(location.trailing_comments, is_8_bit(row) ? " 8-bit\n" : "");
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
  for (const pavo_zorv::message_info *const message : pavo_zorv::message_table()) {
    EXPECT_NE(file.message(message->name), nullptr) << "proto/zorv.proto lacks " << message->name;
  }
  EXPECT_EQ(file.content()->message_type_count(), static_cast<int>(pavo_zorv::message_table().size()));
  EXPECT_EQ(file.content()->enum_type_count() + file.content()->extension_count() + file.content()->service_count(), 0);
}

TEST_F(the_proto_file, has_the_fields_of_every_message) {
  std::size_t fields = 0;
  for (const pavo_zorv::message_info *const message : pavo_zorv::message_table()) {
    const google::protobuf::Descriptor *const descriptor = file.message(message->name);
    ASSERT_NE(descriptor, nullptr) << "proto/zorv.proto lacks " << message->name;
    EXPECT_EQ(descriptor->field_count(), static_cast<int>(message->fields.size()))
        << "proto/zorv.proto, " << descriptor->name();
    for (const pavo_zorv::field_info &row : message->fields) expect_field(row, *descriptor);
    fields += message->fields.size();
  }
  EXPECT_GT(fields, 150u);
}

}  // namespace
