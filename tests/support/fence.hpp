// Blocks beside inaccessible pages: reading or writing one byte beyond them ends the program.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "broken.hpp"
#include "wire_bytes.hpp"

namespace test {

// Memory between two inaccessible pages, used again and again: what is asked for are its last bytes, or its first.
class fence {
 public:
  explicit fence(std::size_t room) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    room_ = (room + page - 1) / page * page;
    mapped_ = room_ + 2 * page;
    void *const start = mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (start == MAP_FAILED) broken("no memory for a fence");
    first_ = static_cast<unsigned char *>(start) + page;
    if (room_ != 0 && mprotect(first_, room_, PROT_READ | PROT_WRITE) != 0) broken("no memory for a fence");
  }
  fence(const fence &) = delete;
  fence &operator=(const fence &) = delete;
  ~fence() { munmap(first_ - (mapped_ - room_) / 2, mapped_); }

  std::size_t room() const { return room_; }
  unsigned char *first() const { return first_; }
  unsigned char *last(std::size_t size) const {
    if (size > room_) broken("more than a fence has room for");
    return first_ + room_ - size;
  }

  // A copy of bytes, before the page after them or after the page before them.
  unsigned char *holding(const unsigned char *content, std::size_t size, bool at_start = false) const {
    unsigned char *const end = last(size);
    unsigned char *const to = at_start ? first_ : end;
    if (size != 0) std::memcpy(to, content, size);
    return to;
  }
  unsigned char *holding(const byte_string &content, bool at_start = false) const {
    return holding(content.data(), content.size(), at_start);
  }

 private:
  std::size_t room_, mapped_;
  unsigned char *first_;
};

// A block of exactly its size before an inaccessible page.
class fenced_block {
 public:
  static constexpr unsigned char untouched = 0xc7;

  explicit fenced_block(std::size_t size) : fence_(size), size_(size) {
    std::memset(fence_.first(), untouched, fence_.room());
  }
  explicit fenced_block(const byte_string &content) : fenced_block(content.size()) { fence_.holding(content); }

  unsigned char *data() const { return fence_.last(size_); }
  std::size_t size() const { return size_; }
  byte_string content() const { return byte_string(data(), data() + size_); }

 private:
  fence fence_;
  std::size_t size_;
};

// Blocks of exactly the size asked for, each before an inaccessible page and after bytes that must stay. They are given
// out again after a reset.
class fenced_blocks {
 public:
  unsigned char *take(std::size_t size) {
    const fence &room = room_for(size);
    unsigned char *const block = room.last(size);
    const std::size_t before = std::min(most_before, static_cast<std::size_t>(block - room.first()));
    std::memset(block - before, before_block, before);
    blocks_.emplace_back(block, before);
    return block;
  }
  void reset() {
    used_ = 0;
    large_.clear();
    blocks_.clear();
  }
  bool intact() const {
    return std::all_of(blocks_.begin(), blocks_.end(), [](const auto &block) {
      const auto [start, before] = block;
      return std::all_of(start - before, start, [](unsigned char each) { return each == before_block; });
    });
  }

 private:
  static constexpr unsigned char before_block = 0xc7;
  static constexpr std::size_t usual = 4096, most_before = 64;

  const fence &room_for(std::size_t size) {
    if (size > usual) return *large_.emplace_back(std::make_unique<fence>(size + most_before));
    if (used_ == rooms_.size()) rooms_.push_back(std::make_unique<fence>(usual));
    return *rooms_[used_++];
  }

  std::vector<std::unique_ptr<fence>> rooms_, large_;
  std::vector<std::pair<unsigned char *, std::size_t>> blocks_;  // with the bytes before each
  std::size_t used_ = 0;
};

}  // namespace test
