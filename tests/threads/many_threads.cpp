// Eight threads decode, encode, copy, compare and release their own records, and encode and compare shared records. The
// results must be those of a single thread.
//
//   many_threads INPUTS ROUNDS     (fuzz/inputs.hpp says what inputs are)
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <thread>
#include <utility>
#include <vector>

#include "fuzz/inputs.hpp"
#include "naive/view.hpp"
#include "owned_record.hpp"

namespace {

using test::byte_string;

// As in the corpus of the fuzzers: the first byte chooses the message, which starts after the sixth.
struct input {
  const naive::message *type;
  byte_string content;
};

byte_string encoding_of(const naive::message &type, const test::owned_record &from) {
  const std::size_t size = type.functions->encode(from.data(), nullptr, 0, nullptr, nullptr, 0);
  byte_string result(size);
  type.functions->encode(from.data(), result.data(), size, nullptr, nullptr, 0);
  return result;
}

int decode(const naive::message &type, const byte_string &bytes, test::owned_record &record) {
  const int result = record.decode(bytes.data(), bytes.size());
  record.dropped = record.memory.live() - naive::blocks_owned({type, record.data()});
  return result;
}

// A record that all threads read, and the result of a single thread.
struct shared {
  explicit shared(const input &from)
      : type(from.type),
        content(from.content),
        record(*type->functions),
        result(decode(*type, content, record)),
        written(encoding_of(*type, record)) {}

  const naive::message *type;
  byte_string content;
  test::owned_record record;
  int result;
  byte_string written;
};

bool agrees(const shared &with) {
  const test::calls &calls = *with.type->functions;
  test::owned_record own(calls), copy(calls);
  bool good = decode(*with.type, with.content, own) == with.result;
  good = good && encoding_of(*with.type, own) == with.written;
  good = good && encoding_of(*with.type, with.record) == with.written;
  good = good && calls.compare(own.data(), with.record.data()) == 0;
  const bool is_copied = copy.copy(with.record.data()) == CODEC_OK;
  return good && is_copied && calls.compare(copy.data(), with.record.data()) == 0;
}

std::vector<input> inputs_of(const char *name) {
  std::vector<input> result;
  const bool good = fuzz::for_each_input(name, [&](const char *, const unsigned char *data, std::size_t size) {
    if (size < 6) return;
    result.push_back({&naive::messages()[data[0] % naive::messages().size()], byte_string(data + 6, data + size)});
  });
  if (!good) test::broken(std::string(name) + " cannot be read");
  return result;
}

}  // namespace

int main(int count, char **arguments) {
  if (count != 3) test::broken("usage: many_threads INPUTS ROUNDS");
  const std::vector<input> inputs = inputs_of(arguments[1]);
  const int rounds = std::atoi(arguments[2]);
  if (inputs.empty() || rounds < 1) test::broken("nothing to do");
  std::deque<shared> records(inputs.begin(), inputs.end());

  constexpr unsigned threads = 8;
  std::atomic<unsigned long> done{0}, wrong{0};
  std::vector<std::thread> running;
  for (unsigned number = 0; number < threads; ++number) {
    running.emplace_back([&, number] {
      for (int round = 0; round < rounds; ++round) {
        // Each thread starts at a different record.
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
