// What a copy must hold, followed through its source member by member, and what is asked for on the way.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "accountant.hpp"
#include "view.hpp"

namespace naive {

class copying {
 public:
  test::failing_requests failing;

  std::vector<std::size_t> sizes;  // what is asked for, in order
  bool complete = true;            // no request failed

  // Where a copy is not what it must be, as a comparison says it, or nothing. The presence bits of no field are not
  // looked at.
  std::string check(view source, view copy) {
    std::uint32_t presence = source.presence();
    for (const member &member : source.type().members) {
      bool failed = false;
      const std::string wrong = check_member(member, source, copy, failed);
      if (!wrong.empty()) return std::to_string(member.number) + wrong;
      if (failed) presence &= ~member.presence_bit();
    }
    return ((copy.presence() ^ presence) & source.type().mask()) == 0 ? "" : "the presence flags";
  }

 private:
  bool granted(std::size_t size) {
    sizes.push_back(size);
    const bool result = !failing.fails(sizes.size() - 1);
    complete &= result;
    return result;
  }

  std::string check_member(const member &member, view source, view copy, bool &failed) {
    if (member.is_scalar()) return source.number(member) == copy.number(member) ? "" : ", the value";
    if (member.kind == kind::nested) {
      const std::string inner = check(source.nested(member), copy.nested(member));
      return inner.empty() ? "" : "." + inner;
    }

    const unsigned char *const from = source.pointer(member);
    const unsigned char *const to = copy.pointer(member);
    const std::uint64_t count = from == nullptr               ? 0
                                : member.kind == kind::string ? std::strlen(source.text(member)) + 1
                                                              : source.count(member);
    const std::uint64_t size = member.is_list() ? count * member.element_size() : count;
    failed = count != 0 && !granted(static_cast<std::size_t>(size));
    if (count == 0 || failed)
      return to == nullptr && !(member.has_count() && copy.count(member) != 0) ? "" : ", which ought to be empty";

    if (to == nullptr || to == from) return ", the pointer";
    if (member.has_count() && copy.count(member) != count) return ", the count";
    if (member.kind != kind::message_list) {
      return std::memcmp(from, to, static_cast<std::size_t>(size)) == 0 ? "" : ", the content";
    }
    for (std::uint64_t i = 0; i < count; ++i) {
      const std::string inner = check(source.element(member, i), copy.element(member, i));
      if (!inner.empty()) return "[" + std::to_string(i) + "]." + inner;
    }
    return "";
  }
};

}  // namespace naive
