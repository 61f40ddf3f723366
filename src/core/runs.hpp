// Runs: the fields of one list, which stand together on the wire, one key and one value for each element. Every fast
// loop has a plain twin that says what it computes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "encode.hpp"
#include "windows.hpp"
#include "wire.hpp"

namespace pavo_zorv {

// Counts the elements of a run from its first value on. `skip` steps over one value, to null where it is cut off. Of
// the keys inside the run only the number is looked at, not the wire type. 0 when a value, or the key behind one, is
// cut off.
template <class Skip>
PAVO_ZORV_INLINE std::size_t count_run(unsigned number, const octet *at, const octet *end, Skip skip) {
  for (std::size_t count = 1;; ++count) {
    at = skip(at, end);
    if (at == nullptr) return 0;
    if (at == end) return count;
    const auto [next, key] = read_varint<std::uint32_t>(at, end);
    if (next == nullptr) return 0;
    if (number_of(key) != number) return count;
    at = next;
  }
}

namespace plain {

// Counts the integers of a run from its first value on.
inline std::size_t count_integers(unsigned number, const octet *at, const octet *end) {
  return count_run(number, at, end, skip_varint);
}

// Reads integers that have been counted, cut to the width of the elements; returns the place behind the last.
template <class Element>
const octet *read_integers(Element *elements, std::size_t count, const octet *at, const octet *end) {
  for (std::size_t index = 0; index < count; ++index) {
    if (index != 0) at = skip_varint(at, end);
    const auto [next, value] = read_varint<std::uint32_t>(at, end);
    elements[index] = static_cast<Element>(value);
    at = next;
  }
  return at;
}

// The octets that integers take as varints, without their keys.
template <class Element>
std::size_t measure_integers(const Element *elements, std::size_t count) {
  std::size_t octets = 0;
  for (std::size_t index = 0; index < count; ++index) octets += varint_size(std::uint32_t{elements[index]});
  return octets;
}

// Writes integers backwards, each with its key.
template <class Sink, class Element>
typename Sink::place prepend_integers(const Sink &sink, typename Sink::place at, unsigned number,
                                      const Element *elements, std::size_t count) {
  for (std::size_t index = count; index-- != 0;) {
    at = sink.prepend_varint(at, std::uint32_t{elements[index]});
    at = prepend_key(sink, at, number, wire_type::varint);
  }
  return at;
}

}  // namespace plain

// Where elements of a run lie in a window: the bit of the last octet of each value. The first begins at `at`, every
// other behind the key behind the one before it.
struct elements_seen {
  const octet *at;
  std::uint64_t ends;
};

inline constexpr std::uint64_t highest_bits = 0x8080808080808080;

// Bits that no varint of three octets has; a smaller number has the highest when 0x4000 is taken away.
inline constexpr std::uint32_t beyond_labels = 0xffe00000;

// As many elements as a vector holds where each takes three octets and, with the key behind or before it, a 32-bit
// word: labels of twenty bits mostly do. A quarter of the work that windows take.
class label_block {
 public:
  static constexpr std::size_t size = vector_size;
  static constexpr std::size_t elements = size / 4;
  static constexpr bool usable = std::endian::native == std::endian::little;

  explicit label_block(const void *from) { std::memcpy(&words_, from, size); }

  // On the wire: whether each word is a value of three octets and a key of one behind it.
  PAVO_ZORV_INLINE bool regular(std::uint32_t key) const { return none((words_ & 0xff808080) ^ (key << 24 | 0x8080)); }

  PAVO_ZORV_INLINE void read(std::uint32_t *values) const {
    const words labels = (words_ & 0x7f) | (words_ >> 1 & 0x3f80) | (words_ >> 2 & 0x1fc000);
    std::memcpy(values, &labels, size);
  }

  // In memory: whether each value takes three octets.
  PAVO_ZORV_INLINE static bool all_labels(const std::uint32_t *values) {
    const words labels = label_block(values).words_;
    return none((labels | (labels - 0x4000)) & beyond_labels);
  }

  // Each value with the key before it.
  PAVO_ZORV_INLINE static void write(octet *at, std::uint32_t key, const std::uint32_t *values) {
    const words labels = label_block(values).words_;
    const words octets = (labels & 0x7f) << 8 | (labels & 0x3f80) << 9 | (labels & 0x1fc000) << 10 | (key | 0x808000);
    std::memcpy(at, &octets, size);
  }

