// The library, with a bump allocator and with the C library's; and another build of it.
#include <algorithm>
#include <cstring>

#include "contest.hpp"
#include "workloads.hpp"

namespace contest {
namespace {

constexpr const char *with_pool = "pavo_zorv";
constexpr const char *with_pool_released = "pavo_zorv_released";
constexpr const char *with_heap = "pavo_zorv_malloc";

// A record on the heap, decoded from each message; and a record, a pool and a buffer to work with.
template <class Record>
struct bench {
  bench(const workload<Record> &what, const build &from)
      : use(from),
        work(what),
        sources(what.wire.size()),
        memory(pool_capacity(what.longest())),
        output(what.longest() + slack) {
    for (std::size_t i = 0; i < sources.size(); ++i) {
      const int result = use.decode(&sources[i], what.wire[i], allocate_from_heap, nullptr, 0);
      require(result == CODEC_OK, "pavo_zorv decodes the workload", what.name);
      require(encoding(sources[i]) == what.wire[i], "pavo_zorv encodes what it has decoded", what.name);
    }
  }
  bench(const bench &) = delete;
  bench &operator=(const bench &) = delete;
  ~bench() {
    for (Record &source : sources) use.free(&source, release_to_heap, nullptr, 0);
  }

  const operations<Record> use;
  const workload<Record> &work;
  std::vector<Record> sources;
  pool memory;
  byte_string output;
  std::vector<pavo_zorv_segment> pieces;
  Record record{};
};

// Where a record's memory comes from and goes to.
struct callbacks {
  pavo_zorv_allocate allocate;
  pavo_zorv_release release;
};
constexpr callbacks pool_callbacks{pool::allocate, pool::ignore};
constexpr callbacks heap_callbacks{allocate_from_heap, release_to_heap};

template <class Record>
using shared = std::shared_ptr<bench<Record>>;

template <class Record>
void check_decoding(const shared<Record> &on, const callbacks &with) {
  for (const byte_string &message : on->work.wire) {
    on->memory.reset();
    const int result = on->use.decode(&on->record, message, with.allocate, &on->memory, on->work.options);
    require(result == CODEC_OK && encoding(on->record) == message, "pavo_zorv decodes", on->work.name);
    on->use.free(&on->record, with.release, &on->memory, on->work.options);
  }
}

template <class Record>
repeat decode_into_pool(const shared<Record> &on) {
  check_decoding(on, pool_callbacks);
  return repeated([on] {
    for (const byte_string &message : on->work.wire) {
      on->memory.reset();
      on->use.decode(&on->record, message, pool::allocate, &on->memory, on->work.options);
      keep(&on->record);
    }
  });
}

template <class Record>
repeat decode_into_pool_and_release(const shared<Record> &on) {
  check_decoding(on, pool_callbacks);
  return repeated([on] {
    for (const byte_string &message : on->work.wire) {
      on->memory.reset();
      on->use.decode(&on->record, message, pool::allocate, &on->memory, on->work.options);
      keep(&on->record);
      on->use.free(&on->record, pool::ignore, nullptr, on->work.options);
    }
  });
}

template <class Record>
repeat decode_with_malloc(const shared<Record> &on) {
  check_decoding(on, heap_callbacks);
  return repeated([on] {
    for (const byte_string &message : on->work.wire) {
      on->use.decode(&on->record, message, allocate_from_heap, nullptr, on->work.options);
      keep(&on->record);
      on->use.free(&on->record, release_to_heap, nullptr, on->work.options);
    }
  });
}

template <class Record>
repeat measure(const shared<Record> &on) {
  return repeated([on] {
    std::size_t sum = 0;
    for (const Record &source : on->sources) sum += on->use.measure(&source, on->work.options);
    keep(&sum);
  });
}

// Encodes every message by `write`, which returns the length.
template <class Record, class Write>
repeat encode(const shared<Record> &on, Write write) {
  for (std::size_t i = 0; i < on->sources.size(); ++i) {
    const byte_string &expected = on->work.wire[i];
    const std::size_t length = write(*on, on->sources[i]);
    // By reference, what is not written is referred to, and a table of pieces must say where it is.
    std::uint64_t referenced = 0;
    for (const pavo_zorv_segment &piece : on->pieces)
      if (piece.start < on->output.data() || piece.start >= on->output.data() + length) referenced += piece.length;
    require(referenced == 0 ? length == expected.size() && std::memcmp(on->output.data(), expected.data(), length) == 0
                            : length + referenced <= expected.size() &&
                                  expected.size() - length - referenced < expected.size() / 16,
            "pavo_zorv encodes", on->work.name);
    require((referenced != 0) == (on->work.options != 0), "pavo_zorv refers to bytes", on->work.name);
  }
  return repeated([on, write] {
    for (const Record &source : on->sources) {
      write(*on, source);
      keep(on->output.data());
    }
  });
}

template <class Record>
std::size_t write(bench<Record> &on, const Record &source, std::size_t length) {
  if (on.pieces.empty()) return on.use.encode(&source, on.output.data(), length, nullptr, nullptr, on.work.options);
  auto count = static_cast<std::uint32_t>(on.pieces.size());
  return on.use.encode(&source, on.output.data(), length, on.pieces.data(), &count, on.work.options);
}

// In reference mode, with the table of pieces to send. Its capacity is determined once.
template <class Record>
void make_room_for_pieces(const shared<Record> &on) {
  if (on->work.options == 0) return;
  std::uint32_t needed = 0;
  on->use.encode(&on->sources[0], nullptr, 0, nullptr, &needed, on->work.options);
  on->pieces.resize(needed);
}

template <class Record>
repeat encode_in_two_calls(const shared<Record> &on) {
  make_room_for_pieces(on);
  return encode(on, [](bench<Record> &with, const Record &source) {
    return write(with, source, with.use.measure(&source, with.work.options));
  });
}

template <class Record>
repeat encode_in_one_call(const shared<Record> &on) {
  make_room_for_pieces(on);
  return encode(on, [](bench<Record> &with, const Record &source) { return write(with, source, with.output.size()); });
}

template <class Record>
void check_copying(const shared<Record> &on, const callbacks &with) {
  for (std::size_t i = 0; i < on->sources.size(); ++i) {
    on->memory.reset();
    const int result = on->use.duplicate(&on->record, &on->sources[i], with.allocate, &on->memory);
    require(result == CODEC_OK && encoding(on->record) == on->work.wire[i], "pavo_zorv copies", on->work.name);
    on->use.free(&on->record, with.release, &on->memory, 0);
  }
}

template <class Record>
repeat copy_into_pool(const shared<Record> &on) {
  check_copying(on, pool_callbacks);
  return repeated([on] {
    for (const Record &source : on->sources) {
      on->memory.reset();
      on->use.duplicate(&on->record, &source, pool::allocate, &on->memory);
      keep(&on->record);
    }
  });
}

template <class Record>
repeat copy_with_malloc(const shared<Record> &on) {
  check_copying(on, heap_callbacks);
  return repeated([on] {
    for (const Record &source : on->sources) {
      on->use.duplicate(&on->record, &source, allocate_from_heap, nullptr);
      keep(&on->record);
      on->use.free(&on->record, release_to_heap, nullptr, 0);
    }
  });
}

// With an equal record elsewhere in memory, so that everything is compared.
template <class Record>
repeat compare(const shared<Record> &on, const shared<Record> &other) {
  for (std::size_t i = 0; i < on->sources.size(); ++i)
    require(on->use.compare(&on->sources[i], &other->sources[i]) == 0, "pavo_zorv finds equal records equal",
            on->work.name);
  Record empty{};
  require(on->use.compare(&on->sources[0], &empty) > 0, "pavo_zorv finds a difference", on->work.name);
  return repeated([on, other] {
    int sum = 0;
    for (std::size_t i = 0; i < on->sources.size(); ++i) sum |= on->use.compare(&on->sources[i], &other->sources[i]);
    keep(&sum);
  });
}

void enter_build(roll &all, const std::string &name, const build &from) {
  all.works->each([&]<class Record>(const workload<Record> &work) {
    const auto start = [&work, from] { return std::make_shared<bench<Record>>(work, from); };
    all.add_case("decode", work.name, name, [=] { return decode_into_pool(start()); });
    all.add_case("encode", work.name, name, [=] { return encode_in_two_calls(start()); });
    all.add_case("encode_once", work.name, name, [=] { return encode_in_one_call(start()); });
    all.add_case("measure", work.name, name, [=] { return measure(start()); });
    if (work.options != 0) return;  // copying and comparing have no reference mode
    all.add_case("copy", work.name, name, [=] { return copy_into_pool(start()); });
    all.add_case("compare", work.name, name, [=] { return compare(start(), start()); });
  });
}

}  // namespace

void enter_library(roll &all) {
  all.add_contestant(
      {with_pool, "pool, reset for each message; nothing is released", "copied, NUL-terminated", "no UTF-8"});
  all.add_contestant(
      {with_pool_released, "the same, and free_ext with a callback that does nothing", "copied", "no UTF-8"});
  all.add_contestant({with_heap, "malloc, and free_ext with free", "copied", "no UTF-8"});
  enter_build(all, with_pool, {});
  all.works->each([&]<class Record>(const workload<Record> &work) {
    const auto start = [&work] { return std::make_shared<bench<Record>>(work, build()); };
    all.add_case("decode", work.name, with_pool_released, [=] { return decode_into_pool_and_release(start()); });
    all.add_case("decode", work.name, with_heap, [=] { return decode_with_malloc(start()); });
    if (work.options == 0) all.add_case("copy", work.name, with_heap, [=] { return copy_with_malloc(start()); });
  });
}

void enter_other_library(roll &all, const std::string &name, const std::string &path) {
  enter_build(all, name, build(path));
}

}  // namespace contest
