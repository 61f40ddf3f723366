// What the C++ layer finds out about records by itself, against the schema.
#include <set>
#include <string>

#include "messages/all.hpp"
#include "pavo_zorv.hpp"
#include "support.hpp"

namespace {

template <class Record, std::size_t Index>
void check_row() {
  constexpr auto &row = pavo_zorv::row_at<Record, Index>;
  using row_type = std::remove_cvref_t<decltype(row)>;
  constexpr auto members = row.members();
  constexpr auto member = std::get<0>(members);
  using traits = zorv::detail::member_traits<member>;
  static_assert(zorv::presence_bit<member> == pavo_zorv::presence_bit<Record, Index>);
  static_assert(std::is_same_v<decltype(zorv::presence_bit<member>), const pavo_zorv::presence_of<Record>>);
  static_assert(traits::is_array == (std::tuple_size_v<decltype(members)> == 2));
  static_assert(traits::is_bytes == (row_type::type == pavo_zorv::kind::bytes));
  static_assert(traits::is_flag == (row_type::type == pavo_zorv::kind::flag),
                "is_number_of_8_bits in include/pavo_zorv.hpp names the integers of 8 bits, and no flag");
  static_assert(traits::is_number == (traits::is_flag || row_type::type == pavo_zorv::kind::integer));
  if constexpr (traits::is_array) {
    Record record{};
    EXPECT_EQ(static_cast<void *>(traits::count(record)), static_cast<void *>(&(record.*std::get<1>(members))))
        << pavo_zorv::message_name<Record> << "." << row.name;
  }
}

TEST(schema, agrees_about_every_member_of_every_message) {
  std::size_t rows = 0;
  pavo_zorv::for_each_message([&](auto message) {
    using record = typename decltype(message)::type;
    EXPECT_STREQ(zorv::functions<record>::name, pavo_zorv::message_name<record>);
    pavo_zorv::for_each_row<record>([&](auto index) {
      check_row<record, index>();
      ++rows;
    });
  });
  EXPECT_GT(rows, 150u);
}

// Every message that holds bytes takes options, and so may others.
TEST(schema, agrees_about_the_options_word) {
#define PLAIN(message)                                       \
  EXPECT_FALSE(pavo_zorv::holds_bytes<message>) << #message; \
  EXPECT_FALSE(zorv::takes_options<message>) << #message;
#define WITH_OPTIONS(message) EXPECT_TRUE(zorv::takes_options<message>) << #message;
  PAVO_ZORV_EVERY_MESSAGE(PLAIN, WITH_OPTIONS)
#undef WITH_OPTIONS
#undef PLAIN
}

TEST(schema, is_listed_after_those_of_the_messages_in_it) {
  std::set<std::string> listed;
  pavo_zorv::for_each_message([&](auto message) {
    using record = typename decltype(message)::type;
    pavo_zorv::for_each_row<record>([&](auto index) {
      using row = std::remove_cvref_t<decltype(pavo_zorv::row_at<record, index>)>;
      if constexpr (row::type == pavo_zorv::kind::nested || row::type == pavo_zorv::kind::message_list) {
        const char *const nested = pavo_zorv::message_name<typename row::message>;
        EXPECT_TRUE(listed.contains(nested))
            << "include/pavo_zorv_messages.h lists " << pavo_zorv::message_name<record> << " before " << nested
            << ", which it contains";
      }
    });
    listed.insert(pavo_zorv::message_name<record>);
  });
}

}  // namespace
