// Runs of integers, counted and read.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "labels.hpp"
#include "plain.hpp"
#include "windows.hpp"

namespace pavo_zorv {

// Where elements of a run lie in a window: the bit of the last byte of each value. The first begins at `at`, every
// other after the key after the one before it.
struct elements_seen {
  const byte *at;
  std::uint64_t ends;
};

// A window on a run, from the first byte of a value on. Varints end at a value and at a key by turns, so the parity of
// the ends tells them apart, up to the first place where a key should begin and none in its shortest form does.
template <unsigned KeySize>
struct run_window {
  std::size_t left;      // bytes of the message from here on
  std::uint64_t values;  // last bytes of values
  std::uint64_t keys;    // last bytes of keys
  std::uint64_t breaks;  // where a key should begin, and no canonical one of the run does

  PAVO_ZORV_INLINE run_window(std::uint32_t key, const byte *at, const byte *end, const byte *limit)
      : left(static_cast<std::size_t>(end - at)) {
    const window seen = look(at, limit, key_bytes<KeySize>(key));
    const std::uint64_t inside = left < window_size ? (std::uint64_t{1} << left) - 1 : ~std::uint64_t{0};
    const std::uint64_t ends = seen.ends & inside;
    values = ends & parity_up_to(ends);
    keys = ends & ~values;
    breaks = (values << 1 & inside) & ~seen.keys;
  }

  // Whether the message, all of it in the window and canonical, ends as a run must.
  bool ends_with_value() const { return left != 0 && (values >> (left - 1) & 1) != 0; }
  std::uint64_t values_below(unsigned place) const { return values & ((std::uint64_t{1} << place) - 1); }
};

// Where a walk along a run is after a stretch of it: at the next value or, if the run has ended, after its last
// value; null when a value, or the key after one, is cut off.
template <class Visit>
struct stretch {
  const byte *at;
  bool ended;
  Visit visit;
};

// Takes elements one by one, from a value on, until some keys in a row have been in their shortest form: a window for
// each of the others takes fifteen times as long. What visits is returned, so that it stays in registers elsewhere.
template <unsigned KeySize, class Visit>
PAVO_ZORV_NOINLINE stretch<Visit> take_one_by_one(std::uint32_t key, const byte *at, const byte *end, Visit visit) {
  for (unsigned canonical = 0; canonical < 16;) {
    const auto [next, value] = read_varint<std::uint32_t>(at, end);
    if (next == nullptr) return {nullptr, true, visit};
    visit.element(value);
    if (next == end) return {end, true, visit};
    const auto [first, other] = read_varint<std::uint32_t>(next, end);
    if (first == nullptr) return {nullptr, true, visit};
    if (number_of(other) != number_of(key)) return {next, true, visit};
    canonical = other == key && first - next == KeySize ? canonical + 1 : 0;
    at = first;
  }
  return {at, false, visit};
}

// Walks a run of integers from its first value on, a window at a time, and shows `visit` the elements in it. Returns
// the place after the last value; null when a value, or the key after one, is cut off.
template <unsigned KeySize, class Visit>
PAVO_ZORV_INLINE const byte *walk_run(std::uint32_t key, const byte *at, const byte *end, const byte *limit,
                                      Visit &visit) {
  for (;;) {
    if constexpr (KeySize == 1 && Visit::wants_blocks) {
      std::size_t blocks = std::min(static_cast<std::size_t>(end - at) / label_block<>::size, visit.blocks_left());
      for (; blocks != 0; --blocks) {
        const label_block<> block(at);
        if (!block.are_labels(key)) break;
        visit.block(block);
        at += label_block<>::size;
      }
    }
    const run_window<KeySize> seen(key, at, end, limit);
    if (seen.breaks == 0 && seen.left <= window_size) {
      if (!seen.ends_with_value()) return nullptr;
      visit.elements({at, seen.values});
      return end;
    }
    if (seen.breaks == 0 && seen.keys != 0) {
      // The window may cut the last value, or the key after it: the next one begins after the last whole key.
      const auto whole = static_cast<unsigned>(64 - std::countl_zero(seen.keys));
      visit.elements({at, seen.values_below(whole - 1)});
      at += whole;
      continue;
    }
    // Another key, or one value that is as long as the window or longer.
    if (seen.breaks != 0) {
      const auto place = static_cast<unsigned>(std::countr_zero(seen.breaks));
      visit.elements({at, seen.values_below(place)});
      at += place;
      const auto [next, other] = read_varint<std::uint32_t>(at, end);
      if (next == nullptr) return nullptr;
      if (number_of(other) != number_of(key)) return at;
      at = next;
    }
    const stretch<Visit> taken = take_one_by_one<KeySize>(key, at, end, visit);
    visit = taken.visit;
    at = taken.at;
    if (taken.ended) return at;
  }
}

template <class Element>
struct element_counter {
  static constexpr bool wants_blocks = sizeof(Element) == 4 && label_block<>::usable;
  std::size_t count = 0;

