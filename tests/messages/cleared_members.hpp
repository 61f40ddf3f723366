// What is left in a record that ought to be clear: every byte of every member is looked at, at every depth.
#pragma once

#include <string>

#include "message_table.hpp"
#include "naive/view.hpp"

namespace test {

// The members of a record that are not zero, and presence flags with a bit of a field; nothing where all is clear. The
// presence bits of no field are not looked at, nor what lies between the members.
inline std::string left_in(naive::view record, const std::string &way = "") {
  const naive::message &type = record.type();
  std::string result;
  for (const naive::member &member : type.members) {
    const std::string name = way + pavo_zorv::find_message(type.name)->fields[member.number - 1].name;
    if (member.kind == naive::kind::nested) {
      result += left_in(record.nested(member), name + ".");
    } else {
      if (member.is_scalar() ? record.number(member) != 0 : record.pointer(member) != nullptr) result += name + " ";
      if (member.has_count() && record.count(member) != 0) result += "count of " + name + " ";
    }
  }
  if ((record.presence() & type.mask()) != 0) result += way + "presence ";
  return result;
}

template <class Record>
std::string left_in(const Record &record) {
  return left_in(naive::view_of(record));
}

}  // namespace test
