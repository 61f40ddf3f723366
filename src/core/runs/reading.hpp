// Runs of integers, counted and read.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/blocks.hpp"
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

// A window on a run, from the first byte of a value on. What it says holds up to the first place where a key should
// begin and no canonical one does.
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
    values = ends_of_values<KeySize>(ends);
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

// Takes elements one by one, from a value on, until some keys in a row have been canonical: a window for each of the
// others takes fifteen times as long. What visits is returned, so that it stays in registers elsewhere.
template <unsigned KeySize, class Visit>
PAVO_ZORV_NOINLINE stretch<Visit> take_one_by_one(std::uint32_t key, const byte *at, const byte *end, Visit visit) {
  for (unsigned canonical = 0; canonical < 16;) {
    const auto [next, value] = read_varint<std::uint32_t>(at, end);
    if (next == nullptr) return {nullptr, true, visit};
    visit.take(value);
    if (next == end) return {end, true, visit};
    const auto [first, other] = read_varint<std::uint32_t>(next, end);
    if (first == nullptr) return {nullptr, true, visit};
    if (number_of(other) != number_of(key)) return {next, true, visit};
    canonical = other == key && first - next == KeySize ? canonical + 1 : 0;
    at = first;
  }
  return {at, false, visit};
}

struct element_counter {
  std::size_t count = 0;

  void take(std::uint32_t) { ++count; }
};

// Eight vectors of a run with a key of one byte, from any place in it on: whether each value in them takes two bytes or
// more and its key comes after it, and how many varints end in them. A third of the work of windows, but of no use
// where values are small.
class long_values {
 public:
  static constexpr std::size_t size = 8 * vector_size;

  // The byte before them and the one after are looked at, too.
  long_values(byte key, const byte *at) {
    const bytes keys = key - bytes{};
    bytes ends = {}, in_order = ~ends;
    for (std::size_t offset = 0; offset < size; offset += vector_size) {
      bytes before, here, after;
      std::memcpy(&before, at + offset - 1, vector_size);
      std::memcpy(&here, at + offset, vector_size);
      std::memcpy(&after, at + offset + 1, vector_size);
      // A varint goes on here, or this is the end of a value that has begun before, and a key comes after it, or this
      // is the key and the next value goes on. The last two are joined first: GCC then selects one, with fewer loads.
      in_order &= here | (((after == keys) & before) | (after & ~before));
      ends += here >> 7 ^ 1;
    }
    std::uint64_t words[vector_size / 8], all = 0;
    std::memcpy(words, &ends, sizeof words);
    for (const std::uint64_t word : words) all += word;
    ends_ = static_cast<std::size_t>(all * lowest_bits >> 56);
    in_order_ = none(~in_order & 0x80);
  }

  bool are_in_order() const { return in_order_; }
  std::size_t ends() const { return ends_; }  // if they are in order: then there are at most two in three bytes

 private:
  using bytes [[gnu::vector_size(vector_size)]] = unsigned char;
  std::size_t ends_;
  bool in_order_;
};

// Where the count of a run is.
struct run_count {
  const byte *at;
  std::size_t ends = 0;           // varints that have ended since the start of a value: odd after a value
  std::uint64_t after_value = 0;  // whether the byte before `at` is a value's last

  // Takes long values while there are more bytes than they have; returns false where they are not in order.
  bool take_long_values(byte key, const byte *end) {
    while (end - at > static_cast<std::ptrdiff_t>(long_values::size)) {
      const long_values values(key, at);
      // After a value the first byte must be the key. Otherwise a varint goes on here, or a value of two bytes
      // or more begins.
      const bool begins = after_value != 0 ? *at == key : (at[-1] | *at) >= 0x80;
      if (!begins || !values.are_in_order()) return false;
      ends += values.ends();
      at += long_values::size;
      after_value = ends % 2;  // no key is cut off here: in order, they have one byte
    }
    return true;
  }
};

