// What the segment table contains: where each message is in an encoding and, in reference mode, which pieces to send in
// which order.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "pavo_zorv.h"

//! [table]
static int show(const char *what, const oam_req *request, uint32_t options) {
  // Measure bytes and entries, then write both.
  uint32_t count = 0;
  size_t length = pavo_zorv_oam_req_encode_ext(request, NULL, 0, NULL, &count, options);
  unsigned char *bytes = malloc(length);
  pavo_zorv_segment *table = calloc(count, sizeof *table);
  if (bytes == NULL || table == NULL) return -1;
  pavo_zorv_oam_req_encode_ext(request, bytes, length, table, &count, options);

  printf("%s: %zu bytes, %u entries\n", what, length, (unsigned)count);
  for (uint32_t i = 0; i < count; ++i) {
    const pavo_zorv_segment *entry = &table[i];
    if (entry->start == request->field6) {
      printf("  the member's own block");
    } else {
      printf("  from %td", entry->start - bytes);
    }
    printf(", %llu bytes:", (unsigned long long)entry->length);
    for (uint64_t at = 0; at < entry->length; ++at) printf(" %02x", entry->start[at]);
    printf("\n");
  }
  free(table);
  free(bytes);
  return 0;
}
//! [table]

int main(void) {
  uint8_t node[] = {1, 2};
  unsigned char probe[] = {0xaa, 0xbb, 0xcc};
  oam_req request = {0};
  request.field1 = 5;
  request.prefix_sid.field2 = node;
  request.prefix_sid.field2_count = sizeof node;
  request.prefix_sid.presence = PREFIX_SID_TYPE_HAS_FIELD2;
  request.field6 = probe;
  request.field6_length = sizeof probe;
  request.field7 = 3;
  request.presence = OAM_REQ_HAS_FIELD1 | OAM_REQ_HAS_PREFIX_SID | OAM_REQ_HAS_FIELD6 | OAM_REQ_HAS_FIELD7;

  if (show("copied", &request, 0) != 0) return 1;
  if (show("referenced", &request, PAVO_ZORV_REFERENCE) != 0) return 1;
  // Without a field after the block there is no last piece.
  request.presence = OAM_REQ_HAS_FIELD1 | OAM_REQ_HAS_FIELD6;
  request.prefix_sid.presence = 0;
  return show("referenced, block last", &request, PAVO_ZORV_REFERENCE) == 0 ? 0 : 1;
}
