// Decodes every input up to a number of bytes, as each message and in each mode, and compares result, record and
// memory with the naive decoder. Each input ends at an inaccessible page.
//
//   every_short_input LONGEST [MESSAGE...]
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "fence.hpp"
#include "naive/decoder.hpp"

namespace {

using naive::message;

class sweep {
 public:
  sweep(const message &type, std::uint32_t options) : type_(type), options_(options), decoder_(memory_) {
    decoder_.referenced = options != 0;
  }

  void all_of_length(std::size_t length) {
    unsigned char *const input = room_.last(length);
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
    const int result = type_.functions->decode(seen_, input, length, test::accountant::allocate, &blocks_, options_);
    if (result != decoder_.decode({type_, expected_}, input, length)) fail(input, length, "the result");
    if (blocks_.sizes != decoder_.sizes) fail(input, length, "what is asked for");
    const naive::comparison same(options_ != 0, [&](const void *block) { return blocks_.size_of(block); });
    const std::string difference = same.difference({type_, seen_}, {type_, expected_});
    if (!difference.empty()) fail(input, length, difference);
    type_.functions->free(seen_, test::accountant::release, &blocks_, options_);
    if (blocks_.live() != decoder_.dropped) fail(input, length, "what came back");
    ++tried;
    accepted += result == CODEC_OK;
  }

  [[noreturn]] void fail(const unsigned char *input, std::size_t length, const std::string &what) const {
    std::fprintf(stderr, "%s, options %u:", type_.name, options_);
    for (std::size_t i = 0; i < length; ++i) std::fprintf(stderr, " %02x", input[i]);
    test::broken(": " + what + " is not what the naive decoder says");
  }

  const message &type_;
  std::uint32_t options_;
  const test::fence room_{4};
  test::accountant blocks_;
  naive::storage memory_{1 << 14};
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
  if (longest < 0 || longest > 4) test::broken("usage: every_short_input LONGEST [MESSAGE...], LONGEST up to 4");
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
  if (swept == 0) test::broken("no such message");
  std::printf("%u messages, all inputs up to %d bytes: %llu decoded as the naive decoder does, %llu of them accepted\n",
              swept, longest, static_cast<unsigned long long>(tried), static_cast<unsigned long long>(accepted));
  return 0;
}
