// The contestants and cases of the benchmark. A case is one contestant that performs one operation on one workload; it
// is prepared and checked on first use, and timed by repeating it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace contest {

using byte_string = std::vector<unsigned char>;
using repeat = std::function<void(std::size_t times)>;

// What is drawn at random in the workloads depends on this seed while the library is tuned. `./bench` reports another.
constexpr std::uint64_t tuning_seed = 1;

struct workloads;

// What readers of the results need to know about a contestant.
struct contestant {
  const char *name;
  const char *memory;
  const char *strings;
  const char *checks;
};

struct contest_case {
  std::string operation;
  std::string workload;
  std::string contestant;
  std::function<repeat()> prepare;

  std::string name() const { return operation + "/" + workload + "/" + contestant; }
};

// A contestant whose result is wrong is not timed.
inline void require(bool holds, const char *what, const std::string &where) {
  if (holds) return;
  std::cerr << "contestant failed its check: " << what << ": " << where << "\n";
  std::abort();
}

// Makes the optimiser assume that the object is read and that all memory may change.
inline void keep(const void *object) { asm volatile("" : : "r"(object) : "memory"); }

// The timed loop: one indirect call for all repetitions.
template <class Step>
repeat repeated(Step step) {
  return [step = std::move(step)](std::size_t times) {
    for (; times != 0; --times) {
      step();
      keep(nullptr);
    }
  };
}

// The workloads, and what is done with them by whom.
class roll {
 public:
  explicit roll(std::uint64_t seed = tuning_seed);

  void add_contestant(const contestant &who) { contestants.push_back(who); }

  void add_case(const char *operation, const std::string &workload, const std::string &who,
                std::function<repeat()> prepare) {
    cases.push_back({operation, workload, who, std::move(prepare)});
  }

  std::shared_ptr<const workloads> works;
  std::vector<contestant> contestants;
  std::vector<contest_case> cases;
};

// The bump allocator for pavo_zorv, protobuf-c, nanopb and protozero. Blocks are aligned for any record.
class pool {
 public:
  explicit pool(std::size_t capacity) : capacity_(capacity), block_(new unsigned char[capacity]) {}

  void reset() { used_ = 0; }

  void *take(std::size_t size) {
    const std::size_t rounded = (size + 7) & ~std::size_t{7};
    if (rounded > capacity_ - used_) return nullptr;
    void *const result = block_.get() + used_;
    used_ += rounded;
    return result;
  }

  // Shrinks the newest block.
  void trim(void *newest, std::size_t size) {
    used_ =
        static_cast<std::size_t>(static_cast<unsigned char *>(newest) - block_.get()) + ((size + 7) & ~std::size_t{7});
  }

  // Enlarges a block: in place if it is the newest one.
  void *grow(void *block, std::size_t size, std::size_t larger);

  // Callbacks for the library.
  static void *allocate(std::size_t size, void *context) { return static_cast<pool *>(context)->take(size); }
  static void ignore(void *, void *) {}

 private:
  std::size_t capacity_;
  std::size_t used_ = 0;
  std::unique_ptr<unsigned char[]> block_;
};

// Callbacks for the library that use the C library's allocator.
inline void *allocate_from_heap(std::size_t size, void *) { return std::malloc(size != 0 ? size : 1); }
inline void release_to_heap(void *block, void *) { std::free(block); }

// The bytes of a buffer after the longest encoding: one that is known to suffice. protozero needs them.
constexpr std::size_t slack = 64;

// Enough for what any contestant decodes from an encoding of this length; untouched pages cost nothing.
constexpr std::size_t pool_capacity(std::size_t length) { return length * 96 + (std::size_t{1} << 16); }

// The contestants, one file each.
void enter_library(roll &all);
void enter_other_library(roll &all, const std::string &name, const std::string &path);
void enter_floor(roll &all);
void enter_protobuf(roll &all);
void enter_protobuf_c(roll &all);
void enter_nanopb(roll &all);
void enter_protozero(roll &all);
void enter_all(roll &all);

}  // namespace contest
