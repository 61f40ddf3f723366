// Lists of 8-bit or 32-bit integers: an owned array and its count, one field for each element, never packed.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <tuple>

#include "core/blocks.hpp"
#include "core/emptiness.hpp"
#include "core/message.hpp"
#include "core/runs/reading.hpp"
#include "core/runs/writing.hpp"
#include "core/writer.hpp"

namespace pavo_zorv {

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

template <class Element>
concept integer_element = std::same_as<Element, std::uint8_t> || std::same_as<Element, std::uint32_t>;

// Counts a run, asks for memory, and reads the run. All messages share it.
template <integer_element Element, unsigned KeySize>
PAVO_ZORV_NOINLINE step decode_run(Element *&elements, std::uint32_t &count, std::uint32_t key, const byte *at,
                                   const byte *end, const decode_context &decoding) {
  const counted_run run = count_integers<Element, KeySize>(key, at, end, decoding.whole);
  const std::size_t length = run.count;
  if (length == 0) return failed(CODEC_ERR_TRUNCATED);
  auto *const block = decoding.memory.array<Element>(length);
  if (block == nullptr) return failed(CODEC_ERR_NO_MEMORY);
  elements = block;
  count = static_cast<std::uint32_t>(length);
  const byte *const next = read_integers<Element, KeySize>(block, run, key, at, end, decoding.whole);
  if (next == nullptr) [[unlikely]] {
    // The input has changed since it was counted.
    std::memset(block, 0, length * sizeof(Element));
    return failed(CODEC_ERR_TRUNCATED);
  }
  return {next, CODEC_OK};
}

template <integer_element Element>
PAVO_ZORV_INLINE bool copy_array(Element *&elements, std::uint32_t &count, const Element *from, std::uint32_t length,
                                 const copy_context &copying) {
  if (from == nullptr) length = 0;
  Element *const copy = length != 0 ? copying.memory.array<Element>(length) : nullptr;
  elements = copy;
  if (copy == nullptr) {
    count = 0;
    return length == 0;
  }
  copy_bytes<16 * sizeof(Element)>(copy, from, length * sizeof(Element));
  return true;
}

template <class Record, integer_element Element>
struct integer_list : row {
  static constexpr kind type = kind::integer_list;
  static constexpr wire_type wire = wire_type::varint;
  using element = Element;
  Element *Record::*elements;
  std::uint32_t Record::*count;

  consteval integer_list(unsigned field_number, const char *field_name, Element *Record::*array,
                         std::uint32_t Record::*array_count)
      : row{field_number, field_name}, elements(array), count(array_count) {}

  static constexpr bool repeats_or_nests() { return true; }
  static constexpr bool owns() { return true; }
  static constexpr bool holds_bytes() { return false; }
  constexpr auto members() const { return std::tuple{elements, count}; }

  // A second run is refused, and a missing allocator found, before the values are looked at.
  PAVO_ZORV_INLINE step decode(Record &record, const byte *at, const byte *end, const decode_context &decoding,
                               bool seen) const {
    if (seen) return failed(CODEC_ERR_TRUNCATED);
    if (decoding.memory.missing()) return failed(CODEC_ERR_NO_MEMORY);
    const std::uint32_t key = key_of(number, wire);
    return key < 0x80 ? decode_run<Element, 1>(record.*elements, record.*count, key, at, end, decoding)
                      : decode_run<Element, 2>(record.*elements, record.*count, key, at, end, decoding);
  }

  PAVO_ZORV_INLINE void measure(message_size &total, const Record &record, bool present) const {
    if (!present || record.*count == 0) return;
    total.bytes += std::uint64_t{record.*count} * varint_size(key_of(number, wire)) +
                   measure_integers(record.*elements, record.*count);
  }

  template <class Writer, class Entries>
  PAVO_ZORV_INLINE typename Writer::position write(Writer &writer, typename Writer::position at, const Record &record,
                                                   bool present, Entries &) const {
    if (!present) return at;
    return write_integers(writer, at, number, record.*elements, record.*count);
  }

  PAVO_ZORV_INLINE void collect(const Record &record, owned_memory &all) const {
    all.pointers |= reinterpret_cast<std::uintptr_t>(record.*elements);
    all.counts |= record.*count;
  }

  PAVO_ZORV_INLINE bool copy(Record &record, const Record &source, copy_context &copying) const {
    return copy_array(record.*elements, record.*count, source.*elements, source.*count, copying);
  }

  // The count stays: a record that is encoded again must be cleared before.
  PAVO_ZORV_INLINE void release(Record &record, const releaser &releaser) const {
    releaser.release_block(record.*elements);
  }

  PAVO_ZORV_INLINE int compare(const Record &a, const Record &b) const {
    const std::uint32_t common = std::min(a.*count, b.*count);
    const int difference = compare_integers(a.*elements, b.*elements, common);
    if (difference != 0) return difference;
    return compare_values(a.*count, b.*count);
  }
};

}  // namespace pavo_zorv