  void element(std::uint32_t) { ++count; }
  void elements(elements_seen seen) { count += count_bits(seen.ends); }
  void block(const label_block<> &) { count += label_block<>::elements; }
  static constexpr std::size_t blocks_left() { return SIZE_MAX; }
};

// Two words, and four numbers.
using word_pair [[gnu::vector_size(16)]] = std::uint64_t;
using four_numbers [[gnu::vector_size(16)]] = std::uint32_t;

// The values of four varints of up to five bytes, each at the low end of a word.
PAVO_ZORV_INLINE void varint_values(const word_pair &first, const word_pair &second, std::uint32_t *values) {
  constexpr int low = std::endian::native == std::endian::little ? 0 : 1, high = 1 - low;
  four_numbers halves, others;
  std::memcpy(&halves, &first, sizeof halves);
  std::memcpy(&others, &second, sizeof others);
  const four_numbers four = __builtin_shufflevector(halves, others, low, low + 2, low + 4, low + 6);
  const four_numbers fifth = __builtin_shufflevector(halves, others, high, high + 2, high + 4, high + 6);
  const four_numbers ends = ~four & 0x80808080;
  four_numbers value = four & (ends ^ (ends - 1));
  value = (value & 0x7f007f) | (value & 0x7f007f00) >> 1;
  value = (value & 0x3fff) | (value & 0x3fff0000) >> 2;
  value |= fifth << 28 & (ends == 0);
  std::memcpy(values, &value, sizeof value);
}

// Stores the elements of a run that has been counted, and never more of them, whatever the input shows by now.
template <unsigned KeySize, class Element>
struct element_reader {
  static constexpr bool wants_blocks = sizeof(Element) == 4 && label_block<>::usable;
  Element *next;
  Element *last;  // where the array ends
  const byte *limit;

  std::size_t left() const { return static_cast<std::size_t>(last - next); }
  std::size_t blocks_left() const { return left() / label_block<>::elements; }

  PAVO_ZORV_INLINE void element(std::uint32_t value) {
    if (next != last) *next++ = static_cast<Element>(value);
  }

  PAVO_ZORV_INLINE void elements(elements_seen seen) {
    if constexpr (sizeof(Element) == 4) {
      if (limit - seen.at >= static_cast<std::ptrdiff_t>(window_size + 8)) return words(seen);
    }
    const byte *begin = seen.at;
    for (std::uint64_t ends = seen.ends; ends != 0 && next != last; ends &= ends - 1) {
      const byte *const end = seen.at + std::countr_zero(ends);
      *next++ = value(begin, end);
      begin = end + 1 + KeySize;
    }
  }

  PAVO_ZORV_INLINE void block(const label_block<> &block) {
    if constexpr (wants_blocks) {
      block.read(next);
      next += label_block<>::elements;
    }
  }

 private:
  // Where the buffer goes on for a word after the window: four varints at once, each as a word.
  PAVO_ZORV_INLINE void words(elements_seen seen) {
    std::uint64_t ends = seen.ends;
    const byte *begin = seen.at;
    const auto take = [&]() PAVO_ZORV_INLINE_LAMBDA {
      const std::uint64_t word = load_word(begin);
      begin = seen.at + __builtin_ctzll(ends) + 1 + KeySize;
      ends &= ends - 1;
      return word;
    };
    std::size_t some = std::min<std::size_t>(count_bits(ends), left());
    for (; some >= 4; some -= 4, next += 4) {
      const word_pair first{take(), take()}, second{take(), take()};
      varint_values(first, second, next);
    }
    for (; some != 0; --some) *next++ = varint_value(take());
  }

  // The first byte, and the lowest bit of the second if there is one.
  PAVO_ZORV_INLINE std::uint8_t value(const byte *begin, const byte *end) const requires(sizeof(Element) == 1) {
    const bool more = begin != end;
    return static_cast<std::uint8_t>((*begin & 0x7f) | (begin[more] & unsigned{more}) << 7);
  }

  // At the end of the buffer in the last word there is.
  PAVO_ZORV_INLINE std::uint32_t value(const byte *begin, const byte *) const requires(sizeof(Element) == 4) {
    const auto left = static_cast<std::size_t>(limit - begin);
    const std::size_t missing = left < 8 ? 8 - left : 0;
    return varint_value(load_word(begin - missing) >> 8 * missing);
  }
};

// A run that has been counted. Most are seen whole in one window: then its values' last bytes and the place after it
// are known, and it need not be walked again. Otherwise `next` is null, and there is only the count.
struct counted_run {
  const byte *next;
  std::uint64_t values;

