// What the C++ layer finds out about records by itself, against the schema.
#include <set>
#include <string>

#include "messages/all.hpp"
#include "pavo_zorv.hpp"
#include "support.hpp"

namespace {

template <class Member, class Value>
constexpr bool is_same_member(Member member, Value value) {
  if constexpr (std::is_same_v<Member, Value>) {
    return member == value;
  } else {
    return false;
  }
}

// Not in the templates, which are compiled for every field.
void expect_name(const char *name, const char *stated) { EXPECT_STREQ(name, stated); }
void expect_number(unsigned number, unsigned place, const char *message) { EXPECT_EQ(number, place) << message; }

// A field as the layer lists it, against its row.
template <class Record, std::size_t Index, class Field>
void check_field(Field) {
  constexpr auto &row = pavo_zorv::row_at<Record, Index>;
  using row_type = std::remove_cvref_t<decltype(row)>;
  constexpr auto members = row.members();
  static_assert(is_same_member(Field::member, std::get<0>(members)));
  static_assert(Field::number == row.number);
  expect_name(Field::name, row.name);
  static_assert(static_cast<int>(Field::kind) == static_cast<int>(row_type::type), "the kinds are in the same order");
  static_assert(zorv::presence_bit<Field::member> == pavo_zorv::presence_bit<Record, Index>);
  static_assert(std::is_same_v<decltype(zorv::presence_bit<Field::member>), const pavo_zorv::presence_of<Record>>);
  using traits = zorv::detail::member_traits<Field::member>;
  static_assert(traits::is_array == (std::tuple_size_v<decltype(members)> == 2));
  if constexpr (traits::is_array) static_assert(is_same_member(traits::count, std::get<1>(members)));
}

TEST(schema, agrees_about_every_field_of_every_message) {
  std::size_t rows = 0;
  pavo_zorv::for_each_message([&](auto message) {
    using record = typename decltype(message)::type;
    EXPECT_STREQ(zorv::functions<record>::name, pavo_zorv::message_name<record>);
    static_assert(zorv::field_count<record> == pavo_zorv::field_count<record>);
    unsigned visited = 0;
    zorv::for_each_field<record>([&](auto field) {
      expect_number(field.number, ++visited, zorv::functions<record>::name);
      check_field<record, decltype(field)::number - 1>(field);
      ++rows;
    });
    EXPECT_EQ(visited, pavo_zorv::field_count<record>) << zorv::functions<record>::name;
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
