// A second comparison, as naive as the decoder. Only the sign counts.
#pragma once

#include "view.hpp"

namespace naive {

inline int compare(view a, view b);

inline int sign_of(std::uint64_t a, std::uint64_t b) { return a < b ? -1 : a > b ? 1 : 0; }

inline int compare_numbers(const member &member, std::uint64_t a, std::uint64_t b) {
  // Signed numbers have the order of unsigned ones once their sign is flipped.
  const std::uint64_t sign = member.is_signed ? std::uint64_t{1} << (8 * member.width - 1) : 0;
  return sign_of(a ^ sign, b ^ sign);
}

inline int compare_bytes(const unsigned char *a, std::uint64_t a_size, const unsigned char *b, std::uint64_t b_size) {
  for (std::uint64_t i = 0; i < a_size && i < b_size; ++i) {
    if (a[i] != b[i]) return sign_of(a[i], b[i]);
  }
  return sign_of(a_size, b_size);
}

inline int compare_lists(const member &member, view a, view b) {
  for (std::uint64_t i = 0; i < a.count(member) && i < b.count(member); ++i) {
    const int result = member.kind == kind::message_list
                           ? compare(a.element(member, i), b.element(member, i))
                           : sign_of(a.element_number(member, i), b.element_number(member, i));
    if (result != 0) return result;
  }
  return sign_of(a.count(member), b.count(member));
}

inline int compare_members(const member &member, view a, view b) {
  switch (member.kind) {
    case kind::flag:
    case kind::integer:
      return compare_numbers(member, a.number(member), b.number(member));
    case kind::string:
      return compare_bytes(a.pointer(member), std::strlen(a.text(member)), b.pointer(member),
                           std::strlen(b.text(member)));
    case kind::bytes:
      return compare_bytes(a.pointer(member), a.count(member), b.pointer(member), b.count(member));
    case kind::nested:
      return compare(a.nested(member), b.nested(member));
    case kind::integer_list:
    case kind::message_list:
      return compare_lists(member, a, b);
  }
  broken("a member of no kind");
}

// A field that is there is greater than one that is not.
inline int compare(view a, view b) {
  for (const member &member : a.type().members) {
    if (a.has(member) != b.has(member)) return a.has(member) ? 1 : -1;
    if (!a.has(member)) continue;
    const int result = compare_members(member, a, b);
    if (result != 0) return result;
  }
  return 0;
}

}  // namespace naive
