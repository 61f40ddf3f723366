// Decodes every input up to a number of bytes, as each message and in each mode, and compares result, record and
// memory with the naive decoder. Each input ends at an inaccessible page.
//
//   every_short_input LONGEST [MESSAGE...]
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "naive/decoder.hpp"

namespace {

using naive::message;

// Memory for a few small blocks, handed out from the start again for each input.
class small_blocks {
 public:
  static void *allocate(std::size_t size, void *context) { return static_cast<small_blocks *>(context)->take(size); }
  static void release(void *block, void *context) { static_cast<small_blocks *>(context)->give(block); }

  void reset() { count_ = live_ = used_ = 0; }
  std::size_t requests() const { return count_; }
  std::size_t size(std::size_t request) const { return blocks_[request].size; }
  std::size_t live() const { return live_; }
  std::int64_t size_of(const void *start) const {
    for (std::size_t i = 0; i < count_; ++i) {
      if (blocks_[i].start == start && blocks_[i].out) return static_cast<std::int64_t>(blocks_[i].size);
    }
    return -1;
  }

 private:
  struct block {
    unsigned char *start;
    std::size_t size;
    bool out;
  };

  void *take(std::size_t size) {
    if (count_ == std::size(blocks_) || size > sizeof room_ - used_) naive::broken("too much memory asked for");
    unsigned char *const start = room_ + used_;
    std::memset(start, 0xa5, size);
    used_ += (size + 16) / 16 * 16;
    blocks_[count_++] = {start, size, true};
    ++live_;
    return start;
  }
  void give(void *start) {
    for (std::size_t i = 0; i < count_; ++i) {
      if (blocks_[i].start != start || !blocks_[i].out) continue;
      blocks_[i].out = false;
      --live_;
      return;
    }
    naive::broken("a block came back that is not out");
  }

  block blocks_[64] = {};
  std::size_t count_ = 0, live_ = 0, used_ = 0;
  alignas(16) unsigned char room_[1 << 14];
};

// The end of a page, before one that cannot be read.
unsigned char *end_of_page() {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void *const start = mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (start == MAP_FAILED) naive::broken("no memory");
  unsigned char *const end = static_cast<unsigned char *>(start) + page;
  if (mprotect(end, page, PROT_NONE) != 0) naive::broken("no inaccessible page");
  return end;
}

class sweep {
 public:
  sweep(const message &type, std::uint32_t options) : type_(type), options_(options), decoder_(memory_) {
    decoder_.referenced = options != 0;
  }

  void all_of_length(std::size_t length) {
    unsigned char *const input = end_ - length;
    for (std::uint64_t number = 0; number >> 8 * length == 0; ++number) {
      for (std::size_t i = 0; i < length; ++i) input[i] = static_cast<unsigned char>(number >> 8 * (length - 1 - i));
      try_one(input, length);
    }
  }

  std::uint64_t tried = 0, accepted = 0;

 private:
  void try_one(const unsigned char *input, std::size_t length) {
    blocks_.reset();
    memory_.reset();
    decoder_.reset();
    std::memset(seen_, 0x5c, type_.size);
    std::memset(expected_, 0x5c, type_.size);
    const int result = type_.functions->decode(seen_, input, length, small_blocks::allocate, &blocks_, options_);
    if (result != decoder_.decode(type_, expected_, input, length)) fail(input, length, "the result");
    check_memory(input, length);
    const naive::comparison same(options_ != 0, [&](const void *block) { return blocks_.size_of(block); });
    const std::string difference = same.difference(type_, seen_, expected_);
    if (!difference.empty()) fail(input, length, difference);
    type_.functions->free(seen_, small_blocks::release, &blocks_, options_);
    if (blocks_.live() != decoder_.dropped) fail(input, length, "what came back");
    ++tried;
    accepted += result == CODEC_OK;
  }

  void check_memory(const unsigned char *input, std::size_t length) {
    if (blocks_.requests() != decoder_.sizes.size()) fail(input, length, "the number of requests");
    for (std::size_t i = 0; i < decoder_.sizes.size(); ++i) {
      if (blocks_.size(i) != decoder_.sizes[i]) fail(input, length, "the size of a request");
    }
  }

  [[noreturn]] void fail(const unsigned char *input, std::size_t length, const std::string &what) const {
    std::fprintf(stderr, "%s, options %u:", type_.name, options_);
    for (std::size_t i = 0; i < length; ++i) std::fprintf(stderr, " %02x", input[i]);
    naive::broken(": " + what + " is not what the naive decoder says");
  }

  const message &type_;
  std::uint32_t options_;
  unsigned char *end_ = end_of_page();
  small_blocks blocks_;
  naive::scratch memory_{1 << 14};
  naive::decoder decoder_;
  alignas(16) unsigned char seen_[4096];
  alignas(16) unsigned char expected_[4096];
};

bool is_wanted(const message &type, int count, char **arguments) {
  if (count == 2) return true;
  for (int i = 2; i < count; ++i) {
    if (std::strcmp(type.name, arguments[i]) == 0) return true;
  }
  return false;
}

}  // namespace

int main(int count, char **arguments) {
  const int longest = count >= 2 ? std::atoi(arguments[1]) : -1;
  if (longest < 0 || longest > 4) naive::broken("usage: every_short_input LONGEST [MESSAGE...], LONGEST up to 4");
  std::uint64_t tried = 0, accepted = 0;
  unsigned swept = 0;
  for (const message &type : naive::messages()) {
    if (!is_wanted(type, count, arguments)) continue;
    for (std::uint32_t options = 0; options <= (type.functions->takes_options ? 1u : 0u); ++options) {
      sweep sweep(type, options);
      for (int length = 0; length <= longest; ++length) sweep.all_of_length(static_cast<std::size_t>(length));
      tried += sweep.tried;
      accepted += sweep.accepted;
    }
    ++swept;
  }
  if (swept == 0) naive::broken("no such message");
  std::printf("%u messages, all inputs up to %d bytes: %llu decoded as the naive decoder does, %llu of them accepted\n",
              swept, longest, static_cast<unsigned long long>(tried), static_cast<unsigned long long>(accepted));
  return 0;
}
