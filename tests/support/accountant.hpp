// The allocator of all tests: it keeps account of what it is asked for, fails when it is told to, and looks after the
// blocks that it gave.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <numeric>
#include <vector>

#include "broken.hpp"

namespace test {

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool sanitizer_guards_blocks = true, blocks_are_filled = true;
#elif defined(__has_feature)
inline constexpr bool sanitizer_guards_blocks = __has_feature(address_sanitizer);
// The memory sanitizer knows what nobody has written.
inline constexpr bool blocks_are_filled = !__has_feature(memory_sanitizer);
#else
inline constexpr bool sanitizer_guards_blocks = false, blocks_are_filled = true;
#endif

// Requests for memory that fail, counted from 0.
struct failing_requests {
  static constexpr std::size_t never = SIZE_MAX;
  std::size_t fail_at = never;    // this one
  std::size_t fail_from = never;  // this one and all later ones
  unsigned fail_pattern = 0;      // one bit for each of sixteen requests, again and again

  bool fails(std::size_t request) const {
    return request == fail_at || request >= fail_from || (fail_pattern >> request % 16 & 1) != 0;
  }
  // The first of one, or of one and all later ones.
  std::size_t first() const { return std::min(fail_at, fail_from); }
};

class accountant : public failing_requests {
 public:
  static constexpr int unwritten = -1;  // blocks are as they come

  // Blocks are of exactly the size asked for, so that sanitizers see every byte beyond them. With a guard, so many
  // bytes before and after each block must stay, and the content of those that came back; under a sanitizer that is its
  // work.
  explicit accountant(std::size_t guard = 0, int fill = 0xa5)
      : guard_(sanitizer_guards_blocks ? 0 : guard), fill_(blocks_are_filled ? fill : unwritten) {}
  accountant(const accountant &) = delete;
  accountant &operator=(const accountant &) = delete;
  ~accountant() {
    if (!intact()) report_finding("something was written beside a block, or into one that had come back");
    reset();
  }

  static void *allocate(std::size_t size, void *context) { return static_cast<accountant *>(context)->take(size); }
  static void release(void *block, void *context) { static_cast<accountant *>(context)->give(block); }

  std::vector<std::size_t> sizes;                        // what was asked for, in order, failures included
  std::vector<void *> released;                          // what came back, in order
  std::function<void(std::size_t request)> before_each;  // called before each request is met
  // Where blocks come from, and where they go.
  std::function<unsigned char *(std::size_t size)> obtain = [](std::size_t size) {
    return static_cast<unsigned char *>(std::malloc(size != 0 ? size : 1));
  };
  std::function<void(unsigned char *block)> put_away = [](unsigned char *block) { std::free(block); };

  void fail(const failing_requests &failing) { static_cast<failing_requests &>(*this) = failing; }

  std::size_t requests() const { return sizes.size(); }
  std::size_t asked() const { return std::accumulate(sizes.begin(), sizes.end(), std::size_t{0}); }
  std::size_t live() const { return live_; }
  bool owns(const void *block) const { return find(block) != nullptr; }
  // The size of a block that is out, or -1.
  std::int64_t size_of(const void *block) const {
    const entry *const found = find(block);
    return found != nullptr ? static_cast<std::int64_t>(found->size) : -1;
  }
  bool intact() const {
    for (const entry &one : entries_) {
      if (!is_filled(one.block - guard_, guard_, guard_byte)) return false;
      if (!is_filled(one.block + one.size, guard_, guard_byte)) return false;
      if (guard_ != 0 && !one.is_live && !is_filled(one.block, one.size, returned_byte)) return false;
    }
    return true;
  }

  // As if nothing had been asked for; blocks that are out are freed.
  void reset() {
    for (const entry &one : entries_) {
      if (guard_ != 0 || one.is_live) put_away(one.block - guard_);
    }
    entries_.clear();
    sizes.clear();
    released.clear();
    live_ = next_ = 0;
  }

 private:
  static constexpr unsigned char guard_byte = 0xb6, returned_byte = 0xdd;

  struct entry {
    unsigned char *block;
    std::size_t size;
    bool is_live;
  };

  static bool is_filled(const unsigned char *start, std::size_t size, unsigned char with) {
    return std::all_of(start, start + size, [&](unsigned char one) { return one == with; });
  }

  void *take(std::size_t size) {
    if (before_each) before_each(sizes.size());
    sizes.push_back(size);
    if (fails(sizes.size() - 1)) return nullptr;
    unsigned char *const start = obtain(guard_ + size + guard_);
    if (start == nullptr) broken("no memory");
    unsigned char *const block = start + guard_;
    if (guard_ != 0) {
      std::memset(start, guard_byte, guard_);
      std::memset(block + size, guard_byte, guard_);
    }
    if (fill_ != unwritten) std::memset(block, fill_, size);
    entries_.push_back({block, size, true});
    ++live_;
    return block;
  }

  void give(void *block) {
    const entry *const found = find(block);
    if (found == nullptr) return report_finding("a block came back that is not out");
    released.push_back(block);
    entry &one = entries_[static_cast<std::size_t>(found - entries_.data())];
    one.is_live = false;
    --live_;
    if (guard_ != 0) {
      std::memset(one.block, returned_byte, one.size);
    } else {
      put_away(one.block);
    }
  }

  // Blocks are looked for in the order in which they were given, more often than not.
  const entry *find(const void *block) const {
    if (next_ < entries_.size() && entries_[next_].block == block && entries_[next_].is_live) return &entries_[next_++];
    for (std::size_t i = entries_.size(); i-- != 0;) {
      if (entries_[i].block != block || !entries_[i].is_live) continue;
      next_ = i + 1;
      return &entries_[i];
    }
    return nullptr;
  }

  std::size_t guard_;
  int fill_;
  std::vector<entry> entries_;
  std::size_t live_ = 0;
  mutable std::size_t next_ = 0;
};

}  // namespace test
