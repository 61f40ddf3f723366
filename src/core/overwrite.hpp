// Overwriting whole records, all but the presence bits of no field: those, in the record and in the ones inside it,
// are the caller's and stay as they are.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <tuple>
#include <type_traits>

#include "layout.hpp"
#include "message.hpp"

namespace pavo_zorv {

// A record's bytes with a one for each presence bit of no field, those of the records inside it included.
template <class Record>
inline constexpr auto spare_bits = [] {
  constexpr auto layout = layout_of<Record>(native);
  std::array<byte, sizeof(Record)> bits{};
  std::size_t index = 0;
  const auto copy_inside = [&](auto pointer) {
    using member = member_type<Record, decltype(pointer)>;
    if constexpr (std::is_class_v<member>)
      std::copy(spare_bits<member>.begin(), spare_bits<member>.end(), bits.begin() + layout.offsets[index]);
    ++index;
  };
  std::apply([&](auto... members) { (copy_inside(members), ...); }, row_members<Record>);
  constexpr auto own = static_cast<presence_of<Record>>(~presence_mask<Record>);
  const auto bytes = std::bit_cast<std::array<byte, sizeof own>>(own);
  std::copy(bytes.begin(), bytes.end(), bits.begin() + layout.offsets[index]);
  return bits;
}();

// Overwrites a record with zero, or with the bytes of another one, a piece at a time: a vector, or a word of a record
// that is shorter. The spare bits are merged into the pieces; nothing branches on them, which nobody may ever have
// written. memset and memcpy of some 1,000 bytes become a string instruction, which takes twice as long.
template <class Record>
class record_overwriter {
 public:
  PAVO_ZORV_INLINE record_overwriter(Record &record, const Record *source)
      : target_(reinterpret_cast<byte *>(&record)), source_(reinterpret_cast<const byte *>(source)) {}

  PAVO_ZORV_INLINE void overwrite() const { pieces<vector, 0>(); }

 private:
  using vector [[gnu::vector_size(vector_size)]] = unsigned char;
  using half_vector [[gnu::vector_size(16)]] = unsigned char;
  template <std::size_t Size>
  using word = std::conditional_t<Size == 4, std::uint32_t, std::uint16_t>;  // a record has at least two bytes

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
    Piece bytes = {};
    if (source_ != nullptr) std::memcpy(&bytes, source_ + Offset, sizeof bytes);
    constexpr auto *spare = spare_bits<Record>.data() + Offset;
    if constexpr (std::any_of(spare, spare + sizeof(Piece), [](byte bits) { return bits != 0; })) {
      Piece mask, kept;
      std::memcpy(&mask, spare, sizeof mask);
      std::memcpy(&kept, target_ + Offset, sizeof kept);
      bytes = static_cast<Piece>((bytes & ~mask) | (kept & mask));
    }
    std::memcpy(target_ + Offset, &bytes, sizeof bytes);
  }

  byte *target_;
  const byte *source_;
};

template <class Record>
void clear_record(Record &record) {
  record_overwriter<Record>(record, nullptr).overwrite();
}

template <class Record>
PAVO_ZORV_INLINE void copy_record(Record &record, const Record &source) {
  record_overwriter<Record>(record, &source).overwrite();
}

}  // namespace pavo_zorv
