// protobuf-c, with a pool and with malloc.
#include <cstring>

#include "contest.hpp"
#include "workloads.hpp"
#include "zorv.pb-c.h"

namespace contest {
namespace {

constexpr const char *with_pool = "protobuf_c_pool";
constexpr const char *with_heap = "protobuf_c_malloc";

#define PAVO_ZORV_BENCHMARK_DESCRIPTOR(message) \
  const ProtobufCMessageDescriptor &descriptor_of(const message &) { return zorv__##message##__descriptor; }
PAVO_ZORV_BENCHMARK_MESSAGES(PAVO_ZORV_BENCHMARK_DESCRIPTOR)
#undef PAVO_ZORV_BENCHMARK_DESCRIPTOR

void *take_from_pool(void *context, std::size_t size) { return static_cast<pool *>(context)->take(size); }
void give_to_pool(void *, void *) {}

struct release_message {
  void operator()(ProtobufCMessage *message) const { protobuf_c_message_free_unpacked(message, nullptr); }
};

struct bench {
  template <class Record>
  explicit bench(const workload<Record> &what)
      : descriptor(descriptor_of(what.records[0])),
        wire(what.wire),
        memory(pool_capacity(what.longest())),
        allocator{take_from_pool, give_to_pool, &memory},
        output(what.longest()) {
    for (const byte_string &message : wire) {
      sources.emplace_back(protobuf_c_message_unpack(&descriptor, nullptr, message.size(), message.data()));
      require(sources.back() != nullptr, "protobuf-c decodes", what.name);
      require(protobuf_c_message_get_packed_size(sources.back().get()) == message.size() &&
                  protobuf_c_message_pack(sources.back().get(), output.data()) == message.size() &&
                  std::memcmp(output.data(), message.data(), message.size()) == 0,
              "protobuf-c encodes what it has decoded", what.name);
      memory.reset();
      const auto *pooled = protobuf_c_message_unpack(&descriptor, &allocator, message.size(), message.data());
      require(pooled != nullptr && protobuf_c_message_pack(pooled, output.data()) == message.size() &&
                  std::memcmp(output.data(), message.data(), message.size()) == 0,
              "protobuf-c decodes into a pool", what.name);
    }
  }

  const ProtobufCMessageDescriptor &descriptor;
  const std::vector<byte_string> &wire;
  pool memory;
  ProtobufCAllocator allocator;
  byte_string output;
  std::vector<std::unique_ptr<ProtobufCMessage, release_message>> sources;
};

repeat decode_into_pool(std::shared_ptr<bench> on) {
  return repeated([on] {
    for (const byte_string &message : on->wire) {
      on->memory.reset();
      keep(protobuf_c_message_unpack(&on->descriptor, &on->allocator, message.size(), message.data()));
    }
  });
}

repeat decode_with_malloc(std::shared_ptr<bench> on) {
  return repeated([on] {
    for (const byte_string &message : on->wire) {
      auto *const object = protobuf_c_message_unpack(&on->descriptor, nullptr, message.size(), message.data());
      keep(object);
      protobuf_c_message_free_unpacked(object, nullptr);
    }
  });
}

repeat measure(std::shared_ptr<bench> on) {
  return repeated([on] {
    std::size_t sum = 0;
    for (const auto &source : on->sources) sum += protobuf_c_message_get_packed_size(source.get());
    keep(&sum);
  });
}

repeat encode(std::shared_ptr<bench> on) {
  return repeated([on] {
    for (const auto &source : on->sources) {
      const std::size_t length = protobuf_c_message_get_packed_size(source.get());
      keep(&length);
      protobuf_c_message_pack(source.get(), on->output.data());
      keep(on->output.data());
    }
  });
}

// It writes without looking at the size of the buffer.
repeat encode_once(std::shared_ptr<bench> on) {
  return repeated([on] {
    for (const auto &source : on->sources) {
      protobuf_c_message_pack(source.get(), on->output.data());
      keep(on->output.data());
    }
  });
}

}  // namespace

void enter_protobuf_c(roll &all) {
  all.add_contestant({with_pool, "pool, reset for each message", "copied, NUL-terminated", "no UTF-8"});
  all.add_contestant({with_heap, "malloc, and free_unpacked", "copied, NUL-terminated", "no UTF-8"});
  all.works->each([&](const auto &work) {
    const auto start = [&work] { return std::make_shared<bench>(work); };
    all.add_case("decode", work.name, with_pool, [=] { return decode_into_pool(start()); });
    all.add_case("decode", work.name, with_heap, [=] { return decode_with_malloc(start()); });
    all.add_case("encode", work.name, with_heap, [=] { return encode(start()); });
    all.add_case("encode_once", work.name, with_heap, [=] { return encode_once(start()); });
    all.add_case("measure", work.name, with_heap, [=] { return measure(start()); });
  });
}

}  // namespace contest