// Counts a run that does not end in its first window, from its first value on: the byte before is its key's last.
// Windows follow each other at a fixed distance, whatever is in them, so that the processor need not have counted one
// before it looks at the next. They overlap by as much as lets each see a whole key.
template <class Element, unsigned KeySize>
PAVO_ZORV_NOINLINE std::size_t count_windows(std::uint32_t key, const byte *first, const byte *end, const byte *limit) {
  constexpr std::size_t distance = window_size - (KeySize - 1);
  element_counter counter;
  for (;;) {
    run_count run{first};
    std::uint64_t ends, breaks;
    std::size_t windows = 0;  // to be taken before long values are tried again
    for (;; run.at += distance) {
      if constexpr (KeySize == 1 && sizeof(Element) == 4) {
        if (windows == 0 && !run.take_long_values(static_cast<byte>(key), end))
          windows = long_values::size / window_size;
        windows -= windows != 0;
      }
      const auto left = static_cast<std::size_t>(end - run.at);
      const window seen = look(run.at, limit, key_bytes<KeySize>(key));
      if (left == 0) return 0;
      const std::uint64_t inside = ~std::uint64_t{0} >> (window_size - std::min(left, distance));
      ends = seen.ends & inside;
      const std::uint64_t values = KeySize == 1 ? ends_of_values<1>(ends & ~run.after_value)
                                                : ends & (parity_up_to(ends) ^ (0 - std::uint64_t{run.ends & 1}));
      breaks = (values << 1 | run.after_value) & ~seen.keys & inside;
      if (breaks != 0) break;
      run.ends += count_bits(ends);
      if (left <= distance) return (values >> (left - 1) & 1) != 0 ? counter.count + (run.ends + 1) / 2 : 0;
      run.after_value = values >> (distance - 1) & 1;
    }
    const auto place = static_cast<unsigned>(std::countr_zero(breaks));
    counter.count += (run.ends + count_bits(ends & ((std::uint64_t{1} << place) - 1)) + 1) / 2;
    const byte *const at = run.at + place;
    const auto [next, other] = read_varint<std::uint32_t>(at, end);
    if (next == nullptr) return 0;
    if (number_of(other) != number_of(key)) return counter.count;
    const auto taken = take_one_by_one<KeySize>(key, next, end, counter);
    if (taken.at == nullptr) return 0;
    counter = taken.visit;
    if (taken.ended) return counter.count;
    first = taken.at;
  }
}

// Two words, and four numbers.
using word_pair [[gnu::vector_size(16)]] = std::uint64_t;
using four_numbers [[gnu::vector_size(16)]] = std::uint32_t;

// varint_value of four words at once.
PAVO_ZORV_INLINE void varint_values(const word_pair &first, const word_pair &second, std::uint32_t *values) {
  constexpr int low = std::endian::native == std::endian::little ? 0 : 1, high = 1 - low;
  four_numbers halves, others;
  std::memcpy(&halves, &first, sizeof halves);
  std::memcpy(&others, &second, sizeof others);
  const four_numbers four = __builtin_shufflevector(halves, others, low, low + 2, low + 4, low + 6);
  const four_numbers fifth = __builtin_shufflevector(halves, others, high, high + 2, high + 4, high + 6);
  const four_numbers ends = ~four & 0x80808080;
  const four_numbers value = seven_of_each(four & (ends ^ (ends - 1))) | (fifth << 28 & (ends == 0));
  std::memcpy(values, &value, sizeof value);
}

// Stores the elements of a run that has been counted, and never more of them, whatever the input shows by now.
template <unsigned KeySize, class Element>
struct element_reader {
  static constexpr bool takes_labels = KeySize == 1 && sizeof(Element) == 4 && label_block::usable;
  Element *next;
  Element *last;  // where the array ends
  const byte *limit;

  std::size_t left() const { return static_cast<std::size_t>(last - next); }

  void take(std::uint32_t value) {
    if (next != last) *next++ = static_cast<Element>(value);
  }

  PAVO_ZORV_INLINE void take_elements(elements_seen seen) {
    if constexpr (sizeof(Element) == 1) {
      take_bytes(seen);
    } else if (limit - seen.at >= static_cast<std::ptrdiff_t>(window_size + 8)) {
      take_words(seen, load_word<std::uint64_t>);
    } else {
      next = take_moved_words(*this, seen);
    }
  }

  // The same for a window after which the buffer may end: words that would reach past it are moved back.
  PAVO_ZORV_INLINE void take_last_elements(elements_seen seen) {
    if constexpr (sizeof(Element) == 1) {
      take_bytes(seen);
    } else {
      take_words(seen, [last_word = limit - 8](const byte *begin) PAVO_ZORV_INLINE_LAMBDA {
        const byte *const from = std::min(begin, last_word);
        return load_word(from) >> 8 * static_cast<unsigned>(begin - from);
      });
    }
  }

