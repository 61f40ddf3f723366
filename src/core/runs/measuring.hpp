// Runs of integers, measured: the bytes that the values take, without their keys.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "labels.hpp"
#include "plain.hpp"

namespace pavo_zorv {

// How many bytes of a word have the highest bit: the product adds them up in the highest byte.
constexpr std::size_t count_high(std::uint64_t word) {
  constexpr std::uint64_t ones = 0x0101010101010101;
  return static_cast<std::size_t>((word >> 7 & ones) * ones >> 56);
}

// Two bytes from 128 on. With 32 bits, the bytes of a list may be more than those of memory.
inline std::uint64_t measure_integers(const std::uint8_t *elements, std::size_t count) {
  std::uint64_t bytes = count;
  for (; count >= 8; elements += 8, count -= 8) bytes += count_high(load_word(elements));
  return count == 0 ? bytes : bytes + count_high(load_short(elements, count));
}

// One byte more for each power of 128 that an element reaches; a vector at a time. Labels, all of three bytes, are
// known together by the bits that any of them has, and those it has when 0x4000 is subtracted.
inline std::uint64_t measure_integers(const std::uint32_t *elements, std::size_t count) {
  using counts [[gnu::vector_size(vector_size)]] = std::int32_t;
  std::uint64_t bytes = 0;
  while (count >= vector_numbers) {
    const std::size_t stretch = std::min<std::size_t>(count / vector_numbers, 16);
    number_vector bits = {}, values;
    for (std::size_t index = 0; index < stretch; ++index) {
      std::memcpy(&values, elements + index * vector_numbers, sizeof values);
      bits |= values | (values - 0x4000);
    }
    if (none(bits & beyond_labels)) {
      bytes += 3 * vector_numbers * stretch;
    } else {
      counts sums = {};
      for (std::size_t index = 0; index < stretch; ++index) {
        std::memcpy(&values, elements + index * vector_numbers, sizeof values);
        sums -= (values >= 0x80) + (values >= 0x4000) + (values >= 0x200000) + (values >= 0x10000000);
      }
      bytes += vector_numbers * stretch;
      for (std::size_t index = 0; index < vector_numbers; ++index) bytes += static_cast<std::uint64_t>(sums[index]);
    }
    elements += stretch * vector_numbers;
    count -= stretch * vector_numbers;
  }
  return bytes + plain::measure_integers(elements, count);
}

}  // namespace pavo_zorv
