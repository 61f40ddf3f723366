// Runs of integers, measured: the bytes that the values take, without their keys.
#pragma once

#include <cstddef>
#include <cstdint>

#include "labels.hpp"
#include "plain.hpp"

namespace pavo_zorv {

// How many bytes of a word have their highest bit set: the product adds them up in the highest byte.
constexpr std::size_t count_high(std::uint64_t word) {
  return static_cast<std::size_t>((word >> 7 & lowest_bits) * lowest_bits >> 56);
}

// Elements from 128 on take two bytes. Where size_t has 32 bits, a list may take more bytes than that can say.
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

inline constexpr std::size_t batch = 32 * vector_numbers;

// Integers of any size.
PAVO_ZORV_NOINLINE inline std::uint64_t measure_beyond_labels(const std::uint32_t *elements, std::size_t count) {
  signed_vector more{};
  for_each_vector(elements, count, [&](const number_vector &values) PAVO_ZORV_INLINE_LAMBDA {
    more -= (values >= 0x80) + (values >= 0x4000) + (values >= 0x200000) + (values >= 0x10000000);
  });
  return count + sum_of_lanes(more);
}

std::uint64_t measure_long_list(const std::uint32_t *elements, std::size_t count);

// Nearly all numbers are labels, or as small: what they take beyond a byte each is known from two comparisons. Where
// there are others, all are measured again.
PAVO_ZORV_NOINLINE inline std::uint64_t measure_integers(const std::uint32_t *elements, std::size_t count) {
  if (count > batch) [[unlikely]]
    return measure_long_list(elements, count);
  if (!loads_lanes && count < vector_numbers) return plain::measure_integers(elements, count);
  number_vector all{};
  signed_vector more{};
  for_each_vector(elements, count, [&](const number_vector &values) PAVO_ZORV_INLINE_LAMBDA {
    const auto labels = reinterpret_cast<signed_vector>(values);
    all |= values;
    more -= (labels > 0x7f) + (labels > 0x3fff);
  });
  if (!none(all >> label_bits)) [[unlikely]]
    return measure_beyond_labels(elements, count);
  return count + sum_of_lanes(more);
}

// A batch at a time, so that one number that is no label does not have all measured again.
PAVO_ZORV_NOINLINE inline std::uint64_t measure_long_list(const std::uint32_t *elements, std::size_t count) {
  std::uint64_t bytes = 0;
  for (; count > batch; elements += batch, count -= batch) bytes += measure_integers(elements, batch);
  return bytes + measure_integers(elements, count);
}

}  // namespace pavo_zorv
