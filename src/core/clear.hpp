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

// Presence flags at a place, as wide as they are: the processor hands on what was just stored only to loads of the same
// place and size.
PAVO_ZORV_INLINE std::uint32_t load_flags(const octet *record, const spare_bits &place) {
  if (place.size == 1) return record[place.offset];
  std::uint16_t two;
  std::uint32_t four;
  if (place.size == 2) {
    std::memcpy(&two, record + place.offset, sizeof two);
    return two;
  }
  std::memcpy(&four, record + place.offset, sizeof four);
  return four;
}

PAVO_ZORV_INLINE void store_flags(octet *record, const spare_bits &place, std::uint32_t flags) {
  const auto two = static_cast<std::uint16_t>(flags);
  if (place.size == 1) {
    record[place.offset] = static_cast<octet>(flags);
  } else if (place.size == 2) {
    std::memcpy(record + place.offset, &two, sizeof two);
  } else {
    std::memcpy(record + place.offset, &flags, sizeof flags);
  }
}

// Overwrites a record with zero, or with the octets of another one: a piece of it, as large as a word or a vector, at a
// time. Straight stores: what the compiler makes of memset and memcpy for some 1,000 octets is a string instruction
// that takes twice as long.
template <class Record>
class overwriting {
 public:
  PAVO_ZORV_INLINE overwriting(Record &record, const Record *source)
      : target_(reinterpret_cast<octet *>(&record)), source_(reinterpret_cast<const octet *>(source)) {}

  // Where there are many spare bits, they are mostly clear: one look at all costs less than to put back each.
  PAVO_ZORV_INLINE void whole() const {
    if constexpr (places <= 2) {
      keep_spares(std::make_index_sequence<places>{});
    } else if (spares_are_clear(std::make_index_sequence<places>{})) [[likely]] {
      if constexpr (sizeof(Record) > 40 * vector_size) {
        by_call();
      } else {
        pieces<block_vector, 0>();
      }
    } else {
      keep_many_spares();
    }
  }

 private:
  using half_vector [[gnu::vector_size(16)]] = unsigned char;
  template <std::size_t Size>
  using word = std::conditional_t<Size == 4, std::uint32_t, std::conditional_t<Size == 2, std::uint16_t, std::uint8_t>>;
  static constexpr std::size_t places = spares<Record>.size();

  // The last piece overlaps the one before it; only a record shorter than a vector is taken in smaller pieces.
  template <class Piece, std::size_t Offset>
  PAVO_ZORV_INLINE void pieces() const {
    constexpr std::size_t size = sizeof(Record);
    if constexpr (Offset + sizeof(Piece) <= size) {
      piece<Piece>(Offset);
      pieces<Piece, Offset + sizeof(Piece)>();
    } else if constexpr (Offset < size && sizeof(Piece) <= size) {
      piece<Piece>(size - sizeof(Piece));
    } else if constexpr (Offset < size) {
      pieces<std::conditional_t<(sizeof(Piece) > 16), half_vector,
                                std::conditional_t<(sizeof(Piece) > 8), std::uint64_t, word<sizeof(Piece) / 2>>>,
             Offset>();
    }
  }

  template <class Piece>
  PAVO_ZORV_INLINE void piece(std::size_t offset) const {
    Piece octets = {};
    if (source_ != nullptr) std::memcpy(&octets, source_ + offset, sizeof octets);
    std::memcpy(target_ + offset, &octets, sizeof octets);
  }

  PAVO_ZORV_INLINE std::uint32_t flags_seen(const spare_bits &place) const {
    return load_flags(target_, place) | (source_ != nullptr ? load_flags(source_, place) : 0);
  }

  static constexpr std::uint32_t spare_part(std::uint32_t flags, const spare_bits &place) { return flags & place.mask; }

  // Flags of which the same bits are spare are put together first.
  template <std::size_t... Index>
  PAVO_ZORV_INLINE bool spares_are_clear(std::index_sequence<Index...>) const {
    std::array<std::uint32_t, places> together{};
    ((together[first_like<Index>] |= flags_seen(spares<Record>[Index])), ...);
    std::uint32_t bits = 0;
    ((bits |= spare_part(together[Index], spares<Record>[Index])), ...);
    return bits == 0;
  }

  // The first place with the same spare bits as one has.
  static constexpr std::size_t find_like(const std::array<spare_bits, places> &all, std::size_t index) {
    std::size_t first = 0;
    while (all[first].mask != all[index].mask) ++first;
    return first;
  }

  template <std::size_t Index>
  static constexpr std::size_t first_like = find_like(spares<Record>, Index);

  // Added, since of `|` the compiler makes two exclusive ors that wait for each other.
  PAVO_ZORV_INLINE std::uint32_t merged(const spare_bits &place) const {
    const std::uint32_t others = source_ != nullptr ? load_flags(source_, place) : 0;
    return (load_flags(target_, place) & place.mask) + (others & ~place.mask);
  }

  template <std::size_t... Index>
  PAVO_ZORV_INLINE void keep_spares(std::index_sequence<Index...>) const {
    [[maybe_unused]] const std::array<std::uint32_t, places> flags{merged(spares<Record>[Index])...};
    pieces<block_vector, 0>();
    (store_flags(target_, spares<Record>[Index], flags[Index]), ...);
  }

  // By the C library, which knows the vectors of the processor that it runs on: worth a call where ours would be many.
  // The compiler must not know the size, or it does not call.
  PAVO_ZORV_INLINE void by_call() const {
    std::size_t size = sizeof(Record);
    asm("" : "+r"(size));
    if (source_ != nullptr) {
      std::memcpy(target_, source_, size);
    } else {
      std::memset(target_, 0, size);
    }
  }

  PAVO_ZORV_NOINLINE void keep_many_spares() const {
    std::array<std::uint32_t, places> flags;
    for (std::size_t index = 0; index < places; ++index) flags[index] = merged(spares<Record>[index]);
    by_call();
    for (std::size_t index = 0; index < places; ++index) store_flags(target_, spares<Record>[index], flags[index]);
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
