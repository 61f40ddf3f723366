// What is encoded and decoded: records with the same content in every run.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "contest.hpp"
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
  std::vector<workload<api_addr>> addresses;
  std::vector<workload<api_lbl_stack>> label_stacks;
  std::vector<workload<api_msg>> envelopes;
  std::vector<workload<api_to_igp>> igp_messages;
  std::vector<workload<oam_res>> oam_results;
  std::vector<workload<srv6_prefix>> srv6_prefixes;

  // Calls `visit` with every workload.
  template <class Visit>
  void each(Visit &&visit) const {
    for (const auto &one : addresses) visit(one);
    for (const auto &one : envelopes) visit(one);
    for (const auto &one : igp_messages) visit(one);
    for (const auto &one : label_stacks) visit(one);
    for (const auto &one : oam_results) visit(one);
    for (const auto &one : srv6_prefixes) visit(one);
  }
};

// Built on first use; lives as long as the process.
const workloads &all_workloads();

// The five functions of a message type, with uniform names and options.
template <class Record>
struct operations;

#define PAVO_ZORV_BENCHMARK_OPERATIONS(message, comma_options)                                                        \
  template <>                                                                                                         \
  struct operations<message> {                                                                                        \
    static int decode(message *out, const byte_string &in, pavo_zorv_allocate allocate, void *context,                \
                      [[maybe_unused]] std::uint32_t options) {                                                       \
      return pavo_zorv_##message##_decode_ext(out, in.data(), in.size(), allocate, context comma_options);            \
    }                                                                                                                 \
    static std::size_t encode(const message *in, unsigned char *out, std::size_t length, pavo_zorv_segment *segments, \
                              std::uint32_t *count, [[maybe_unused]] std::uint32_t options) {                         \
      return pavo_zorv_##message##_encode_ext(in, out, length, segments, count comma_options);                        \
    }                                                                                                                 \
    static int duplicate(message *to, const message *from, pavo_zorv_allocate allocate, void *context) {              \
      return pavo_zorv_##message##_duplicate(to, from, allocate, context);                                            \
    }                                                                                                                 \
    static void free(message *record, pavo_zorv_release release, void *context,                                       \
                     [[maybe_unused]] std::uint32_t options) {                                                        \
      pavo_zorv_##message##_free_ext(record, release, context comma_options);                                         \
    }                                                                                                                 \
    static int compare(const message *a, const message *b) { return pavo_zorv_##message##_compare(a, b); }            \
  };
PAVO_ZORV_BENCHMARK_OPERATIONS(api_addr, )
PAVO_ZORV_BENCHMARK_OPERATIONS(api_lbl_stack, )
PAVO_ZORV_BENCHMARK_OPERATIONS(api_to_igp, )
#define PAVO_ZORV_BENCHMARK_OPTIONS , options
PAVO_ZORV_BENCHMARK_OPERATIONS(api_msg, PAVO_ZORV_BENCHMARK_OPTIONS)
PAVO_ZORV_BENCHMARK_OPERATIONS(oam_res, PAVO_ZORV_BENCHMARK_OPTIONS)
PAVO_ZORV_BENCHMARK_OPERATIONS(srv6_prefix, PAVO_ZORV_BENCHMARK_OPTIONS)
#undef PAVO_ZORV_BENCHMARK_OPTIONS
#undef PAVO_ZORV_BENCHMARK_OPERATIONS

// The library's encoding of a record, with which the contestants' results are compared.
template <class Record>
byte_string encoding(const Record &record, std::uint32_t options = 0) {
  byte_string result(operations<Record>::encode(&record, nullptr, 0, nullptr, nullptr, options));
  operations<Record>::encode(&record, result.data(), result.size(), nullptr, nullptr, options);
  return result;
}

}  // namespace contest
