// Writing aside: how far a message goes below the floor, whatever it holds.
#include <algorithm>
#include <limits>

#include "core/operations.hpp"
#include "laws.hpp"
#include "messages/all.hpp"

namespace {

using namespace test;
namespace core = pavo_zorv;

// What a record is filled with besides its numbers, which are as large as they get. What asks for room, a list, a
// string or bytes, takes the writing back to the floor when there is none: so it hides how far the others go.
class filling {
 public:
  static constexpr std::size_t everything = SIZE_MAX, nothing = SIZE_MAX - 1;

  // Everything, nothing, or the one of a number, counted from the first.
  explicit filling(std::size_t which) : which_(which) {}

  template <class Record>
  void fill(Record &record) {
    record.presence = 0;
    core::for_each_row<Record>([&](auto index) {
      constexpr auto &row = core::row_at<Record, index>;
      using this_row = std::remove_cvref_t<decltype(row)>;
      if constexpr (row.type == core::kind::flag || row.type == core::kind::integer) {
        std::memset(&(record.*row.value), 0xff, sizeof(record.*row.value));
      } else if constexpr (row.type == core::kind::nested) {
        fill(record.*row.value);
      } else {
        if (!is_wanted()) return;
        if constexpr (row.type == core::kind::string) {
          record.*row.value = text();
        } else if constexpr (row.type == core::kind::bytes) {
          record.*row.value = reinterpret_cast<unsigned char *>(text());
          record.*row.length = std::strlen(text());
        } else if constexpr (row.type == core::kind::integer_list) {
          using element = typename this_row::element;
          static element five[5];
          std::ranges::fill(five, std::numeric_limits<element>::max());
          if (which_ == everything) five[1] = 0;
          record.*row.elements = five;
          record.*row.count = which_ == everything ? 2 : 5;
        } else {
          // Static, so that it lives as long as the record: a list is held by one record at a time.
          static typename this_row::nested two[2];
          filling inner(which_ == everything ? everything : nothing);
          for (auto &one : two) inner.fill(one);
          record.*row.elements = two;
          record.*row.count = 2;
        }
      }
      record.presence = static_cast<core::presence_of<Record>>(record.presence | core::presence_bit<Record, index>);
    });
  }

  // How many there are that can be wanted.
  std::size_t seen() const { return seen_; }

 private:
  bool is_wanted() { return seen_++ == which_ || which_ == everything; }
  char *text() const {
    static char empty[] = "", some[] = "seventeen letters";
    return which_ == everything ? empty : some;
  }

  std::size_t which_, seen_ = 0;
};

// What is written of a record where a number of bytes lie above the floor: it stays within the room below the floor,
// before which nothing can be written.
template <class Record>
void stays_in_its_room(const Record &record, const std::string &name) {
  core::survey found{{false}};
  const auto size = static_cast<std::size_t>(core::measured_size(record, found));
  constexpr std::size_t below = core::bytes_unasked<Record>() + 1;
  const fence room(below + size + 1);
  core::byte *const first = room.first();
  for (std::size_t above = 0; above <= size; ++above) {
    core::byte *const end = first + below + above;
    const core::quick_sink sink{first, nullptr, first + below};
    const auto *const start = core::write_message(record, sink, end, false);
    ASSERT_GE(start, first) << name << ", " << above << " bytes above the floor";
    // It is known to be worth nothing where it is not all.
    ASSERT_TRUE(start < end - above || end - start == static_cast<std::ptrdiff_t>(size))
        << name << ", " << above << " bytes above the floor";
  }
}

template <class Record>
void stays_in_its_room_whatever_it_holds(const char *name) {
  std::size_t most = 0;
  for (const std::size_t which : {filling::everything, filling::nothing}) {
    Record record{};
    filling filling(which);
    filling.fill(record);
    most = filling.seen();
    ASSERT_NO_FATAL_FAILURE(stays_in_its_room(record, name));
  }
  for (std::size_t which = 0; which < most; ++which) {
    Record record{};
    filling filling(which);
    filling.fill(record);
    ASSERT_NO_FATAL_FAILURE(stays_in_its_room(record, std::string(name) + ", block " + std::to_string(which)));
  }
}

TEST(writing_aside, the_room_below_the_floor_is_enough_for_every_message) {
#define PAVO_ZORV_TEST_ROOM(message) \
  if (!HasFatalFailure()) stays_in_its_room_whatever_it_holds<message>(#message);
  PAVO_ZORV_ALL_MESSAGES(PAVO_ZORV_TEST_ROOM)
#undef PAVO_ZORV_TEST_ROOM
}

// Lists of every length that ends near the floor, above it or below, in the room that a whole encoding has.
TEST(writing_aside, a_list_of_any_length_finds_its_room_or_none) {
  constexpr std::size_t below = core::bytes_unasked<api_lbl_stack>() + 1, size = below + core::most_aside;
  const fence room(size);
  core::byte *const end = room.first() + size;
  const core::quick_sink sink{room.first(), nullptr, end - core::most_aside};
  std::vector<std::uint32_t> labels(core::most_aside, 24001);
  std::vector<std::uint8_t> elements(core::most_aside, 200);
  for (const std::uint32_t value : {5u, 300u, 24001u, 0x200000u, 0xffffffffu}) {
    std::ranges::fill(labels, value);
    const std::size_t each = 1 + core::varint_size(value), fitting = core::most_aside / each;
    for (std::size_t count = fitting - 20; count <= fitting + 200; ++count) {
      const api_lbl_stack stack{labels.data(), static_cast<std::uint32_t>(count), API_LBL_STACK_HAS_LABELS};
      const auto *const start = core::write_message(stack, sink, end, false);
      ASSERT_GE(start, room.first());
      ASSERT_EQ(start >= sink.floor, count <= fitting) << count << " of " << each;
      if (count <= fitting) {
        ASSERT_EQ(static_cast<std::size_t>(end - start), count * each);
      }
    }
  }
  for (const std::uint8_t value : {std::uint8_t{5}, std::uint8_t{200}}) {
    std::ranges::fill(elements, value);
    const std::size_t each = value < 128 ? 2 : 3, fitting = core::most_aside / each;
    for (std::size_t count = fitting - 40; count <= fitting + 300; ++count) {
      const prefix_sid_type sid{0, elements.data(), static_cast<std::uint32_t>(count), PREFIX_SID_TYPE_HAS_FIELD2};
      const auto *const start = core::write_message(sid, sink, end, false);
      ASSERT_GE(start, room.first());
      ASSERT_EQ(start >= sink.floor, count <= fitting) << count << " of " << each;
      if (count <= fitting) {
        ASSERT_EQ(static_cast<std::size_t>(end - start), count * each);
      }
    }
  }
}

}  // namespace
