// What comparing must give, in the plainest words. Only the sign counts.
#pragma once

#include "description.hpp"

namespace test {

template <class Value>
int sign_of_difference(Value a, Value b) {
  return a < b ? -1 : a > b ? 1 : 0;
}

inline int model_compare(view a, view b);

inline int model_compare_numbers(const field &field, std::uint64_t a, std::uint64_t b) {
  if (!field.is_signed) return sign_of_difference(a, b);
  const unsigned unused = static_cast<unsigned>(64 - 8 * field.width);
  return sign_of_difference(static_cast<std::int64_t>(a << unused), static_cast<std::int64_t>(b << unused));
}

inline int model_compare_lists(const field &field, view a, view b) {
  for (std::uint64_t i = 0; i < a.count(field) && i < b.count(field); ++i) {
    int result = 0;
    if (field.kind == kind::message_list) {
      result = model_compare(a.element(field, i), b.element(field, i));
    } else if (field.kind == kind::integer_list) {
      result = sign_of_difference(a.element_number(field, i), b.element_number(field, i));
    } else {
      result = sign_of_difference(a.pointer(field)[i], b.pointer(field)[i]);
    }
    if (result != 0) return result;
  }
  return sign_of_difference(a.count(field), b.count(field));
}

// As unsigned characters; the NUL decides between a string and its beginning.
inline int model_compare_strings(const unsigned char *a, const unsigned char *b) {
  while (*a != 0 && *a == *b) ++a, ++b;
  return sign_of_difference(*a, *b);
}

inline int model_compare(view a, view b) {
  for (const field &field : a.type().fields) {
    if (a.has(field) != b.has(field)) return a.has(field) ? 1 : -1;
    if (!a.has(field)) continue;
    const int result = field.is_number()            ? model_compare_numbers(field, a.number(field), b.number(field))
                       : field.kind == kind::string ? model_compare_strings(a.pointer(field), b.pointer(field))
                       : field.kind == kind::nested ? model_compare(a.nested(field), b.nested(field))
                                                    : model_compare_lists(field, a, b);
    if (result != 0) return result;
  }
  return 0;
}

}  // namespace test
