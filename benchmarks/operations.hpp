// The five functions of each message of the workloads, of the library that is linked or of another build of it.
#pragma once

#include <dlfcn.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

#include "contest.hpp"
#include "pavo_zorv.h"

// The messages of the workloads, in the order in which they are reported.
#define PAVO_ZORV_BENCHMARK_MESSAGES(each) \
  each(api_lbl_stack) each(api_prefix) each(api_intf) each(api_to_igp) each(api_msg) each(oam_res) each(srv6_prefix)

namespace contest {

// A build of the library: the one that is linked, or a shared library.
class build {
 public:
  build() = default;
  explicit build(const std::string &path) : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    require(handle_ != nullptr, "the library loads", path);
  }

  template <class Function>
  Function *function(const char *name, Function *linked) const {
    if (handle_ == nullptr) return linked;
    auto *const found = reinterpret_cast<Function *>(dlsym(handle_, name));
    require(found != nullptr, "the library has every function", name);
    return found;
  }

 private:
  void *handle_ = nullptr;
};

template <class Record>
struct functions;

#define PAVO_ZORV_BENCHMARK_FUNCTION(message, name)    \
  decltype(pavo_zorv_##message##_##name) *const name = \
      from.function("pavo_zorv_" #message "_" #name, pavo_zorv_##message##_##name);
#define PAVO_ZORV_BENCHMARK_FUNCTIONS(message)        \
  template <>                                         \
  struct functions<message> {                         \
    build from;                                       \
    PAVO_ZORV_BENCHMARK_FUNCTION(message, decode_ext) \
    PAVO_ZORV_BENCHMARK_FUNCTION(message, encode_ext) \
    PAVO_ZORV_BENCHMARK_FUNCTION(message, duplicate)  \
    PAVO_ZORV_BENCHMARK_FUNCTION(message, free_ext)   \
    PAVO_ZORV_BENCHMARK_FUNCTION(message, compare)    \
  };
PAVO_ZORV_BENCHMARK_MESSAGES(PAVO_ZORV_BENCHMARK_FUNCTIONS)
#undef PAVO_ZORV_BENCHMARK_FUNCTIONS
#undef PAVO_ZORV_BENCHMARK_FUNCTION

// The same for every message, whether its functions have options or not.
template <class Record>
class operations {
 public:
  explicit operations(const build &from = {}) : use_{from} {}

  int decode(Record *out, const byte_string &in, pavo_zorv_allocate allocate, void *context,
             std::uint32_t options) const {
    return with_options(use_.decode_ext, options, out, in.data(), in.size(), allocate, context);
  }
  std::size_t encode(const Record *in, unsigned char *out, std::size_t length, pavo_zorv_segment *segments,
                     std::uint32_t *count, std::uint32_t options) const {
    return with_options(use_.encode_ext, options, in, out, length, segments, count);
  }
  std::size_t measure(const Record *in, std::uint32_t options) const {
    return encode(in, nullptr, 0, nullptr, nullptr, options);
  }
  int duplicate(Record *to, const Record *from, pavo_zorv_allocate allocate, void *context) const {
    return use_.duplicate(to, from, allocate, context);
  }
  void free(Record *record, pavo_zorv_release release, void *context, std::uint32_t options) const {
    with_options(use_.free_ext, options, record, release, context);
  }
  int compare(const Record *a, const Record *b) const { return use_.compare(a, b); }

 private:
  template <class Function, class... Arguments>
  static auto with_options(Function *function, std::uint32_t options, Arguments... arguments) {
    if constexpr (std::is_invocable_v<Function *, Arguments..., std::uint32_t>) {
      return function(arguments..., options);
    } else {
      return function(arguments...);
    }
  }

  functions<Record> use_;
};

// The library's encoding of a record, with which the contestants' results are compared.
template <class Record>
byte_string encoding(const Record &record) {
  const operations<Record> use;
  byte_string result(use.measure(&record, 0));
  use.encode(&record, result.data(), result.size(), nullptr, nullptr, 0);
  return result;
}

}  // namespace contest