 private:
  using words [[gnu::vector_size(size)]] = std::uint32_t;

  words words_;
};

// A window on a run, from the first octet of a value on. Varints end in turn at a value and at a key, so the parity of
// the ends tells them apart, up to the first place where a key should begin and none in its shortest form does.
template <unsigned KeySize>
struct run_window {
  std::size_t left;      // octets of the message from here on
  std::uint64_t values;  // last octets of values
  std::uint64_t keys;    // last octets of keys
  std::uint64_t odd;     // where a key should begin, and the run ends or goes on
                         // with an odd key

  PAVO_ZORV_INLINE run_window(std::uint32_t key, const octet *at, const octet *end, const octet *limit)
      : left(static_cast<std::size_t>(end - at)) {
    const window seen = look(at, limit, key_octets<KeySize>(key));
    const std::uint64_t inside = left < window_size ? (std::uint64_t{1} << left) - 1 : ~std::uint64_t{0};
    const std::uint64_t ends = seen.ends & inside;
    values = ends & parity_up_to(ends);
    keys = ends & ~values;
    odd = (values << 1 & inside) & ~seen.keys;
  }

  // Whether the message, all of it seen and regular, ends as a run must.
  bool ends_with_value() const { return left != 0 && (values >> (left - 1) & 1) != 0; }
  std::uint64_t values_below(unsigned place) const { return values & ((std::uint64_t{1} << place) - 1); }
};

// Walks a run of integers from its first value on, a window at a time, and shows `visit` the elements in it. An odd key
// is read by itself. Returns the place behind the last value; null when a value, or the key behind one, is cut off.
template <unsigned KeySize, class Visit>
PAVO_ZORV_INLINE const octet *walk_run(std::uint32_t key, const octet *at, const octet *end, const octet *limit,
                                       Visit &visit) {
  for (;;) {
    if constexpr (KeySize == 1 && Visit::wants_blocks) {
      while (end - at >= static_cast<std::ptrdiff_t>(label_block::size)) {
        const label_block block(at);
        if (!block.regular(key)) break;
        visit.block(block);
        at += label_block::size;
      }
    }
    const run_window<KeySize> seen(key, at, end, limit);
    if (seen.odd == 0 && seen.left <= window_size) {
      if (!seen.ends_with_value()) return nullptr;
      visit.elements({at, seen.values});
      return end;
    }
    if (seen.odd == 0 && seen.keys != 0) {
      // The window may cut the last value, or the key behind it: the next one begins behind the last whole key.
      const auto whole = static_cast<unsigned>(64 - std::countl_zero(seen.keys));
      visit.elements({at, seen.values_below(whole - 1)});
      at += whole;
      continue;
    }
    if (seen.odd == 0) {
      // One value that is longer than the window, or as long.
      const octet *const next = skip_varint(at, end);
      if (next == nullptr) return nullptr;
      visit.elements({at, std::uint64_t{1} << 63});
      at = next;
      if (at == end) return end;
    } else {
      const auto place = static_cast<unsigned>(std::countr_zero(seen.odd));
      visit.elements({at, seen.values_below(place)});
      at += place;
    }
    const auto [next, other] = read_varint<std::uint32_t>(at, end);
    if (next == nullptr) return nullptr;
    if (number_of(other) != number_of(key)) return at;
    at = next;
  }
}

template <class Element>
struct element_counter {
  static constexpr bool wants_blocks = sizeof(Element) == 4 && label_block::usable;
  std::size_t count = 0;

