// Runs of integers, written.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "labels.hpp"
#include "measuring.hpp"
#include "plain.hpp"

namespace pavo_zorv {

// Writes a run so that it ends at `at`; returns where it begins. When the writer overflows, nothing is written, and
// `at` is returned. Up to a vector before the run may be overwritten, but nothing before `to.first()`.
template <unsigned KeySize>
byte *write_run(writer &to, byte *at, std::uint32_t key, const std::uint32_t *elements, std::size_t count);
template <unsigned KeySize>
byte *write_run(writer &to, byte *at, std::uint32_t key, const std::uint8_t *elements, std::size_t count);

// Whether the most that a list could take fits.
template <unsigned KeySize, class Element>
inline bool has_room_for_any(const writer &to, const byte *at, const Element *, std::size_t count) {
  constexpr std::size_t longest = KeySize + (sizeof(Element) == 1 ? 2 : 5);
  return to.has_room(at, std::uint64_t{count} * longest);
}

// Otherwise what it takes is measured, and reserved.
template <unsigned KeySize, class Element>
PAVO_ZORV_NOINLINE byte *write_measured_run(writer &to, byte *at, std::uint32_t key, const Element *elements,
                                            std::size_t count) {
  if (!to.reserve(at, std::uint64_t{count} * KeySize + measure_integers(elements, count))) return at;
  auto reserved = writer::exact(to.first(), nullptr, false);
  return write_run<KeySize>(reserved, at, key, elements, count);
}

// --- Lists of 32-bit integers ---

// The varints of a vector of numbers: the first four bytes of each in one number, and the fifth, or 0, in another.
inline void varint_bytes(const number_vector &values, std::uint32_t *four, std::uint32_t *fifth) {
  const number_vector more = values >> 28;
  // Groups of seven bits, one in each byte.
  number_vector word = (values & 0x3fff) | (values & 0xfffc000) << 2;
  word = (word & 0x7f007f) | (word & 0x3f803f80) << 1;
  // A byte goes on where any byte after it has a bit.
  number_vector after = word >> 8;
  after |= after >> 8;
  after |= after >> 16;
  word |= ((after + 0x7f7f7f7f) | (more != 0)) & 0x80808080;
  std::memcpy(four, &word, sizeof word);
  std::memcpy(fifth, &more, sizeof more);
}

// Where a run has been written down to, and how many elements there are before that.
struct unwritten {
  byte *at;
  std::size_t count;
};

// Labels from the end on, as many vectors of them as there are in a row; not where one might be stored before the
// buffer.
inline unwritten prepend_labels(const byte *first, byte *at, std::uint32_t key, const std::uint32_t *elements,
                                std::size_t count) {
  constexpr auto space = static_cast<std::ptrdiff_t>(vector_size);
  const label_writer labels(key);
  // The last ones, which do not fill a vector.
  const std::size_t some = count % vector_numbers;
  if (some != 0 && (loads_lanes || count >= vector_numbers) && at - first >= space) {
    const number_vector last = load_last(elements + count, some);
    if (!labels.are_labels(last)) return {at, count};
    at = labels.prepend(at, last, some);
    count -= some;
  }
  for (; count >= vector_numbers; count -= vector_numbers) {
    const number_vector last = load_numbers(elements + count - vector_numbers);
    if (labels.are_long(last)) {
      at -= vector_size;
      labels.write(at, last);
    } else {
      if (at - first < space || !labels.are_labels(last)) break;
      at = labels.prepend(at, last);
    }
  }
  return {at, count};
}

// Integers of any size, each as a word that ends where the next begins. The first ones, where they do not fill a vector
// or a word might be stored before the buffer, are written one by one.
template <unsigned KeySize>
PAVO_ZORV_NOINLINE byte *prepend_words(const writer &to, byte *at, std::uint32_t key, const std::uint32_t *elements,
                                       std::size_t count) {
  constexpr std::size_t most = 32;
  const key_bytes<KeySize> bytes(key);
  for (;;) {
    const std::size_t words = static_cast<std::size_t>(at - to.first()) / 8;
    const std::size_t some = std::min({count, words, most}) / vector_numbers * vector_numbers;
    if (some == 0) return plain::write_integers(to, at, number_of(key), elements, count);
    std::uint32_t four[most], fifth[most];
    count -= some;
    for (std::size_t index = 0; index < some; index += vector_numbers)
      varint_bytes(load_numbers(elements + count + index), four + index, fifth + index);
    for (std::size_t index = some; index-- != 0;) {
      const std::uint64_t varint = four[index] | std::uint64_t{fifth[index]} << 32;
      const unsigned bits = lowest_one(~varint & highest_bits) + 1 + 8 * KeySize;
      store_word(at - 8, (bytes.word() | varint << 8 * KeySize) << (64 - bits));
      at -= bits / 8;
    }
  }
}

template <unsigned KeySize>
PAVO_ZORV_NOINLINE byte *write_run(writer &to, byte *at, std::uint32_t key, const std::uint32_t *elements,
                                   std::size_t count) {
  if (!has_room_for_any<KeySize>(to, at, elements, count))
    return write_measured_run<KeySize>(to, at, key, elements, count);
  if constexpr (KeySize == 1 && label_block::usable) {
    const unwritten rest = prepend_labels(to.first(), at, key, elements, count);
    at = rest.at;
    count = rest.count;
    if (count == 0) return at;
  }
  return prepend_words<KeySize>(to, at, key, elements, count);
}

// --- Lists of 8-bit integers ---

#if defined(__SSSE3__)
// Four 8-bit elements as varints with their keys, made by one shuffle: which bytes of the source go where
// follows from which elements take a second byte, which is always 1.
template <unsigned KeySize>
class four_elements {
 public:
  static constexpr std::size_t size = 16;  // bytes that a store covers, of which the last are the elements

