// Measuring: the extent of an encoding, summed from the innermost messages outwards in one pass.
#pragma once

#include "message.hpp"

namespace pavo_zorv {

// The extent of one message while its fields are added up.
struct measuring {
  bool referenced;
  extent sum = {};
  std::size_t last_piece = 0;  // where the octets of the message's last table entry begin

  // Only a bytes member can be longer than memory. A sum with such a one in it stays near the greatest, where nothing
  // that is added later wraps it, and is never written.
  void add_saturating(std::uint64_t octets) {
    const bool fits = sum.octets < unwritable && octets < unwritable - sum.octets;
    sum.octets = fits ? sum.octets + static_cast<std::size_t>(octets) : unwritable;
  }
};

template <class Record>
extent measure_message(const Record &record, bool referenced) {
  measuring total{referenced};
  const auto presence = record.presence;
  for_each_row<Record>([&](auto index) __attribute__((always_inline)) {
    row_at<Record, index>.measure(total, record, (presence & presence_bit<Record, index>) != 0);
  });
  if (total.sum.octets != total.last_piece) ++total.sum.segments;
  return total.sum;
}

}  // namespace pavo_zorv
