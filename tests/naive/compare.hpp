// A second comparison, as naive as the decoder. Only the sign counts.
#pragma once

#include "decoder.hpp"

namespace naive {

inline int compare(const message &type, const unsigned char *a, const unsigned char *b);

inline int sign_of(std::uint64_t a, std::uint64_t b) { return a < b ? -1 : a > b ? 1 : 0; }

inline int compare_numbers(const member &field, std::uint64_t a, std::uint64_t b) {
  // Signed numbers stand in the order of the others once the sign is turned over.
  const std::uint64_t sign = field.is_signed ? std::uint64_t{1} << (8 * field.width - 1) : 0;
  return sign_of(a ^ sign, b ^ sign);
}

inline int compare_bytes(const unsigned char *a, std::uint64_t a_size, const unsigned char *b, std::uint64_t b_size) {
  for (std::uint64_t i = 0; i < a_size && i < b_size; ++i) {
    if (a[i] != b[i]) return sign_of(a[i], b[i]);
  }
  return sign_of(a_size, b_size);
}

inline int compare_blocks(const member &field, const unsigned char *a, const unsigned char *b) {
  const unsigned char *const left = pointer_at(a + field.offset);
  const unsigned char *const right = pointer_at(b + field.offset);
  if (field.what == sort::text) {
    return compare_bytes(left, std::strlen(reinterpret_cast<const char *>(left)), right,
                         std::strlen(reinterpret_cast<const char *>(right)));
  }
  const std::uint64_t a_count = count_of(field, a);
  const std::uint64_t b_count = count_of(field, b);
  if (field.what == sort::bytes) return compare_bytes(left, a_count, right, b_count);
  const std::size_t size = field.element_size();
  for (std::uint64_t i = 0; i < a_count && i < b_count; ++i) {
    const int result = field.what == sort::messages
                           ? compare(*field.nested, left + i * size, right + i * size)
                           : sign_of(load(left + i * size, field.width), load(right + i * size, field.width));
    if (result != 0) return result;
  }
  return sign_of(a_count, b_count);
}

inline int compare(const message &type, const unsigned char *a, const unsigned char *b) {
  for (std::size_t i = 0; i < type.members.size(); ++i) {
    const member &field = type.members[i];
    const unsigned in_a = presence_of(type, a) >> i & 1;
    const unsigned in_b = presence_of(type, b) >> i & 1;
    if (in_a != in_b) return in_a != 0 ? 1 : -1;
    if (in_a == 0) continue;
    const int result = field.is_scalar()             ? compare_numbers(field, load(a + field.offset, field.width),
                                                                       load(b + field.offset, field.width))
                       : field.what == sort::message ? compare(*field.nested, a + field.offset, b + field.offset)
                                                     : compare_blocks(field, a, b);
    if (result != 0) return result;
  }
  return 0;
}

}  // namespace naive
