// One thread changes the input while another decodes it, as a process that shares the memory could. What is read is
// anyone's guess; but no write leaves a block, every block comes back once, and the record is a good one. Most is seen
// by the address sanitizer. A race on purpose: nothing for the thread sanitizer.
//
//   changing_input MILLISECONDS
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "naive/decoder.hpp"

namespace {

using byte_string = std::vector<unsigned char>;

// --- Inputs: every field of a message, with long lists ---

void put_varint(byte_string &out, std::uint64_t value) {
  for (; value >= 0x80; value >>= 7) out.push_back(static_cast<unsigned char>(value | 0x80));
  out.push_back(static_cast<unsigned char>(value));
}

void put_delimited(byte_string &out, const byte_string &content) {
  put_varint(out, content.size());
  out.insert(out.end(), content.begin(), content.end());
}

byte_string input_for(const naive::message &type, unsigned elements) {
  byte_string result;
  for (std::size_t index = 0; index < type.members.size(); ++index) {
    const naive::member &field = type.members[index];
    const unsigned times = field.what == naive::sort::numbers    ? elements
                           : field.what == naive::sort::messages ? elements / 10 + 1
                                                                 : 1;
    for (unsigned element = 0; element < times; ++element) {
      put_varint(result, (index + 1) * 8 + (field.is_varint() ? 0 : 2));
      if (field.is_varint()) {
        // Of one, two or three bytes.
        put_varint(result, std::uint64_t{5} << 7 * (element % 3));
      } else if (field.nested != nullptr) {
        put_delimited(result, input_for(*field.nested, elements / 10));
      } else {
        put_delimited(result, byte_string(element + 20, 'x'));
      }
    }
  }
  return result;
}

// --- Memory ---

#if defined(__SANITIZE_ADDRESS__)
constexpr bool has_sanitizer = true;
#elif defined(__has_feature)
constexpr bool has_sanitizer = __has_feature(address_sanitizer);
#else
constexpr bool has_sanitizer = false;
#endif

// Blocks of exactly the size asked for and some bytes more, which must stay; the sanitizer looks after them itself.
class guarded_memory {
 public:
  guarded_memory() = default;
  guarded_memory(const guarded_memory &) = delete;
  guarded_memory &operator=(const guarded_memory &) = delete;
  // A nested message that comes again drops what the first one owned.
  ~guarded_memory() {
    for (void *const block : blocks_) std::free(block);
  }

  static void *take(std::size_t size, void *context) {
    auto *const block = static_cast<unsigned char *>(std::malloc(size + beyond + (size + beyond == 0)));
    if (block == nullptr) naive::broken("no memory");
    std::memset(block, 0xa5, size);
    std::memset(block + size, canary, beyond);
    auto &self = *static_cast<guarded_memory *>(context);
    self.blocks_.insert(block);
    self.ends_.push_back(block + size);
    return block;
  }
  static void give(void *block, void *context) {
    auto &self = *static_cast<guarded_memory *>(context);
    if (self.blocks_.erase(block) == 0) naive::broken("a block came back that is not out");
    ++self.returned;
    std::free(block);
  }

  bool intact() const {
    for (const unsigned char *const end : ends_) {
      for (std::size_t i = 0; i < beyond; ++i) {
        if (end[i] != canary) return false;
      }
    }
    return true;
  }

  std::size_t returned = 0;

 private:
  static constexpr std::size_t beyond = has_sanitizer ? 0 : 256;
  static constexpr unsigned char canary = 0xc7;
  std::set<void *> blocks_;
  std::vector<const unsigned char *> ends_;
};

// --- The two threads ---

// Changes a byte after another, often one of the first ones, and puts each back after some time or at once.
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

void decode_once(const naive::message &type, const byte_string &input, std::uint32_t options) {
  const naive::calls &calls = *type.functions;
  alignas(16) unsigned char record[4096], copy[4096];
  guarded_memory memory, copied;
  std::memset(record, 0x5a, type.size);
  std::memset(copy, 0x5a, type.size);
  const int result = calls.decode(record, input.data(), input.size(), guarded_memory::take, &memory, options);
  if (!memory.intact()) naive::broken(std::string(type.name) + ": something was written beyond a block");
  if (result > CODEC_OK || result < CODEC_ERR_NO_MEMORY) naive::broken(std::string(type.name) + ": no result");
  if (result == CODEC_OK) {
    // By reference the bytes change still, so they are only read.
    const std::size_t size = calls.encode(record, nullptr, 0, nullptr, nullptr, options);
    byte_string written(size);
    if (calls.encode(record, written.data(), size, nullptr, nullptr, options) != size)
      naive::broken(std::string(type.name) + ": measured and written differ");
    if (calls.duplicate(copy, record, guarded_memory::take, &copied) != CODEC_OK || !copied.intact())
      naive::broken(std::string(type.name) + ": cannot be copied");
    if (options == 0 && calls.compare(record, copy) != 0)
      naive::broken(std::string(type.name) + ": the copy is not equal");
    calls.free(copy, guarded_memory::give, &copied, 0);
  }
  const std::size_t owned = naive::blocks_owned(type, record, options != 0);
  calls.free(record, guarded_memory::give, &memory, options);
  if (memory.returned != owned) naive::broken(std::string(type.name) + ": not every block came back");
}

}  // namespace

int main(int count, char **arguments) {
  const int milliseconds = count == 2 ? std::atoi(arguments[1]) : 0;
  if (milliseconds < 1) naive::broken("usage: changing_input MILLISECONDS");
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
