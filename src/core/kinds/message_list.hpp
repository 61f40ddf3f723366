// Lists of messages: an owned array of records and its count, one length-delimited field for each element.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <tuple>
#include <type_traits>

#include "core/emptiness.hpp"
#include "core/message.hpp"
#include "core/runs/plain.hpp"
#include "core/writer.hpp"

namespace pavo_zorv {

template <class Record, class Message>
requires std::is_class_v<Message>
struct message_list : row {
  static constexpr kind type = kind::message_list;
  static constexpr wire_type wire = wire_type::delimited;
  using message = Message;
  Message *Record::*elements;
  std::uint32_t Record::*count;

  consteval message_list(unsigned field_number, const char *field_name, Message *Record::*array,
                         std::uint32_t Record::*array_count)
      : row{field_number, field_name}, elements(array), count(array_count) {}

  static constexpr bool repeats_or_nests() { return true; }
  static constexpr bool owns() { return true; }
  static constexpr bool holds_bytes() { return pavo_zorv::holds_bytes<Message>; }
  constexpr auto members() const { return std::tuple{elements, count}; }

  // A second run is refused, and a missing allocator found, before the elements are looked at. All elements are known
  // to lie inside the message before memory is asked for. When one fails, the array stays, with what it holds by then.
  PAVO_ZORV_INLINE step decode(Record &record, const byte *at, const byte *end, const decode_context &decoding,
                               bool seen) const {
    if (seen) return failed(CODEC_ERR_TRUNCATED);
    if (decoding.memory.missing()) return failed(CODEC_ERR_NO_MEMORY);
    const std::size_t length = count_run(number, at, end, skip_delimited);
    if (length == 0) return failed(CODEC_ERR_TRUNCATED);
    auto *const block = decoding.memory.array<Message>(length);
    if (block == nullptr) return failed(CODEC_ERR_NO_MEMORY);
    std::memset(static_cast<void *>(block), 0, length * sizeof(Message));
    record.*elements = block;
    record.*count = static_cast<std::uint32_t>(length);
    for (std::size_t index = 0; index < length; ++index) {
      if (index != 0) at = skip_varint(at, end);
      const delimited content = at != nullptr ? read_delimited(at, end) : delimited{};
      // Only where the input has changed since it was counted.
      if (content.first == nullptr) [[unlikely]]
        return failed(CODEC_ERR_TRUNCATED);
      const int result = decode_message(block[index], content.first, content.last, decoding);
      if (result != CODEC_OK) return failed(result);
      at = content.last;
    }
    return {at, CODEC_OK};
  }

  PAVO_ZORV_INLINE void measure(message_size &total, const Record &record, bool present) const {
    if (!present) return;
    for (std::uint32_t index = 0; index < record.*count; ++index)
      total.template add_message<Message>(number, measure_message((record.*elements)[index], total.found));
  }

  template <class Writer, class Entries>
  PAVO_ZORV_INLINE typename Writer::position write(Writer &writer, typename Writer::position at, const Record &record,
                                                   bool present, Entries &) const {
    if (!present) return at;
    for (std::uint32_t index = record.*count; index-- != 0;) {
      // Below the limit no element is begun: the slop has no place for it.
      if (!writer.reserve(at, 0)) return at;
      const auto end = at;
      at = write_message((record.*elements)[index], writer, end);
      at = writer.prepend_varint(at, static_cast<std::uint32_t>(end - at));
      at = prepend_key(writer, at, number, wire);
    }
    return at;
  }

  PAVO_ZORV_INLINE void collect(const Record &record, owned_memory &all) const {
    all.pointers |= reinterpret_cast<std::uintptr_t>(record.*elements);
    all.counts |= record.*count;
  }

  // When elements fail, the array stays, with its count and bit.
  PAVO_ZORV_INLINE bool copy(Record &record, const Record &source, copy_context &copying) const {
    const Message *const from = source.*elements;
    const std::uint32_t length = from != nullptr ? source.*count : 0;
    Message *const copy = length != 0 ? copying.memory.array<Message>(length) : nullptr;
    record.*elements = copy;
    if (copy == nullptr) {
      record.*count = 0;
      return length == 0;
    }
    std::memcpy(static_cast<void *>(copy), from, length * sizeof(Message));
    if constexpr (owns_memory<Message>) {
      for (std::uint32_t index = 0; index < length; ++index) copy_members(copy[index], from[index], copying);
    }
    return true;
  }

  PAVO_ZORV_INLINE void release(Record &record, const releaser &releaser) const {
    if (record.*elements == nullptr) return;
    if constexpr (owns_memory<Message>) {
      for (std::uint32_t index = 0; index < record.*count; ++index)
        release_message((record.*elements)[index], releaser);
    }
    releaser.release_block(record.*elements);
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

}  // namespace pavo_zorv
