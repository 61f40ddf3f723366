// proto/zorv.proto as descriptors, compiled by protoc.
#pragma once

#include <google/protobuf/descriptor.h>
#include <google/protobuf/descriptor.pb.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace test {

class proto_file {
 public:
  proto_file() {
    std::ifstream stream(PAVO_ZORV_DESCRIPTORS, std::ios::binary);
    google::protobuf::FileDescriptorSet set;
    if (set.ParseFromIstream(&stream) && set.file_size() == 1) content_ = pool_.BuildFile(set.file(0));
    EXPECT_NE(content_, nullptr) << PAVO_ZORV_DESCRIPTORS;
  }

  // Null if it cannot be read.
  const google::protobuf::FileDescriptor *content() const { return content_; }

  const google::protobuf::Descriptor *message(const std::string &name) const {
    return content_ != nullptr ? content_->FindMessageTypeByName(name) : nullptr;
  }

 private:
  google::protobuf::DescriptorPool pool_;
  const google::protobuf::FileDescriptor *content_ = nullptr;
};

}  // namespace test
