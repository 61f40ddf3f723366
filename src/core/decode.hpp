// Decoding: the loop over keys.
#pragma once

#include <cstddef>
#include <cstdint>

#include "message.hpp"
#include "overwrite.hpp"

namespace pavo_zorv {

template <class Record>
class decoder {
 public:
  PAVO_ZORV_INLINE decoder(Record &record, const decode_context &decoding) : record_(record), decoding_(decoding) {}

  // Reads fields until the end or the first failure.
  PAVO_ZORV_INLINE int read(const byte *at, const byte *end) {
    while (at != end) {
      const auto [next, key] = read_varint<std::uint32_t>(at, end);
      if (next == nullptr) return CODEC_ERR_TRUNCATED;
      const step done = read_fields(key, next, end);
      if (done.result != CODEC_OK) return done.result;
      at = done.next;
    }
    return CODEC_OK;
  }

  presence_of<Record> seen() const { return seen_; }

 private:
  static constexpr std::size_t fields = field_count<Record>;

  // The key of a field; for one that the message does not have, a number that is no key.
  static constexpr std::uint64_t key_at(std::size_t index) {
    std::uint64_t key = (std::uint64_t{1} << 32) + index;
    for_each_row<Record>([&](auto row_index) {
      if (row_index == index) key = key_of(row_at<Record, row_index>.number, row_at<Record, row_index>.wire);
    });
    return key;
  }

  // Reads the field of a key, and those after it as long as they are in order, as encoders write them: the key of the
  // next field is tried before the keys are searched again. A case for each field that a message may have; the last
  // ones are unreachable in most messages, and gone.
  PAVO_ZORV_INLINE step read_fields(std::uint64_t key, const byte *at, const byte *end) {
    step done{at, CODEC_OK};
    // clang-format off
#define PAVO_ZORV_FIELD(index)                                              \
  case key_at(index):                                                       \
    if constexpr (index < fields) {                                         \
      done = read_value<index>(done.next, end);                             \
      if constexpr (index + 1 == fields) {                                  \
        return done;                                                        \
      } else {                                                              \
        if (done.result != CODEC_OK) return done;                           \
        const byte *const next = step_over_key<index + 1>(done.next, end);  \
        if (next == nullptr) return done;                                   \
        done.next = next;                                                   \
      }                                                                     \
    }                                                                       \
    [[fallthrough]];
    switch (key) {
      PAVO_ZORV_FIELD(0)  PAVO_ZORV_FIELD(1)  PAVO_ZORV_FIELD(2)  PAVO_ZORV_FIELD(3)
      PAVO_ZORV_FIELD(4)  PAVO_ZORV_FIELD(5)  PAVO_ZORV_FIELD(6)  PAVO_ZORV_FIELD(7)
      PAVO_ZORV_FIELD(8)  PAVO_ZORV_FIELD(9)  PAVO_ZORV_FIELD(10) PAVO_ZORV_FIELD(11)
      PAVO_ZORV_FIELD(12) PAVO_ZORV_FIELD(13) PAVO_ZORV_FIELD(14) PAVO_ZORV_FIELD(15)
      PAVO_ZORV_FIELD(16) PAVO_ZORV_FIELD(17) PAVO_ZORV_FIELD(18) PAVO_ZORV_FIELD(19)
      PAVO_ZORV_FIELD(20) PAVO_ZORV_FIELD(21) PAVO_ZORV_FIELD(22) PAVO_ZORV_FIELD(23)
      PAVO_ZORV_FIELD(24) PAVO_ZORV_FIELD(25) PAVO_ZORV_FIELD(26) PAVO_ZORV_FIELD(27)
      PAVO_ZORV_FIELD(28) PAVO_ZORV_FIELD(29) PAVO_ZORV_FIELD(30) PAVO_ZORV_FIELD(31)
      default:
        break;
    }
#undef PAVO_ZORV_FIELD
    // clang-format on
    if (number_of(static_cast<std::uint32_t>(key)) - 1 < fields) return failed(CODEC_ERR_WRONG_WIRE_TYPE);
    return skip_unknown(static_cast<std::uint32_t>(key), at, end);
  }

  template <std::size_t Index>
  PAVO_ZORV_INLINE step read_value(const byte *at, const byte *end) {
    constexpr auto bit = presence_bit<Record, Index>;
    const step done = row_at<Record, Index>.decode(record_, at, end, decoding_, (seen_ & bit) != 0);
    if (done.result == CODEC_OK) seen_ = static_cast<presence_of<Record>>(seen_ | bit);
    return done;
  }

  // Where the value of a field begins if its canonical key is here, else null.
  template <std::size_t Index>
  PAVO_ZORV_INLINE const byte *step_over_key(const byte *at, const byte *end) {
    constexpr key_bytes<varint_size(key_at(Index))> key(key_at(Index));
    if constexpr (key_at(Index) < 0x80) {
      return at != end && *at == key.first ? at + 1 : nullptr;
    } else {
      return end - at >= 2 && at[0] == key.first && at[1] == key.second ? at + 2 : nullptr;
    }
  }

  Record &record_;
  const decode_context &decoding_;
  presence_of<Record> seen_ = 0;
};

// What was read before a failure stays, with its presence bits.
template <class Record>
int decode_message(Record &record, const byte *at, const byte *end, const decode_context &decoding) {
  decoder<Record> decoder(record, decoding);
  const int result = decoder.read(at, end);
  record.presence = static_cast<presence_of<Record>>(record.presence | decoder.seen());
  return result;
}

template <class Record>
int decode(Record &record, const byte *buffer, std::size_t length, pavo_zorv_allocate allocate, void *context,
           std::uint32_t options = 0) {
  clear_record(record);
  return decode_message(record, buffer, buffer + length,
                        decode_context{{allocate, context}, options, {buffer, buffer + length}});
}

}  // namespace pavo_zorv
