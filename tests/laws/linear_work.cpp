// That work grows with the encoding and not with its depth: counted, not timed. Rows that count how often they are
// asked are innermost in messages of the test, and a writer that counts writes the messages of the library.
#include <utility>

#include "core/operations.hpp"
#include "laws.hpp"
#include "messages/all.hpp"

namespace test {

// How often the members at the bottom are read, measured, written and compared.
struct visits {
  std::size_t decoded = 0, measured = 0, written = 0, compared = 0;
  bool operator==(const visits &) const = default;
};
inline visits counted;

inline void PrintTo(const visits &seen, std::ostream *out) {
  *out << seen.decoded << " decoded, " << seen.measured << " measured, " << seen.written << " written, "
       << seen.compared << " compared";
}

template <class Record>
struct counting_row : pavo_zorv::integer<Record, std::uint32_t> {
  using base = pavo_zorv::integer<Record, std::uint32_t>;
  template <class... Arguments>
  auto decode(Arguments &&...arguments) const {
    ++counted.decoded;
    return base::decode(std::forward<Arguments>(arguments)...);
  }
  template <class... Arguments>
  void measure(Arguments &&...arguments) const {
    ++counted.measured;
    base::measure(std::forward<Arguments>(arguments)...);
  }
  template <class... Arguments>
  auto write(Arguments &&...arguments) const {
    ++counted.written;
    return base::write(std::forward<Arguments>(arguments)...);
  }
  template <class... Arguments>
  auto compare(Arguments &&...arguments) const {
    ++counted.compared;
    return base::compare(std::forward<Arguments>(arguments)...);
  }
};

// A leaf under as many messages as the depth says, each the only member of the next.
template <unsigned Depth>
struct nest {
  nest<Depth - 1> inner;
  std::uint8_t presence;
};

template <>
struct nest<0> {
  std::uint32_t value;
  std::uint8_t presence;
};

// The same with lists.
template <unsigned Depth>
struct tree {
  tree<Depth - 1> *branches;
  std::uint32_t branches_count;
  std::uint8_t presence;
};

template <>
struct tree<0> {
  std::uint32_t value;
  std::uint8_t presence;
};

}  // namespace test

namespace pavo_zorv {

template <unsigned Depth>
inline constexpr auto schema<test::nest<Depth>> = message(nested(1, "inner", &test::nest<Depth>::inner));

template <>
inline constexpr auto schema<test::nest<0>> = message(test::counting_row<test::nest<0>>{
    integer(1, "value", &test::nest<0>::value)});

template <unsigned Depth>
inline constexpr auto schema<test::tree<Depth>> = message(message_list(1, "branches", &test::tree<Depth>::branches,
                                                                       &test::tree<Depth>::branches_count));

template <>
inline constexpr auto schema<test::tree<0>> = message(test::counting_row<test::tree<0>>{
    integer(1, "value", &test::tree<0>::value)});

}  // namespace pavo_zorv

namespace test {

// All operations on a record and what it is decoded from; how often the bottom was visited is left in `counted`.
template <class Record>
void work_on(const Record &record) {
  counted = {};
  const std::size_t length = pavo_zorv::encode(record, nullptr, 0, nullptr, nullptr);
  const fenced_block buffer(length);
  table entries(2000);
  ASSERT_EQ(pavo_zorv::encode(record, buffer.data(), length, entries.entries(), &entries.count), length);
  Record back;
  std::memset(static_cast<void *>(&back), 0, sizeof back);
  accountant memory;
  ASSERT_EQ(pavo_zorv::decode(back, buffer.data(), length, accountant::allocate, &memory), CODEC_OK);
  ASSERT_EQ(pavo_zorv::compare_messages(record, back), 0);
  pavo_zorv::release(back, accountant::release, &memory);
}

template <unsigned Depth>
nest<Depth> nested_leaf() {
  nest<Depth> result{};
  result.presence = 1;
  if constexpr (Depth == 0) {
    result.value = 300;
  } else {
    result.inner = nested_leaf<Depth - 1>();
  }
  return result;
}

template <unsigned Depth>
tree<Depth> grown_tree(arena &memory, std::uint32_t branches) {
  tree<Depth> result{};
  result.presence = 1;
  if constexpr (Depth == 0) {
    result.value = 300;
  } else {
    result.branches = memory.array<tree<Depth - 1>>(branches);
    result.branches_count = branches;
    for (std::uint32_t i = 0; i < branches; ++i) result.branches[i] = grown_tree<Depth - 1>(memory, branches);
  }
  return result;
}

TEST(linear_work, a_leaf_under_twelve_messages_is_visited_as_often_as_one_under_none) {
  ASSERT_NO_FATAL_FAILURE(work_on(nested_leaf<0>()));
  const visits flat = counted;
  EXPECT_GT(flat.decoded, 0u);
  EXPECT_GT(flat.measured, 0u);
  EXPECT_GT(flat.written, 0u);
  EXPECT_GT(flat.compared, 0u);
  ASSERT_NO_FATAL_FAILURE(work_on(nested_leaf<12>()));
  EXPECT_EQ(counted, flat);
}

TEST(linear_work, each_of_1024_leaves_in_lists_of_lists_is_visited_as_often_as_one) {
  ASSERT_NO_FATAL_FAILURE(work_on(nested_leaf<0>()));
  const visits one = counted;
  arena memory;
  ASSERT_NO_FATAL_FAILURE(work_on(grown_tree<5>(memory, 4)));
  EXPECT_EQ(counted, (visits{one.decoded * 1024, one.measured * 1024, one.written * 1024, one.compared * 1024}));
}

// Writes as the library does where everything fits, and counts the bytes that it writes.
class counting_writer {
 public:
  using position = unsigned char *;

  pavo_zorv::segment_table *table() const { return nullptr; }
  static constexpr bool referenced() { return false; }
  static constexpr bool reserve(position, std::uint64_t) { return true; }
  static position address(position at) { return at; }

  position prepend_byte(position at, unsigned char value) const {
    ++bytes_written;
    *--at = value;
    return at;
  }
  template <class Value>
  position prepend_varint(position at, Value value) const {
    position const start = pavo_zorv::prepend_varint(at, value);
    bytes_written += static_cast<std::size_t>(at - start);
    return start;
  }
  position prepend_block(position at, const void *block, std::uint64_t size) const {
    const auto length = static_cast<std::size_t>(size);
    bytes_written += length;
    at -= length;
    if (length != 0) std::memcpy(at, block, length);
    return at;
  }

  mutable std::size_t bytes_written = 0;
};

TEST(linear_work, every_byte_of_every_message_is_written_once) {
  pavo_zorv::for_each_message([]<class Record>(std::type_identity<Record>) {
    for_seeds(100, [](random_numbers &random) {
      const random_record record(naive::message_of<Record>(), random, shapes::canonical);
      const byte_string bytes = naive::encoding(record).bytes();
      tried() = bytes;
      const fenced_block buffer(bytes.size());
      counting_writer to;
      pavo_zorv::write_message(record.as<Record>(), to, buffer.data() + bytes.size());
      EXPECT_EQ(buffer.content(), bytes);
      EXPECT_EQ(to.bytes_written, bytes.size()) << record.type().name;
    });
  });
}

}  // namespace test
