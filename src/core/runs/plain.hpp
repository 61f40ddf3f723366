// Runs: the fields of one list, one after the other on the wire, each with its key. Here are the plain loops, the
// reference implementation of the fast ones for lists of integers.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/writer.hpp"

namespace pavo_zorv {

// Counts the elements of a run from its first value on. `skip` steps over one value, to null where it is cut off. Of
// the keys inside the run only the number is looked at, not the wire type. 0 when a value, or the key after one, is
// cut off.
template <class Skip>
inline std::size_t count_run(unsigned number, const byte *at, const byte *end, Skip skip) {
  for (std::size_t count = 1;; ++count) {
    at = skip(at, end);
    if (at == nullptr) return 0;
    if (at == end) return count;
    const auto [next, key] = read_varint<std::uint32_t>(at, end);
    if (next == nullptr) return 0;
    if (number_of(key) != number) return count;
    at = next;
  }
}

namespace plain {

// Counts the integers of a run from its first value on.
inline std::size_t count_integers(unsigned number, const byte *at, const byte *end) {
  return count_run(number, at, end, skip_varint);
}

// Reads integers that have been counted, cut to the width of the elements; returns the place after the last. Keys are
// not looked at again; null where the input has changed since it was counted, and is cut off before the last element.
template <class Element>
const byte *read_integers(Element *elements, std::size_t count, const byte *at, const byte *end) {
  for (std::size_t index = 0; index < count; ++index) {
    if (index != 0) at = skip_varint(at, end);
    if (at == nullptr) return nullptr;
    const auto [next, value] = read_varint<std::uint32_t>(at, end);
    if (next == nullptr) return nullptr;
    elements[index] = static_cast<Element>(value);
    at = next;
  }
  return at;
}

// The bytes that integers take as varints, without their keys.
template <class Element>
std::uint64_t measure_integers(const Element *elements, std::size_t count) {
  std::uint64_t bytes = 0;
  for (std::size_t index = 0; index < count; ++index) bytes += varint_size(std::uint32_t{elements[index]});
  return bytes;
}

// Writes integers backwards, each with its key.
template <class Writer, class Element>
typename Writer::position write_integers(const Writer &writer, typename Writer::position at, unsigned number,
                                         const Element *elements, std::size_t count) {
  for (std::size_t index = count; index-- != 0;) {
    at = writer.prepend_varint(at, std::uint32_t{elements[index]});
    at = prepend_key(writer, at, number, wire_type::varint);
  }
  return at;
}

}  // namespace plain

}  // namespace pavo_zorv
