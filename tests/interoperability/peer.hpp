// The peer: Protocol Buffers' own C++ library, which learns the messages from what its compiler made of
// proto/zorv.proto.
#pragma once

#include <google/protobuf/descriptor.h>
#include <google/protobuf/descriptor.pb.h>
#include <google/protobuf/dynamic_message.h>
#include <google/protobuf/stubs/logging.h>
#include <google/protobuf/unknown_field_set.h>
#include <google/protobuf/util/message_differencer.h>

#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#include "laws.hpp"

namespace test {

namespace protobuf = google::protobuf;

class peer {
 public:
  static peer &instance() {
    static peer only;
    return only;
  }

  const protobuf::Descriptor &descriptor(const std::string &name) const {
    const protobuf::Descriptor *const found = pool_.FindMessageTypeByName("zorv." + name);
    if (found == nullptr) throw std::runtime_error("proto/zorv.proto has no message " + name);
    return *found;
  }

  std::unique_ptr<protobuf::Message> message(const std::string &name) {
    return std::unique_ptr<protobuf::Message>(factory_.GetPrototype(&descriptor(name))->New());
  }

  // What the peer reads from bytes; null when it refuses them.
  std::unique_ptr<protobuf::Message> read(const std::string &name, const byte_string &bytes) {
    std::unique_ptr<protobuf::Message> result = message(name);
    return result->ParseFromArray(bytes.data(), static_cast<int>(bytes.size())) ? std::move(result) : nullptr;
  }

 private:
  peer() {
    protobuf::SetLogHandler(nullptr);  // it complains of strings that are not UTF-8, and takes them
    std::ifstream file(PAVO_ZORV_DESCRIPTORS, std::ios::binary);
    protobuf::FileDescriptorSet files;
    if (!files.ParseFromIstream(&file)) throw std::runtime_error("no descriptors in " PAVO_ZORV_DESCRIPTORS);
    for (const auto &one : files.file()) {
      if (pool_.BuildFile(one) == nullptr) throw std::runtime_error("wrong descriptors: " + one.name());
    }
  }

  protobuf::DescriptorPool pool_;
  protobuf::DynamicMessageFactory factory_;
};

inline byte_string written(const protobuf::Message &message) {
  const std::string bytes = message.SerializeAsString();
  return byte_string(bytes.begin(), bytes.end());
}

// One value of a message, whatever its type.
inline void set_value(protobuf::Message &message, const protobuf::FieldDescriptor &field, std::uint64_t value) {
  const protobuf::Reflection &access = *message.GetReflection();
  const bool list = field.is_repeated();
  switch (field.type()) {
    case protobuf::FieldDescriptor::TYPE_BOOL:
      return access.SetBool(&message, &field, value != 0);
    case protobuf::FieldDescriptor::TYPE_UINT32:
      return list ? access.AddUInt32(&message, &field, static_cast<std::uint32_t>(value))
                  : access.SetUInt32(&message, &field, static_cast<std::uint32_t>(value));
    case protobuf::FieldDescriptor::TYPE_UINT64:
      return access.SetUInt64(&message, &field, value);
    case protobuf::FieldDescriptor::TYPE_INT32:
      return access.SetInt32(&message, &field, static_cast<std::int32_t>(value));
    case protobuf::FieldDescriptor::TYPE_INT64:
      return access.SetInt64(&message, &field, static_cast<std::int64_t>(value));
    default:
      throw std::runtime_error("tests/interoperability/peer.hpp has no case for the type of " + field.full_name());
  }
}

// What a record says, as a message of the peer: its present members.
inline void translate(view record, protobuf::Message &message) {
  const protobuf::Reflection &access = *message.GetReflection();
  for (const member &row : record.type().members) {
    if (!record.has(row)) continue;
    const protobuf::FieldDescriptor &field = *message.GetDescriptor()->FindFieldByNumber(static_cast<int>(row.number));
    if (row.is_scalar()) {
      set_value(message, field, record.number(row));
    } else if (row.kind == kind::string) {
      if (record.text(row) != nullptr) access.SetString(&message, &field, record.text(row));
    } else if (row.kind == kind::bytes) {
      access.SetString(&message, &field, std::string(record.text(row), record.count(row)));
    } else if (row.kind == kind::nested) {
      translate(record.nested(row), *access.MutableMessage(&message, &field));
    } else {
      for (std::uint64_t i = 0; i < record.count(row); ++i) {
        if (row.kind == kind::integer_list) {
          set_value(message, field, record.element_number(row, i));
        } else {
          translate(record.element(row, i), *access.AddMessage(&message, &field));
        }
      }
    }
  }
}

inline std::unique_ptr<protobuf::Message> translated(view record) {
  std::unique_ptr<protobuf::Message> message = peer::instance().message(record.type().name);
  translate(record, *message);
  return message;
}

// Where two messages differ, unknown fields included; nothing when they do not.
inline std::string difference_of(const protobuf::Message &a, const protobuf::Message &b) {
  std::string report;
  protobuf::util::MessageDifferencer differencer;
  differencer.ReportDifferencesToString(&report);
  if (differencer.Compare(a, b)) return {};
  return report.empty() ? "different" : report;
}

}  // namespace test
