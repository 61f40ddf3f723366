// Eight threads decode, write, copy, compare and release records of their own, and write and compare records that they
// share. What a thread sees must be what one thread alone sees.
//
//   many_threads INPUTS ROUNDS     (fuzz/inputs.hpp says what inputs are)
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <utility>
#include <vector>

#include "fuzz/inputs.hpp"
#include "naive/decoder.hpp"

namespace {

using bytes = std::vector<unsigned char>;

// As in the corpus of the fuzzers: the first byte chooses the message, which starts after the sixth.
struct input {
  const naive::message *type;
  bytes content;
};

// Memory that comes back all at once: inputs in which a nested message comes again drop some.
class pool {
 public:
  pool() = default;
  pool(const pool &) = delete;
  pool &operator=(const pool &) = delete;
  ~pool() {
    for (void *const block : blocks_) std::free(block);
  }
  static void *take(std::size_t size, void *context) {
    void *const block = std::malloc(size != 0 ? size : 1);
    static_cast<pool *>(context)->blocks_.push_back(block);
    return block;
  }
  static void note(void *, void *context) { ++static_cast<pool *>(context)->returned; }

  std::size_t returned = 0;

 private:
  std::vector<void *> blocks_;
};

struct record {
  alignas(16) unsigned char storage[4096] = {};
};

bytes encoding_of(const naive::message &type, const record &from) {
  const std::size_t size = type.functions->encode(from.storage, nullptr, 0, nullptr, nullptr, 0);
  bytes result(size);
  type.functions->encode(from.storage, result.data(), size, nullptr, nullptr, 0);
  return result;
}

// A record that all threads read, and what one thread alone made of it.
struct shared {
  const naive::message *type;
  bytes content;
  record read;
  int result;
  bytes written;
};

void make_shared(const input &from, shared &to, pool &memory) {
  to.type = from.type;
  to.content = from.content;
  to.result =
      from.type->functions->decode(to.read.storage, to.content.data(), to.content.size(), pool::take, &memory, 0);
  to.written = encoding_of(*to.type, to.read);
}

bool agrees(const shared &with) {
  const naive::calls &calls = *with.type->functions;
  pool memory;
  record own, copy;
  bool good =
      calls.decode(own.storage, with.content.data(), with.content.size(), pool::take, &memory, 0) == with.result;
  good = good && encoding_of(*with.type, own) == with.written;
  good = good && encoding_of(*with.type, with.read) == with.written;
  good = good && calls.compare(own.storage, with.read.storage) == 0;
  good = good && calls.duplicate(copy.storage, with.read.storage, pool::take, &memory) == CODEC_OK;
  good = good && calls.compare(copy.storage, with.read.storage) == 0;
  const std::size_t owned =
      naive::blocks_owned(*with.type, copy.storage, false) + naive::blocks_owned(*with.type, own.storage, false);
  calls.free(copy.storage, pool::note, &memory, 0);
  calls.free(own.storage, pool::note, &memory, 0);
  return good && memory.returned == owned;
}

std::vector<input> inputs_of(const char *name) {
  std::vector<input> result;
  const bool good = fuzz::for_each_input(name, [&](const char *, const unsigned char *data, std::size_t size) {
    if (size < 6) return;
    result.push_back({&naive::messages()[data[0] % naive::messages().size()], bytes(data + 6, data + size)});
  });
  if (!good) naive::broken(std::string(name) + " cannot be read");
  return result;
}

}  // namespace

int main(int count, char **arguments) {
  if (count != 3) naive::broken("usage: many_threads INPUTS ROUNDS");
  const std::vector<input> inputs = inputs_of(arguments[1]);
  const int rounds = std::atoi(arguments[2]);
  if (inputs.empty() || rounds < 1) naive::broken("nothing to do");
  pool memory;
  std::vector<shared> records(inputs.size());
  for (std::size_t i = 0; i < inputs.size(); ++i) make_shared(inputs[i], records[i], memory);

  constexpr unsigned threads = 8;
  std::atomic<unsigned long> done{0}, wrong{0};
  std::vector<std::thread> running;
  for (unsigned number = 0; number < threads; ++number) {
    running.emplace_back([&, number] {
      for (int round = 0; round < rounds; ++round) {
        // All threads start elsewhere, and meet.
        for (std::size_t i = 0; i < records.size(); ++i) {
          if (!agrees(records[(i + number * records.size() / threads) % records.size()])) ++wrong;
          ++done;
        }
      }
    });
  }
  for (std::thread &thread : running) thread.join();
  std::printf("%u threads, %zu records, %lu rounds of all operations, %lu wrong\n", threads, records.size(),
              done.load(), wrong.load());
  return wrong == 0 ? 0 : 1;
}
