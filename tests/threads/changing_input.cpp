// One thread changes the input while another decodes it, as a process that shares the memory could. What is read is not
// determined, but nothing is written outside a block, every block is released once, and the record is valid. The
// address sanitizer detects most violations. This is a race on purpose, and not for the thread sanitizer.
//
//   changing_input MILLISECONDS
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "naive/view.hpp"
#include "owned_record.hpp"

namespace {

using test::append;
using test::byte_string;

// --- Inputs: every field of a message, with long lists ---

byte_string input_for(const naive::message &type, unsigned elements) {
  byte_string result;
  for (const naive::member &member : type.members) {
    const unsigned times = member.kind == naive::kind::integer_list   ? elements
                           : member.kind == naive::kind::message_list ? elements / 10 + 1
                                                                      : 1;
    for (unsigned element = 0; element < times; ++element) {
      switch (member.wire()) {
        case naive::wire::varint:
          // Of one, two or three bytes.
          append(result, test::varint_field(member.number, std::uint64_t{5} << 7 * (element % 3)));
          break;
        case naive::wire::delimited:
          append(result, test::delimited_field(member.number, member.nested != nullptr
                                                                  ? input_for(*member.nested, elements / 10)
                                                                  : byte_string(element + 20, 'x')));
          break;
      }
    }
  }
  return result;
}

// --- The two threads ---

// Changes one byte after another, often near the beginning, and restores each at once or later.
void disturb(byte_string &input, const byte_string &before, const std::atomic<bool> &stop) {
  std::uint64_t number = 1;
  while (!stop.load(std::memory_order_relaxed)) {
    number = number * 6364136223846793005 + 1442695040888963407;
    const auto any = static_cast<std::size_t>(number >> 32);
    const std::size_t place = any % (any % 4 != 0 ? input.size() : std::min<std::size_t>(input.size(), 64));
    const unsigned char values[] = {static_cast<unsigned char>(before[place] ^ 0x80), 0x08, before[0], 0x00,
                                    static_cast<unsigned char>(before[place] ^ 1u << number % 8)};
    const std::atomic_ref<unsigned char> byte(input[place]);
    byte.store(values[(number >> 20) % 5], std::memory_order_relaxed);
    for (std::uint64_t wait = (number >> 40) % 512; wait > 1 && !stop.load(std::memory_order_relaxed); --wait) continue;
    byte.store(before[place], std::memory_order_relaxed);
  }
}

// A write may leave a block by more than a few bytes.
constexpr std::size_t guard = 256;

void decode_once(const naive::message &type, const byte_string &input, std::uint32_t options) {
  const test::calls &calls = *type.functions;
  test::owned_record record(calls, options, guard);
  const int result = record.decode(input.data(), input.size());
  if (!record.memory.intact()) test::broken(std::string(type.name) + ": something was written beyond a block");
  if (result > CODEC_OK || result < CODEC_ERR_NO_MEMORY) test::broken(std::string(type.name) + ": no result");
  record.dropped = record.memory.live() - naive::blocks_owned({type, record.data()}, options != 0);
  if (result != CODEC_OK) return;
  // Referenced bytes still change, so they are only read.
  const std::size_t size = calls.encode(record.data(), nullptr, 0, nullptr, nullptr, options);
  byte_string written(size);
  if (calls.encode(record.data(), written.data(), size, nullptr, nullptr, options) != size)
    test::broken(std::string(type.name) + ": measured and written differ");
  test::owned_record copy(calls, 0, guard);
  if (copy.copy(record.data()) != CODEC_OK || !copy.memory.intact())
    test::broken(std::string(type.name) + ": cannot be copied");
  if (options == 0 && calls.compare(record.data(), copy.data()) != 0)
    test::broken(std::string(type.name) + ": the copy is not equal");
}

}  // namespace

int main(int count, char **arguments) {
  const int milliseconds = count == 2 ? std::atoi(arguments[1]) : 0;
  if (milliseconds < 1) test::broken("usage: changing_input MILLISECONDS");
  unsigned long decoded = 0;
  std::size_t longest = 0;
  const std::size_t turns = naive::messages().size();
  for (const naive::message &type : naive::messages()) {
    const byte_string before = input_for(type, 300);
    longest = std::max(longest, before.size());
    byte_string input = before;
    std::atomic<bool> stop{false};
    std::thread other([&] { disturb(input, before, stop); });
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::microseconds(1000 * milliseconds / static_cast<int>(turns));
    do {
      decode_once(type, input, 0);
      if (type.functions->takes_options) decode_once(type, input, PAVO_ZORV_REFERENCE);
      ++decoded;
    } while (std::chrono::steady_clock::now() < end);
    stop = true;
    other.join();
  }
  std::printf("%zu messages of up to %zu bytes, decoded %lu times while they changed\n", turns, longest, decoded);
  return 0;
}
