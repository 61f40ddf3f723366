// Some integers of a run at once.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "../windows.hpp"
#include "../wire.hpp"

namespace pavo_zorv {

inline constexpr std::uint64_t highest_bits = 0x8080808080808080;

// Bits that no varint of three bytes has; a smaller number has the highest when 0x4000 is taken away.
inline constexpr std::uint32_t beyond_labels = 0xffe00000;

// As many elements as a vector holds where each takes three bytes and, with the key after or before it, a 32-bit
// word: labels of twenty bits mostly do. A quarter of the work that windows take.
class label_block {
 public:
  static constexpr std::size_t size = vector_size;
  static constexpr std::size_t elements = size / 4;
  static constexpr bool usable = std::endian::native == std::endian::little;

  explicit label_block(const void *from) { std::memcpy(&words_, from, size); }

  // On the wire: whether each word is a value of three bytes and a key of one after it.
  PAVO_ZORV_INLINE bool regular(std::uint32_t key) const { return none((words_ & 0xff808080) ^ (key << 24 | 0x8080)); }

  PAVO_ZORV_INLINE void read(std::uint32_t *values) const {
    const words labels = (words_ & 0x7f) | (words_ >> 1 & 0x3f80) | (words_ >> 2 & 0x1fc000);
    std::memcpy(values, &labels, size);
  }

  // In memory: whether each value takes three bytes.
  PAVO_ZORV_INLINE static bool all_labels(const std::uint32_t *values) {
    const words labels = label_block(values).words_;
    return none((labels | (labels - 0x4000)) & beyond_labels);
  }

  // Each value with the key before it.
  PAVO_ZORV_INLINE static void write(byte *at, std::uint32_t key, const std::uint32_t *values) {
    const words labels = label_block(values).words_;
    const words bytes = (labels & 0x7f) << 8 | (labels & 0x3f80) << 9 | (labels & 0x1fc000) << 10 | (key | 0x808000);
    std::memcpy(at, &bytes, size);
  }

 private:
  using words [[gnu::vector_size(size)]] = std::uint32_t;

  words words_;
};

// Some numbers together.
using number_vector [[gnu::vector_size(vector_size)]] = std::uint32_t;
inline constexpr std::size_t numbers_together = vector_size / sizeof(std::uint32_t);

// Two words, and four numbers.
using word_pair [[gnu::vector_size(16)]] = std::uint64_t;
using four_numbers [[gnu::vector_size(16)]] = std::uint32_t;

}  // namespace pavo_zorv
