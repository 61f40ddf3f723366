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

// A list of integers asks for its room before it writes: below the floor it touches no more than one store does.
template <class Element>
void asks_for_its_room(unsigned number, Element value, std::size_t octets_of_value) {
  const std::size_t each = (number < 16 ? 1 : 2) + octets_of_value;
  const std::vector<Element> elements(700, value);
  for (const std::size_t count : {1u, 3u, 4u, 5u, 8u, 9u, 33u, 100u, 699u, 700u}) {
    for (std::size_t above = 0; above <= 1200; above += 1 + above / 100) {
      constexpr std::size_t below = 8192, of_one_store = 16;
      octets space(below + above, 0xc7);
      core::octet *const first = space.data(), *const floor = first + below, *const end = floor + above;
      const core::quick_sink sink{first, nullptr, floor};
      const auto *const start = core::prepend_integers(sink, end, number, elements.data(), count);
      if (each * count <= above) {
        ASSERT_EQ(static_cast<std::size_t>(end - start), each * count) << count << " elements, " << above << " octets";
      } else {
        ASSERT_TRUE(sink.is_full(start)) << count << " elements, " << above << " octets";
      }
      ASSERT_EQ(std::count(first, floor - of_one_store, 0xc7), static_cast<std::ptrdiff_t>(below - of_one_store))
          << count << " elements, " << above << " octets";
    }
  }
}

TEST(writing_aside, a_list_of_integers_asks_for_its_room) {
  for (const unsigned number : {1u, 15u, 16u, 27u}) {
    asks_for_its_room<std::uint32_t>(number, 0, 1);
    asks_for_its_room<std::uint32_t>(number, 0x3fff, 2);
    asks_for_its_room<std::uint32_t>(number, 0x1fffff, 3);
    asks_for_its_room<std::uint32_t>(number, 0xffffffff, 5);
    asks_for_its_room<std::uint8_t>(number, 0x7f, 1);
    asks_for_its_room<std::uint8_t>(number, 0xff, 2);
  }
}

}  // namespace
