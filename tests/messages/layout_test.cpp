// What holds for every record, and the values of the presence constants; and that every message has tests. Where the
// members are, pavo_zorv_layout.h says, which the compiler checks wherever the header is used; their types are checked
// against tests/naive/messages.hpp.
#include "core/layout.hpp"

#include <gtest/gtest.h>

#include <cctype>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "message_table.hpp"
#include "messages/all.hpp"

namespace layout_test {

template <class Record>
void is_a_record_of_c() {
  static_assert(std::is_standard_layout_v<Record> && std::is_trivial_v<Record>);
}

TEST(layout, of_every_record_is_that_of_c) {
  is_a_record_of_c<pavo_zorv_segment>();
  pavo_zorv::for_each_message([](auto message) { is_a_record_of_c<typename decltype(message)::type>(); });
}

// The place at which a member of a record is really found.
template <class Record, class Member>
std::size_t place_of(Member Record::*member) {
  static const Record record{};
  return static_cast<std::size_t>(reinterpret_cast<const char *>(&(record.*member)) -
                                  reinterpret_cast<const char *>(&record));
}

// Offsets, size and alignment.
using figures = std::vector<std::size_t>;

TEST(layout, of_every_record_is_the_one_that_is_computed) {
  std::vector<std::pair<std::string, figures>> computed, found;
  pavo_zorv::for_each_message([&](auto message) {
    using record = typename decltype(message)::type;
    constexpr auto layout = pavo_zorv::layout_of<record>(pavo_zorv::native);
    figures places(layout.offsets.begin(), layout.offsets.end());
    places.insert(places.end(), {layout.size, layout.alignment});
    computed.emplace_back(pavo_zorv::message_name<record>, places);
    places.clear();
    std::apply([&](auto... members) { (places.push_back(place_of(members)), ...); }, pavo_zorv::row_members<record>);
    places.insert(places.end(), {place_of(&record::presence), sizeof(record), alignof(record)});
    found.emplace_back(pavo_zorv::message_name<record>, places);
  });
  EXPECT_EQ(computed, found);
}

std::string upper(std::string text) {
  for (char &c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

// The presence constants of a message as the header has them: "API_ADDR_HAS_ADDRESS = 1 << 0", ...
std::vector<std::string> presence_constants(const std::string &header, const std::string &message) {
  const std::string first = "enum " + message + "_presence {";
  const std::size_t begin = header.find(first), end = header.find('}', begin);
  if (begin == std::string::npos || end == std::string::npos) return {};
  const std::string text = header.substr(begin + first.size(), end - begin - first.size());
  const std::regex constant("[A-Z][^,\\s]*( [^,\\s]+)*");
  std::vector<std::string> result;
  for (std::sregex_iterator at(text.begin(), text.end(), constant); at != std::sregex_iterator(); ++at)
    result.push_back(at->str());
  return result;
}

TEST(messages, have_a_suite_of_tests_each) {
  const testing::UnitTest &tests = *testing::UnitTest::GetInstance();
  std::set<std::string> suites;
  for (int i = 0; i < tests.total_test_suite_count(); ++i) suites.insert(tests.GetTestSuite(i)->name());
  for (const pavo_zorv::message_info *const message : pavo_zorv::message_table()) {
    EXPECT_TRUE(suites.contains(message->name))
        << "no file in tests/messages/ has tests of the suite " << message->name;
  }
}

TEST(layout, has_one_presence_constant_for_each_field_in_field_order) {
  std::ifstream file(PAVO_ZORV_HEADER);
  const std::string header{std::istreambuf_iterator<char>(file), {}};
  for (const pavo_zorv::message_info *const message : pavo_zorv::message_table()) {
    const std::string name = message->name;
    std::vector<std::string> expected;
    for (const pavo_zorv::field_info &field : message->fields) {
      expected.push_back(upper(name + "_HAS_" + field.name) + " = 1 << " + std::to_string(expected.size()));
    }
    EXPECT_EQ(presence_constants(header, name), expected) << "include/pavo_zorv.h, enum " << name << "_presence";
  }
}

}  // namespace layout_test