  // Labels of one size, a vector at a time. An element of another size among them is taken alone: only for it is a
  // branch mispredicted, not for those around it. Returns where something else begins. A key is known to follow each of
  // the elements, because there are more.
  PAVO_ZORV_INLINE const byte *take_labels(std::uint32_t key, const byte *at, const byte *end) {
    using block = label_block;
    constexpr std::ptrdiff_t looked_at = block::size + 8;
    if (left() <= block::elements || end - at <= looked_at) return at;
    const Element *const last_next = last - block::elements;
    const byte *const last_at = end - looked_at;
    const auto fits = [&]() PAVO_ZORV_INLINE_LAMBDA { return next < last_next && at < last_at; };
    const auto step = [&](std::size_t elements, std::size_t bytes) PAVO_ZORV_INLINE_LAMBDA {
      next += elements;
      at += bytes;
    };
    while (fits()) {
      const block words(at);
      // Those that are no labels are overwritten.
      words.read(next);
      const unsigned which = words.labels(key);
      if (which == block::all) [[likely]] {
        step(block::elements, block::size);
        continue;
      }
      if ((which & 1) == 0) {
#if defined(__SSSE3__)
        static_assert(short_label_block::read_size <= looked_at);
        const byte *const first = at;
        while (fits()) {
          const short_label_block others(at);
          if (!others.are_labels(key)) break;
          others.read(next);
          step(block::elements, short_label_block::size);
        }
        if (at != first) continue;
#endif
        return at;
      }
      const auto leading = static_cast<unsigned>(std::countr_one(which));
      step(leading, std::size_t{4} * leading);
      // One of two bytes is foreseen: then the next vector is loaded without waiting for this word.
      const std::uint64_t word = load_word(at);
      if ((word & 0xff8080) == (key << 16 | 0x80)) {
        *next = static_cast<Element>((word & 0x7f) | (word >> 1 & 0x3f80));
        step(1, 3);
        continue;
      }
      const std::uint64_t ends = ~word & highest_bits;
      const auto size = static_cast<unsigned>(std::countr_zero(ends)) / 8 + 1;
      if (ends == 0 || at[size] != key) return at;
      *next = varint_value(word);
      step(1, size + 1);
    }
    return at;
  }

