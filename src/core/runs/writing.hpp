// Lists of integers, measured and written as runs, and compared.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "plain.hpp"
#include "vectors.hpp"

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

// One byte more for each power of 128 that an element reaches; a vector at a time. Labels of twenty bits, all of three
// bytes, are seen together by the bits that any of them has, and those it has when 0x4000 is taken away.
inline std::uint64_t measure_integers(const std::uint32_t *elements, std::size_t count) {
  using words [[gnu::vector_size(vector_size)]] = std::uint32_t;
  using counts [[gnu::vector_size(vector_size)]] = std::int32_t;
  constexpr std::size_t together = vector_size / sizeof *elements;
  std::uint64_t bytes = 0;
  while (count >= together) {
    const std::size_t stretch = std::min<std::size_t>(count / together, 16);
    words bits = {}, values;
    for (std::size_t index = 0; index < stretch; ++index) {
      std::memcpy(&values, elements + index * together, sizeof values);
      bits |= values | (values - 0x4000);
    }
    if (none(bits & beyond_labels)) {
      bytes += 3 * together * stretch;
    } else {
      counts sums = {};
      for (std::size_t index = 0; index < stretch; ++index) {
        std::memcpy(&values, elements + index * together, sizeof values);
        sums -= (values >= 0x80) + (values >= 0x4000) + (values >= 0x200000) + (values >= 0x10000000);
      }
      bytes += together * stretch;
      for (std::size_t index = 0; index < together; ++index) bytes += static_cast<std::uint64_t>(sums[index]);
    }
    elements += stretch * together;
    count -= stretch * together;
  }
  return bytes + plain::measure_integers(elements, count);
}

// Writes integers backwards, each with its key.
template <class Sink, class Element>
PAVO_ZORV_INLINE typename Sink::place prepend_integers(const Sink &sink, typename Sink::place at, unsigned number,
                                                       const Element *elements, std::size_t count) {
  return plain::prepend_integers(sink, at, number, elements, count);
}

// Varints of some numbers: the first four bytes of each in one number, and the fifth, or 0, in another.
PAVO_ZORV_INLINE void varint_bytes(const std::uint32_t *numbers, std::uint32_t *four, std::uint32_t *fifth) {
  number_vector values;
  std::memcpy(&values, numbers, sizeof values);
  const number_vector more = values >> 28;
  // Groups of seven bits, one in each byte.
  number_vector word = (values & 0x3fff) | (values & 0xfffc000) << 2;
  word = (word & 0x7f007f) | (word & 0x3f803f80) << 1;
  // A byte goes on where any after it has a bit.
  number_vector behind = word >> 8;
  behind |= behind >> 8;
  behind |= behind >> 16;
  word |= ((behind + 0x7f7f7f7f) | (more != 0)) & 0x80808080;
  std::memcpy(four, &word, sizeof word);
  std::memcpy(fifth, &more, sizeof more);
}

// From the start of a run whose size is known: each element with its key as a word, of which the bytes after the
// element are overwritten next. Elements less than a word before the end of the run are left to the caller: returns how
// many are written.
template <unsigned KeySize>
PAVO_ZORV_NOINLINE std::size_t append_words(byte *at, const byte *end, std::uint32_t key, const std::uint32_t *elements,
                                            std::size_t count) {
  const key_bytes<KeySize> bytes(key);
  const std::uint64_t key_word = KeySize == 1 ? bytes.first : bytes.first | std::uint32_t{bytes.second} << 8;
  const auto append = [&](std::uint64_t varint) __attribute__((always_inline)) {
    store_word(at, key_word | varint << 8 * KeySize);
    at += KeySize + 1 + static_cast<unsigned>(__builtin_ctzll(~varint & highest_bits)) / 8;
  };
  // After the elements that are written as words stand four others, of two bytes at least: so the words do not reach
  // the end of the run.
  constexpr std::size_t behind = 4, most = 32;
  std::size_t done = 0;
  while (count - done >= numbers_together + behind) {
    if constexpr (KeySize == 1 && label_block::usable) {
      if (label_block::all_labels(elements + done)) {
        label_block::write(at, key, elements + done);
        done += label_block::elements;
        at += label_block::size;
        continue;
      }
    }
    const std::size_t some = std::min(count - done - behind, most) / numbers_together * numbers_together;
    std::uint32_t four[most], fifth[most];
    for (std::size_t index = 0; index < some; index += numbers_together)
      varint_bytes(elements + done + index, four + index, fifth + index);
    for (std::size_t index = 0; index < some; ++index) append(four[index] | std::uint64_t{fifth[index]} << 32);
    done += some;
  }
  // The last element, at the latest, begins less than a word before the end.
  while (end - at >= 8) {
    const std::uint32_t value = elements[done++];
    append(varint_word(value, static_cast<unsigned>(varint_size(value))));
  }
  return done;
}