  explicit four_elements(key_bytes<KeySize> key)
      : others_(_mm_set_epi32(0, 0, 1 << 16 | key.second << 8 | key.first, 0)) {}

  byte *prepend(byte *at, const byte *elements) const {
    int four;
    std::memcpy(&four, elements, sizeof four);
    const __m128i values = _mm_cvtsi32_si128(four);
    const auto longer = static_cast<unsigned>(_mm_movemask_epi8(values));
    __m128i places;
    std::memcpy(&places, shuffles.of[longer], sizeof places);
    const __m128i bytes = _mm_shuffle_epi8(_mm_or_si128(values, others_), places);
    std::memcpy(at - size, &bytes, size);
    return at - 4 * (KeySize + 1) - count_bits(longer);
  }

 private:
  struct shuffle_table {
    byte of[16][16];
  };

  // The source has four elements, the key, and the byte 1.
  static constexpr shuffle_table make_shuffles() {
    shuffle_table result{};
    for (unsigned longer = 0; longer < 16; ++longer) {
      unsigned at = 16;
      for (unsigned element = 4; element-- != 0;) {
        if ((longer >> element & 1) != 0) result.of[longer][--at] = 6;
        result.of[longer][--at] = static_cast<byte>(element);
        if (KeySize == 2) result.of[longer][--at] = 5;
        result.of[longer][--at] = 4;
      }
    }
    return result;
  }

  static constexpr shuffle_table shuffles = make_shuffles();
  __m128i others_;
};
#else
// The same where bytes cannot be shuffled: each element, with its key before it, as the last bytes of a word.
template <unsigned KeySize>
class four_elements {
 public:
  static constexpr std::size_t size = 16;  // bytes that the stores cover, of which the last are the elements

  explicit four_elements(key_bytes<KeySize> key) : others_(constant(key.word() << 8 * (2 - KeySize) | 1 << 24)) {}

  byte *prepend(byte *at, const byte *elements) const {
    const number_vector values = load(elements);
    const number_vector more = values >> 23, longer = others_ | values;
    const number_vector words = more == 0 ? longer << 8 : longer;
    return prepend_lanes(at, words, more + (KeySize + 1));
  }

 private:
  static number_vector load(const byte *elements) {
#if defined(__SSE2__)
    int four;
    std::memcpy(&four, elements, sizeof four);
    // No branches: there is no condition, but GCC counts how an intrinsic function might throw.
    const __m128i zero = _mm_setzero_si128(), pairs = _mm_unpacklo_epi8(_mm_cvtsi32_si128(four), zero);
    return reinterpret_cast<number_vector>(_mm_unpacklo_epi16(zero, pairs));
#else
    const number_vector values = {elements[0], elements[1], elements[2], elements[3]};
    return values << 16;
#endif
  }

  number_vector others_;
};
#endif

// Writes a run forwards, from `at` exactly to its end: key, value, and the byte 1 that a value from 128 on takes as
// well. There is at least one element. Each is stored as a word, and the next overwrites what is too much of it: two
// elements take four bytes or more. So the last one is stored byte by byte.
template <unsigned KeySize>
inline void append_bytes(byte *at, std::uint32_t key, const std::uint8_t *elements, std::size_t count) {
  const key_bytes<KeySize> bytes(key);
  std::size_t index = 0;
  for (; index + 1 < count; ++index) {
    const std::uint32_t value = elements[index], more = value >> 7;
    store_word(at, bytes.word() | value << 8 * KeySize | more << 8 * (KeySize + 1));
    at += KeySize + 1 + more;
  }
  *at++ = bytes.first;
  if constexpr (KeySize == 2) *at++ = bytes.second;
  *at++ = elements[index];
  if (elements[index] >= 0x80) *at = 1;
}

// Four elements at a time from the end on, where no store reaches before the buffer.
template <unsigned KeySize>
PAVO_ZORV_NOINLINE byte *write_run(writer &to, byte *at, std::uint32_t key, const std::uint8_t *elements,
                                   std::size_t count) {
  if (!has_room_for_any<KeySize>(to, at, elements, count))
    return write_measured_run<KeySize>(to, at, key, elements, count);
  const four_elements<KeySize> four{key_bytes<KeySize>(key)};
  for (; count >= 4 && at - to.first() >= static_cast<std::ptrdiff_t>(four.size); count -= 4)
    at = four.prepend(at, elements + count - 4);
  if (count == 0) return at;
  at -= static_cast<std::size_t>(count * KeySize + measure_integers(elements, count));
  append_bytes<KeySize>(at, key, elements, count);
  return at;
}

// --- Both ---

// Writes a list backwards, each element with its key.
template <class Element>
inline byte *write_integers(writer &to, byte *at, unsigned number, const Element *elements, std::size_t count) {
  const std::uint32_t key = key_of(number, wire_type::varint);
  return key < 0x80 ? write_run<1>(to, at, key, elements, count) : write_run<2>(to, at, key, elements, count);
}

template <class Writer, class Element>
typename Writer::position write_integers(const Writer &to, typename Writer::position at, unsigned number,
                                         const Element *elements, std::size_t count) {
  return plain::write_integers(to, at, number, elements, count);
}

}  // namespace pavo_zorv
