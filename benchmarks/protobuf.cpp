// Protocol Buffers for C++: a new object on the heap for each message, a new object on an arena, or one reused object.
#include <google/protobuf/arena.h>
#include <google/protobuf/util/message_differencer.h>

#include <algorithm>

#include "contest.hpp"
#include "workloads.hpp"
#include "zorv.pb.h"

namespace contest {
namespace {

using google::protobuf::Arena;

constexpr const char *on_heap = "protobuf_heap";
constexpr const char *on_arena = "protobuf_arena";
constexpr const char *reused = "protobuf_reused";

template <class Record>
struct counterpart;
#define PAVO_ZORV_BENCHMARK_COUNTERPART(message) \
  template <>                                    \
  struct counterpart<message> {                  \
    using type = zorv::message;                  \
  };
PAVO_ZORV_BENCHMARK_MESSAGES(PAVO_ZORV_BENCHMARK_COUNTERPART)
#undef PAVO_ZORV_BENCHMARK_COUNTERPART

template <class Message>
bool parse(Message &object, const byte_string &message) {
  return object.ParseFromArray(message.data(), static_cast<int>(message.size()));
}

template <class Message>
byte_string serialized(const Message &object) {
  byte_string result(object.ByteSizeLong());
  object.SerializeWithCachedSizesToArray(result.data());
  return result;
}

// An arena whose first block is large enough for any message of the workload, so that it never allocates another.
struct spacious_arena {
  explicit spacious_arena(std::size_t length) : block(new char[length]), arena(block.get(), length) {}
  std::unique_ptr<char[]> block;
  Arena arena;
};

template <class Record>
struct bench {
  using message = typename counterpart<Record>::type;

  explicit bench(const workload<Record> &what)
      : work(what),
        arena(pool_capacity(what.longest())),
        source_arena(pool_capacity(what.size())),
        output(what.longest() + slack) {
    for (const byte_string &wire : what.wire) {
      heap_sources.push_back(std::make_unique<message>());
      arena_sources.push_back(Arena::CreateMessage<message>(&source_arena.arena));
      require(parse(*heap_sources.back(), wire) && parse(*arena_sources.back(), wire) &&
                  serialized(*heap_sources.back()) == wire && serialized(*arena_sources.back()) == wire,
              "protobuf encodes what it has decoded", what.name);
    }
  }

