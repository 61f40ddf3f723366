// The library, with a bump allocator and with the C library's.
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
  explicit bench(const workload<Record> &what)
      : work(what), sources(what.wire.size()), memory(pool_capacity(what.longest())), output(what.longest()) {
    for (std::size_t i = 0; i < sources.size(); ++i) {
      const int result = operations<Record>::decode(&sources[i], what.wire[i], allocate_from_heap, nullptr, 0);
      require(result == CODEC_OK, "pavo_zorv decodes the workload", what.name);
      require(encoding(sources[i]) == what.wire[i], "pavo_zorv encodes what it has decoded", what.name);
    }
  }
  bench(const bench &) = delete;
  bench &operator=(const bench &) = delete;
  ~bench() {
    for (Record &source : sources) operations<Record>::free(&source, release_to_heap, nullptr, 0);
  }

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
std::shared_ptr<bench<Record>> checked_for_decoding(const workload<Record> &work, const callbacks &with) {
  auto on = std::make_shared<bench<Record>>(work);
  for (const byte_string &message : work.wire) {
    on->memory.reset();
    const int result = operations<Record>::decode(&on->record, message, with.allocate, &on->memory, work.options);
    require(result == CODEC_OK && encoding(on->record) == message, "pavo_zorv decodes", work.name);
    operations<Record>::free(&on->record, with.release, &on->memory, work.options);
  }
  return on;
}

template <class Record>
repeat decode_into_pool(const workload<Record> &work) {
  return repeated([on = checked_for_decoding(work, pool_callbacks)] {
    for (const byte_string &message : on->work.wire) {
      on->memory.reset();
      operations<Record>::decode(&on->record, message, pool::allocate, &on->memory, on->work.options);
      keep(&on->record);
    }
  });
}

template <class Record>
repeat decode_into_pool_and_release(const workload<Record> &work) {
  return repeated([on = checked_for_decoding(work, pool_callbacks)] {
    for (const byte_string &message : on->work.wire) {
      on->memory.reset();
      operations<Record>::decode(&on->record, message, pool::allocate, &on->memory, on->work.options);
      keep(&on->record);
      operations<Record>::free(&on->record, pool::ignore, nullptr, on->work.options);
    }
  });
}

template <class Record>
repeat decode_with_malloc(const workload<Record> &work) {
  return repeated([on = checked_for_decoding(work, heap_callbacks)] {
    for (const byte_string &message : on->work.wire) {
      operations<Record>::decode(&on->record, message, allocate_from_heap, nullptr, on->work.options);
      keep(&on->record);
      operations<Record>::free(&on->record, release_to_heap, nullptr, on->work.options);
    }
  });
}

template <class Record>
repeat measure(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  return repeated([on] {
    std::size_t sum = 0;
    for (const Record &source : on->sources)
      sum += operations<Record>::encode(&source, nullptr, 0, nullptr, nullptr, on->work.options);
    keep(&sum);
  });
}

template <class Record>
repeat encode(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  return repeated([on] {
    for (const Record &source : on->sources) {
      const std::size_t length = operations<Record>::encode(&source, nullptr, 0, nullptr, nullptr, on->work.options);
      operations<Record>::encode(&source, on->output.data(), length, nullptr, nullptr, on->work.options);
      keep(on->output.data());
    }
  });
}

// In reference mode, with the table of pieces to send. Its capacity is determined once.
template <class Record>
repeat encode_by_reference(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  std::uint32_t needed = 0;
  const std::size_t length = operations<Record>::encode(&on->sources[0], nullptr, 0, nullptr, &needed, work.options);
  std::vector<pavo_zorv_segment> &pieces = on->pieces;
  pieces.resize(needed);
  byte_string written(length);
  operations<Record>::encode(&on->sources[0], written.data(), length, pieces.data(), &needed, work.options);
  std::uint64_t referenced = 0;
  for (const pavo_zorv_segment &piece : pieces)
    if (piece.start < written.data() || piece.start >= written.data() + length) referenced += piece.length;
  const std::size_t whole = work.wire[0].size();
  require(referenced != 0 && length + referenced <= whole && whole - length - referenced < whole / 16,
          "pavo_zorv refers to the bytes that it does not write", work.name);
  return repeated([on] {
    for (const Record &source : on->sources) {
      auto count = static_cast<std::uint32_t>(on->pieces.size());
      const std::size_t size = operations<Record>::encode(&source, nullptr, 0, nullptr, nullptr, on->work.options);
      operations<Record>::encode(&source, on->output.data(), size, on->pieces.data(), &count, on->work.options);
      keep(on->output.data());
    }
  });
}

