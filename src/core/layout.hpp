// Where the members of a record are, on this machine and on others: in row order, each naturally aligned, the presence
// flags last.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>

#include "schema.hpp"

namespace pavo_zorv {

// What the offsets depend on: the size of a pointer, and the alignment of an integer of 64 bits.
struct data_model {
  std::size_t pointer, wide;
};
inline constexpr data_model lp64{8, 8};
inline constexpr data_model ilp32{4, 4};
struct wide_member {
  std::uint64_t value;
};
inline constexpr data_model native{sizeof(void *), alignof(wide_member)};

// The offsets of the members that rows name, in row order, and after them that of the presence flags.
template <class Record>
struct record_layout {
  std::array<std::size_t, row_member_count<Record> + 1> offsets{};
  std::size_t size{}, alignment{};
};

template <class Record, class Pointer>
using member_type = std::remove_cvref_t<decltype(std::declval<Record>().*std::declval<Pointer>())>;

template <class Record>
constexpr record_layout<Record> layout_of(data_model model) {
  record_layout<Record> result;
  std::size_t index = 0;
  const auto align = [&](std::size_t alignment) {
    result.size = (result.size + alignment - 1) / alignment * alignment;
    result.alignment = std::max(result.alignment, alignment);
  };
  const auto place = [&](std::size_t size, std::size_t alignment) {
    align(alignment);
    result.offsets[index++] = result.size;
    result.size += size;
  };
  const auto place_member = [&](auto pointer) {
    using member = member_type<Record, decltype(pointer)>;
    if constexpr (std::is_class_v<member>) {
      const auto inside = layout_of<member>(model);
      place(inside.size, inside.alignment);
    } else if constexpr (std::is_pointer_v<member>) {
      place(model.pointer, model.pointer);
    } else {
      place(sizeof(member), sizeof(member) == 8 ? model.wide : sizeof(member));
    }
  };
  std::apply([&](auto... members) { (place_member(members), ...); }, row_members<Record>);
  place_member(&Record::presence);
  align(result.alignment);
  return result;
}

}  // namespace pavo_zorv