  void elements(elements_seen seen) { count += count_bits(seen.ends); }
  void block(const label_block &) { count += label_block::elements; }
};

// The low 35 bits of a varint whose octets are the low ones of a word: seven of each octet, put together.
constexpr std::uint32_t varint_value(std::uint64_t word) {
  word = (word & 0x7f007f007f) | (word & 0x7f007f00) >> 1;
  word = (word & 0x7f00003fff) | (word & 0x3fff0000) >> 2;
  return static_cast<std::uint32_t>((word & 0xfffffff) | (word & 0x7f00000000) >> 4);
}

// Of a word with a varint at its low end, what belongs to it: everything up to the lowest highest bit that is not set,
// or five octets that all have it.
constexpr std::uint64_t up_to_end(std::uint64_t word) {
  const std::uint64_t ends = ~word & 0x8080808080;
  return word & (ends ^ (ends - 1));
}

// Some words together, and as many numbers.
inline constexpr std::size_t words_together = vector_size / 8;
using word_vector [[gnu::vector_size(vector_size)]] = std::uint64_t;
using number_vector [[gnu::vector_size(vector_size / 2)]] = std::uint32_t;

// The same for words that each have a varint at the low end and behind it whatever follows.
PAVO_ZORV_INLINE void varint_values(const word_vector &from, std::uint32_t *values) {
  const word_vector ends = ~from & 0x8080808080;
  word_vector word = from & (ends ^ (ends - 1));
  word = (word & 0x7f007f007f) | (word & 0x7f007f00) >> 1;
  word = (word & 0x7f00003fff) | (word & 0x3fff0000) >> 2;
  word = (word & 0xfffffff) | (word & 0x7f00000000) >> 4;
  const number_vector numbers = __builtin_convertvector(word, number_vector);
  std::memcpy(values, &numbers, sizeof numbers);
}

template <unsigned KeySize, class Element>
struct element_reader {
  static constexpr bool wants_blocks = sizeof(Element) == 4 && label_block::usable;
  Element *next;
  const octet *limit;

  PAVO_ZORV_INLINE void elements(elements_seen seen) {
    if constexpr (sizeof(Element) == 4) {
      if (limit - seen.at >= static_cast<std::ptrdiff_t>(window_size + 8)) return words(seen);
    }
    const octet *begin = seen.at;
    for (std::uint64_t ends = seen.ends; ends != 0; ends &= ends - 1) {
      const octet *const last = seen.at + std::countr_zero(ends);
      *next++ = value(begin, last);
      begin = last + 1 + KeySize;
    }
  }

  PAVO_ZORV_INLINE void block(const label_block &block) {
    if constexpr (wants_blocks) {
      block.read(next);
      next += label_block::elements;
    }
  }

 private:
  // Where the buffer goes on for a word behind the window: four varints at once, each as a word.
  PAVO_ZORV_INLINE void words(elements_seen seen) {
    std::uint64_t ends = seen.ends;
    const octet *begin = seen.at;
    const auto take = [&]() __attribute__((always_inline)) {
      const std::uint64_t word = load_word(begin);
      begin = seen.at + std::countr_zero(ends) + 1 + KeySize;
      ends &= ends - 1;
      return word;
    };
    std::size_t left = count_bits(ends);
    for (; left >= words_together; left -= words_together, next += words_together) {
      varint_values(take_together(take, std::make_index_sequence<words_together>{}), next);
    }
    for (; left != 0; --left) *next++ = varint_value(up_to_end(take()));
  }

  template <class Take, std::size_t... Index>
  PAVO_ZORV_INLINE static word_vector take_together(Take take, std::index_sequence<Index...>) {
    return word_vector{(static_cast<void>(Index), take())...};
  }

  // The first octet, and the lowest bit of the second if there is one.
  PAVO_ZORV_INLINE std::uint8_t value(const octet *begin, const octet *) const requires(sizeof(Element) == 1) {
    const octet more = *begin >> 7;
    return static_cast<std::uint8_t>((*begin & 0x7f) | (begin[more] & more) << 7);
  }

  // At most five octets, as one word; at the end of the buffer the last word there is.
  PAVO_ZORV_INLINE std::uint32_t value(const octet *begin, const octet *last) const requires(sizeof(Element) == 4) {
    const auto left = static_cast<std::size_t>(limit - begin);
    const std::size_t missing = left < 8 ? 8 - left : 0;
    std::uint64_t word = load_word(begin - missing) >> 8 * missing;
    const std::ptrdiff_t others = last - begin;
    word &= ~std::uint64_t{0} >> (56 - 8 * (others < 4 ? others : 4));
    return varint_value(word);
  }
};

// A run that has been counted. Most are seen whole in one window: then its values' last octets and the place behind it
// are known, and it need not be walked again. Otherwise `next` is null, and the count stands alone.
struct counted_run {
  const octet *next;
  std::uint64_t values;

