// Labels of twenty bits, as many as a vector holds.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "vectors.hpp"

namespace pavo_zorv {

// Bits that no varint of three bytes has; a smaller number has the highest when 0x4000 is taken away.
inline constexpr std::uint32_t beyond_labels = 0xffe00000;

// As many elements as a vector holds where each takes three bytes and, with the key after or before it, a 32-bit
// word: most labels do. A quarter of the work that windows take.
class label_block {
 public:
  static constexpr std::size_t size = vector_size;
  static constexpr std::size_t elements = size / 4;
  static constexpr bool usable = std::endian::native == std::endian::little;

  explicit label_block(const void *from) { std::memcpy(&words_, from, size); }

  // On the wire: whether each word is a value of three bytes and a key of one after it.
  inline bool are_labels(std::uint32_t key) const { return none((words_ & 0xff808080) ^ (key << 24 | 0x8080)); }

  inline void read(std::uint32_t *values) const {
    const number_vector labels = (words_ & 0x7f) | (words_ >> 1 & 0x3f80) | (words_ >> 2 & 0x1fc000);
    std::memcpy(values, &labels, size);
  }

  // In memory: whether each value takes three bytes.
  static bool all_labels(const std::uint32_t *values) {
    const number_vector labels = label_block(values).words_;
    return none((labels | (labels - 0x4000)) & beyond_labels);
  }

  // Each value with the key before it.
  static void write(byte *at, std::uint32_t key, const std::uint32_t *values) {
    const number_vector labels = label_block(values).words_;
    const number_vector bytes =
        (labels & 0x7f) << 8 | (labels & 0x3f80) << 9 | (labels & 0x1fc000) << 10 | (key | 0x808000);
    std::memcpy(at, &bytes, size);
  }

 private:
  number_vector words_;
};

}  // namespace pavo_zorv