  std::size_t count() const { return next != nullptr ? count_bits(values) : static_cast<std::size_t>(values); }
};

// Runs with the key in its shortest form, in a buffer that is long enough for one load.
template <class Element, unsigned KeySize>
PAVO_ZORV_NOINLINE counted_run count_by_windows(std::uint32_t key, const byte *at, const byte *end, const byte *limit) {
  const run_window<KeySize> seen(key, at, end, limit);
  if (seen.breaks == 0 && seen.left <= window_size)
    return seen.ends_with_value() ? counted_run{end, seen.values} : counted_run{};
  if (seen.breaks != 0) {
    const auto place = static_cast<unsigned>(std::countr_zero(seen.breaks));
    const auto [next, other] = read_varint<std::uint32_t>(at + place, end);
    if (next == nullptr) return {};
    if (number_of(other) != number_of(key)) return {at + place, seen.values_below(place)};
  }
  element_counter<Element> counter;
  return {nullptr, walk_run<KeySize>(key, at, end, limit, counter) != nullptr ? counter.count : 0};
}

template <class Element, unsigned KeySize>
PAVO_ZORV_NOINLINE void read_window(Element *elements, const byte *at, std::uint64_t values, const byte *limit) {
  if constexpr (sizeof(Element) == 1) {
    // An element that takes two bytes has its own value in the first, if the second is 1, as it is in the shortest
    // form: then all elements are the first bytes of values.
    const std::uint64_t starts = (values << (1 + KeySize) | 1) & (~std::uint64_t{0} >> std::countl_zero(values));
    if (((starts & ~values) << 1 & ~(values & look_for(at, limit, 1))) == 0) {
      for (std::uint64_t rest = starts; rest != 0; rest &= rest - 1) *elements++ = at[std::countr_zero(rest)];
      return;
    }
  }
  element_reader<KeySize, Element> reader{elements, elements + count_bits(values), limit};
  if constexpr (KeySize == 1 && element_reader<KeySize, Element>::wants_blocks) {
    // Labels, each with the next key after it; another value follows the last key, so the buffer
    // holds the block.
    constexpr std::uint64_t every = ~std::uint64_t{0} >> (64 - label_block<>::size), labels = 0x4444444444444444 & every;
    while ((values & every) == labels && values > every) {
      reader.block(label_block<>(at));
      at += label_block<>::size;
      values >>= label_block<>::size;
    }
  }
  reader.elements({at, values});
}

template <class Element, unsigned KeySize>
PAVO_ZORV_NOINLINE const byte *read_by_windows(Element *elements, std::size_t count, std::uint32_t key, const byte *at,
                                               const byte *end, const byte *limit) {
  element_reader<KeySize, Element> reader{elements, elements + count, limit};
  const byte *const next = walk_run<KeySize>(key, at, end, limit, reader);
  return reader.left() == 0 ? next : nullptr;
}

// Counts the integers of a run from its first value on: none when a value, or the key after one, is cut off.
template <class Element>
PAVO_ZORV_INLINE counted_run count_integers(unsigned number, const byte *at, const byte *end, const buffer &whole) {
  if (whole.size() < native_piece::size) return {nullptr, plain::count_integers(number, at, end)};
  const std::uint32_t key = key_of(number, wire_type::varint);
  return key < 0x80 ? count_by_windows<Element, 1>(key, at, end, whole.limit)
                    : count_by_windows<Element, 2>(key, at, end, whole.limit);
}

// Reads integers that have been counted; returns the place after the last. Null where the input has changed since
// then, and fewer are there now; of more, only as many as were counted are read.
template <class Element>
PAVO_ZORV_INLINE const byte *read_integers(Element *elements, counted_run run, unsigned number, const byte *at,
                                           const byte *end, const buffer &whole) {
  const std::uint32_t key = key_of(number, wire_type::varint);
  if (run.next != nullptr) {
    key < 0x80 ? read_window<Element, 1>(elements, at, run.values, whole.limit)
               : read_window<Element, 2>(elements, at, run.values, whole.limit);
    return run.next;
  }
  if (whole.size() < native_piece::size) return plain::read_integers(elements, run.count(), at, end);
  return key < 0x80 ? read_by_windows<Element, 1>(elements, run.count(), key, at, end, whole.limit)
                    : read_by_windows<Element, 2>(elements, run.count(), key, at, end, whole.limit);
}

}  // namespace pavo_zorv
