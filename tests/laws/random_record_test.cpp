// That the random records are as various as the laws need them: every field there and not there, and the same record
// again from the same seed.
#include <set>

#include "laws.hpp"

namespace test {

class random_records : public law {};
INSTANTIATE_TEST_SUITE_P(every, random_records, testing::ValuesIn(subjects()), name_of_subject);

TEST_P(random_records, have_every_field_and_lack_it) {
  std::uint32_t ever = 0;
  std::uint32_t always = GetParam()->mask();
  for (std::uint64_t seed = 0; seed < 100; ++seed) {
    random_numbers random(seed);
    const random_record record(*GetParam(), random, shapes::canonical);
    ever |= record.presence();
    always &= record.presence();
  }
  EXPECT_EQ(ever, GetParam()->mask());
  EXPECT_EQ(always, 0u);
}

TEST_P(random_records, are_the_same_from_the_same_seed) {
  std::set<byte_string> different;
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    random_numbers first(seed);
    random_numbers second(seed);
    const byte_string bytes = naive::encoding(random_record(*GetParam(), first, shapes::full)).bytes();
    EXPECT_EQ(bytes, naive::encoding(random_record(*GetParam(), second, shapes::full)).bytes());
    different.insert(bytes);
  }
  EXPECT_GT(different.size(), 5u);
}

}  // namespace test
