// A lower bound: bytes are moved, the record is overwritten and blocks of the library's sizes are taken, but nothing is
// encoded or decoded.
#include <cstring>
#include <numeric>

#include "contest.hpp"
#include "messages/all.hpp"
#include "workloads.hpp"

namespace contest {
namespace {

constexpr const char *lower_bound = "floor";

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

// To clear and copy a large record, the C library has a faster way than compilers know, if they do not know the size.
template <class Record>
inline std::size_t record_size() {
  std::size_t size = sizeof(Record);
  if constexpr (sizeof(Record) > 128) keep(&size);
  return size;
}

template <class Record>
struct bench {
  explicit bench(const workload<Record> &what)
      : work(what), sources(what.wire.size()), memory(pool_capacity(what.longest())), output(what.longest()) {
    for (const byte_string &message : what.wire) {
      size_recorder recorder{{}, pool(pool_capacity(message.size()))};
      const int result =
          operations<Record>().decode(&record, message, size_recorder::allocate, &recorder, what.options);
      require(result == CODEC_OK, "the library decodes, so that its blocks are known", what.name);
      blocks.push_back(std::move(recorder.sizes));
      content.emplace_back(std::reduce(blocks.back().begin(), blocks.back().end()));
      if (content.back().size() > output.size()) output.resize(content.back().size());
    }
  }

  void take_blocks(std::size_t i) {
    memory.reset();
    for (const std::size_t size : blocks[i]) keep(allocate(size, &memory));
  }

  void move(const byte_string &bytes) {
    std::memcpy(output.data(), bytes.data(), bytes.size());
    keep(output.data());
  }

  const workload<Record> &work;
  std::vector<Record> sources;
  std::vector<std::vector<std::size_t>> blocks;                 // the sizes, for each message
  std::vector<byte_string> content;                             // as many bytes as the blocks of each message hold
  const pavo_zorv_allocate volatile allocate = pool::allocate;  // called through a pointer, as in the library
  pool memory;
  byte_string output;
  Record record{};
};

template <class Record>
repeat decode(std::shared_ptr<bench<Record>> on) {
  return repeated([on] {
    for (std::size_t i = 0; i < on->blocks.size(); ++i) {
      std::memset(static_cast<void *>(&on->record), 0, record_size<Record>());
      keep(&on->record);
      on->take_blocks(i);
      on->move(on->work.wire[i]);
    }
  });
}

template <class Record>
repeat copy(std::shared_ptr<bench<Record>> on) {
  return repeated([on] {
    for (std::size_t i = 0; i < on->blocks.size(); ++i) {
      std::memcpy(static_cast<void *>(&on->record), &on->sources[i], record_size<Record>());
      keep(&on->record);
      on->take_blocks(i);
      on->move(on->content[i]);
    }
  });
}

// The presence flags of a message and of all messages nested in it, combined: what each encoding call has to read.
template <class Record>
std::uint32_t presence_of_all(const Record &record) {
  std::uint32_t bits = record.presence;
  pavo_zorv::for_each_row<Record>([&](auto index) {
    constexpr auto &row = pavo_zorv::row_at<Record, index>;
    if constexpr (row.type == pavo_zorv::kind::nested) bits |= presence_of_all(record.*row.value);
  });
  return bits;
}

template <class Record>
void read_presence(const Record &record) {
  const std::uint32_t bits = presence_of_all(record);
  keep(&bits);
}

template <class Record>
repeat measure(std::shared_ptr<bench<Record>> on) {
  return repeated([on] {
    for (const Record &source : on->sources) read_presence(source);
  });
}

template <class Record>
repeat encode(std::shared_ptr<bench<Record>> on, unsigned calls) {
  return repeated([on, calls] {
    for (std::size_t i = 0; i < on->sources.size(); ++i) {
      for (unsigned call = 0; call < calls; ++call) read_presence(on->sources[i]);
      on->move(on->work.wire[i]);
    }
  });
}

template <class Record>
repeat compare(std::shared_ptr<bench<Record>> on) {
  auto others = std::make_shared<std::vector<byte_string>>(on->work.wire);
  return repeated([on, others] {
    int sum = 0;
    for (std::size_t i = 0; i < others->size(); ++i)
      sum |= std::memcmp(on->work.wire[i].data(), (*others)[i].data(), (*others)[i].size());
    keep(&sum);
  });
}

}  // namespace

void enter_floor(roll &all) {
  all.add_contestant({lower_bound, "the record cleared or copied, and blocks of our sizes from a pool",
                      "moved by memcpy, or compared by memcmp; presence flags are read", "none"});
  all.works->each([&]<class Record>(const workload<Record> &work) {
    const auto start = [&work] { return std::make_shared<bench<Record>>(work); };
    all.add_case("decode", work.name, lower_bound, [=] { return decode(start()); });
    all.add_case("encode", work.name, lower_bound, [=] { return encode(start(), 2); });
    all.add_case("encode_once", work.name, lower_bound, [=] { return encode(start(), 1); });
    all.add_case("measure", work.name, lower_bound, [=] { return measure(start()); });
    if (work.options != 0) return;
    all.add_case("copy", work.name, lower_bound, [=] { return copy(start()); });
    all.add_case("compare", work.name, lower_bound, [=] { return compare(start()); });
  });
}

}  // namespace contest
