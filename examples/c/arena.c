// A pool that is reset for each message: nothing to release, no leak, and a block that is large enough for any input.
#include <stdio.h>
#include <stdlib.h>

#include "pavo_zorv.h"
#include "pavo_zorv_memory.h"

enum { longest_message = 64 };

static const unsigned char node[] = {0x0a, 0x07, 0x08, 0x01, 0x10, 0xc6, 0x01, 0x10, 0x33};
// A repeated nested message: what the first one owned is dropped, and would leak on a heap.
static const unsigned char twice[] = {0x12, 0x06, 0x12, 0x04, 'e', 't', 'h', '0',
                                      0x12, 0x06, 0x12, 0x04, 'e', 't', 'h', '1'};

static void show(const unsigned char *bytes, size_t length, pavo_zorv_pool *pool) {
  api_to_zorv message;
  int result = pavo_zorv_api_to_zorv_decode_ext(&message, bytes, length, pavo_zorv_pool_allocate, pool);
  printf("%s", pavo_zorv_result_name(result));
  if ((message.presence & API_TO_ZORV_HAS_INTF) != 0) printf(", interface %s", message.intf.field2);
  if ((message.presence & API_TO_ZORV_HAS_NODEID) != 0)
    printf(", node of %u bytes", (unsigned)message.nodeid.octets_count);
  printf(", %zu bytes of memory\n", pool->used);
}

int main(void) {
  //! [pool]
  size_t size = pavo_zorv_pool_size_for(longest_message);
  void *block = malloc(size);
  if (block == NULL) return 1;
  pavo_zorv_pool pool;
  pavo_zorv_pool_init(&pool, block, size);
  //! [pool]

  //! [loop]
  for (int round = 0; round < 2; ++round) {
    show(twice, sizeof twice, &pool);
    pavo_zorv_pool_reset(&pool);  // instead of free_ext
    show(node, sizeof node, &pool);
    pavo_zorv_pool_reset(&pool);
  }
  //! [loop]
  free(block);
  return 0;
}
