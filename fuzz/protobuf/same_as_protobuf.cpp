// Input that both this library and the Protocol Buffers C++ library accept means the same to both: this library encodes
// what either has decoded to the same bytes. Inputs that the two interpret differently on purpose are left out.
#include <google/protobuf/descriptor.h>
#include <google/protobuf/message.h>
#include <google/protobuf/stubs/logging.h>

#include <memory>

#include "harness.hpp"
#include "zorv.pb.h"

namespace fuzz {

namespace {

namespace protobuf = google::protobuf;

// One message of each type, reused for every input.
protobuf::Message &peer_of(const message &type) {
  static std::vector<std::unique_ptr<protobuf::Message>> peers;
  if (peers.empty()) {
    protobuf::SetLogHandler(nullptr);
    zorv::api_msg::descriptor();  // loads the descriptors of the file
    const protobuf::DescriptorPool *const pool = protobuf::DescriptorPool::generated_pool();
    for (const message &one : naive::messages()) {
      const protobuf::Descriptor *const found = pool->FindMessageTypeByName(std::string("zorv.") + one.name);
      if (found == nullptr) test::broken(std::string("proto/zorv.proto has no message ") + one.name);
      peers.emplace_back(protobuf::MessageFactory::generated_factory()->GetPrototype(found)->New());
    }
  }
  return *peers[static_cast<std::size_t>(&type - naive::messages().data())];
}

// Whether an accepted message, or one nested in it, has something that the two interpret differently on purpose: a
// repeated nested message, which replaces the first here and is merged with it there; or a flag of more than 32 bits,
// of which only the lower ones count here.
bool is_interpreted_differently(const message &type, const unsigned char *bytes, std::size_t length) {
  std::uint32_t seen = 0;
  for (std::size_t at = 0; at < length;) {
    std::uint32_t key = 0, size = 0;
    naive::decoder::read_32(bytes, length, at, key);
    const bool known = key >> 3 >= 1 && key >> 3 <= type.members.size();
    const member *const field = known ? &type.members[(key >> 3) - 1] : nullptr;
    if ((key & 7) == 0) {
      std::uint64_t value = 0;
      naive::decoder::read_64(bytes, length, at, value);
      if (known && field->kind == kind::flag && value != 0 && static_cast<std::uint32_t>(value) == 0) return true;
      continue;
    }
    if ((key & 7) == 2) {
      naive::decoder::read_32(bytes, length, at, size);
    } else {
      size = (key & 7) == 1 ? 8 : 4;
    }
    if (known && field->kind == kind::nested && (seen >> (key >> 3) & 1) != 0) return true;
    if (known) seen |= std::uint32_t{1} << (key >> 3);
    if (known && field->nested != nullptr && is_interpreted_differently(*field->nested, bytes + at, size)) return true;
    at += size;
  }
  return false;
}

}  // namespace

void run(const trial &trial) {
  const unsigned char *const input = placed(input_room(), trial, trial.bytes, trial.length);
  const decoded here(trial, input, trial.length, trial.referenced);
  if (here.result != CODEC_OK) return;
  protobuf::Message &there = peer_of(*trial.type);
  if (!there.ParseFromArray(input, static_cast<int>(trial.length))) return;
  // Here, after an element of a list, a key with another wire type is one more element.
  const expected expected(trial, input, trial.length);
  if (expected.decoder.run_of_other_types || is_interpreted_differently(*trial.type, input, trial.length)) return;

  there.DiscardUnknownFields();
  const std::string bytes = there.SerializeAsString();
  const unsigned char *const again =
      placed(second_input_room(), trial, reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size());
  const decoded back(trial, again, bytes.size(), false);
  FUZZ_CHECK(trial, back.result == CODEC_OK);
  FUZZ_CHECK(trial, trial.type->functions->compare(here.record.data(), back.record.data()) == 0);
  FUZZ_CHECK(trial, encoding_of(trial, here.record, 0) == encoding_of(trial, back.record, 0));
}

}  // namespace fuzz
