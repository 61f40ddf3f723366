// The parts of the bump allocator that are not inlined.
#include "contest.hpp"

#include <algorithm>
#include <cstring>

namespace contest {

void *pool::grow(void *block, std::size_t size, std::size_t larger) {
  const std::size_t rounded = (size + 7) & ~std::size_t{7};
  if (block != nullptr && static_cast<unsigned char *>(block) + rounded == block_.get() + used_) {
    used_ -= rounded;
    return take(larger);
  }
  void *const result = take(larger);
  if (result != nullptr && size != 0) std::memcpy(result, block, std::min(size, larger));
  return result;
}

}  // namespace contest
