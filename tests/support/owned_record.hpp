// A record that an operation fills.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "accountant.hpp"
#include "fence.hpp"
#include "operations.hpp"

namespace test {

// A block of exactly a record's size, which starts as rubbish. Beside it nothing may be written.
class record_block {
 public:
  record_block(std::size_t size, unsigned char fill) : record_block(size) { std::memset(data(), fill, size_); }
  record_block(const record_block &other) : record_block(other.size_) { std::memcpy(data(), other.data(), size_); }
  record_block &operator=(const record_block &) = delete;
  ~record_block() {
    const unsigned char *const end = block_.get() + size_ + 2 * guard;
    const auto is_guard = [](unsigned char each) { return each == guard_byte; };
    if (!std::all_of(block_.get(), block_.get() + guard, is_guard) || !std::all_of(end - guard, end, is_guard)) {
      report_finding("something was written beside a record");
    }
  }

  unsigned char *data() { return block_.get() + guard; }
  const unsigned char *data() const { return block_.get() + guard; }
  std::size_t size() const { return size_; }

 private:
  static constexpr std::size_t guard = sanitizer_guards_blocks ? 0 : 64;
  static constexpr unsigned char guard_byte = 0xb6;

  explicit record_block(std::size_t size)
      : size_(size), block_(std::make_unique_for_overwrite<unsigned char[]>(guard + size + guard)) {
    std::memset(block_.get(), guard_byte, guard);
    std::memset(block_.get() + guard + size, guard_byte, guard);
  }

  std::size_t size_;
  std::unique_ptr<unsigned char[]> block_;
};

// At the end the record is released; every block must have come back by then, but for those that the library drops on
// purpose.
class owned_record {
 public:
  explicit owned_record(const calls &functions, std::uint32_t options = 0, std::size_t guard = 0,
                        unsigned char fill = 0x5a)
      : memory(guard, static_cast<unsigned char>(~fill)),
        block(functions.record_size, fill),
        functions_(&functions),
        options_(options) {}
  owned_record(const owned_record &) = delete;
  owned_record &operator=(const owned_record &) = delete;
  ~owned_record() {
    functions_->free(data(), accountant::release, &memory, options_);
    if (memory.live() != dropped) report_finding(std::string(functions_->name) + ": blocks that did not come back");
  }

  unsigned char *data() { return block.data(); }
  const unsigned char *data() const { return block.data(); }
  std::uint32_t options() const { return options_; }

  int decode(const unsigned char *input, std::size_t length) {
    return result = functions_->decode(data(), input, length, accountant::allocate, &memory, options_);
  }
  // From a block of the record's own, which lives as long as the record.
  int decode(const byte_string &bytes) {
    input_.emplace(bytes);
    return decode(input_->data(), input_->size());
  }
  int copy(const void *source) { return result = functions_->duplicate(data(), source, accountant::allocate, &memory); }
  const fenced_block &input() const { return *input_; }

  accountant memory;
  record_block block;
  int result = 0;
  std::size_t dropped = 0;  // blocks that the library drops on purpose

 private:
  const calls *functions_;
  std::uint32_t options_;
  std::optional<fenced_block> input_;
};

}  // namespace test
