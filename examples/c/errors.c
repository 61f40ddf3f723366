// What can go wrong, and what to do about it: check the result, and release the record in any case.
#include <stdio.h>
#include <string.h>

#include "pavo_zorv.h"
#include "pavo_zorv_memory.h"

//! [decode]
static void try_to_decode(const char *what, const unsigned char *bytes, size_t length, size_t memory) {
  pavo_zorv_budget budget;
  pavo_zorv_budget_init(&budget, memory, pavo_zorv_heap_allocate, pavo_zorv_heap_release, NULL);

  api_intf intf;
  int result = pavo_zorv_api_intf_decode_ext(&intf, bytes, length, pavo_zorv_budget_allocate, &budget);
  printf("%s: %s", what, pavo_zorv_result_name(result));
  if (result != CODEC_OK) printf(" (%s)", pavo_zorv_result_text(result));
  // After a failure the record holds what was read before.
  if ((intf.presence & API_INTF_HAS_FIELD1) != 0) printf(", number %u", (unsigned)intf.field1);
  if ((intf.presence & API_INTF_HAS_FIELD2) != 0) printf(", name %s", intf.field2);
  pavo_zorv_api_intf_free_ext(&intf, pavo_zorv_budget_release, &budget);
  printf(", %zu bytes not released\n", budget.spent);
}
//! [decode]

int main(void) {
  static const unsigned char whole[] = {0x08, 0x07, 0x12, 0x04, 'e', 't', 'h', '0'};
  static const unsigned char twice[] = {0x12, 0x01, 'a', 0x12, 0x01, 'b'};
  static const unsigned char group[] = {0x08, 0x07, 0x1b};
  static const unsigned char wrong[] = {0x08, 0x07, 0x15, 0x00, 0x00, 0x00, 0x00};
  enum { plenty = 1000 };

  try_to_decode("whole", whole, sizeof whole, plenty);
  try_to_decode("cut off", whole, sizeof whole - 1, plenty);
  try_to_decode("a repeated string", twice, sizeof twice, plenty);
  try_to_decode("an unknown group", group, sizeof group, plenty);
  try_to_decode("a name as a fixed-width number", wrong, sizeof wrong, plenty);
  try_to_decode("with 12 bytes of memory", whole, sizeof whole, 12);

  //! [short]
  // Encoding does not fail: it returns the full length, and writes what fits.
  api_intf intf = {.field1 = 7, .field2 = "eth0", .presence = API_INTF_HAS_FIELD1 | API_INTF_HAS_FIELD2};
  unsigned char buffer[5];
  size_t length = pavo_zorv_api_intf_encode_ext(&intf, buffer, sizeof buffer, NULL, NULL);
  if (length > sizeof buffer) printf("%zu bytes needed, %zu available\n", length, sizeof buffer);
  //! [short]

  //! [copy]
  // A copy leaves members empty for which there is no memory, and continues.
  pavo_zorv_counter counter;
  pavo_zorv_counter_init(&counter, pavo_zorv_heap_allocate, pavo_zorv_heap_release, NULL);
  counter.fail_at = 0;
  api_intf copy;
  int result = pavo_zorv_api_intf_duplicate(&copy, &intf, pavo_zorv_counter_allocate, &counter);
  printf("copy: %s, number %u, name %s\n", pavo_zorv_result_name(result), (unsigned)copy.field1,
         (copy.presence & API_INTF_HAS_FIELD2) != 0 ? copy.field2 : "missing");
  pavo_zorv_api_intf_free_ext(&copy, pavo_zorv_counter_release, &counter);
  //! [copy]
  return counter.live == 0 ? 0 : 1;
}
