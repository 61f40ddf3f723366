// The table, which is constant.
#include "message_table.hpp"

#include <array>
#include <tuple>
#include <type_traits>
#include <utility>

#include "core/layout.hpp"
#include "messages/all.hpp"

namespace pavo_zorv {

namespace {

template <class Record>
constexpr auto offsets_of = layout_of<Record>(native).offsets;

template <class Record>
struct info;

// A row, of whose members the first has an index among all of the record's.
template <class Record, std::size_t Index>
constexpr field_info field_of(std::size_t &member) {
  constexpr auto &row = row_at<Record, Index>;
  using row_type = std::remove_cvref_t<decltype(row)>;
  field_info result{row.number, row.name, row.type, row.wire, 0, false, nullptr, offsets_of<Record>[member++], 0};
  if constexpr (std::tuple_size_v<decltype(row.members())> == 2) result.count_offset = offsets_of<Record>[member++];
  using member_type = std::remove_reference_t<decltype(std::declval<Record &>().*std::get<0>(row.members()))>;
  using number = std::conditional_t<row.type == kind::integer_list, std::remove_pointer_t<member_type>, member_type>;
  if constexpr (std::is_integral_v<number>) {
    result.width = sizeof(number);
    result.is_signed = std::is_signed_v<number>;
  }
  if constexpr (row.type == kind::nested || row.type == kind::message_list) {
    result.nested = &info<typename row_type::message>::message;
  }
  return result;
}

template <class Record>
struct info {
  static constexpr auto fields = []<std::size_t... Index>(std::index_sequence<Index...>) {
    std::size_t member = 0;
    return std::array<field_info, sizeof...(Index)>{field_of<Record, Index>(member)...};
  }
  (std::make_index_sequence<field_count<Record>>{});
  static constexpr message_info message{message_name<Record>, fields, sizeof(Record), offsets_of<Record>.back(),
                                        sizeof(Record::presence)};
};

constexpr auto table = std::apply(
    []<class... Records>(std::type_identity<Records>...) {
      return std::array<const message_info *, sizeof...(Records)>{&info<Records>::message...};
    },
    all_messages{});

}  // namespace

std::span<const message_info *const> message_table() { return table; }

const message_info *find_message(std::string_view name) {
  for (const message_info *const message : table) {
    if (message->name == name) return message;
  }
  return nullptr;
}

}  // namespace pavo_zorv
