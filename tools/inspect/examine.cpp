// Decodes, encodes, compares the bytes and releases.
#include "examine.hpp"

#include <algorithm>

namespace inspect {

findings examiner::examine(const message_type &type, byte_view input) {
  memory_.clear();
  record_.resize(std::max(record_.size(), type.size / sizeof(std::max_align_t) + 1));
  void *const record = record_.data();

  findings found;
  found.result = type.decode(record, input, &counting_memory::allocate, &memory_, 0);
  found.memory = memory_.allocated;
  if (found.result == CODEC_OK) {
    found.encoded = type.encode(record, nullptr, 0, nullptr, nullptr, 0);
    if (found.encoded == input.size()) {
      encoding_.resize(std::max(encoding_.size(), found.encoded));
      type.encode(record, encoding_.data(), found.encoded, nullptr, nullptr, 0);
      found.is_canonical = std::equal(input.begin(), input.end(), encoding_.begin());
    }
  }
  type.release(record, &counting_memory::release, &memory_, 0);
  found.dropped.blocks = found.memory.blocks - memory_.released.blocks;
  found.dropped.bytes = found.memory.bytes - memory_.released.bytes;
  return found;
}

}  // namespace inspect
