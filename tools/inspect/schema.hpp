// The messages in the schema languages of other programs, from the tables.
#pragma once

#include <string>
#include <vector>

#include "bytes.hpp"
#include "types.hpp"

namespace inspect {

// A message after those that it contains; each once.
std::vector<const message_info *> with_contained(const message_info &type);

// The language of protoc: a file with these messages.
std::string proto_schema(const std::vector<const message_info *> &messages);

// The same file as a FileDescriptorSet, as `protoc --descriptor_set_out` writes it.
byte_string descriptor_set(const std::vector<const message_info *> &messages);

// JSON Schema for what `decode` writes: the last of the messages, and those that it contains.
std::string json_schema(const std::vector<const message_info *> &messages);

}  // namespace inspect
