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

inline std::uint32_t sum_of_lanes(const signed_vector &lanes) {
  std::uint32_t sum = 0;
  for (std::size_t lane = 0; lane < vector_numbers; ++lane) sum += static_cast<std::uint32_t>(lanes[lane]);
  return sum;
}

// What integers of any size take beyond a byte each, as far as they fill vectors.
inline std::uint32_t measure_beyond_labels(const std::uint32_t *elements, std::size_t count) {
  signed_vector more{};
  for_each_vector(elements, count, [&](const number_vector &values) PAVO_ZORV_INLINE_LAMBDA {
    more -= (values >= 0x80) + (values >= 0x4000) + (values >= 0x200000) + (values >= 0x10000000);
  });
  return sum_of_lanes(more);
}

// A vector at a time, of which the last may have lanes of 0. Nearly all numbers are labels, or as small: what they take
// beyond a byte each is known from two comparisons. A stretch that has others is measured again.
inline std::uint64_t measure_integers(const std::uint32_t *elements, std::size_t count) {
  constexpr std::size_t longest = 32 * vector_numbers;
  if (count < 4) return plain::measure_integers(elements, count);
  const std::size_t whole = has_masked_loads ? count : count / vector_numbers * vector_numbers;
  std::uint64_t bytes = whole;
  for (std::size_t done = 0, some; done != whole; done += some) {
    some = std::min(whole - done, longest);
    number_vector all{};
    signed_vector more{};
    for_each_vector(elements + done, some, [&](const number_vector &values) PAVO_ZORV_INLINE_LAMBDA {
      const auto labels = reinterpret_cast<signed_vector>(values);
      all |= values;
      more -= (labels > 0x7f) + (labels > 0x3fff);
    });
    bytes += none(all & beyond_labels) ? sum_of_lanes(more) : measure_beyond_labels(elements + done, some);
  }
  return bytes + plain::measure_integers(elements + whole, count - whole);
}

}  // namespace pavo_zorv
