// Lower bounds: the bytes are moved and blocks of the same sizes are allocated, but nothing is decoded. No codec that
// owns its memory can be faster.
#include <cstring>

#include "contest.hpp"
#include "messages/all.hpp"
#include "workloads.hpp"

namespace contest {
namespace {

constexpr const char *bytes_only = "floor_memcpy";
constexpr const char *bytes_and_pool = "floor_memcpy_clear_pool";
constexpr const char *bytes_and_heap = "floor_memcpy_clear_malloc";
constexpr const char *bytes_compared = "floor_memcmp";
constexpr const char *record_overwritten = "floor_record";
constexpr const char *presence_read = "floor_presence";

// An allocator that records the requested sizes.
struct size_recorder {
  std::vector<std::size_t> sizes;
  pool memory;

  static void *allocate(std::size_t size, void *context) {
    auto *const self = static_cast<size_recorder *>(context);
    self->sizes.push_back(size);
    return self->memory.take(size);
  }
};

template <class Record>
struct bench {
  explicit bench(const workload<Record> &what)
      : work(what), memory(pool_capacity(what.longest())), output(what.longest()) {
    for (const byte_string &message : what.wire) {
      size_recorder recorder{{}, pool(pool_capacity(message.size()))};
      operations<Record>::decode(&record, message, size_recorder::allocate, &recorder, what.options);
      blocks.push_back(std::move(recorder.sizes));
      most = std::max(most, blocks.back().size());
    }
    taken.resize(most);
  }

  const workload<Record> &work;
  std::vector<std::vector<std::size_t>> blocks;
  std::size_t most = 0;
  std::vector<void *> taken;
  pool memory;
  byte_string output;
  Record record{};
};

template <class Record>
repeat move_bytes(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  return repeated([on] {
    for (const byte_string &message : on->work.wire) {
      std::memcpy(on->output.data(), message.data(), message.size());
      keep(on->output.data());
    }
  });
}

template <class Record>
repeat move_bytes_and_take_from_pool(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  // Called through a pointer, as in the library.
  const auto allocate = std::make_shared<pavo_zorv_allocate>(pool::allocate);
  return repeated([on, allocate] {
    for (std::size_t i = 0; i < on->work.wire.size(); ++i) {
      std::memset(static_cast<void *>(&on->record), 0, sizeof on->record);
      keep(&on->record);
      on->memory.reset();
      for (const std::size_t size : on->blocks[i]) keep((*allocate)(size, &on->memory));
      std::memcpy(on->output.data(), on->work.wire[i].data(), on->work.wire[i].size());
      keep(on->output.data());
    }
  });
}

template <class Record>
repeat move_bytes_and_take_from_heap(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  const auto allocate = std::make_shared<pavo_zorv_allocate>(allocate_from_heap);
  return repeated([on, allocate] {
    for (std::size_t i = 0; i < on->work.wire.size(); ++i) {
      std::memset(static_cast<void *>(&on->record), 0, sizeof on->record);
      keep(&on->record);
      std::size_t count = 0;
      for (const std::size_t size : on->blocks[i]) on->taken[count++] = (*allocate)(size, nullptr);
      std::memcpy(on->output.data(), on->work.wire[i].data(), on->work.wire[i].size());
      keep(on->output.data());
      for (std::size_t k = 0; k < count; ++k) std::free(on->taken[k]);
    }
  });
}

template <class Record>
repeat compare_bytes(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  auto others = std::make_shared<std::vector<byte_string>>(work.wire);
  return repeated([on, others] {
    int sum = 0;
    for (std::size_t i = 0; i < others->size(); ++i)
      sum |= std::memcmp(on->work.wire[i].data(), (*others)[i].data(), (*others)[i].size());
    keep(&sum);
  });
}

// The cost of a record whatever its content: decoding and copying overwrite all of it.
template <class Record>
repeat clear_record(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  return repeated([on] {
    for (std::size_t i = 0; i < on->work.wire.size(); ++i) {
      std::size_t size = sizeof on->record;
      keep(&size);
      std::memset(static_cast<void *>(&on->record), 0, size);
      keep(&on->record);
    }
  });
}

template <class Record>
repeat copy_record(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  auto sources = std::make_shared<std::vector<Record>>(work.wire.size());
  return repeated([on, sources] {
    for (const Record &source : *sources) {
      std::size_t size = sizeof source;
      keep(&size);
      std::memcpy(static_cast<void *>(&on->record), &source, size);
      keep(&on->record);
    }
  });
}

// The presence flags of a message and of all messages nested in it, combined.
template <class Record>
std::uint32_t presence_of_all(const Record &record) {
  std::uint32_t bits = record.presence;
  pavo_zorv::for_each_row<Record>([&](auto index) {
    constexpr auto &row = pavo_zorv::row_at<Record, index>;
    if constexpr (row.type == pavo_zorv::kind::nested) bits |= presence_of_all(record.*row.value);
  });
  return bits;
}

// What every call that encodes has to read at least.
template <class Record>
repeat read_presence(const workload<Record> &work, unsigned calls) {
  auto sources = std::make_shared<std::vector<Record>>(work.wire.size());
  return repeated([sources, calls] {
    for (const Record &source : *sources) {
      for (unsigned call = 0; call < calls; ++call) {
        const std::uint32_t bits = presence_of_all(source);
        keep(&bits);
      }
    }
  });
}

}  // namespace

void enter_floors(roll &all) {
  all.add_contestant({bytes_only, "none", "the encoding is copied by memcpy, nothing is read", "none"});
  all.add_contestant({bytes_and_pool, "the record cleared, and our block sizes from a pool", "as above", "none"});
  all.add_contestant(
      {bytes_and_heap, "the record cleared, and our block sizes from malloc, freed", "as above", "none"});
  all.add_contestant({bytes_compared, "none", "two encodings are compared by memcmp", "none"});
  all.add_contestant({record_overwritten, "none", "the record alone is cleared or copied", "none"});
  all.add_contestant({presence_read, "none", "the presence flags are read: once to measure, twice to encode", "none"});
  all_workloads().each([&](const auto &work) {
    const bool copyable = work.options == 0;
    for (const char *operation : {"decode", "copy"}) {
      if (!copyable && std::strcmp(operation, "copy") == 0) continue;
      all.add_case(operation, work.name, bytes_only, [&] { return move_bytes(work); });
      all.add_case(operation, work.name, bytes_and_pool, [&] { return move_bytes_and_take_from_pool(work); });
      all.add_case(operation, work.name, bytes_and_heap, [&] { return move_bytes_and_take_from_heap(work); });
    }
    all.add_case("encode", work.name, bytes_only, [&] { return move_bytes(work); });
    all.add_case("decode", work.name, record_overwritten, [&] { return clear_record(work); });
    if (copyable) all.add_case("copy", work.name, record_overwritten, [&] { return copy_record(work); });
    all.add_case("measure", work.name, presence_read, [&] { return read_presence(work, 1); });
    all.add_case("encode", work.name, presence_read, [&] { return read_presence(work, 2); });
    if (copyable) all.add_case("compare", work.name, bytes_compared, [&] { return compare_bytes(work); });
  });
}

}  // namespace contest
