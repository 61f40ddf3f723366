// Overwriting whole records, all but the presence bits of no field: those, in the record and in the ones inside it, are
// the caller's and stay as they are.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <tuple>
#include <type_traits>
#include <utility>

#include "blocks.hpp"
#include "message.hpp"

namespace pavo_zorv {

// Where presence flags with bits of no field stand in a record, and which these bits are.
struct spare_bits {
  std::size_t offset;
  std::size_t size;
  std::uint32_t mask;
};

template <class Record>
consteval std::size_t spare_count() {
  std::size_t count = presence_mask<Record> != static_cast<presence_of<Record>>(~presence_of<Record>{0});
  for_each_row<Record>([&](auto index) {
    using this_row = std::remove_cvref_t<decltype(row_at<Record, index>)>;
    if constexpr (this_row::type == kind::message) count += spare_count<typename this_row::nested>();
  });
  return count;
}

// Members stand in row order, the presence flags last.
template <class Record>
inline constexpr auto spares = [] {
  std::array<spare_bits, spare_count<Record>()> all{};
  std::size_t count = 0, offset = 0;
  const auto step_over = [&](auto member) {
    using Member = std::remove_reference_t<decltype(std::declval<Record &>().*member)>;
    offset = (offset + alignof(Member) - 1) / alignof(Member) * alignof(Member);
    if constexpr (std::is_class_v<Member>) {
      for (const spare_bits &inner : spares<Member>) all[count++] = {offset + inner.offset, inner.size, inner.mask};
    }
    offset += sizeof(Member);
  };
  std::apply([&](auto... members) { (step_over(members), ...); }, checks::members_with_rows<Record>);
  constexpr auto mask = static_cast<presence_of<Record>>(~presence_mask<Record>);
  if (mask != 0) all[count] = {offsetof(Record, presence), sizeof mask, mask};
  return all;
}();

// How many of them stand before an offset.
template <class Record, std::size_t Offset>
inline constexpr std::size_t spares_before = [] {
  std::size_t count = 0;
  while (count < spares<Record>.size() && spares<Record>[count].offset < Offset) ++count;
  return count;
}();

// Overwrites a record with zero, or with the octets of another one: a piece of it, as large as a word or a vector, at a
// time. Straight stores: what the compiler makes of memset and memcpy for some 1,000 octets is a string instruction
// that takes twice as long. Presence flags are read and written as what they are, for the processor hands on what was
// just stored only to loads of the same place and size.
template <class Record>
class overwriting {
 public:
  PAVO_ZORV_INLINE overwriting(Record &record, const Record *source)
      : target_(reinterpret_cast<octet *>(&record)), source_(reinterpret_cast<const octet *>(source)) {}

  PAVO_ZORV_INLINE void whole() const { pieces<block_vector, 0>(); }

 private:
  using half_vector [[gnu::vector_size(16)]] = unsigned char;
  template <std::size_t Size>
  using word = std::conditional_t<Size == 4, std::uint32_t, std::conditional_t<Size == 2, std::uint16_t, std::uint8_t>>;

  // The last piece overlaps the one before it; only a record shorter than a vector is taken in smaller pieces.
  template <class Piece, std::size_t Offset>
  PAVO_ZORV_INLINE void pieces() const {
    constexpr std::size_t size = sizeof(Record);
    if constexpr (Offset + sizeof(Piece) <= size) {
      piece<Piece, Offset>();
      pieces<Piece, Offset + sizeof(Piece)>();
    } else if constexpr (Offset < size && sizeof(Piece) <= size) {
      piece<Piece, size - sizeof(Piece)>();
    } else if constexpr (Offset < size) {
      pieces<std::conditional_t<(sizeof(Piece) > 16), half_vector,
                                std::conditional_t<(sizeof(Piece) > 8), std::uint64_t, word<sizeof(Piece) / 2>>>,
             Offset>();
    }
  }

  template <class Piece, std::size_t Offset>
  PAVO_ZORV_INLINE void piece() const {
    constexpr std::size_t first = spares_before<Record, Offset>, end = spares_before<Record, Offset + sizeof(Piece)>;
    piece<Piece, Offset, first>(std::make_index_sequence<end - first>{});
  }

  template <class Piece, std::size_t Offset, std::size_t First, std::size_t... Index>
  PAVO_ZORV_INLINE void piece(std::index_sequence<Index...>) const {
    [[maybe_unused]] const std::array<std::uint32_t, sizeof...(Index)> bits{merged<First + Index>()...};
    Piece octets = {};
    if (source_ != nullptr) std::memcpy(&octets, source_ + Offset, sizeof octets);
    std::memcpy(target_ + Offset, &octets, sizeof octets);
    (put<First + Index>(bits[Index]), ...);
  }

  template <std::size_t Index>
  PAVO_ZORV_INLINE std::uint32_t merged() const {
    constexpr spare_bits spare = spares<Record>[Index];
    word<spare.size> mine, others = 0;
    std::memcpy(&mine, target_ + spare.offset, sizeof mine);
    if (source_ != nullptr) std::memcpy(&others, source_ + spare.offset, sizeof others);
    return (mine & spare.mask) | (others & ~spare.mask);
  }

  template <std::size_t Index>
  PAVO_ZORV_INLINE void put(std::uint32_t bits) const {
    constexpr spare_bits spare = spares<Record>[Index];
    const auto flags = static_cast<word<spare.size>>(bits);
    std::memcpy(target_ + spare.offset, &flags, sizeof flags);
  }

  octet *target_;
  const octet *source_;
};

template <class Record>
void clear_message(Record &record) {
  overwriting<Record>(record, nullptr).whole();
}

template <class Record>
PAVO_ZORV_INLINE void copy_over(Record &record, const Record &source) {
  overwriting<Record>(record, &source).whole();
}

}  // namespace pavo_zorv