template <class Record>
std::shared_ptr<bench<Record>> checked_for_copying(const workload<Record> &work, const callbacks &with) {
  auto on = std::make_shared<bench<Record>>(work);
  for (std::size_t i = 0; i < on->sources.size(); ++i) {
    on->memory.reset();
    const int result = operations<Record>::duplicate(&on->record, &on->sources[i], with.allocate, &on->memory);
    require(result == CODEC_OK && encoding(on->record) == work.wire[i], "pavo_zorv copies", work.name);
    operations<Record>::free(&on->record, with.release, &on->memory, 0);
  }
  return on;
}

template <class Record>
repeat copy_into_pool(const workload<Record> &work) {
  return repeated([on = checked_for_copying(work, pool_callbacks)] {
    for (const Record &source : on->sources) {
      on->memory.reset();
      operations<Record>::duplicate(&on->record, &source, pool::allocate, &on->memory);
      keep(&on->record);
    }
  });
}

template <class Record>
repeat copy_into_pool_and_release(const workload<Record> &work) {
  return repeated([on = checked_for_copying(work, pool_callbacks)] {
    for (const Record &source : on->sources) {
      on->memory.reset();
      operations<Record>::duplicate(&on->record, &source, pool::allocate, &on->memory);
      keep(&on->record);
      operations<Record>::free(&on->record, pool::ignore, nullptr, 0);
    }
  });
}

template <class Record>
repeat copy_with_malloc(const workload<Record> &work) {
  return repeated([on = checked_for_copying(work, heap_callbacks)] {
    for (const Record &source : on->sources) {
      operations<Record>::duplicate(&on->record, &source, allocate_from_heap, nullptr);
      keep(&on->record);
      operations<Record>::free(&on->record, release_to_heap, nullptr, 0);
    }
  });
}

// With an equal record elsewhere in memory, so that everything is compared.
template <class Record>
repeat compare(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  auto other = std::make_shared<bench<Record>>(work);
  for (std::size_t i = 0; i < on->sources.size(); ++i)
    require(operations<Record>::compare(&on->sources[i], &other->sources[i]) == 0,
            "pavo_zorv finds equal records equal", work.name);
  Record empty{};
  require(operations<Record>::compare(&on->sources[0], &empty) > 0, "pavo_zorv finds a difference", work.name);
  return repeated([on, other] {
    int sum = 0;
    for (std::size_t i = 0; i < on->sources.size(); ++i)
      sum |= operations<Record>::compare(&on->sources[i], &other->sources[i]);
    keep(&sum);
  });
}

}  // namespace

void enter_library(roll &all) {
  all.add_contestant(
      {with_pool, "pool, reset for each message; nothing is released", "copied, NUL-terminated", "no UTF-8"});
  all.add_contestant(
      {with_pool_released, "the same, and free_ext with a callback that does nothing", "copied", "no UTF-8"});
  all.add_contestant({with_heap, "malloc, and free_ext with free", "copied", "no UTF-8"});
  all_workloads().each([&](const auto &work) {
    all.add_case("decode", work.name, with_pool, [&] { return decode_into_pool(work); });
    all.add_case("decode", work.name, with_pool_released, [&] { return decode_into_pool_and_release(work); });
    all.add_case("decode", work.name, with_heap, [&] { return decode_with_malloc(work); });
    all.add_case("measure", work.name, with_pool, [&] { return measure(work); });
    if (work.options != 0) {
      all.add_case("encode", work.name, with_pool, [&] { return encode_by_reference(work); });
      return;  // copying and comparing have no reference mode
    }
    all.add_case("encode", work.name, with_pool, [&] { return encode(work); });
    all.add_case("copy", work.name, with_pool, [&] { return copy_into_pool(work); });
    all.add_case("copy", work.name, with_pool_released, [&] { return copy_into_pool_and_release(work); });
    all.add_case("copy", work.name, with_heap, [&] { return copy_with_malloc(work); });
    all.add_case("compare", work.name, with_pool, [&] { return compare(work); });
  });
}

}  // namespace contest