// Whether a list has room: its elements are mostly not measured for that.
template <class Element>
PAVO_ZORV_INLINE bool has_room(const quick_sink &sink, const byte *at, std::size_t key_size, const Element *elements,
                               std::size_t count) {
  constexpr std::size_t longest = sizeof(Element) == 1 ? 2 : 5;
  return sink.has_room(at, std::uint64_t{count} * (key_size + longest)) ||
         sink.has_room(at, std::uint64_t{count} * key_size + measure_integers(elements, count));
}

// Labels from the end on, as many as stand there; then the rest from its start on, if it is worth measuring.
inline byte *prepend_integers(const quick_sink &sink, byte *at, unsigned number, const std::uint32_t *elements,
                              std::size_t count) {
  const std::uint32_t key = key_of(number, wire_type::varint);
  const std::size_t key_size = key < 0x80 ? 1 : 2;
  if (!has_room(sink, at, key_size, elements, count)) return sink.full();
  if (label_block::usable && key_size == 1) {
    while (count >= label_block::elements && label_block::all_labels(elements + count - label_block::elements)) {
      count -= label_block::elements;
      at -= label_block::size;
      label_block::write(at, key, elements + count);
    }
  }
  if (count < 4) return plain::prepend_integers(sink, at, number, elements, count);
  byte *const start = at - static_cast<std::size_t>(count * key_size + measure_integers(elements, count));
  const std::size_t done = key_size == 1 ? append_words<1>(start, at, key, elements, count)
                                         : append_words<2>(start, at, key, elements, count);
  // What stands before these is written already.
  plain::prepend_integers(bytes_before{}, at, number, elements + done, count - done);
  return start;
}

// The same for bytes: key, value, and the byte 1 that a value from 128 on takes as well.
template <unsigned KeySize>
PAVO_ZORV_INLINE void append_bytes(byte *at, std::uint32_t key, const std::uint8_t *elements, std::size_t count) {
  const key_bytes<KeySize> bytes(key);
  const std::uint32_t key_word = KeySize == 1 ? bytes.first : bytes.first | std::uint32_t{bytes.second} << 8;
  std::size_t index = 0;
  for (; index + 1 < count; ++index) {
    const std::uint32_t value = elements[index], more = value >> 7;
    store_word(at, key_word | value << 8 * KeySize | more << 8 * (KeySize + 1));
    at += KeySize + 1 + more;
  }
  *at++ = bytes.first;
  if constexpr (KeySize == 2) *at++ = bytes.second;
  *at++ = elements[index];
  if (elements[index] >= 0x80) *at = 1;
}

// Four elements at a time from the end on, where the processor can put them together; what a store covers before them
// is not yet written, where the buffer begins far enough before.
template <unsigned KeySize>
PAVO_ZORV_NOINLINE byte *prepend_bytes(const quick_sink &sink, byte *at, std::uint32_t key,
                                       const std::uint8_t *elements, std::size_t count) {
  if (!has_room(sink, at, KeySize, elements, count)) return sink.full();
  if constexpr (four_elements<KeySize>::usable) {
    const four_elements<KeySize> four{key_bytes<KeySize>(key)};
    for (; count >= 4 && at - sink.first >= static_cast<std::ptrdiff_t>(four.room); count -= 4)
      at = four.prepend(at, elements + count - 4);
  }
  if (count == 0) return at;
  at -= static_cast<std::size_t>(count * KeySize + measure_integers(elements, count));
  append_bytes<KeySize>(at, key, elements, count);
  return at;
}

PAVO_ZORV_INLINE byte *prepend_integers(const quick_sink &sink, byte *at, unsigned number, const std::uint8_t *elements,
                                        std::size_t count) {
  const std::uint32_t key = key_of(number, wire_type::varint);
  return key < 0x80 ? prepend_bytes<1>(sink, at, key, elements, count)
                    : prepend_bytes<2>(sink, at, key, elements, count);
}

// Integers element by element, unsigned: -1, 0 or 1.
inline int compare_integers(const std::uint8_t *a, const std::uint8_t *b, std::size_t count) {
  return count != 0 ? compare_values(std::memcmp(a, b, count), 0) : 0;
}

// Equal blocks are found equal eight elements at a time; the first difference is looked for one by one.
inline int compare_integers(const std::uint32_t *a, const std::uint32_t *b, std::size_t count) {
  std::size_t index = 0;
  while (count - index >= 8 && std::memcmp(a + index, b + index, 8 * sizeof *a) == 0) index += 8;
  for (; index < count; ++index) {
    if (a[index] != b[index]) return compare_values(a[index], b[index]);
  }
  return 0;
}

}  // namespace pavo_zorv
