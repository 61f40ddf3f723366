// What every target is made with: an input taken apart, memory that is watched, and records that start as rubbish.
// No test framework, so that it runs under any sanitizer and any fuzzing engine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "fence.hpp"
#include "naive/decoder.hpp"
#include "owned_record.hpp"

namespace fuzz {

using naive::kind;
using naive::member;
using naive::message;
using naive::view;

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

// A copy of bytes of a trial beside an inaccessible page, as the trial wants it placed.
inline const unsigned char *placed(const test::fence &room, const trial &trial, const unsigned char *bytes,
                                   std::size_t length) {
  return room.holding(bytes, length, trial.at_start);
}

// Of blocks of memory, on either side.
inline constexpr std::size_t guard_size = 16;

// --- Records ---

// A record decoded from bytes. It is released at the end, and then what it owned must be back.
class decoded : public test::owned_record {
 public:
  decoded(const trial &trial, const unsigned char *input, std::size_t length, bool referenced)
      : owned_record(*trial.type->functions, referenced ? PAVO_ZORV_REFERENCE : 0, guard_size, trial.fill),
        record(*trial.type, data()),
        trial_(trial),
        referenced_(referenced) {
    decode(input, length);
    // At most 36 bytes of memory for each of input where pointers have 64 bits, and less elsewhere.
    FUZZ_CHECK(trial, memory.asked() <= 36 * length);
    dropped = memory.live() - naive::blocks_owned(record, referenced);
  }
  ~decoded() {
    trial_.type->functions->free(data(), test::accountant::release, &memory, options());
    FUZZ_CHECK(trial_, naive::blocks_owned(record, referenced_) == 0);
  }
  // Blocks that nested messages owned before they were repeated: only these are not released with the record.
  void expect_dropped(std::size_t expected) {
    dropped = expected;
    FUZZ_CHECK(trial_, memory.live() == naive::blocks_owned(record, referenced_) + expected);
  }

  const view record;

 private:
  const trial &trial_;
  bool referenced_;
};

// What the naive decoder makes of bytes. One at a time: they share memory.
class expected {
 public:
  expected(const trial &trial, const unsigned char *input, std::size_t length,
           const test::failing_requests &failing = {}, bool has_allocator = true);

  test::record_block block;
  const view record;
  naive::decoder decoder;
  int result;
};

// What a call writes when the buffer is as long as the encoding.
std::vector<unsigned char> encoding_of(const trial &trial, view record, std::uint32_t options);

// Rooms that every target shares.
const test::fence &input_room();
const test::fence &second_input_room();
const test::fence &output_room();
const test::fence &table_room();

}  // namespace fuzz
