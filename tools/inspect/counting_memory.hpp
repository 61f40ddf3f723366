// Memory for decoding, reused from one message to the next, that counts what is allocated and released.
#pragma once

#include <cstddef>
#include <memory_resource>
#include <new>
#include <vector>

namespace inspect {

class counting_memory {
 public:
  struct usage {
    std::size_t blocks = 0;
    std::size_t bytes = 0;
  };

  counting_memory() : first_block_(65536), memory_(first_block_.data(), first_block_.size()) {}
  counting_memory(const counting_memory &) = delete;
  counting_memory &operator=(const counting_memory &) = delete;

  usage allocated;
  usage released;

  // Releases everything, for the next message.
  void clear() {
    memory_.release();
    allocated = released = {};
  }

  // The library's callbacks; the context is this object. The size of each block is stored in front of it.
  static void *allocate(std::size_t size, void *context) noexcept {
    return static_cast<counting_memory *>(context)->take(size);
  }
  static void release(void *block, void *context) noexcept {
    static_cast<counting_memory *>(context)->count_release(block);
  }

 private:
  static constexpr std::size_t header_size = alignof(std::max_align_t);

  void *take(std::size_t size) noexcept {
    if (size > SIZE_MAX - header_size) return nullptr;
    try {
      auto *const block = static_cast<unsigned char *>(memory_.allocate(size + header_size, alignof(std::max_align_t)));
      new (block) std::size_t(size);
      ++allocated.blocks;
      allocated.bytes += size;
      return block + header_size;
    } catch (const std::bad_alloc &) {
      return nullptr;
    }
  }

  void count_release(void *block) noexcept {
    ++released.blocks;
    released.bytes += *std::launder(reinterpret_cast<std::size_t *>(static_cast<unsigned char *>(block) - header_size));
  }

  std::vector<unsigned char> first_block_;
  std::pmr::monotonic_buffer_resource memory_;
};

}  // namespace inspect
