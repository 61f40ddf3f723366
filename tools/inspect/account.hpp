// Memory for decoding that is used again for the next message, with an account of what was asked for and given back.
#pragma once

#include <cstddef>
#include <memory_resource>
#include <new>
#include <vector>

namespace inspect {

class account {
 public:
  struct figures {
    std::size_t blocks = 0;
    std::size_t bytes = 0;
  };

  account() : start_(65536), memory_(start_.data(), start_.size()) {}
  account(const account &) = delete;
  account &operator=(const account &) = delete;

  figures asked;
  figures returned;

  // Takes back everything, for the next message.
  void clear() {
    memory_.release();
    asked = returned = {};
  }

  // The library's callbacks: the context is the account. In front of each block stands its size.
  static void *allocate(std::size_t size, void *context) noexcept {
    return static_cast<account *>(context)->take(size);
  }
  static void release(void *block, void *context) noexcept { static_cast<account *>(context)->give(block); }

 private:
  static constexpr std::size_t head = alignof(std::max_align_t);

  void *take(std::size_t size) noexcept {
    if (size > SIZE_MAX - head) return nullptr;
    try {
      auto *const block = static_cast<unsigned char *>(memory_.allocate(size + head, head));
      new (block) std::size_t(size);
      ++asked.blocks;
      asked.bytes += size;
      return block + head;
    } catch (const std::bad_alloc &) {
      return nullptr;
    }
  }

  void give(void *block) noexcept {
    ++returned.blocks;
    returned.bytes += *std::launder(reinterpret_cast<std::size_t *>(static_cast<unsigned char *>(block) - head));
  }

  std::vector<unsigned char> start_;
  std::pmr::monotonic_buffer_resource memory_;
};

}  // namespace inspect
