// Labels of twenty bits, as many as a vector holds.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "vectors.hpp"

namespace pavo_zorv {

// Bits that no varint of three bytes has; a smaller number has the highest when 0x4000 is taken away.
inline constexpr std::uint32_t beyond_labels = 0xffe00000;

#if defined(__SSSE3__)
// For four words, each a key of one byte and a varint of up to three: where their bytes go when they are moved together
// to the end. The index has a bit for each varint of two bytes or more and, above them, one for each of three.
inline constexpr auto label_shuffles = [] {
  std::array<std::array<byte, 16>, 256> result{};
  for (unsigned sizes = 0; sizes < 256; ++sizes) {
    unsigned at = 16;
    for (unsigned word = 4; word-- != 0;) {
      const unsigned more = (sizes >> word & 1) + (sizes >> (word + 4) & 1);
      for (unsigned place = more + 2; place-- != 0;) result[sizes][--at] = static_cast<byte>(4 * word + place);
    }
  }
  return result;
}();
#endif

// As many elements as a vector holds where each takes three bytes and, with the key after or before it, a 32-bit
// word: most labels do. A quarter of the work that windows take.
class label_block {
 public:
  static constexpr std::size_t size = vector_size;
  static constexpr std::size_t elements = vector_numbers;
  static constexpr bool usable = std::endian::native == std::endian::little;

  explicit label_block(const void *from) { std::memcpy(&words_, from, size); }

  // On the wire: whether each word is a value of three bytes and a key of one after it.
  inline bool are_labels(std::uint32_t key) const { return none((words_ & 0xff808080) ^ (key << 24 | 0x8080)); }

  // How many of them do before the first that does not.
  inline unsigned leading(std::uint32_t key) const {
    const auto same = reinterpret_cast<number_vector>((words_ & 0xff808080) == (key << 24 | 0x8080));
    return static_cast<unsigned>(std::countr_one(marked(same)));
  }

  inline void read(std::uint32_t *values) const {
    const number_vector labels = (words_ & 0x7f) | (words_ >> 1 & 0x3f80) | (words_ >> 2 & 0x1fc000);
    std::memcpy(values, &labels, size);
  }

  // In memory: whether each value takes three bytes.
  static bool all_labels(const number_vector &values) { return none((values | (values - 0x4000)) & beyond_labels); }

  // Each value with the key before it.
  static void write(byte *at, std::uint32_t key, const number_vector &labels) {
    const number_vector bytes = with_keys(key, labels) | 0x808000;
    std::memcpy(at, &bytes, size);
  }

  // Whether each value takes three bytes or less.
  static bool all_short(const number_vector &values) { return none(values & beyond_labels); }

#if defined(__SSSE3__)
  // Such values with their keys before them, whatever their sizes, so that they end at a place; where they begin. Up
  // to 16 bytes before that are overwritten.
  static byte *prepend(byte *at, std::uint32_t key, const number_vector &labels) {
    const auto two = reinterpret_cast<number_vector>(reinterpret_cast<signed_vector>(labels) > 0x7f);
    const auto three = reinterpret_cast<number_vector>(reinterpret_cast<signed_vector>(labels) > 0x3fff);
    const number_vector bytes = with_keys(key, labels) | (two & 0x8000) | (three & 0x800000);
    const unsigned twos = marked(two), threes = marked(three);
    __m128i fours[elements / 4];
    std::memcpy(fours, &bytes, size);
    for (std::size_t index = elements / 4; index-- != 0;) {
      const unsigned sizes = (twos >> 4 * index & 15) | (threes >> 4 * index & 15) << 4;
      __m128i places;
      std::memcpy(&places, label_shuffles[sizes].data(), sizeof places);
      places = _mm_shuffle_epi8(fours[index], places);
      std::memcpy(at - sizeof places, &places, sizeof places);
      at -= 8 + count_bits(sizes);
    }
    return at;
  }
#endif

 private:
  // Groups of seven bits, one in each byte after the key.
  static number_vector with_keys(std::uint32_t key, const number_vector &labels) {
    return (labels & 0x7f) << 8 | (labels & 0x3f80) << 9 | (labels & 0x1fc000) << 10 | key;
  }

  number_vector words_;
};

#if defined(__SSSE3__)
// The same where each element takes two bytes, and three with the key: the first labels of the usual block do.
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

  inline bool are_labels(std::uint32_t key) const { return none((words_ & 0xff8080) ^ (key << 16 | 0x80)); }

  inline void read(std::uint32_t *values) const {
    const number_vector labels = (words_ & 0x7f) | (words_ >> 1 & 0x3f80);
    std::memcpy(values, &labels, sizeof labels);
  }

 private:
  number_vector words_;
};
#endif

}  // namespace pavo_zorv
