// What every target is made with: an input taken apart, memory that is watched, and records that start as rubbish.
// No test framework, so that it runs under any sanitizer and any fuzzing engine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "naive/decoder.hpp"

namespace fuzz {

using naive::member;
using naive::message;
using naive::sort;

// --- The input ---

// Longer ones are not tried. An encoding of 64 KB is not the longest.
inline constexpr std::size_t longest_input = 72 << 10;

// Six bytes say what is to be done; the rest is a message.
struct trial {
  static constexpr std::size_t header = 6;

  const message *type;
  bool referenced;
  bool at_start;        // the input lies after an inaccessible page, not before one
  unsigned choice;      // four bits for the target
  unsigned char fill;   // what memory holds before it is written
  unsigned char extra;  // for the target
  unsigned number;      // 16 bits for the target
  const unsigned char *bytes;
  std::size_t length;

  std::uint32_t options() const { return referenced ? PAVO_ZORV_REFERENCE : 0; }
};

inline trial trial_of(const unsigned char *data, std::size_t size) {
  unsigned char head[trial::header] = {};
  if (size != 0) std::memcpy(head, data, size < sizeof head ? size : sizeof head);
  const std::size_t skipped = size < sizeof head ? size : sizeof head;
  trial result;
  result.type = &naive::messages()[head[0] % naive::messages().size()];
  result.referenced = result.type->functions->takes_options && (head[1] & 1) != 0;
  result.at_start = (head[1] & 2) != 0;
  result.choice = head[1] >> 4;
  result.fill = head[2];
  result.extra = head[3];
  result.number = head[4] | unsigned{head[5]} << 8;
  result.bytes = data + skipped;
  result.length = size - skipped;
  return result;
}

// What a target does with it.
void run(const trial &trial);

// --- What must hold ---

[[noreturn]] inline void fail(const trial &trial, const char *condition, const char *file, int line,
                              const std::string &more = {}) {
  std::fprintf(stderr, "%s:%d: %s does not hold for %s%s\n", file, line, condition, trial.type->name,
               trial.referenced ? " in reference mode" : "");
  if (!more.empty()) std::fprintf(stderr, "%s\n", more.c_str());
  const std::size_t shown = trial.length < 1000 ? trial.length : 1000;
  for (std::size_t i = 0; i < shown; ++i) std::fprintf(stderr, "%02x ", trial.bytes[i]);
  if (shown < trial.length) std::fprintf(stderr, "... %zu bytes", trial.length);
  std::fprintf(stderr, "\n");
  std::abort();
}

#define FUZZ_CHECK(trial, condition) \
  ((condition) ? static_cast<void>(0) : ::fuzz::fail(trial, #condition, __FILE__, __LINE__))
// For what says itself where it differs: text that must be empty.
#define FUZZ_SAME(trial, text)                                                      \
  do {                                                                              \
    const std::string found = text;                                                 \
    if (!found.empty()) ::fuzz::fail(trial, "sameness", __FILE__, __LINE__, found); \
  } while (false)

// --- Memory ---

// Readable memory between two inaccessible pages: what is asked for are its last bytes, or its first.
class fence {
 public:
  explicit fence(std::size_t room);
  fence(const fence &) = delete;
  fence &operator=(const fence &) = delete;

  unsigned char *last(std::size_t size) const;
  unsigned char *first() const { return first_; }
  // A copy of bytes of a trial, as the trial wants it placed.
  const unsigned char *holding(const trial &trial, const unsigned char *bytes, std::size_t length) const;

 private:
  std::size_t room_;
  unsigned char *first_;
};

// Which requests fail.
struct schedule {
  enum { none, one, all_from, some } which = none;
  std::size_t request = 0;
  unsigned pattern = 0;  // for `some`: one bit for each of sixteen requests, again and again

  bool fails(std::size_t index) const {
    return which == one        ? index == request
           : which == all_from ? index >= request
           : which == some     ? (pattern >> (index % 16) & 1) != 0
                               : false;
  }
};

// An allocator that keeps account. Blocks are filled with rubbish and have guards on either side; a sanitizer gets
// blocks of its own. Whatever comes back must be out, and must come back once.
class ledger {
 public:
  explicit ledger(const trial &trial) : trial_(trial) {}
  ledger(const ledger &) = delete;
  ledger &operator=(const ledger &) = delete;
  ~ledger();

  schedule failing;
  std::vector<std::size_t> sizes;  // what was asked for, in order, failures included

  static void *allocate(std::size_t size, void *context) { return static_cast<ledger *>(context)->take(size); }
  static void release(void *block, void *context) { static_cast<ledger *>(context)->give(block); }

  std::size_t live() const { return live_; }
  std::size_t asked() const;
  // The size of a block that is out; -1 when it is none.
  std::int64_t size_of(const void *block) const;

 private:
  struct entry {
    unsigned char *block;
    std::size_t size;
    bool out;
  };

  void *take(std::size_t size);
  void give(void *block);
  const entry *find(const void *block) const;

  const trial &trial_;
  std::vector<entry> entries_;
  mutable std::size_t likely_ = 0;  // blocks are mostly looked for in the order in which they were given
  std::size_t live_ = 0;
  std::size_t used_ = 0;
};

// --- Records ---

// Large enough for any record, aligned for it, and filled with rubbish, with guards directly before and after it.
class record {
 public:
  record(const message &type, unsigned char fill) : type_(&type) {
    if (type.size > room) naive::broken("a record larger than any");
    std::memset(storage_, guard, sizeof storage_);
    std::memset(data(), fill, type.size);
  }
  record(const record &) = default;
  record &operator=(const record &) = delete;
  ~record() {
    const unsigned char *const end = data() + type_->size;
    for (const unsigned char *at = storage_; at != storage_ + sizeof storage_; ++at) {
      if ((at < data() || at >= end) && *at != guard) naive::broken(std::string("beside a record of ") + type_->name);
    }
  }
  unsigned char *data() { return storage_ + before; }
  const unsigned char *data() const { return storage_ + before; }

 private:
  static constexpr unsigned char guard = 0xb6;
  static constexpr std::size_t before = 64, room = 2048, behind = 64;
  const message *type_;
  alignas(16) unsigned char storage_[before + room + behind];
};

// A record decoded from bytes. It is released at the end, and then what it owned must be back.
class decoded {
 public:
  decoded(const trial &trial, const unsigned char *input, std::size_t length, bool referenced)
      : record(*trial.type, trial.fill), memory(trial), trial_(trial), referenced_(referenced) {
    result = trial.type->functions->decode(record.data(), input, length, ledger::allocate, &memory, options());
    // At most 36 bytes of memory for each of input where pointers have 64 bits, and less elsewhere.
    FUZZ_CHECK(trial, memory.asked() <= 36 * length);
    dropped_ = memory.live() - naive::blocks_owned(*trial.type, record.data(), referenced);
  }
  decoded(const decoded &) = delete;
  decoded &operator=(const decoded &) = delete;
  ~decoded() {
    trial_.type->functions->free(record.data(), ledger::release, &memory, options());
    FUZZ_CHECK(trial_, naive::blocks_owned(*trial_.type, record.data(), referenced_) == 0);
    FUZZ_CHECK(trial_, memory.live() == dropped_);
  }
  std::uint32_t options() const { return referenced_ ? PAVO_ZORV_REFERENCE : 0; }
  // Blocks that nested messages owned before they came again: they alone are out beside what the record owns.
  void expect_dropped(std::size_t dropped) {
    dropped_ = dropped;
    FUZZ_CHECK(trial_, memory.live() == naive::blocks_owned(*trial_.type, record.data(), referenced_) + dropped);
  }

  fuzz::record record;
  ledger memory;
  int result;

 private:
  const trial &trial_;
  bool referenced_;
  std::size_t dropped_;
};

// What the naive decoder makes of bytes. One at a time: they share memory.
class expected {
 public:
  expected(const trial &trial, const unsigned char *input, std::size_t length, const schedule *failing = nullptr,
           bool has_allocator = true);

  fuzz::record record;
  naive::decoder decoder;
  int result;
};

// What a call writes when the buffer is as long as the encoding.
std::vector<unsigned char> encoding_of(const trial &trial, const unsigned char *record, std::uint32_t options);

// Rooms that every target shares.
const fence &input_room();
const fence &second_input_room();
const fence &output_room();
const fence &table_room();

}  // namespace fuzz
