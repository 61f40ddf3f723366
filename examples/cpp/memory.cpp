// The sources of a record's memory in C++: the heap, a memory resource, a pool, a budget.
#include <array>
#include <cstdio>
#include <memory_resource>

#include "pavo_zorv.hpp"

namespace {

// Interface 7, "eth0".
constexpr std::array<unsigned char, 8> input = {0x08, 0x07, 0x12, 0x04, 'e', 't', 'h', '0'};

void show(const char *where, const zorv::owned<api_intf> &intf) {
  std::printf("%s: %s, name %s\n", where, pavo_zorv_result_name(intf.result()),
              intf.has<&api_intf::field2>() ? intf->field2 : "missing");
}

}  // namespace

int main() {
  show("heap", zorv::decode<api_intf>(input));

  //! [resource]
  std::array<std::byte, 256> block;
  std::pmr::monotonic_buffer_resource arena(block.data(), block.size(), std::pmr::null_memory_resource());
  show("memory resource", zorv::decode<api_intf>(input, arena));
  //! [resource]

  //! [budget]
  pavo_zorv_budget budget;
  pavo_zorv_budget_init(&budget, 12, pavo_zorv_heap_allocate, pavo_zorv_heap_release, nullptr);
  show("budget of 12 bytes", zorv::decode<api_intf>(input, budget));
  //! [budget]

  //! [reference]
  const std::array<unsigned char, 5> address = {0x0a, 0x03, 0x20, 0x01, 0x0d};
  const auto prefix = zorv::decode<srv6_prefix>(address, {}, PAVO_ZORV_REFERENCE);
  std::printf("referenced: %s\n", prefix->field1 == address.data() + 2 ? "points into the input" : "copied");
  //! [reference]
  return prefix.ok() && budget.spent == 0 ? 0 : 1;
}
