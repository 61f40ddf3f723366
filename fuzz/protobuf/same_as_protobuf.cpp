// What this library and Protocol Buffers' own for C++ both accept means the same to both: what either of them makes of
// it is written the same by this library. Left out are the few inputs that both accept and take differently on purpose.
#include <google/protobuf/descriptor.h>
#include <google/protobuf/message.h>
#include <google/protobuf/stubs/logging.h>

#include <memory>

#include "harness.hpp"
#include "zorv.pb.h"

namespace fuzz {

namespace {

namespace protobuf = google::protobuf;

// One message of each type, used again and again.
protobuf::Message &peer_of(const message &type) {
  static std::vector<std::unique_ptr<protobuf::Message>> peers;
  if (peers.empty()) {
    protobuf::SetLogHandler(nullptr);
    zorv::api_msg::descriptor();  // the file is loaded when one of its messages is asked for
    const protobuf::DescriptorPool *const pool = protobuf::DescriptorPool::generated_pool();
    for (const message &one : naive::messages()) {
      const protobuf::Descriptor *const found = pool->FindMessageTypeByName(std::string("zorv.") + one.name);
      if (found == nullptr) naive::broken(std::string("no peer for ") + one.name);
      peers.emplace_back(protobuf::MessageFactory::generated_factory()->GetPrototype(found)->New());
    }
  }
  return *peers[static_cast<std::size_t>(&type - naive::messages().data())];
}

// Whether a message, or one in it, holds what is taken differently on purpose: a nested message that comes again, which
// replaces the first here and is merged with it there; and a flag of more than 32 bits, of which the lower count here.
// The message is one that was accepted.
bool is_taken_differently(const message &type, const unsigned char *bytes, std::size_t length) {
  std::uint32_t seen = 0;
  for (std::size_t at = 0; at < length;) {
    std::uint32_t key = 0, size = 0;
    naive::decoder::read_32(bytes, length, at, key);
    const bool known = key >> 3 >= 1 && key >> 3 <= type.members.size();
    const member *const field = known ? &type.members[(key >> 3) - 1] : nullptr;
    if ((key & 7) == 0) {
      std::uint64_t value = 0;
      naive::decoder::read_64(bytes, length, at, value);
      if (known && field->what == sort::flag && value != 0 && static_cast<std::uint32_t>(value) == 0) return true;
      continue;
    }
    if ((key & 7) == 2) {
      naive::decoder::read_32(bytes, length, at, size);
    } else {
      size = (key & 7) == 1 ? 8 : 4;
    }
    if (known && field->what == sort::message && (seen >> (key >> 3) & 1) != 0) return true;
    if (known) seen |= std::uint32_t{1} << (key >> 3);
    if (known && field->nested != nullptr && is_taken_differently(*field->nested, bytes + at, size)) return true;
    at += size;
  }
  return false;
}

}  // namespace

void run(const trial &trial) {
  const unsigned char *const input = input_room().holding(trial, trial.bytes, trial.length);
  const decoded here(trial, input, trial.length, trial.referenced);
  if (here.result != CODEC_OK) return;
  protobuf::Message &there = peer_of(*trial.type);
  if (!there.ParseFromArray(input, static_cast<int>(trial.length))) return;
  // After an element of a list, a key of another wire type is taken for one more element here.
  const expected expected(trial, input, trial.length);
  if (expected.decoder.run_of_other_types || is_taken_differently(*trial.type, input, trial.length)) return;

  there.DiscardUnknownFields();
  const std::string bytes = there.SerializeAsString();
  const unsigned char *const again =
      second_input_room().holding(trial, reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size());
  const decoded back(trial, again, bytes.size(), false);
  FUZZ_CHECK(trial, back.result == CODEC_OK);
  FUZZ_CHECK(trial, trial.type->functions->compare(here.record.data(), back.record.data()) == 0);
  FUZZ_CHECK(trial, encoding_of(trial, here.record.data(), 0) == encoding_of(trial, back.record.data(), 0));
}

}  // namespace fuzz
