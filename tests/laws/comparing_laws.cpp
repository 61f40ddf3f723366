// Laws of comparing: an order, and the one that the naive comparison states.
#include "laws.hpp"
#include "naive/compare.hpp"

namespace test {

class comparing_laws : public law {};
INSTANTIATE_TEST_SUITE_P(every, comparing_laws, testing::ValuesIn(subjects()), name_of_subject);

int order(view a, view b) {
  const int result = compared(a, b);
  return (result > 0) - (result < 0);
}

// A record, always the same from a seed, with up to two members made anew.
random_record variation(const naive::message &type, std::uint64_t seed, random_numbers &random, const shape &shape) {
  random_numbers again(seed);
  random_record result(type, again, shape);
  for (std::uint64_t times = random.below(3); times-- != 0;) result.change(random, shape);
  return result;
}

// Three records that differ in a few members, or not at all.
struct triple {
  random_record a, b, c;

  triple(const naive::message &type, random_numbers &random, const shape &shape)
      : triple(type, random.any(), random, shape) {}

 private:
  triple(const naive::message &type, std::uint64_t seed, random_numbers &random, const shape &shape)
      : a(variation(type, seed, random, shape)),
        b(variation(type, seed, random, shape)),
        c(variation(type, seed, random, shape)) {}
};

TEST_P(comparing_laws, the_sign_is_that_of_the_naive_comparison_and_turns_with_the_arguments) {
  std::size_t equal = 0;
  std::size_t different = 0;
  for_seeds(1000, [&](random_numbers &random) {
    const triple records(*GetParam(), random, random.percent(50) ? shapes::alike : shapes::comparable);
    const int seen = order(records.a, records.b);
    EXPECT_EQ(seen, naive::compare(records.a, records.b));
    EXPECT_EQ(order(records.b, records.a), -seen);
    EXPECT_EQ(order(records.a, records.a), 0);
    (seen == 0 ? equal : different) += 1;
  });
  if (!is_tried_in_full()) return;
  EXPECT_GT(equal, 50u) << "the law was hardly tried on equal records";
  EXPECT_GT(different, 100u) << "the law was hardly tried on different records";
}

TEST_P(comparing_laws, the_order_is_transitive) {
  for_seeds(1000, [&](random_numbers &random) {
    const triple records(*GetParam(), random, random.percent(50) ? shapes::alike : shapes::comparable);
    const int ab = order(records.a, records.b);
    const int bc = order(records.b, records.c);
    const int ac = order(records.a, records.c);
    EXPECT_TRUE(ab != 0 || ac == bc) << ab << bc << ac;
    EXPECT_TRUE(bc != 0 || ac == ab) << ab << bc << ac;
    EXPECT_TRUE(ab != bc || ac == ab) << ab << bc << ac;
  });
}

TEST_P(comparing_laws, canonical_records_are_equal_exactly_when_their_encodings_are) {
  for_seeds(1000, [&](random_numbers &random) {
    const triple records(*GetParam(), random, shapes::alike);
    const byte_string a = encoding_of(records.a);
    const byte_string b = encoding_of(records.b);
    tried() = a;
    EXPECT_EQ(order(records.a, records.b) == 0, a == b) << show(b);
  });
}

}  // namespace test
