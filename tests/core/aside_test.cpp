// Writing aside: how far a message goes below the floor, whatever it holds.
#include <algorithm>
#include <limits>

#include "core/operations.hpp"
#include "messages/all.hpp"
#include "support.hpp"

namespace {

using namespace test;
namespace core = pavo_zorv;

// A record with every member: numbers as large as they get, texts and bytes that are empty, lists of two.
template <class Record>
void fill(Record &record) {
  core::for_each_row<Record>([&](auto index) {
    constexpr auto &row = core::row_at<Record, index>;
    using this_row = std::remove_cvref_t<decltype(row)>;
    if constexpr (row.type == core::kind::flag || row.type == core::kind::integer) {
      std::memset(&(record.*row.value), 0xff, sizeof(record.*row.value));
    } else if constexpr (row.type == core::kind::string) {
      static char empty[1] = "";
      record.*row.value = empty;
    } else if constexpr (row.type == core::kind::integers) {
      static typename this_row::element two[2] = {std::numeric_limits<typename this_row::element>::max(), 0};
      record.*row.elements = two;
      record.*row.count = 2;
    } else if constexpr (row.type == core::kind::messages) {
      static typename this_row::nested two[2];
      for (auto &one : two) fill(one);
      record.*row.elements = two;
      record.*row.count = 2;
    } else if constexpr (row.type == core::kind::message) {
      fill(record.*row.value);
    }
  });
  record.presence = core::presence_mask<Record>;
}

// What is written of a full record where a number of octets lie above the floor: stays within the room below it.
template <class Record>
void stays_above_the_start_of_its_room(const char *name) {
  Record record{};
  fill(record);
  core::survey found{{false}};
  const auto size = static_cast<std::ptrdiff_t>(core::measured_size(record, found));
  constexpr std::size_t below = core::octets_unasked<Record>() + 1, before = 4096;
  for (std::size_t above = 0; above <= 700; ++above) {
    octets space(before + below + above, 0xc7);
    core::octet *const first = space.data() + before, *const end = first + below + above;
    const core::quick_sink sink{first, nullptr, first + below};
    const auto *const start = core::write_message(record, sink, end, false);
    ASSERT_GE(start, first) << name << ", " << above << " octets above the floor";
    ASSERT_EQ(std::count(space.data(), first, 0xc7), static_cast<std::ptrdiff_t>(before)) << name << ", " << above;
    // It is known to be worth nothing where it is not all.
    ASSERT_TRUE(start < end - above || end - start == size) << name << ", " << above << " octets above the floor";
  }
}

TEST(writing_aside, the_room_below_the_floor_is_enough_for_every_message) {
#define PAVO_ZORV_TEST_ROOM(message) stays_above_the_start_of_its_room<message>(#message);
  PAVO_ZORV_ALL_MESSAGES(PAVO_ZORV_TEST_ROOM)
#undef PAVO_ZORV_TEST_ROOM
}

}  // namespace
