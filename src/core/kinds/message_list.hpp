// Lists of messages: an owned array of records and its count, one length-delimited field for each element.
#pragma once

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "../encode.hpp"
#include "../glance.hpp"
#include "../measure.hpp"
#include "../message.hpp"
#include "../runs/plain.hpp"

namespace pavo_zorv {

template <class Record, class Nested>
struct message_list_row : row {
  static constexpr kind type = kind::message_list;
  static constexpr wire_type wire = wire_type::delimited;
  using nested = Nested;
  Nested *Record::*elements;
  std::uint32_t Record::*count;

  static constexpr bool owns() { return true; }
  static constexpr bool holds_bytes() { return pavo_zorv::holds_bytes<Nested>; }
  constexpr auto members() const { return std::tuple{elements, count}; }

  // A second run is refused, and a missing allocator found, before the elements are looked at. All elements are known
  // to lie inside the message before memory is asked for. When one fails, the array stays, with what it holds by then.
  PAVO_ZORV_INLINE step decode(Record &record, const byte *at, const byte *end, const decoding &input,
                               bool seen) const {
    if (seen) return failed(CODEC_ERR_TRUNCATED);
    if (input.memory.missing()) return failed(CODEC_ERR_NO_MEMORY);
    const std::size_t length = count_run(number, at, end, skip_delimited);
    if (length == 0) return failed(CODEC_ERR_TRUNCATED);
    auto *const block = input.memory.array<Nested>(length);
    if (block == nullptr) return failed(CODEC_ERR_NO_MEMORY);
    std::memset(static_cast<void *>(block), 0, length * sizeof(Nested));
    record.*elements = block;
    record.*count = static_cast<std::uint32_t>(length);
    for (std::size_t index = 0; index < length; ++index) {
      if (index != 0) at = skip_varint(at, end);
      const delimited bytes = at != nullptr ? read_delimited(at, end) : delimited{};
      // Not where the input is as it was when it was counted.
      if (bytes.first == nullptr) [[unlikely]]
        return failed(CODEC_ERR_TRUNCATED);
      const int result = decode_message(block[index], bytes.first, bytes.last, input);
      if (result != CODEC_OK) return failed(result);
      at = bytes.last;
    }
    return {at, CODEC_OK};
  }

  PAVO_ZORV_INLINE void measure(measuring &total, const Record &record, bool present) const {
    if (!present) return;
    for (std::uint32_t index = 0; index < record.*count; ++index)
      total.template add_message<Nested>(number, measure_message((record.*elements)[index], total.found));
  }

  template <class Sink, class Entries>
  PAVO_ZORV_INLINE typename Sink::place write(const Sink &sink, typename Sink::place at, const Record &record,
                                              bool present, bool referenced, Entries &) const {
    if (!present) return at;
    for (std::uint32_t index = record.*count; index-- != 0;) {
      if (sink.is_full(at)) return at;
      const auto end = at;
      at = write_message((record.*elements)[index], sink, end, referenced);
      at = sink.prepend_varint(at, static_cast<std::uint32_t>(end - at));
      at = prepend_key(sink, at, number, wire);
    }
    return at;
  }

  PAVO_ZORV_INLINE void collect(const Record &record, possessions &all) const {
    all.blocks |= reinterpret_cast<std::uintptr_t>(record.*elements);
    all.elements |= record.*count;
  }

  // When elements fail, the array stays, with its count and bit.
  PAVO_ZORV_INLINE bool own(Record &record, const Record &source, copying &copying) const {
    const Nested *const from = source.*elements;
    const std::uint32_t length = from != nullptr ? source.*count : 0;
    Nested *const copy = length != 0 ? copying.memory.array<Nested>(length) : nullptr;
    record.*elements = copy;
    if (copy == nullptr) {
      record.*count = 0;
      return length == 0;
    }
    std::memcpy(static_cast<void *>(copy), from, length * sizeof(Nested));
    if constexpr (owns_memory<Nested>) {
      for (std::uint32_t index = 0; index < length; ++index) own_message(copy[index], from[index], copying);
    }
    return true;
  }

  PAVO_ZORV_INLINE void release(Record &record, const releaser &releaser) const {
    if (record.*elements == nullptr) return;
    if constexpr (owns_memory<Nested>) {
      for (std::uint32_t index = 0; index < record.*count; ++index)
        release_message((record.*elements)[index], releaser);
    }
    releaser.give_back(record.*elements);
    record.*count = 0;
  }

  PAVO_ZORV_INLINE int compare(const Record &a, const Record &b) const {
    const std::uint32_t common = std::min(a.*count, b.*count);
    for (std::uint32_t index = 0; index < common; ++index) {
      const int difference = compare_messages((a.*elements)[index], (b.*elements)[index]);
      if (difference != 0) return difference;
    }
    return compare_values(a.*count, b.*count);
  }
};

template <class Record, class Nested>
requires std::is_class_v<Nested>
consteval auto repeated(unsigned number, const char *name, Nested *Record::*elements, std::uint32_t Record::*count) {
  return message_list_row<Record, Nested>{{number, name}, elements, count};
}

}  // namespace pavo_zorv