 private:
  // Four varints at once, each as a word.
  template <class Load>
  PAVO_ZORV_INLINE void take_words(elements_seen seen, Load load) {
    std::uint64_t ends = seen.ends;
    const byte *begin = seen.at;
    const auto take = [&]() PAVO_ZORV_INLINE_LAMBDA {
      const std::uint64_t word = load(begin);
      begin = seen.at + lowest_one(ends) + 1 + KeySize;
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

  PAVO_ZORV_NOINLINE static Element *take_moved_words(element_reader reader, elements_seen seen) {
    reader.take_last_elements(seen);
    return reader.next;
  }

  // Of each the first byte, and the lowest bit of the second if there is one.
  void take_bytes(elements_seen seen) {
    const byte *begin = seen.at;
    for (std::uint64_t ends = seen.ends; ends != 0 && next != last; ends &= ends - 1) {
      const byte *const end = seen.at + std::countr_zero(ends);
      const bool more = begin != end;
      *next++ = static_cast<std::uint8_t>((*begin & 0x7f) | (begin[more] & static_cast<unsigned>(more)) << 7);
      begin = end + 1 + KeySize;
    }
  }
};

// A run that has been counted. Most are seen whole in one window: then the place after it and its values' last bytes
// are known as well, and it need not be walked again. Otherwise `next` is null.
struct counted_run {
  std::size_t count = 0;
  const byte *next = nullptr;
  std::uint64_t values = 0;

  static counted_run in_window(const byte *next, std::uint64_t values) { return {count_bits(values), next, values}; }
};

// Runs with canonical keys, in a buffer that is long enough for one load.
template <class Element, unsigned KeySize>
PAVO_ZORV_INLINE counted_run count_by_windows(std::uint32_t key, const byte *at, const byte *end, const byte *limit) {
  const run_window<KeySize> seen(key, at, end, limit);
  if (seen.breaks == 0 && seen.left <= window_size)
    return seen.ends_with_value() ? counted_run::in_window(end, seen.values) : counted_run{};
  if (seen.breaks != 0) {
    const auto place = static_cast<unsigned>(std::countr_zero(seen.breaks));
    const auto [next, other] = read_varint<std::uint32_t>(at + place, end);
    if (next == nullptr) return {};
    if (number_of(other) != number_of(key)) return counted_run::in_window(at + place, seen.values_below(place));
  }
  return {count_windows<Element, KeySize>(key, at, end, limit)};
}

template <class Element, unsigned KeySize>
inline void read_window(Element *elements, counted_run run, const byte *at, const byte *limit) {
  std::uint64_t values = run.values;
  if constexpr (sizeof(Element) == 1) {
    // An element of two bytes has its own value in the first, if the second is 1, as it is in a canonical varint. If
    // all are so, the elements are the first bytes of the values.
    const std::uint64_t starts = (values << (1 + KeySize) | 1) & (~std::uint64_t{0} >> std::countl_zero(values));
    if (((starts & ~values) << 1 & ~(values & look_for(at, limit, 1))) == 0) {
      if (has_shuffles && limit - at >= static_cast<std::ptrdiff_t>(window_size)) {
        // A window has no more elements than half its bytes; the last word stored may go on for seven after them.
        byte space[window_size / 2 + 8];
        pick_bytes(space, at, starts);
        copy_bytes(elements, space, count_bits(starts));
        return;
      }
      for (std::uint64_t rest = starts; rest != 0; rest &= rest - 1) *elements++ = at[std::countr_zero(rest)];
      return;
    }
  }
  element_reader<KeySize, Element> reader{elements, elements + run.count, limit};
  if constexpr (element_reader<KeySize, Element>::takes_labels) {
    using block = label_block;
    // Labels, each with the next key after it; another value follows the last key, so the buffer holds the block.
    constexpr std::uint64_t every = ~std::uint64_t{0} >> (64 - block::size), labels = 0x4444444444444444;
    while ((values & every) == (labels & every) && values > every) {
      block(at).read(reader.next);
      reader.next += block::elements;
      at += block::size;
      values >>= block::size;
    }
    // If the others are labels as well: a block that ends with the last one, each with its key before it.
    const auto unused = static_cast<unsigned>(std::countl_zero(values));
    if (reader.next != elements && values == labels << unused >> unused) {
      block(at + (64 - unused) - block::size).read_after_keys(reader.last - block::elements);
      values = 0;
    }
  }
  if (values != 0) reader.take_last_elements({at, values});
}

// Reads a run that has been counted, from its first value on. Returns the place after the last one; null where there
// are fewer by now, or one is cut off.
template <class Element, unsigned KeySize>
PAVO_ZORV_NOINLINE const byte *read_by_windows(Element *elements, std::size_t count, std::uint32_t key, const byte *at,
                                               const byte *end, const byte *limit) {
  using reader = element_reader<KeySize, Element>;
  reader to{elements, elements + count, limit};
  const auto done = [&](const byte *place) { return to.left() == 0 ? place : nullptr; };
  for (;;) {
    if constexpr (reader::takes_labels) at = to.take_labels(key, at, end);
    const run_window<KeySize> seen(key, at, end, limit);
    if (seen.breaks == 0 && seen.left <= window_size) {
      if (!seen.ends_with_value()) return nullptr;
      to.take_elements({at, seen.values});
      return done(end);
    }
    if (seen.breaks == 0 && seen.keys != 0) {
      // The window may cut the last value, or the key after it: the next one begins after the last whole key.
      const auto whole = static_cast<unsigned>(64 - std::countl_zero(seen.keys));
      to.take_elements({at, seen.values_below(whole - 1)});
      at += whole;
      continue;
    }
    // Another key, or one value that is as long as the window or longer.
    if (seen.breaks != 0) {
      const auto place = static_cast<unsigned>(std::countr_zero(seen.breaks));
      to.take_elements({at, seen.values_below(place)});
      at += place;
      const auto [next, other] = read_varint<std::uint32_t>(at, end);
      if (next == nullptr) return nullptr;
      if (number_of(other) != number_of(key)) return done(at);
      at = next;
    }
    const stretch<reader> taken = take_one_by_one<KeySize>(key, at, end, to);
    to = taken.visit;
    at = taken.at;
    if (taken.ended) return done(at);
  }
}

// Counts the integers of a run from its first value on: none when a value, or the key after one, is cut off.
template <class Element, unsigned KeySize>
inline counted_run count_integers(std::uint32_t key, const byte *at, const byte *end, const buffer &whole) {
  if (whole.size() < short_piece::size) return {plain::count_integers(number_of(key), at, end)};
  return count_by_windows<Element, KeySize>(key, at, end, whole.limit);
}

// Reads integers that have been counted; returns the place after the last. Null where the input has changed since
// then, and fewer are there now; of more, only as many as were counted are read.
template <class Element, unsigned KeySize>
inline const byte *read_integers(Element *elements, counted_run run, std::uint32_t key, const byte *at, const byte *end,
                                 const buffer &whole) {
  if (run.next != nullptr) {
    read_window<Element, KeySize>(elements, run, at, whole.limit);
    return run.next;
  }
  if (whole.size() < short_piece::size) return plain::read_integers(elements, run.count, at, end);
  return read_by_windows<Element, KeySize>(elements, run.count, key, at, end, whole.limit);
}

}  // namespace pavo_zorv
