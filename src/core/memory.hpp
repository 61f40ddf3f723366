// The caller's options and callbacks as values, and sizes that cannot wrap.
#pragma once

#include <cstddef>
#include <cstdint>

#include "pavo_zorv.h"

namespace pavo_zorv {

// Whether bytes members are left where they are, instead of being copied.
constexpr bool is_referenced(std::uint32_t options) { return (options & PAVO_ZORV_REFERENCE) != 0; }

// The caller's allocator with its context.
struct memory {
  pavo_zorv_allocate allocate;
  void *context;

  bool missing() const { return allocate == nullptr; }

  // Null as well when there is no allocator.
  void *block(std::size_t size) const { return allocate == nullptr ? nullptr : allocate(size, context); }

  // An array of `count` elements. One that no count or no address space can hold is refused without asking.
  template <class Element>
  Element *array(std::size_t count) const {
    if (count != static_cast<std::uint32_t>(count) || count > SIZE_MAX / sizeof(Element)) return nullptr;
    return static_cast<Element *>(block(count * sizeof(Element)));
  }

  // A block for `length` characters and the NUL after them.
  char *text(std::size_t length) const { return length == SIZE_MAX ? nullptr : static_cast<char *>(block(length + 1)); }
};

// The caller's release callback with its context. Without a callback the pointers are forgotten all the same.
struct releaser {
  pavo_zorv_release release;
  void *context;
  bool referenced;  // bytes members belong to the input

  template <class Element>
  void release_block(Element *&pointer) const {
    if (pointer == nullptr) return;
    if (release != nullptr) release(pointer, context);
    pointer = nullptr;
  }
};

}  // namespace pavo_zorv
