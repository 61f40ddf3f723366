// What is left in a record that ought to be clear: every byte of every member is looked at, at every depth.
#pragma once

#include <string>
#include <tuple>
#include <type_traits>

#include "messages/all.hpp"
#include "support.hpp"

namespace test {

// The members of a record that are not zero, and presence flags with a bit of a field; nothing where all is clear. The
// presence bits of no field are not looked at, nor what lies between the members.
template <class Record>
std::string left_in(const Record &record, const std::string &name = "") {
  std::string result;
  pavo_zorv::for_each_row<Record>([&](auto index) {
    constexpr auto &row = pavo_zorv::row_at<Record, index>;
    std::apply(
        [&](auto... members) {
          const auto look = [&](const auto &member) {
            using Member = std::remove_cvref_t<decltype(member)>;
            if constexpr (std::is_class_v<Member>) {
              result += left_in(member, name + row.name + ".");
            } else if (std::memcmp(&member, byte_string(sizeof member).data(), sizeof member) != 0) {
              result += name + row.name + " ";
            }
          };
          (look(record.*members), ...);
        },
        row.members());
  });
  if ((record.presence & pavo_zorv::presence_mask<Record>) != 0) result += name + "presence ";
  return result;
}

}  // namespace test
