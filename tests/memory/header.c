/* The ready-made callbacks as C11 and as C++11: alone, twice, and in use. */
#include "pavo_zorv_memory.h"

#include <string.h>

/* An interface with a name, which is allocated. */
static const unsigned char bytes[] = {0x08, 0x07, 0x12, 0x04, 'e', 't', 'h', '0'};

static int decodes(pavo_zorv_allocate allocate, pavo_zorv_release release, void *context) {
  api_intf record;
  const int result = pavo_zorv_api_intf_decode_ext(&record, bytes, sizeof bytes, allocate, context);
  const int right = result == CODEC_OK && record.field1 == 7 && strcmp(record.field2, "eth0") == 0;
  pavo_zorv_api_intf_free_ext(&record, release, context);
  return right;
}

int main(void) {
  unsigned char block[16];
  pavo_zorv_pool pool;
  pavo_zorv_budget budget;
  pavo_zorv_counter counter;

  if (!decodes(pavo_zorv_heap_allocate, pavo_zorv_heap_release, NULL)) return 1;

  pavo_zorv_pool_init(&pool, block, sizeof block);
  if (!decodes(pavo_zorv_pool_allocate, pavo_zorv_pool_release, &pool)) return 2;
  if (pool.used != 8) return 3;
  pavo_zorv_pool_reset(&pool);
  if (pool.used != 0) return 4;

  pavo_zorv_budget_init(&budget, 13, pavo_zorv_heap_allocate, pavo_zorv_heap_release, NULL);
  if (!decodes(pavo_zorv_budget_allocate, pavo_zorv_budget_release, &budget)) return 5;
  budget.limit = 12;
  if (decodes(pavo_zorv_budget_allocate, pavo_zorv_budget_release, &budget)) return 6;
  if (budget.spent != 0) return 7;

  pavo_zorv_counter_init(&counter, pavo_zorv_heap_allocate, pavo_zorv_heap_release, NULL);
  if (!decodes(pavo_zorv_counter_allocate, pavo_zorv_counter_release, &counter)) return 8;
  if (counter.requests != 1 || counter.bytes != 5 || counter.live != 0) return 9;
  counter.fail_at = 1;
  if (decodes(pavo_zorv_counter_allocate, pavo_zorv_counter_release, &counter)) return 10;

  if (strcmp(pavo_zorv_result_name(CODEC_ERR_NO_MEMORY), "CODEC_ERR_NO_MEMORY") != 0) return 11;
  if (pavo_zorv_pool_size_for(0) > 7) return 12;
  return 0;
}
