// What is encoded and decoded: records as networks send them, drawn from a seeded generator.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "contest.hpp"
#include "operations.hpp"
#include "pavo_zorv.h"

namespace contest {

// One or more messages of one type. An operation on a workload is applied to each of them.
template <class Record>
struct workload {
  std::string name;
  std::vector<Record> records;
  std::vector<byte_string> wire;  // the library's encoding of each record, which every contestant must reproduce
  std::uint32_t options = 0;      // PAVO_ZORV_REFERENCE: contestants that can do so refer to bytes members

  std::size_t size() const {
    std::size_t sum = 0;
    for (const byte_string &message : wire) sum += message.size();
    return sum;
  }
  std::size_t longest() const {
    std::size_t most = 0;
    for (const byte_string &message : wire) most = std::max(most, message.size());
    return most;
  }
};

// The workloads, by the type of their messages.
struct workloads {
  explicit workloads(std::uint64_t seed);

#define PAVO_ZORV_BENCHMARK_LIST(message) std::vector<workload<message>> of_##message;
  PAVO_ZORV_BENCHMARK_MESSAGES(PAVO_ZORV_BENCHMARK_LIST)
#undef PAVO_ZORV_BENCHMARK_LIST
  std::shared_ptr<void> memory;  // of the records

  // Calls `visit` with every workload.
  template <class Visit>
  void each(Visit &&visit) const {
#define PAVO_ZORV_BENCHMARK_VISIT(message) \
  for (const auto &one : of_##message) visit(one);
    PAVO_ZORV_BENCHMARK_MESSAGES(PAVO_ZORV_BENCHMARK_VISIT)
#undef PAVO_ZORV_BENCHMARK_VISIT
  }
};

}  // namespace contest
