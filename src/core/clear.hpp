// Clearing: every member of a record, and of the records inside it, to zero; only the presence bits of no field stay.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "blocks.hpp"
#include "message.hpp"

namespace pavo_zorv {

// The presence bits of no field, in a record and those inside it: kept while the record is overwritten.
template <class Record>
class unowned_bits {
 public:
  explicit unowned_bits(const Record &record) { save(record, bits_); }
  // Into a record that is clear, or into one that may hold any bits.
  void put_into_clear(Record &record) const { restore<true>(record, bits_); }
  void restore(Record &record) const { restore<false>(record, bits_); }

 private:
  // Presence flags with bits that belong to no field.
  template <class Part>
  static consteval std::size_t words() {
    std::size_t count = presence_mask<Part> != static_cast<presence_of<Part>>(~presence_of<Part>{0});
    for_each_row<Part>([&](auto index) {
      constexpr auto &row = row_at<Part, index>;
      if constexpr (row.type == kind::message) count += words<typename decltype(row_at<Part, index>)::nested>();
    });
    return count;
  }

  template <class Part>
  PAVO_ZORV_INLINE static void save(const Part &part, std::uint32_t *bits) {
    constexpr auto mine = static_cast<presence_of<Part>>(~presence_mask<Part>);
    if constexpr (mine != 0) *bits++ = part.presence & mine;
    for_each_row<Part>([&](auto index) __attribute__((always_inline)) {
      constexpr auto &row = row_at<Part, index>;
      if constexpr (row.type == kind::message) {
        save(part.*row.value, bits);
        bits += words<typename std::remove_cvref_t<decltype(row)>::nested>();
      }
    });
  }

  template <bool Clear, class Part>
  PAVO_ZORV_INLINE static void restore(Part &part, const std::uint32_t *bits) {
    constexpr auto mine = static_cast<presence_of<Part>>(~presence_mask<Part>);
    if constexpr (mine != 0) {
      const std::uint32_t others = Clear ? 0 : part.presence & presence_mask<Part>;
      part.presence = static_cast<presence_of<Part>>(others | *bits++);
    }
    for_each_row<Part>([&](auto index) __attribute__((always_inline)) {
      constexpr auto &row = row_at<Part, index>;
      if constexpr (row.type == kind::message) {
        restore<Clear>(part.*row.value, bits);
        bits += words<typename std::remove_cvref_t<decltype(row)>::nested>();
      }
    });
  }

  std::uint32_t bits_[words<Record>() + 1];
};

template <class Record>
void clear_message(Record &record) {
  const unowned_bits<Record> kept(record);
  clear_block<sizeof record>(&record);
  kept.put_into_clear(record);
}

}  // namespace pavo_zorv
