// The memory of a record: allocated piece by piece, released as a whole.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory_resource>
#include <new>

namespace inspect {

class arena {
 public:
  void *zeroed(std::size_t size) { return std::memset(blocks_.allocate(size, alignof(std::max_align_t)), 0, size); }

  template <class Element>
  Element *array(std::size_t count) {
    return static_cast<Element *>(zeroed(count * sizeof(Element)));
  }

  // The library's allocator callback: the context is the arena.
  static void *allocate(std::size_t size, void *context) noexcept {
    try {
      return static_cast<arena *>(context)->blocks_.allocate(size, alignof(std::max_align_t));
    } catch (const std::bad_alloc &) {
      return nullptr;
    }
  }

 private:
  std::pmr::monotonic_buffer_resource blocks_;
};

}  // namespace inspect
