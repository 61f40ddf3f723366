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

// Reserves the bytes of a list. What it takes is measured only where the most that it could take does not fit.
template <unsigned KeySize, class Element>
bool reserve_run(writer &to, const byte *at, const Element *elements, std::size_t count) {
  constexpr std::size_t longest = KeySize + (sizeof(Element) == 1 ? 2 : 5);
  return to.has_room(at, std::uint64_t{count} * longest) ||
         to.reserve(at, std::uint64_t{count} * KeySize + measure_integers(elements, count));
}

// --- Lists of 32-bit integers ---

// The varints of a vector of numbers: the first four bytes of each in one number, and the fifth, or 0, in another.
inline void varint_bytes(const std::uint32_t *numbers, std::uint32_t *four, std::uint32_t *fifth) {
  const number_vector values = load_numbers(numbers);
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

// How far a run has been written from its start on.
struct appended {
  byte *at;
  std::size_t count;
};

// Writes a run forwards, from its start to less than a word before its end: each element with its key as a word, of
// which the bytes after the element are overwritten next.
template <unsigned KeySize>
PAVO_ZORV_NOINLINE appended append_words(byte *at, const byte *end, std::uint32_t key, const std::uint32_t *elements,
                                         std::size_t count) {
  const key_bytes<KeySize> bytes(key);
  const auto append = [&](std::uint64_t varint) {
    store_word(at, bytes.word() | varint << 8 * KeySize);
    at += KeySize + 1 + static_cast<unsigned>(__builtin_ctzll(~varint & highest_bits)) / 8;
  };
  // After the elements that are taken by vectors there are four others, of two bytes at least with their keys: so no
  // word reaches past the end of the run.
  constexpr std::size_t rest = 4, most = 32;
  std::size_t done = 0;
  while (count - done >= vector_numbers + rest) {
    if constexpr (KeySize == 1 && label_block::usable) {
      const number_vector next = load_numbers(elements + done);
      if (label_block::all_labels(next)) {
        label_block::write(at, key, next);
        done += label_block::elements;
        at += label_block::size;
        continue;
      }
    }
    const std::size_t some = std::min(count - done - rest, most) / vector_numbers * vector_numbers;
    std::uint32_t four[most], fifth[most];
    for (std::size_t index = 0; index < some; index += vector_numbers)
      varint_bytes(elements + done + index, four + index, fifth + index);
    for (std::size_t index = 0; index < some; ++index) append(four[index] | std::uint64_t{fifth[index]} << 32);
    done += some;
  }
  // The last element, at the latest, begins less than a word before the end.
  while (end - at >= 8) {
    const std::uint32_t value = elements[done++];
    append(varint_word(value, static_cast<unsigned>(varint_size(value))));
  }
  return {at, done};
}

// Labels from the end on, as many as there are in a row; returns where they begin, and how many elements there are
// before them. Without shuffles, only labels of three bytes.
PAVO_ZORV_INLINE appended prepend_labels([[maybe_unused]] const writer &to, byte *at, std::uint32_t key,
                                         const std::uint32_t *elements, std::size_t count) {
  using block = label_block;
  for (; count >= block::elements; count -= block::elements) {
    const number_vector last = load_numbers(elements + count - block::elements);
    if (block::all_labels(last)) {
      at -= block::size;
      block::write(at, key, last);
      continue;
    }
    if constexpr (!has_shuffles) break;
#if defined(__SSSE3__)
    if (at - to.first() < static_cast<std::ptrdiff_t>(block::size) || !block::all_short(last)) break;
    at = block::prepend(at, key, last);
#endif
  }
#if defined(__AVX2__)
  // What is left at the start of the list, in the last lanes: the others are written before it, two bytes each, and
  // overwritten.
  if (count != 0 && count < block::elements && at - to.first() >= static_cast<std::ptrdiff_t>(block::size)) {
    const number_vector first = load_last(elements + count, count);
    if (block::all_short(first)) return {block::prepend(at, key, first) + 2 * (block::elements - count), 0};
  }
#endif
  return {at, count};
}

// Labels from the end on; then the rest from its start on, if it is worth measuring.
template <unsigned KeySize>
inline byte *write_run(writer &to, byte *at, std::uint32_t key, const std::uint32_t *elements, std::size_t count) {
  if (!reserve_run<KeySize>(to, at, elements, count)) return at;
  if constexpr (KeySize == 1 && label_block::usable) {
    const appended labels = prepend_labels(to, at, key, elements, count);
    at = labels.at;
    count = labels.count;
  }
  if (count < 4) return plain::write_integers(to, at, number_of(key), elements, count);
  byte *const start = at - static_cast<std::size_t>(count * KeySize + measure_integers(elements, count));
  const appended begun = append_words<KeySize>(start, at, key, elements, count);
  const auto rest = writer::exact(begun.at, nullptr, false);
  plain::write_integers(rest, at, number_of(key), elements + begun.count, count - begun.count);
  return start;
}

// --- Lists of 8-bit integers ---

#if defined(__SSSE3__)
// Four 8-bit elements as varints with their keys, made by one shuffle: which bytes of the source go where
// follows from which elements take a second byte, which is always 1.
template <unsigned KeySize>
class four_elements {
 public:
  static constexpr bool usable = true;
  static constexpr std::size_t size = 16;  // bytes that a store covers, of which the last are the elements

  explicit four_elements(key_bytes<KeySize> key)
      : others_(_mm_set_epi32(0, 0, 1 << 16 | key.second << 8 | key.first, 0)) {}

  inline byte *prepend(byte *at, const byte *elements) const {
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
template <unsigned KeySize>
struct four_elements {
  static constexpr bool usable = false;
};
#endif

// Writes a run forwards, byte for byte up to its end: key, value, and the byte 1 that a value from 128 on takes as
// well.
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

// Four elements at a time from the end on, where the processor has the shuffle and the store does not reach
// before the buffer.
template <unsigned KeySize>
PAVO_ZORV_NOINLINE byte *write_run(writer &to, byte *at, std::uint32_t key, const std::uint8_t *elements,
                                   std::size_t count) {
  if (!reserve_run<KeySize>(to, at, elements, count)) return at;
  if constexpr (four_elements<KeySize>::usable) {
    const four_elements<KeySize> four{key_bytes<KeySize>(key)};
    for (; count >= 4 && at - to.first() >= static_cast<std::ptrdiff_t>(four.size); count -= 4)
      at = four.prepend(at, elements + count - 4);
  }
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
