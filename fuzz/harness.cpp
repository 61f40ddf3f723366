// The fences, the allocator that keeps account, and the entry point of the fuzzing engine.
#include "harness.hpp"

#include <sys/mman.h>
#include <unistd.h>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer)
#define FUZZ_SANITIZED 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define FUZZ_SANITIZED 1
#endif
#ifndef FUZZ_SANITIZED
#define FUZZ_SANITIZED 0
#endif

// Blocks that nobody has written are known as such there.
#if defined(__has_feature)
#if __has_feature(memory_sanitizer)
#define FUZZ_LEAVE_UNWRITTEN 1
#endif
#endif
#ifndef FUZZ_LEAVE_UNWRITTEN
#define FUZZ_LEAVE_UNWRITTEN 0
#endif

namespace fuzz {

namespace {

constexpr std::size_t guard_size = 16;
constexpr unsigned char guard_byte = 0xb6;
constexpr unsigned char returned_byte = 0xdd;

// Blocks of one trial. The greatest input asks for 36 times its length, in at most one block for each two bytes.
constexpr std::size_t pool_size = longest_input * 36 + longest_input / 2 * (3 * guard_size);
[[maybe_unused]] alignas(16) unsigned char pool[FUZZ_SANITIZED != 0 ? 1 : 2 * pool_size];

// The part of the pool that is in use: ledgers are nested like scopes.
[[maybe_unused]] std::size_t pool_used = 0;

[[maybe_unused]] bool is_filled(const unsigned char *start, std::size_t size, unsigned char byte) {
  for (std::size_t i = 0; i < size; ++i) {
    if (start[i] != byte) return false;
  }
  return true;
}

}  // namespace

fence::fence(std::size_t room) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  room_ = (room + page - 1) / page * page;
  void *const start = mmap(nullptr, room_ + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (start == MAP_FAILED) naive::broken("no memory for a fence");
  first_ = static_cast<unsigned char *>(start) + page;
  if (mprotect(first_, room_, PROT_READ | PROT_WRITE) != 0) naive::broken("no memory for a fence");
}

unsigned char *fence::last(std::size_t size) const {
  if (size > room_) naive::broken("more than a fence has room for");
  return first_ + room_ - size;
}

const unsigned char *fence::holding(const trial &trial, const unsigned char *bytes, std::size_t length) const {
  unsigned char *const at = trial.at_start ? (last(length), first_) : last(length);
  if (length != 0) std::memcpy(at, bytes, length);
  return at;
}

void *ledger::take(std::size_t size) {
  sizes.push_back(size);
  if (failing.fails(sizes.size() - 1)) return nullptr;
  unsigned char *block;
  if constexpr (FUZZ_SANITIZED != 0) {
    block = static_cast<unsigned char *>(std::malloc(size));
    if (block == nullptr) naive::broken("no memory");
  } else {
    const std::size_t room = (size + 2 * guard_size + 15) / 16 * 16;
    FUZZ_CHECK(trial_, room <= sizeof pool - pool_used);
    std::memset(pool + pool_used, guard_byte, room);
    block = pool + pool_used + guard_size;
    pool_used += room;
    used_ += room;
  }
  if (size != 0 && FUZZ_LEAVE_UNWRITTEN == 0) std::memset(block, trial_.fill ^ 0xa5, size);
  entries_.push_back({block, size, true});
  ++live_;
  return block;
}

const ledger::entry *ledger::find(const void *block) const {
  if (likely_ < entries_.size() && entries_[likely_].block == block && entries_[likely_].out) {
    return &entries_[likely_++];
  }
  for (std::size_t i = entries_.size(); i-- != 0;) {
    if (entries_[i].block != block || !entries_[i].out) continue;
    likely_ = i + 1;
    return &entries_[i];
  }
  return nullptr;
}

std::int64_t ledger::size_of(const void *block) const {
  const entry *const found = find(block);
  return found != nullptr ? static_cast<std::int64_t>(found->size) : -1;
}

std::size_t ledger::asked() const {
  std::size_t sum = 0;
  for (const std::size_t size : sizes) sum += size;
  return sum;
}

void ledger::give(void *block) {
  const entry *const found = find(block);
  FUZZ_CHECK(trial_, found != nullptr && "a block came back that is out");
  const_cast<entry *>(found)->out = false;
  --live_;
  if constexpr (FUZZ_SANITIZED != 0) {
    std::free(block);
  } else {
    std::memset(block, returned_byte, found->size);
  }
}

ledger::~ledger() {
  for (const entry &one : entries_) {
    if constexpr (FUZZ_SANITIZED != 0) {
      if (one.out) std::free(one.block);
    } else {
      FUZZ_CHECK(trial_, is_filled(one.block - guard_size, guard_size, guard_byte) && "before a block");
      FUZZ_CHECK(trial_, is_filled(one.block + one.size, guard_size, guard_byte) && "after a block");
      FUZZ_CHECK(trial_, one.out || is_filled(one.block, one.size, returned_byte));
    }
  }
  pool_used -= used_;
}

namespace {

naive::scratch &naive_memory() {
  static naive::scratch memory(4 * longest_input * 36);
  memory.reset();
  return memory;
}

}  // namespace

expected::expected(const trial &trial, const unsigned char *input, std::size_t length, const schedule *failing,
                   bool has_allocator)
    : record(*trial.type, trial.fill), decoder(naive_memory()) {
  decoder.has_allocator = has_allocator;
  decoder.referenced = trial.referenced;
  if (failing != nullptr) {
    decoder.schedule = failing;
    decoder.grants = [](std::size_t request, const void *which) {
      return !static_cast<const schedule *>(which)->fails(request);
    };
  }
  result = decoder.decode(*trial.type, record.data(), input, length);
}

std::vector<unsigned char> encoding_of(const trial &trial, const unsigned char *record, std::uint32_t options) {
  const auto encode = trial.type->functions->encode;
  const std::size_t size = encode(record, nullptr, 0, nullptr, nullptr, options);
  unsigned char *const buffer = output_room().last(size);
  FUZZ_CHECK(trial, encode(record, buffer, size, nullptr, nullptr, options) == size);
  return std::vector<unsigned char>(buffer, buffer + size);
}

const fence &input_room() {
  static const fence room(longest_input);
  return room;
}
const fence &second_input_room() {
  static const fence room(longest_input);
  return room;
}
const fence &output_room() {
  static const fence room(4 * longest_input);
  return room;
}
const fence &table_room() {
  static const fence room(4 * longest_input * sizeof(pavo_zorv_segment));
  return room;
}

}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
  if (size > fuzz::longest_input) return 0;
  fuzz::run(fuzz::trial_of(data, size));
  return 0;
}
