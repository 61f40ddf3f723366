// Writing by scratch: how far a message goes below the limit, whatever it holds.
#include <algorithm>
#include <limits>

#include "core/operations.hpp"
#include "laws.hpp"
#include "messages/all.hpp"

namespace {

using namespace test;
namespace core = pavo_zorv;

// What a record is filled with besides its numbers, which are as large as they get. Lists, strings and bytes reserve
// what they take, and write nothing where that fails: so they hide how far the others go.
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
        if (!is_chosen()) return;
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
          static typename this_row::message two[2];
          filling inner(which_ == everything ? everything : nothing);
          for (auto &one : two) inner.fill(one);
          record.*row.elements = two;
          record.*row.count = 2;
        }
      }
      record.presence = static_cast<core::presence_of<Record>>(record.presence | core::presence_bit<Record, index>);
    });
  }

  // How many there are to choose from.
  std::size_t seen() const { return seen_; }

 private:
  bool is_chosen() { return seen_++ == which_ || which_ == everything; }
  char *text() const {
    static char empty[] = "", some[] = "seventeen letters";
    return which_ == everything ? empty : some;
  }

  std::size_t which_, seen_ = 0;
};

// What is written of a record where a number of bytes are free above the limit: it stays inside the slop, before which
// nothing can be written.
template <class Record>
void stays_in_its_slop(const Record &record, const std::string &name) {
  core::measurement found{false};
  const std::size_t size = core::measure(record, found);
  constexpr std::size_t slop = core::slop_of<Record>();
  const fence space(slop + size + 1);
  core::byte *const first = space.first();
  for (std::size_t above = 0; above <= size; ++above) {
    core::byte *const end = first + slop + above;
    auto to = core::writer::scratch(first, slop, false);
    const auto *const start = core::write_apart(record, to, end);
    ASSERT_GE(start, first) << name << ", " << above << " bytes above the limit";
    // If a part of it is missing, that is known: it has overflowed, or is longer than what is above the limit.
    const auto written = static_cast<std::size_t>(end - start);
    ASSERT_TRUE(to.overflowed() || written > above || written == size)
        << name << ", " << above << " bytes above the limit";
  }
}

template <class Record>
void stays_in_its_slop_whatever_it_holds(const char *name) {
  std::size_t most = 0;
  for (const std::size_t which : {filling::everything, filling::nothing}) {
    Record record{};
    filling filling(which);
    filling.fill(record);
    most = filling.seen();
    ASSERT_NO_FATAL_FAILURE(stays_in_its_slop(record, name));
  }
  for (std::size_t which = 0; which < most; ++which) {
    Record record{};
    filling filling(which);
    filling.fill(record);
    ASSERT_NO_FATAL_FAILURE(stays_in_its_slop(record, std::string(name) + ", block " + std::to_string(which)));
  }
}

TEST(writing_by_scratch, the_slop_is_enough_for_every_message) {
#define PAVO_ZORV_TEST_SLOP(message) \
  if (!HasFatalFailure()) stays_in_its_slop_whatever_it_holds<message>(#message);
  PAVO_ZORV_MESSAGES(PAVO_ZORV_TEST_SLOP)
#undef PAVO_ZORV_TEST_SLOP
}

// Lists of every length that ends near the limit, above it or below, in the space that a whole encoding has.
TEST(writing_by_scratch, a_list_of_any_length_is_reserved_or_overflows) {
  constexpr std::size_t slop = core::slop_of<api_lbl_stack>(), size = slop + core::scratch_size;
  const fence space(size);
  core::byte *const end = space.first() + size;
  std::vector<std::uint32_t> labels(core::scratch_size, 24001);
  std::vector<std::uint8_t> numbers(core::scratch_size, 200);
  for (const std::uint32_t value : {5u, 300u, 24001u, 0x200000u, 0xffffffffu}) {
    std::ranges::fill(labels, value);
    const std::size_t each = 1 + core::varint_size(value), fitting = core::scratch_size / each;
    for (std::size_t count = fitting - 20; count <= fitting + 200; ++count) {
      const api_lbl_stack stack{labels.data(), static_cast<std::uint32_t>(count), API_LBL_STACK_HAS_LABELS};
      auto to = core::writer::scratch(space.first(), slop, false);
      const auto *const start = core::write_apart(stack, to, end);
      ASSERT_GE(start, space.first());
      ASSERT_EQ(!to.overflowed(), count <= fitting) << count << " of " << each;
      if (count <= fitting) {
        ASSERT_EQ(static_cast<std::size_t>(end - start), count * each);
      }
    }
  }
  for (const std::uint8_t value : {std::uint8_t{5}, std::uint8_t{200}}) {
    std::ranges::fill(numbers, value);
    const std::size_t each = value < 128 ? 2 : 3, fitting = core::scratch_size / each;
    for (std::size_t count = fitting - 40; count <= fitting + 300; ++count) {
      const prefix_sid_type sid{0, numbers.data(), static_cast<std::uint32_t>(count), PREFIX_SID_TYPE_HAS_FIELD2};
      auto to = core::writer::scratch(space.first(), slop, false);
      const auto *const start = core::write_apart(sid, to, end);
      ASSERT_GE(start, space.first());
      ASSERT_EQ(!to.overflowed(), count <= fitting) << count << " of " << each;
      if (count <= fitting) {
        ASSERT_EQ(static_cast<std::size_t>(end - start), count * each);
      }
    }
  }
}

}  // namespace
