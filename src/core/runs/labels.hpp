// Labels of twenty bits, as many as a vector holds.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "vectors.hpp"

namespace pavo_zorv {

// The bits that a varint of three bytes has. A number that takes fewer bytes has others when 0x4000 is taken away.
inline constexpr unsigned label_bits = 21;

#if defined(__SSSE3__)
// For four words, each a key of one byte and a varint of up to three: where their bytes go when they are moved together
// to the end. The index has a bit for each varint of one byte and, above them, one for each of one or two.
inline constexpr auto label_shuffles = [] {
  std::array<std::array<byte, 16>, 256> result{};
  for (unsigned sizes = 0; sizes < 256; ++sizes) {
    unsigned at = 16;
    for (unsigned word = 4; word-- != 0;) {
      const unsigned fewer = (sizes >> word & 1) + (sizes >> (word + 4) & 1);
      for (unsigned place = 4 - fewer; place-- != 0;) result[sizes][--at] = static_cast<byte>(4 * word + place);
    }
  }
  return result;
}();

// For each four of a vector, an index of these, sixteen bits apart: made of lanes of ones where a value takes one byte,
// and where it takes one or two.
inline unsigned label_sizes(const number_vector &one, const number_vector &two) {
#if defined(__AVX2__)
  const __m256i both = _mm256_packs_epi32(reinterpret_cast<__m256i>(one), reinterpret_cast<__m256i>(two));
  return static_cast<unsigned>(_mm256_movemask_epi8(_mm256_packs_epi16(both, both)));
#else
  const __m128i both = _mm_packs_epi32(reinterpret_cast<__m128i>(one), reinterpret_cast<__m128i>(two));
  return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(both, both)));
#endif
}
#endif

// As many elements as a vector holds where each takes three bytes and, with the key after it, a 32-bit word: most
// labels do. A quarter of the work that windows take.
class label_block {
 public:
  static constexpr std::size_t size = vector_size;
  static constexpr std::size_t elements = vector_numbers;
  static constexpr bool usable = std::endian::native == std::endian::little;

  explicit label_block(const void *from) { std::memcpy(&words_, from, size); }

  // Which words are a value of three bytes and a key of one after it, the first the lowest bit.
  unsigned labels(std::uint32_t key) const {
    const auto same = reinterpret_cast<number_vector>((words_ & 0xff808080) == (key << 24 | 0x8080));
    return marked(same);
  }
  static constexpr unsigned all = (1U << elements) - 1;

  void read(std::uint32_t *values) const { read_from<0>(values); }

  // The same where the key of each value is the byte before it.
  void read_after_keys(std::uint32_t *values) const { read_from<8>(values); }

 private:
  template <unsigned Bit>
  void read_from(std::uint32_t *values) const {
    const number_vector labels =
        (words_ >> Bit & 0x7f) | (words_ >> (Bit + 1) & 0x3f80) | (words_ >> (Bit + 2) & 0x1fc000);
    std::memcpy(values, &labels, size);
  }

  number_vector words_;
};

#if defined(__SSSE3__)
// The same where each element takes two bytes, and three with the key: labels from 128 to 16,383 do.
class short_label_block {
 public:
  static constexpr std::size_t size = vector_size / 4 * 3;
  static constexpr std::size_t read_size = size + 4;  // bytes that are loaded

  explicit short_label_block(const byte *from) {
    constexpr char zero = -1;
    const __m128i places = _mm_setr_epi8(0, 1, 2, zero, 3, 4, 5, zero, 6, 7, 8, zero, 9, 10, 11, zero);
    const auto four = [&](const byte *at) {
      __m128i bytes;
      std::memcpy(&bytes, at, sizeof bytes);
      return _mm_shuffle_epi8(bytes, places);
    };
#if defined(__AVX2__)
    const __m256i words = _mm256_set_m128i(four(from + 12), four(from));
#else
    const __m128i words = four(from);
#endif
    std::memcpy(&words_, &words, sizeof words_);
  }

  bool are_labels(std::uint32_t key) const { return none((words_ & 0xff8080) ^ (key << 16 | 0x80)); }

  void read(std::uint32_t *values) const {
    const number_vector labels = (words_ & 0x7f) | (words_ >> 1 & 0x3f80);
    std::memcpy(values, &labels, sizeof labels);
  }

 private:
  number_vector words_;
};
#endif

// Writes labels, each with its key before it.
class label_writer {
 public:
  explicit label_writer(std::uint32_t key) : keys_(constant(key | 0x808000)) {}

  // Whether each value takes three bytes.
  static bool are_long(const number_vector &values) { return none((values | (values - 0x4000)) >> label_bits); }

  // Such values.
  void write(byte *at, const number_vector &labels) const {
    const number_vector bytes = (spread(labels).all << 8) + keys_;
    std::memcpy(at, &bytes, sizeof bytes);
  }

  // Whether each value takes three bytes or less.
  static bool are_labels(const number_vector &values) { return none(values >> label_bits); }

  // Such values, whatever their sizes, so that they end at a place; where they begin. Up to a vector before that is
  // overwritten. If only the last lanes are to be written, the others must be 0.
  byte *prepend(byte *at, const number_vector &labels, std::size_t count = vector_numbers) const {
    const groups seven = spread(labels);
    const auto one = reinterpret_cast<number_vector>(seven.above_first == 0);
    const auto two = reinterpret_cast<number_vector>(seven.above_second == 0);
    // A lane of ones takes away, where it is moved to, the bit by which the varint would go on.
    const number_vector bytes = ((seven.all + (one << 7) + (two << 15)) << 8) + keys_;
#if defined(__SSSE3__)
    const unsigned sizes_of_all = label_sizes(one, two);
    __m128i fours[vector_numbers / 4];
    std::memcpy(fours, &bytes, sizeof fours);
    for (std::size_t index = vector_numbers / 4; index-- != 0;) {
      const unsigned sizes = sizes_of_all >> 16 * index & 0xff;
      __m128i places;
      std::memcpy(&places, label_shuffles[sizes].data(), sizeof places);
      places = _mm_shuffle_epi8(fours[index], places);
      std::memcpy(at - sizeof places, &places, sizeof places);
      at -= 16 - count_bits(sizes);
    }
    return at + 2 * (vector_numbers - count);
#else
    number_vector words = (bytes & ~two) | (bytes << 8 & two);
    words = (words & ~one) | (words << 8 & one);
    return prepend_lanes(at, words, one + two + 4, count);
#endif
  }

 private:
  // Groups of seven bits, one in each byte.
  struct groups {
    number_vector all;
    number_vector above_first;   // 0 where there is no second group
    number_vector above_second;  // 0 where there is no third
  };

  // What is above a group moves up by a bit when it is added to itself.
  groups spread(const number_vector &labels) const {
    const number_vector above_first = labels & above_first_, some = labels + above_first;
    const number_vector above_second = some & above_second_;
    return {some + above_second, above_first, above_second};
  }

  number_vector keys_;  // with the bits by which a varint of three bytes goes on
  number_vector above_first_ = constant(~std::uint32_t{0x7f});
  number_vector above_second_ = constant(~std::uint32_t{0x7fff});
};

}  // namespace pavo_zorv