  std::size_t count() const { return next != nullptr ? count_bits(values) : static_cast<std::size_t>(values); }
};

// Runs with the key in its shortest form, in a buffer that is long enough for one load.
template <class Element, unsigned KeySize>
PAVO_ZORV_NOINLINE counted_run count_regular(std::uint32_t key, const octet *at, const octet *end, const octet *limit) {
  const run_window<KeySize> seen(key, at, end, limit);
  if (seen.odd == 0 && seen.left <= window_size)
    return seen.ends_with_value() ? counted_run{end, seen.values} : counted_run{};
  if (seen.odd != 0) {
    const auto place = static_cast<unsigned>(std::countr_zero(seen.odd));
    const auto [next, other] = read_varint<std::uint32_t>(at + place, end);
    if (next == nullptr) return {};
    if (number_of(other) != number_of(key)) return {at + place, seen.values_below(place)};
  }
  element_counter<Element> counter;
  return {nullptr, walk_run<KeySize>(key, at, end, limit, counter) != nullptr ? counter.count : 0};
}

template <class Element, unsigned KeySize>
PAVO_ZORV_NOINLINE void read_window(Element *elements, std::uint32_t key, const octet *at, std::uint64_t values,
                                    const octet *limit) {
  if constexpr (sizeof(Element) == 1) {
    // An element that takes two octets has its own value in the first, if the second is 1, as it is in the shortest
    // form: then all elements are the first octets of values.
    const std::uint64_t starts = (values << (1 + KeySize) | 1) & (~std::uint64_t{0} >> std::countl_zero(values));
    if (((starts & ~values) << 1 & ~(values & look_for(at, limit, 1))) == 0) {
      for (std::uint64_t rest = starts; rest != 0; rest &= rest - 1) *elements++ = at[std::countr_zero(rest)];
      return;
    }
  }
  element_reader<KeySize, Element> reader{elements, limit};
  if constexpr (KeySize == 1 && element_reader<KeySize, Element>::wants_blocks) {
    // A block ends with a key: so another value follows it, or it is not regular.
    while (values >> (label_block::size - 1) > 1 && limit - at >= static_cast<std::ptrdiff_t>(label_block::size)) {
      const label_block block(at);
      if (!block.regular(key)) break;
      reader.block(block);
      at += label_block::size;
      values >>= label_block::size;
    }
  }
  reader.elements({at, values});
}

template <class Element, unsigned KeySize>
PAVO_ZORV_NOINLINE const octet *read_regular(Element *elements, std::uint32_t key, const octet *at, const octet *end,
                                             const octet *limit) {
  element_reader<KeySize, Element> reader{elements, limit};
  return walk_run<KeySize>(key, at, end, limit, reader);
}

// Counts the integers of a run from its first value on: none when a value, or the key behind one, is cut off.
template <class Element>
PAVO_ZORV_INLINE counted_run count_integers(unsigned number, const octet *at, const octet *end, const buffer &whole) {
  if (whole.size() < native_piece::size) return {nullptr, plain::count_integers(number, at, end)};
  const std::uint32_t key = key_of(number, wire_type::varint);
  return key < 0x80 ? count_regular<Element, 1>(key, at, end, whole.limit)
                    : count_regular<Element, 2>(key, at, end, whole.limit);
}

// Reads integers that have been counted; returns the place behind the last.
template <class Element>
PAVO_ZORV_INLINE const octet *read_integers(Element *elements, counted_run run, unsigned number, const octet *at,
                                            const octet *end, const buffer &whole) {
  const std::uint32_t key = key_of(number, wire_type::varint);
  if (run.next != nullptr) {
    key < 0x80 ? read_window<Element, 1>(elements, key, at, run.values, whole.limit)
               : read_window<Element, 2>(elements, key, at, run.values, whole.limit);
    return run.next;
  }
  if (whole.size() < native_piece::size) return plain::read_integers(elements, run.count(), at, end);
  return key < 0x80 ? read_regular<Element, 1>(elements, key, at, end, whole.limit)
                    : read_regular<Element, 2>(elements, key, at, end, whole.limit);
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

// Two octets from 128 on: the highest bits of many elements at a time, the last of them again where they are fewer.
PAVO_ZORV_NOINLINE inline std::size_t count_high(const std::uint8_t *elements, std::size_t count) {
  std::size_t high = 0, index = 0;
  for (; count - index >= short_piece::size; index += short_piece::size)
    high += count_bits(short_piece(elements + index).high());
  if (index == count) return high;
  return high +
         count_bits(short_piece(elements + count - short_piece::size).high() >> (short_piece::size + index - count));
}

// Addresses have four octets, or sixteen.
PAVO_ZORV_INLINE std::size_t measure_integers(const std::uint8_t *elements, std::size_t count) {
  constexpr std::size_t piece = short_piece::size;
  if (count <= 8) return count == 0 ? 0 : count + count_bits(load_short(elements, count) & highest_bits);
  if (count < piece || count > 2 * piece) {
    if (count >= piece) return count + count_high(elements, count);
    return count + count_bits(load_word(elements) & highest_bits) +
           count_bits(load_word(elements + count - 8) >> 8 * (16 - count) & highest_bits);
  }
  const std::uint64_t last = short_piece(elements + count - piece).high() >> (2 * piece - count);
  return count + count_bits(short_piece(elements).high() | last << piece);
}

// One octet more for each power of 128 that an element reaches; a vector at a time. Labels of twenty bits, all of three
// octets, are seen together by the bits that any of them has, and those it has when 0x4000 is taken away.
inline std::size_t measure_integers(const std::uint32_t *elements, std::size_t count) {
  using words [[gnu::vector_size(vector_size)]] = std::uint32_t;
  using counts [[gnu::vector_size(vector_size)]] = std::int32_t;
  constexpr std::size_t together = vector_size / sizeof *elements;
  std::size_t octets = 0;
  while (count >= together) {
    const std::size_t stretch = std::min<std::size_t>(count / together, 16);
    words bits = {}, values;
    for (std::size_t index = 0; index < stretch; ++index) {
      std::memcpy(&values, elements + index * together, sizeof values);
      bits |= values | (values - 0x4000);
    }
    if (none(bits & beyond_labels)) {
      octets += 3 * together * stretch;
    } else {
      counts sums = {};
      for (std::size_t index = 0; index < stretch; ++index) {
        std::memcpy(&values, elements + index * together, sizeof values);
        sums -= (values >= 0x80) + (values >= 0x4000) + (values >= 0x200000) + (values >= 0x10000000);
      }
      octets += together * stretch;
      for (std::size_t index = 0; index < together; ++index) octets += static_cast<std::size_t>(sums[index]);
    }
    elements += stretch * together;
    count -= stretch * together;
  }
  return octets + plain::measure_integers(elements, count);
}

// Writes integers backwards, each with its key.
template <class Sink, class Element>
PAVO_ZORV_INLINE typename Sink::place prepend_integers(const Sink &sink, typename Sink::place at, unsigned number,
                                                       const Element *elements, std::size_t count) {
  return plain::prepend_integers(sink, at, number, elements, count);
}

// Each element with its key is put together as a word and stored so that it ends where the one behind it begins. What
// the store overwrites before it is not yet written; where the buffer begins less than a word before, elements are
// left. Returns the place reached, and in `count` how many are left.
template <unsigned KeySize>
PAVO_ZORV_NOINLINE octet *prepend_words(const octet *first, octet *at, std::uint32_t key, const std::uint8_t *elements,
                                        std::size_t &count) {
  const key_octets<KeySize> octets(key);
  // Key, value and the octet 1 that a value from 128 on takes as well: shifted out where it is not wanted.
  const std::uint64_t last_key_octet = KeySize == 1 ? octets.first : octets.second;
  const std::uint64_t other_key_octet = KeySize == 1 ? 0 : octets.first;
  const std::uint64_t pattern = other_key_octet << 8 | last_key_octet << 16 | std::uint64_t{1} << 32;
  std::size_t left = count;
  if constexpr (four_elements<KeySize>::usable) {
    const four_elements<KeySize> four(octets);
    for (; left >= 4 && at - first >= static_cast<std::ptrdiff_t>(four.room); left -= 4)
      at = four.prepend(at, elements + left - 4);
  }
  for (; left != 0 && at - first >= 4; --left) {
    const std::uint64_t value = elements[left - 1];
    store_word(at - 4, static_cast<std::uint32_t>((pattern | value << 24) >> (value >> 4 & 8)));
    at -= KeySize + 1 + (value >> 7);
  }
  count = left;
  return at;
}

// Varints of some numbers, each the low octets of a word; their count is a multiple of four.
PAVO_ZORV_INLINE void varint_words(const std::uint32_t *elements, std::size_t count, std::uint64_t *out) {
  for (std::size_t index = 0; index < count; index += words_together) {
    number_vector numbers;
    std::memcpy(&numbers, elements + index, sizeof numbers);
    word_vector word = __builtin_convertvector(numbers, word_vector);
    // Groups of seven bits, one in each octet.
    word = (word & 0xfffffff) | (word & 0xf0000000) << 4;
    word = (word & 0xf00003fff) | (word & 0xfffc000) << 2;
    word = (word & 0xf007f007f) | (word & 0x3f803f80) << 1;
    // An octet goes on where any behind it has a bit.
    word_vector behind = word >> 8;
    behind |= behind >> 8;
    behind |= behind >> 16;
    word |= (behind + 0x7f7f7f7f) & 0x80808080;
    std::memcpy(out + index, &word, sizeof word);
  }
}

// From the start of a run whose size is known: each element with its key as a word, of which the octets behind the
// element are overwritten next. Elements less than a word before the end of the run are left to the caller: returns how
// many are written.
template <unsigned KeySize>
PAVO_ZORV_NOINLINE std::size_t append_words(octet *at, const octet *end, std::uint32_t key,
                                            const std::uint32_t *elements, std::size_t count) {
  const key_octets<KeySize> octets(key);
  const std::uint64_t key_word = KeySize == 1 ? octets.first : octets.first | std::uint32_t{octets.second} << 8;
  const auto append = [&](std::uint64_t varint) __attribute__((always_inline)) {
    store_word(at, key_word | varint << 8 * KeySize);
    at += KeySize + 1 + static_cast<unsigned>(std::countr_zero(~varint & highest_bits)) / 8;
  };
  std::size_t done = 0;
  while (count - done >= 8) {
    if constexpr (KeySize == 1 && label_block::usable) {
      if (label_block::all_labels(elements + done)) {
        label_block::write(at, key, elements + done);
        done += label_block::elements;
        at += label_block::size;
        continue;
      }
    }
    // Four elements behind these, of two octets at least: so the words do not reach the end of the run.
    const std::size_t some = std::min<std::size_t>(count - done - 4, 32) / 4 * 4;
    std::uint64_t varints[32];
    varint_words(elements + done, some, varints);
    for (std::size_t index = 0; index < some; ++index) append(varints[index]);
    done += some;
  }
  for (; done != count && end - at >= 8; ++done) {
    const std::uint32_t value = elements[done];
    append(varint_word(value, static_cast<unsigned>(varint_size(value))));
  }
  return done;
}

inline octet *prepend_run(octet *first, octet *at, std::uint32_t key, const std::uint32_t *elements,
                          std::size_t &count) {
  if constexpr (label_block::usable) {
    if (key < 0x80) {
      while (count >= label_block::elements && label_block::all_labels(elements + count - label_block::elements)) {
        count -= label_block::elements;
        at -= label_block::size;
        label_block::write(at, key, elements + count);
      }
    }
  }
  (void)first;
  if (count < 4) return at;
  const std::size_t key_size = key < 0x80 ? 1 : 2;
  octet *const start = at - count * key_size - measure_integers(elements, count);
  const std::size_t done = key_size == 1 ? append_words<1>(start, at, key, elements, count)
                                         : append_words<2>(start, at, key, elements, count);
  plain::prepend_integers(octets_before{}, at, key >> 3, elements + done, count - done);
  count = 0;
  return start;
}

inline octet *prepend_run(octet *first, octet *at, std::uint32_t key, const std::uint8_t *elements,
                          std::size_t &count) {
  return key < 0x80 ? prepend_words<1>(first, at, key, elements, count)
                    : prepend_words<2>(first, at, key, elements, count);
}

template <class Element>
PAVO_ZORV_INLINE octet *prepend_integers(const exact_sink &sink, octet *at, unsigned number, const Element *elements,
                                         std::size_t count) {
  at = prepend_run(sink.first, at, key_of(number, wire_type::varint), elements, count);
  return plain::prepend_integers(sink, at, number, elements, count);
}

}  // namespace pavo_zorv
