// Laws of comparing: an order, and the one that the plain model states.
#include "laws.hpp"
#include "model_compare.hpp"

namespace test {

class comparing_laws : public law {};
INSTANTIATE_TEST_SUITE_P(every, comparing_laws, testing::ValuesIn(subjects()), name_of_subject);

int order(view a, view b) {
  const int result = compared(a, b);
  return (result > 0) - (result < 0);
}

// A record, always the same from a seed, with up to two members made anew.
random_record variation(const message_type &type, std::uint64_t seed, dice &rolled, const recipe &recipe) {
  dice again(seed);
  random_record result(type, again, recipe);
  for (std::uint64_t times = rolled.below(3); times-- != 0;) result.change(rolled, recipe);
  return result;
}

// Three records that differ in a few members, or not at all.
struct triple {
  random_record a, b, c;

  triple(const message_type &type, dice &rolled, const recipe &recipe) : triple(type, rolled.any(), rolled, recipe) {}

 private:
  triple(const message_type &type, std::uint64_t seed, dice &rolled, const recipe &recipe)
      : a(variation(type, seed, rolled, recipe)),
        b(variation(type, seed, rolled, recipe)),
        c(variation(type, seed, rolled, recipe)) {}
};

TEST_P(comparing_laws, the_sign_is_that_of_the_model_and_turns_with_the_arguments) {
  std::size_t equal = 0;
  std::size_t different = 0;
  for_seeds(1000, [&](dice &dice) {
    const triple records(*GetParam(), dice, dice.percent(50) ? recipes::alike : recipes::comparable);
    const int seen = order(records.a, records.b);
    EXPECT_EQ(seen, model_compare(records.a, records.b));
    EXPECT_EQ(order(records.b, records.a), -seen);
    EXPECT_EQ(order(records.a, records.a), 0);
    (seen == 0 ? equal : different) += 1;
  });
  if (!is_tried_in_full()) return;
  EXPECT_GT(equal, 50u) << "the law was hardly tried on equal records";
  EXPECT_GT(different, 100u) << "the law was hardly tried on different records";
}

TEST_P(comparing_laws, the_order_is_transitive) {
  for_seeds(1000, [&](dice &dice) {
    const triple records(*GetParam(), dice, dice.percent(50) ? recipes::alike : recipes::comparable);
    const int ab = order(records.a, records.b);
    const int bc = order(records.b, records.c);
    const int ac = order(records.a, records.c);
    EXPECT_TRUE(ab != 0 || ac == bc) << ab << bc << ac;
    EXPECT_TRUE(bc != 0 || ac == ab) << ab << bc << ac;
    EXPECT_TRUE(ab != bc || ac == ab) << ab << bc << ac;
  });
}

TEST_P(comparing_laws, canonical_records_are_equal_exactly_when_their_encodings_are) {
  for_seeds(1000, [&](dice &dice) {
    const triple records(*GetParam(), dice, recipes::alike);
    const byte_string a = encoding_of(records.a);
    const byte_string b = encoding_of(records.b);
    on_trial() = a;
    EXPECT_EQ(order(records.a, records.b) == 0, a == b) << show(b);
  });
}

}  // namespace test