  const workload<Record> &work;
  std::vector<std::unique_ptr<message>> heap_sources;
  std::vector<message *> arena_sources;
  message one;
  spacious_arena arena, source_arena;
  byte_string output;
};

template <class Record>
repeat decode_on_heap(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  return repeated([on] {
    for (const byte_string &wire : on->work.wire) {
      auto object = std::make_unique<typename bench<Record>::message>();
      parse(*object, wire);
      keep(object.get());
    }
  });
}

template <class Record>
repeat decode_on_arena(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  return repeated([on] {
    for (const byte_string &wire : on->work.wire) {
      on->arena.arena.Reset();
      auto *const object = Arena::CreateMessage<typename bench<Record>::message>(&on->arena.arena);
      parse(*object, wire);
      keep(object);
    }
  });
}

template <class Record>
repeat decode_reused(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  for (const byte_string &wire : work.wire)
    require(parse(on->one, wire) && serialized(on->one) == wire, "protobuf decodes into a used object", work.name);
  return repeated([on] {
    for (const byte_string &wire : on->work.wire) {
      parse(on->one, wire);
      keep(&on->one);
    }
  });
}

template <class Record, class Sources>
repeat measure(std::shared_ptr<bench<Record>> on, Sources bench<Record>::*sources) {
  return repeated([on, sources] {
    std::size_t sum = 0;
    for (const auto &source : (*on).*sources) sum += source->ByteSizeLong();
    keep(&sum);
  });
}

template <class Record, class Sources>
repeat encode(std::shared_ptr<bench<Record>> on, Sources bench<Record>::*sources) {
  return repeated([on, sources] {
    for (const auto &source : (*on).*sources) {
      const std::size_t length = source->ByteSizeLong();
      keep(&length);
      source->SerializeWithCachedSizesToArray(on->output.data());
      keep(on->output.data());
    }
  });
}

// Into a buffer that is known to suffice: one call, in which the message is measured and written.
template <class Record, class Sources>
repeat encode_once(std::shared_ptr<bench<Record>> on, Sources bench<Record>::*sources) {
  const int capacity = static_cast<int>(on->output.size());
  for (std::size_t i = 0; i < on->work.wire.size(); ++i) {
    const byte_string &wire = on->work.wire[i];
    require(((*on).*sources)[i]->SerializePartialToArray(on->output.data(), capacity) &&
                std::equal(wire.begin(), wire.end(), on->output.begin()),
            "protobuf encodes in one call", on->work.name);
  }
  return repeated([on, sources, capacity] {
    for (const auto &source : (*on).*sources) {
      source->SerializePartialToArray(on->output.data(), capacity);
      keep(on->output.data());
    }
  });
}

template <class Record>
repeat copy_on_heap(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  return repeated([on] {
    for (const auto &source : on->heap_sources) {
      auto object = std::make_unique<typename bench<Record>::message>();
      object->CopyFrom(*source);
      keep(object.get());
    }
  });
}

template <class Record>
repeat copy_on_arena(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  return repeated([on] {
    for (const auto &source : on->arena_sources) {
      on->arena.arena.Reset();
      auto *const object = Arena::CreateMessage<typename bench<Record>::message>(&on->arena.arena);
      object->CopyFrom(*source);
      keep(object);
    }
  });
}

template <class Record>
repeat copy_reused(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  for (std::size_t i = 0; i < work.wire.size(); ++i) {
    on->one.CopyFrom(*on->heap_sources[i]);
    require(serialized(on->one) == work.wire[i], "protobuf copies", work.name);
  }
  return repeated([on] {
    for (const auto &source : on->heap_sources) {
      on->one.CopyFrom(*source);
      keep(&on->one);
    }
  });
}

template <class Record>
repeat compare(const workload<Record> &work) {
  using google::protobuf::util::MessageDifferencer;
  auto on = std::make_shared<bench<Record>>(work);
  auto other = std::make_shared<bench<Record>>(work);
  require(MessageDifferencer::Equals(*on->heap_sources[0], *other->heap_sources[0]), "protobuf finds equals equal",
          work.name);
  require(!MessageDifferencer::Equals(*on->heap_sources[0], on->one), "protobuf finds a difference", work.name);
  return repeated([on, other] {
    bool equal = true;
    for (std::size_t i = 0; i < on->heap_sources.size(); ++i)
      equal &= MessageDifferencer::Equals(*on->heap_sources[i], *other->heap_sources[i]);
    keep(&equal);
  });
}

}  // namespace

void enter_protobuf(roll &all) {
  all.add_contestant({on_heap, "a new object for each message, deleted; compare: MessageDifferencer, by reflection",
                      "copied into std::string", "no UTF-8 (proto2)"});
  all.add_contestant({on_arena, "a new object on an arena whose first block suffices, reset for each message",
                      "copied into std::string", "no UTF-8 (proto2)"});
  all.add_contestant({reused,
                      "one object, cleared by each parse or copy: it keeps its memory, and after the first takes none",
                      "copied into strings that exist", "no UTF-8 (proto2)"});
  all.works->each([&]<class Record>(const workload<Record> &work) {
    using at = bench<Record>;
    const auto start = [&work] { return std::make_shared<at>(work); };
    all.add_case("decode", work.name, on_heap, [&] { return decode_on_heap(work); });
    all.add_case("decode", work.name, on_arena, [&] { return decode_on_arena(work); });
    all.add_case("decode", work.name, reused, [&] { return decode_reused(work); });
    all.add_case("encode", work.name, on_heap, [=] { return encode(start(), &at::heap_sources); });
    all.add_case("encode", work.name, on_arena, [=] { return encode(start(), &at::arena_sources); });
    all.add_case("encode_once", work.name, on_heap, [=] { return encode_once(start(), &at::heap_sources); });
    all.add_case("encode_once", work.name, on_arena, [=] { return encode_once(start(), &at::arena_sources); });
    all.add_case("measure", work.name, on_heap, [=] { return measure(start(), &at::heap_sources); });
    all.add_case("measure", work.name, on_arena, [=] { return measure(start(), &at::arena_sources); });
    if (work.options != 0) return;
    all.add_case("copy", work.name, on_heap, [&] { return copy_on_heap(work); });
    all.add_case("copy", work.name, on_arena, [&] { return copy_on_arena(work); });
    all.add_case("copy", work.name, reused, [&] { return copy_reused(work); });
    all.add_case("compare", work.name, on_heap, [&] { return compare(work); });
  });
}

}  // namespace contest
