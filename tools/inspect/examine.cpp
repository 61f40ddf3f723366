// Decode, encode, compare the bytes, release.
#include "examine.hpp"

#include <algorithm>

namespace inspect {

findings examiner::examine(const message_type &type, byte_view input) {
  account_.clear();
  record_.resize(std::max(record_.size(), type.record_size / sizeof(std::max_align_t) + 1));
  void *const record = record_.data();

  findings found;
  found.result = type.decode(record, input, &account::allocate, &account_, 0);
  found.memory = account_.asked;
  if (found.result == CODEC_OK) {
    found.encoded = type.encode(record, nullptr, 0, nullptr, nullptr, 0);
    if (found.encoded == input.size()) {
      encoding_.resize(std::max(encoding_.size(), found.encoded));
      type.encode(record, encoding_.data(), found.encoded, nullptr, nullptr, 0);
      found.is_canonical = std::equal(input.begin(), input.end(), encoding_.begin());
    }
  }
  type.release(record, &account::release, &account_, 0);
  found.dropped.blocks = found.memory.blocks - account_.returned.blocks;
  found.dropped.bytes = found.memory.bytes - account_.returned.bytes;
  return found;
}

}  // namespace inspect
