// The scratch block that encodings of unknown size are written to: its size, and the slop below its limit.
#pragma once

#include <algorithm>
#include <cstddef>
#include <type_traits>

#include "schema.hpp"

namespace pavo_zorv {

// The most bytes that a message writes without reserving them: of a field, a key of up to two bytes and a number or a
// length of up to ten. A message that is not small is not begun below the limit, so one of those inside it counts.
template <class Record>
consteval std::size_t slop_of() {
  std::size_t own = 12 * field_count<Record>, inner = 0;
  for_each_row<Record>([&](auto index) {
    using this_row = std::remove_cvref_t<decltype(row_at<Record, index>)>;
    if constexpr (this_row::type == kind::nested || this_row::type == kind::message_list) {
      using nested = typename this_row::message;
      if constexpr (this_row::type == kind::nested && is_small<nested>) {
        own += slop_of<nested>();
      } else {
        inner = std::max(inner, slop_of<nested>());
      }
    }
  });
  return own + inner;
}

// For buffers up to this length encodings are written by scratch: nearly half of what encoding them takes would be
// measuring. A frame larger than a page could step over the one that guards the end of a stack, unless the compiler
// touches each page in order.
#if defined(PAVO_ZORV_STACK_PROBES)
inline constexpr std::size_t scratch_size = 8192;
#else
inline constexpr std::size_t scratch_size = 3072;
#endif

}  // namespace pavo_zorv
