// Every member of every message through the C++ layer: read as a view, and set again in another record.
#include "laws.hpp"
#include "messages/all.hpp"
#include "pavo_zorv.hpp"

namespace {

using namespace test;

// Not in the templates, which are compiled for every field.
void expect(bool is_same, const char *field) { EXPECT_TRUE(is_same) << "of the field " << field; }

// What a view has, against what the record has.
template <class Record, class Field>
void read_field(const Record &record, Field) {
  decltype(auto) value = Field::get(record);
  using value_type = std::remove_cvref_t<decltype(value)>;
  const auto &member = record.*Field::member;
  using zorv::kind;
  if constexpr (Field::kind == kind::flag) {
    static_assert(std::is_same_v<value_type, bool>);
    expect(value == (member != 0), Field::name);
  } else if constexpr (Field::kind == kind::integer) {
    static_assert(std::is_same_v<value_type, std::remove_cvref_t<decltype(member)>>);
    expect(value == member, Field::name);
  } else if constexpr (Field::kind == kind::string) {
    static_assert(std::is_same_v<value_type, std::string_view>);
    expect(value.data() == member, Field::name);
    expect(value.size() == (member != nullptr ? std::strlen(member) : 0), Field::name);
  } else if constexpr (Field::kind == kind::nested) {
    static_assert(std::is_lvalue_reference_v<decltype(value)>);
    expect(&value == &member, Field::name);
  } else {
    const auto count = record.*zorv::detail::member_traits<Field::member>::count;
    expect(value.data() == member, Field::name);
    expect(value.size() == (member != nullptr ? count : 0), Field::name);
    expect(static_cast<std::size_t>(value.end() - value.begin()) == value.size(), Field::name);
    static_assert(noexcept(value[0]) &&noexcept(value.begin()));
  }
  static_assert(noexcept(Field::get(record)) &&noexcept(Field::is_in(record)));
  const auto found = zorv::find<Field::member>(record);
  expect(static_cast<bool>(found) == Field::is_in(record), Field::name);
}

// Sets in `to`, which is inside `owner`, what is present in `from`.
template <class Owner, class Record>
void rebuild(Owner &owner, Record &to, const Record &from) {
  zorv::for_each_field<Record>([&](auto field) {
    using info = decltype(field);
    using zorv::kind;
    read_field(from, field);
    if (!field.is_in(from)) return;
    if constexpr (info::kind == kind::flag || info::kind == kind::integer) {
      owner.template set_in<info::member>(to, info::get(from));
    } else if constexpr (info::kind == kind::nested) {
      rebuild(owner, zorv::edit<info::member>(to), info::get(from));
    } else if constexpr (info::kind == kind::message_list) {
      const auto elements = info::get(from);
      auto *const made = owner.template resize_in<info::member>(to, elements.size());
      expect(made != nullptr && zorv::edit<info::member>(to).data() == made, info::name);
      if (made == nullptr) return;
      for (std::size_t i = 0; i < elements.size(); ++i) {
        rebuild(owner, zorv::edit<info::member>(to)[i], elements[i]);
      }
    } else {
      expect(owner.template set_in<info::member>(to, info::get(from)) == CODEC_OK, info::name);
    }
    expect(field.is_in(to), info::name);
  });
}

template <class Record>
void check_message(random_numbers &random, const shape &form) {
  const naive::message &type = naive::message_of<Record>();
  const random_record made(type, random, form);
  const auto &record = made.as<Record>();
  zorv::owned<Record> again;
  rebuild(again, *again, record);
  EXPECT_EQ(zorv::compare(*again, record), 0) << type.name;
  EXPECT_EQ(zorv::encode(*again), zorv::encode(record)) << type.name;
  const auto read = zorv::try_decode<Record>(zorv::encode(record));
  ASSERT_TRUE(read) << type.name;
  EXPECT_EQ(*read, record) << type.name;
  const auto copy = zorv::try_duplicate(record);
  ASSERT_TRUE(copy) << type.name;
  EXPECT_EQ(*copy, again) << type.name;
}

TEST(every_message, can_be_read_by_views_and_built_from_them) {
  std::size_t messages = 0;
  pavo_zorv::for_each_message([&](auto message) {
    random_numbers random(1 + messages++);
    for (int round = 0; round < 20; ++round) {
      check_message<typename decltype(message)::type>(random, round == 0 ? shapes::full : shapes::canonical);
    }
  });
  EXPECT_EQ(messages, std::tuple_size_v<pavo_zorv::all_messages>);
}

// Views of records that are not what decoding makes of bytes.
TEST(every_message, is_read_alike_whatever_its_presence_bits_and_null_pointers) {
  pavo_zorv::for_each_message([&](auto message) {
    using record_type = typename decltype(message)::type;
    random_numbers random(4711);
    for (int round = 0; round < 20; ++round) {
      const random_record made(naive::message_of<record_type>(), random, shapes::encodable);
      zorv::for_each_field<record_type>([&](auto field) { read_field(made.as<record_type>(), field); });
    }
  });
}

}  // namespace
