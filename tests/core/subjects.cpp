// The messages of the tests, for the laws that hold for every message of the library: so these are tried on all kinds
// of member in every place. They are stated by hand for the naive decoder, as those of the library are.
#include "laws.hpp"
#include "test_messages.hpp"

namespace test {

constexpr naive::statement statements[] = {
    {"leaf", "u32 string u8*"},
    {"branch", "flag leaf leaf* u8 i32 u64 i64 leaf string"},
    {"parcel", "bytes"},
    {"crate", "parcel bytes leaf"},
    {"everything",
     "flag u8 u32 i32 u64 i64 string u8* u32* leaf leaf* bytes branch branch* u32 u32 flag u8 i32 u64 i64 string u8* "
     "u32* leaf leaf* crate crate* u32"},
    {"widest",
     "u32 u32 u32 u32 u32 u32 u32 u32 u32 u32 u32 u32 u32 u32 u32 u32 flag flag flag flag flag flag flag flag flag "
     "flag "
     "flag flag flag flag string bytes"},
};

constexpr calls functions[] = {calls_of<leaf>,  calls_of<branch>,     calls_of<parcel>,
                               calls_of<crate>, calls_of<everything>, calls_of<widest>};

const std::vector<const naive::message *> &subjects() {
  static const std::vector<naive::message> messages =
      naive::messages_of(statements, functions, {"tests/core/subjects.cpp", "the same file"});
  static const auto result = naive::pointers_to(messages);
  return result;
}

}  // namespace test
